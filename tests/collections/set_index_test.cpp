// The side index gives up in silence where it cannot serve a table; here is what it must serve.
#include <zavbase/collections/assoc.h>
#include <zavbase/collections/clt_string.h>
#include <zavbase/collections/nil.h>
#include <zavbase/collections/set_index_internal.h>

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "tests/support/probe.h"

namespace {

/// A class that is made known: equal by its first two characters.
class Pair : public ZAV_CltObject {
public:
    explicit Pair(const char* text) : mText(text) {}
    static const char* Bytes(const ZAV_CltObject* o, uint32_t* length) {
        *length = 2;
        return static_cast<const Pair*>(o)->mText;
    }

private:
    const char* mText;
};

bool Serves(std::vector<ZAV_CltObject*> elements) {
    elements.resize(64, GetNilObj());
    return ZAV_SetIndex::Build(elements.data(), 6) != nullptr;
}

} // namespace

// A byte that the hash or the copy of a key misses makes keys twins.
TEST(SetIndex, EveryByteOfAKeyCounts) {
    std::set<std::pair<std::pair<uint64_t, uint64_t>, uint32_t>> seen;
    size_t keys = 0;
    for (size_t length = 0; length <= 40; ++length) {
        for (size_t at = 0; at <= length; ++at) {
            std::string text(length, 'a');
            if (at < length) text[at] = 'b';
            const ZAV_CltString key(text.c_str());
            const ZAV_SetIndex::Sought sought(&key);
            ASSERT_TRUE(sought.mKnown);
            EXPECT_EQ(length > 15, sought.mBrief.IsCut());
            seen.insert({{sought.mBrief.mLow, sought.mBrief.mHigh}, sought.mStrong});
            ++keys;
        }
    }
    EXPECT_EQ(keys, seen.size());
}

TEST(SetIndex, ServesTheLibrarysKeysAndRegisteredOnes) {
    ZAV_CltString a("a"), b("b");
    ZAV_CltUTFString utf("c");
    ZAV_Integer number(97);
    ZAV_Assoc held(&b, nullptr);
    ZAV_AssocInt counted(&utf, 1);
    EXPECT_TRUE(Serves({&a, &b, &utf, &number}));
    EXPECT_TRUE(Serves({&a, &held, &counted}));
    EXPECT_FALSE(Serves({&a, &a})) << "twins";
    EXPECT_FALSE(Serves({&b, &held})) << "one of which does not call itself equal";
    ZAV_LookupKey nothing(nullptr);
    Probe probe(1);
    ZAV_Assoc ofProbe(&probe, nullptr);
    for (ZAV_CltObject* o : std::initializer_list<ZAV_CltObject*>{&nothing, &probe, &ofProbe, nullptr})
        EXPECT_FALSE(Serves({&a, o}));

    Pair ab("ab1"), twin("ab2"), cd("cd");
    EXPECT_FALSE(Serves({&ab, &cd}));
    zav_strong::RegisterKeyClass(typeid(Pair), &Pair::Bytes);
    EXPECT_TRUE(Serves({&ab, &cd, &a}));
    EXPECT_FALSE(Serves({&ab, &twin}));
    ZAV_CltString text("ab");
    EXPECT_TRUE(Serves({&ab, &text})) << "of different kinds";
}
