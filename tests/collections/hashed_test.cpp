// Dictionaries, bags and sets: ownership, quirks that callers rely on, and what must do no harm.
#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include <deque>
#include <random>

#include "tests/support/printed.h"
#include "tests/support/probe.h"

TEST(Dictionary, IsSearchedByValueButComparedByBoth) {
    Probe k1(1), k2(2), v1(10), v2(20), absent(2000);
    ZAV_Dictionary a, b(100);
    for (ZAV_Dictionary* d : {&a, &b}) {
        d->AddAssoc(&k1, &v1);
        d->AddAssoc(&k2, &v2);
    }
    ZAV_Set& asSet = a;
    EXPECT_TRUE(a.IsEqual(&b) && !asSet.IsEqual(&k1));
    b.AtKey(&k2, &v1);
    EXPECT_TRUE(a != b);
    EXPECT_EQ(k1.Hash() ^ k2.Hash(), asSet.Hash());
    EXPECT_TRUE(std::unique_ptr<ZAV_Set>(a.AsSet())->Includes(&v1));
    ZAV_OrderedCltn keys(1), values(1);
    a.AddKeysTo(&keys);
    a.AddValuesTo(&values);
    for (int i : {0, 1}) EXPECT_EQ(values[i], a.AtKey(keys[i]));

    b.AtKey(&k2, nullptr);
    EXPECT_EQ(0u, b.OccurrencesOf(&absent)) << "beside a null value";
    ZAV_Assoc sought(&absent, nullptr);
    EXPECT_EQ(nullptr, b.RemoveAssoc(&sought));
    EXPECT_EQ(1u, b.Size()) << "the count drops as a set's does";
    a.ClearAndDestroy();
    b.ClearAndDestroy();
}

TEST(DictAutoDel, DeletesKeysValuesAndAssociations) {
    const int before = Probe::Living();
    {
        ZAV_DictAutoDel d(1);
        for (int i = 0; i < 1000; ++i) d.AddAssoc(new Probe(i), i % 2 ? new Probe(i) : nullptr);
        d.Add(new ZAV_AssocInt(new Probe(5000), 7));
        d.Add(new ZAV_LookupKey(new Probe(5001)));
        Probe odd(11), absent(-1);
        ASSERT_EQ(before + 1504, Probe::Living());
        d.RemoveAndDestroy(&odd);
        d.RemoveAndDestroy(&absent);
        EXPECT_EQ(before + 1502, Probe::Living());
        std::unique_ptr<ZAV_CltObject> copy(d.ShallowCopy());
        EXPECT_TRUE(d.Size() == 1001 && copy->Size() == 1001);
    }
    EXPECT_EQ(before, Probe::Living());
    ZAV_DictAutoDel texts;
    for (int i = 0; i < 2000; ++i) texts.AddAssoc(new ZAV_CltString(std::to_string(i).c_str()), new Probe(i));
    texts.ClearAndDestroy();
    EXPECT_EQ(before, Probe::Living());
}

TEST(Bag, OwnsItsCountersOnly) {
    const int before = Probe::Living();
    Probe* kept = new Probe(1);
    ZAV_Bag bag;
    bag.Add(kept);
    bag.Clear();
    bag.AddWithOccurrences(kept, 2);
    EXPECT_EQ("probe 1\nprobe 1", Printed(bag));
    { ZAV_Bag copy(bag); }
    bag.RemoveAndDestroy(kept);
    EXPECT_EQ(before + 1, Probe::Living());
    bag.Add(new Probe(2));
    bag.RemoveAndDestroy(kept);
    EXPECT_EQ(before + 1, Probe::Living()) << "with the last occurrence";
    bag.ClearAndDestroy();
    EXPECT_EQ(before, Probe::Living());
}

TEST(Bag, CountsOnlyWhatWasAdded) {
    Probe p(1), q(2);
    ZAV_Bag bag;
    bag.Add(&q);
    bag.AddWithOccurrences(&p, 0);
    EXPECT_TRUE(bag.Size() == 1 && bag.Remove(&p) == &p && bag.Remove(&p) == nullptr);
    EXPECT_EQ(1u, bag.Size());
}

// Sizes below 0: what was absent was removed.
TEST(Collection, ConvertsWhateverItsSizeSays) {
    Probe p[] = {Probe(1), Probe(2), Probe(3)}, absent(9);
    for (int n : {0, 3}) {
        ZAV_Set set;
        for (int i = 0; i < n; ++i) set.Add(&p[i]);
        for (int i = 0; i < 5; ++i) set.Remove(&absent);
        const unsigned size = static_cast<unsigned>(n);
        EXPECT_EQ(size - 5, set.Size()) << "stays as told";
        EXPECT_EQ(size, std::unique_ptr<ZAV_ArrayObj>(set.AsArrayObj())->Size());
        EXPECT_EQ(size, std::unique_ptr<ZAV_Bag>(set.AsBag())->Size());
        EXPECT_EQ(size, std::unique_ptr<ZAV_Set>(set.AsSet())->Size());
        std::unique_ptr<ZAV_OrderedCltn> ordered(set.AsOrderedCltn());
        EXPECT_TRUE(ordered->Size() == size && ordered->Capacity() == 16);
        set.RemoveAll(&set);
        EXPECT_EQ(nullptr, ++ZAV_Iterator(&set));
    }
}

