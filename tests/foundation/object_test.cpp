#include <zavbase/foundation/object.h>

#include <gtest/gtest.h>

#include "tests/support/printed.h"

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
    EXPECT_EQ("Base class", Printed(probe));
    EXPECT_EQ("sub", Printed(static_cast<ZAV_Object&>(sub)));
    EXPECT_EQ("sub", Printed(static_cast<ZAV_Object*>(&sub)));
}

TEST(Boolean, AnyNonZeroValuePrintsAsTrue) {
    EXPECT_EQ("B_FALSE", Printed(B_FALSE));
    for (int value : {1, 7, -1}) EXPECT_EQ("B_TRUE", Printed(static_cast<boolean_t>(value)));
}
