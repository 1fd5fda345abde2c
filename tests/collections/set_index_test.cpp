// The side index gives up in silence where it cannot serve a table; here is what it must serve.
#include <zavbase/collections/set_index_internal.h>
#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include "tests/support/probe.h"

namespace {

bool Serves(std::vector<ZAV_CltObject*> elements) {
    elements.resize(64, GetNilObj());
    return ZAV_SetIndex::Build(elements.data(), 6) != nullptr;
}

} // namespace

TEST(SetIndex, ServesTheLibrarysKeysAndNothingElse) {
    ZAV_CltString a("a"), b("b");
    ZAV_CltUTFString utf("c");
    ZAV_Integer number(97);
    ZAV_Assoc held(&b, nullptr);
    ZAV_AssocInt counted(&utf, 1);
    ZAV_AssocUVal entry("a", nullptr);
    EXPECT_TRUE(Serves({&a, &b, &utf, &number, &entry}));
    EXPECT_TRUE(Serves({&a, &held, &counted}));
    EXPECT_FALSE(Serves({&a, &a})) << "twins";
    EXPECT_FALSE(Serves({&b, &held})) << "one of which does not call itself equal";
    ZAV_LookupKey nothing(nullptr);
    Probe probe(1);
    ZAV_Assoc ofProbe(&probe, nullptr);
    for (ZAV_CltObject* o : std::initializer_list<ZAV_CltObject*>{&nothing, &probe, &ofProbe, nullptr})
        EXPECT_FALSE(Serves({&a, o}));
}

namespace {

/// Classes to register, all of whose objects are equal by the same byte, each to its own kind only.
template <int N>
struct Registered : ZAV_CltObject {
    static const char* Bytes(const ZAV_CltObject*, uint32_t* length) { return *length = 1, "x"; }
    static bool Take() { return zav_strong::RegisterKeyClass(typeid(Registered), &Bytes); }
};

} // namespace

TEST(SetIndex, TakesFourClassesAndRefusesMore) {
    // The entries of value dictionaries are the first. One that is known needs no more room.
    EXPECT_TRUE(Registered<1>::Take() && Registered<1>::Take() && Registered<2>::Take());
    EXPECT_TRUE(Registered<3>::Take());
    EXPECT_FALSE(Registered<4>::Take());
    Registered<1> one, twin;
    Registered<2> two;
    Registered<3> three;
    Registered<4> four;
    ZAV_CltString text("x");
    ZAV_AssocUVal entry("x", nullptr);
    EXPECT_TRUE(Serves({&one, &two, &three, &text, &entry})) << "none is taken for another";
    EXPECT_FALSE(Serves({&one, &twin}) || Serves({&text, &four}));
}
