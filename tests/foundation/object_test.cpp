#include <zavbase/foundation/object.h>

#include <gtest/gtest.h>

#include <sstream>

namespace {

class Probe : public ZAV_Object {
    ZAV_DECLARE_CLASS(Probe)
};
ZAV_DEFINE_CLASS(Probe, ZAV_Object)

class SubProbe : public Probe {
    ZAV_DECLARE_CLASS(SubProbe)
    void PrintOn(std::ostream& os) override { os << "sub"; }
};
ZAV_DEFINE_CLASS(SubProbe, Probe)

std::string Text(ZAV_Object& o) {
    std::ostringstream os;
    os << o << "|" << &o;
    return os.str();
}

} // namespace

TEST(Object, KindFollowsTheRecordsButNeverReachesTheRoot) {
    SubProbe sub;
    Probe probe;
    EXPECT_TRUE(sub.IsKindOf(&SubProbe::classSubProbe));
    EXPECT_TRUE(sub.IsKindOf(&Probe::classProbe));
    EXPECT_FALSE(probe.IsKindOf(&SubProbe::classSubProbe));
    EXPECT_FALSE(sub.IsKindOf(&ZAV_Object::classZAV_Object));
    EXPECT_FALSE(sub.IsKindOf(nullptr));
    EXPECT_STREQ("SubProbe", sub.ClassName());
}

TEST(Object, PrintsThroughTheVirtual) {
    Probe probe;
    SubProbe sub;
    EXPECT_EQ("Base class|Base class", Text(probe));
    EXPECT_EQ("sub|sub", Text(sub));
}

TEST(Boolean, AnyNonZeroValuePrintsAsTrue) {
    std::ostringstream os;
    os << B_FALSE << " " << static_cast<boolean_t>(7) << " " << static_cast<boolean_t>(-1);
    EXPECT_EQ("B_FALSE B_TRUE B_TRUE", os.str());
}
