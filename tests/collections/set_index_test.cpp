// The side index gives up in silence where it cannot serve a table; here is what it must serve.
#include <zavbase/collections/set_access_internal.h>
#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include "tests/support/on_threads.h"
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

/// Known to the index, found by their numbers, all of one hash.
struct Crowded : Probe {
    explicit Crowded(int number) : Probe(number, 7u), mKey(number) {}
    static const char* Bytes(const ZAV_CltObject* o, uint32_t* length) {
        *length = sizeof(int);
        return reinterpret_cast<const char*>(&static_cast<const Crowded*>(o)->mKey);
    }
    static bool Take() { return zav_strong::RegisterKeyClass(typeid(Crowded), &Bytes); }
    int mKey;
};

/// Classes to register, all of whose objects are equal by the same byte, each to its own kind only.
template <int N>
struct Registered : ZAV_CltObject {
    static const char* Bytes(const ZAV_CltObject*, uint32_t* length) { return *length = 1, "x"; }
    static bool Take() { return zav_strong::RegisterKeyClass(typeid(Registered), &Bytes); }
};

} // namespace

TEST(SetIndex, TakesFourClassesAndRefusesMore) {
    // The entries of value dictionaries are the first. One that is known needs no more room.
    EXPECT_TRUE(Registered<1>::Take() && Registered<1>::Take() && Registered<2>::Take() && Crowded::Take());
    EXPECT_FALSE(Registered<3>::Take());
    Registered<1> one, twin;
    Registered<2> two;
    Registered<3> three;
    ZAV_CltString text("x");
    ZAV_AssocUVal entry("x", nullptr);
    EXPECT_TRUE(Serves({&one, &two, &text, &entry})) << "none is taken for another";
    EXPECT_FALSE(Serves({&one, &twin}) || Serves({&text, &three}));
}

// Whoever is taken out may be dead when the slots are put right.
TEST(SetIndex, TakesOutWithoutWalkingTheCluster) {
    ASSERT_TRUE(Crowded::Take());
    const int n = 20000, before = Probe::Living();
    for (const bool refills : {false, true}) {
        ZAV_Set set(32768);
        for (int i = 0; i < n; ++i) set.Add(new Crowded(i));
        for (int i = 0; i < n - 100; ++i) {
            const Crowded sought(i);
            set.RemoveAndDestroy(&sought);
            if (refills) set.Add(new Crowded(i));
        }
        const int left = refills ? n : 100;
        ASSERT_EQ(before + left, Probe::Living());
        // Threads that only look need not agree who looks first.
        OnThreads(2, [&](int thread) {
            int walked = 0;
            for (ZAV_Iterator it(&set); ++it;) ++walked;
            EXPECT_EQ(left, walked);
            EXPECT_TRUE(set.Includes(std::make_unique<Crowded>(n - 1 - thread).get()));
        });
        static_cast<Crowded*>(set.FindObjectWithKey(std::make_unique<Crowded>(n - 1).get()))->mKey = n;
        EXPECT_EQ(0u, set.OccurrencesOf(std::make_unique<Crowded>(n - 1).get())) << "changed in place";
        EXPECT_LT(ZAV_SetAccess::Index(set)->Steps(), 10u * n);
        EXPECT_EQ(static_cast<uint32_t>(n - 100), ZAV_SetAccess::Moves(set)) << "also those put off";
        set.RemoveAndDestroy(std::make_unique<Crowded>(n - 2).get());
        set.ClearAndDestroy();
        EXPECT_EQ(before, Probe::Living());
    }
}
