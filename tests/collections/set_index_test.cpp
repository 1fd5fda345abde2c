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