// What is asked for by key or value passes by the values that AddAll puts in.
TEST(Dictionary, WalksPastWhatIsNoAssociation) {
    const int before = Probe::Living();
    {
        ZAV_CltString k1("1"), k2("2"), text("1");
        Probe v1(10), v2(20);
        ZAV_Dictionary from;
        ZAV_DictAutoDel d;
        from.AddAssoc(&k1, &v1);
        from.AddAssoc(&k2, &text);
        d.AddAll(&from);
        EXPECT_TRUE(d.Size() == 2 && d.AssocAt(&k1) == nullptr && d.AtKey(&text) == GetNilObj());
        ZAV_OrderedCltn keys, values;
        d.AddAssoc(new Probe(5), new Probe(6));
        d.AddKeysTo(&keys);
        d.AddValuesTo(&values);
        EXPECT_TRUE(keys.Size() == 1 && values.Size() == 1 && d.KeyAtValue(&v2) == GetNilObj());
        EXPECT_TRUE(d.OccurrencesOf(&v1) == 0 && d == d && d.RemoveKey(&text) == nullptr);
        d.RemoveAndDestroy(&text);
        EXPECT_EQ(before + 4, Probe::Living());
        d.ClearAndDestroy();
        EXPECT_EQ(before + 2, Probe::Living()) << "what is no association is not owned";
        from.ClearAndDestroy();
    }
    EXPECT_EQ(before, Probe::Living());
}

TEST(Collection, NeverDeletesNil) {
    const int before = Probe::Living();
    ZAV_CltObject* const nil = GetNilObj();
    for (ZAV_CltObject* none : {nil, static_cast<ZAV_CltObject*>(ZAV_Link::GetNilLink())}) {
        ZAV_DictAutoDel d;
        for (int i : {1, 2}) d.AddAssoc(new Probe(i), none);
        d.AddAssoc(none, new Probe(3));
        Probe sought(1);
        d.RemoveAndDestroy(&sought);
        ZAV_Bag bag;
        ZAV_OrderedCltn ordered;
        for (int times : {1, 2}) {
            bag.Add(none);
            ordered.Add(none);
            if (times == 1) bag.RemoveAndDestroy(none);
            if (times == 1) ordered.RemoveAndDestroy(none);
        }
        bag.ClearAndDestroy();
        ordered.ClearAndDestroy();
    }
    ZAV_ArrayObj slots(3);
    std::unique_ptr<ZAV_Bag>(slots.AsBag())->ClearAndDestroy();
    std::unique_ptr<ZAV_Set>(slots.AsSet())->ClearAndDestroy();
    EXPECT_EQ(before, Probe::Living());
    EXPECT_TRUE(nil->IsEqual(nil) && ZAV_Link::GetNilLink()->IsListEnd());
}

TEST(Collection, DeletesItsElementsWhenAsked) {
    const int before = Probe::Living();
    ZAV_Set set(2);
    ZAV_OrderedCltn ordered(2);
    const auto expectDeletes = [before](auto& c) {
        for (int i = 0; i < 100; ++i) c.Add(new Probe(i));
        Probe seven(7);
        c.RemoveAndDestroy(&seven);
        EXPECT_EQ(before + 1 + 99, Probe::Living());
        const unsigned capacity = c.Capacity();
        c.Add(nullptr);
        c.Add(GetNilObj());
        c.ClearAndDestroy();
        EXPECT_EQ(before + 1, Probe::Living());
        EXPECT_TRUE(c.Size() == 0 && c.Capacity() == capacity) << "never shrinks";
    };
    expectDeletes(set);
    expectDeletes(ordered);
}

TEST(Set, NeitherNullNorNilFillsASlot) {
    ZAV_Set set(16);
    EXPECT_TRUE(set.Add(nullptr) == nullptr && set.Size() == 0);
    EXPECT_EQ(GetNilObj(), set.FindObjectWithKey(nullptr));
    EXPECT_TRUE(set.Add(GetNilObj()) == GetNilObj() && set.Size() == 1) << "it is only counted";
    EXPECT_EQ(nullptr, ++ZAV_Iterator(&set));
}

TEST(Set, CombinesByEqualityAndKeepsItsOwnObjects) {
    std::deque<Probe> own, others;
    for (int i = 0; i < 20; ++i) {
        own.emplace_back(i, static_cast<unsigned>(i / 3));
        others.emplace_back(i, static_cast<unsigned>(i / 3));
    }
    std::mt19937 random(99);
    for (int round = 0; round < 1000; ++round) {
        const auto mine = random() & random(), theirs = random() & random();
        ZAV_Set a(1), b(16);
        for (unsigned i = 0; i < 20; ++i) {
            if (mine >> i & 1) a.Add(&own[i]);
            if (theirs >> i & 1) b.Add(&others[i]);
        }
        const ZAV_Set both = a | b, left = a - b, common = a & b;
        for (unsigned i = 0; i < 20; ++i) {
            ZAV_CltObject* const none = GetNilObj();
            ZAV_CltObject* const here = mine >> i & 1 ? &own[i] : none;
            ZAV_CltObject* const there = theirs >> i & 1 ? &others[i] : none;
            ASSERT_EQ(here != none ? here : there, both.FindObjectWithKey(&own[i]));
            ASSERT_EQ(there == none ? here : none, left.FindObjectWithKey(&own[i]));
            ASSERT_EQ(there != none ? here : none, common.FindObjectWithKey(&own[i]));
        }
        ASSERT_EQ(both.Size(), left.Size() + b.Size());
        ASSERT_EQ(a == b, a.Size() == b.Size() && left.Size() == 0);
        ASSERT_TRUE(both == (b | a));
    }
}
