// Dictionaries, bags, sets and iterators: ownership, quirks that callers rely on, and what must do no harm.
#include <zavbase/collections/bag.h>
#include <zavbase/collections/clt_string.h>
#include <zavbase/collections/iterator.h>
#include <zavbase/collections/nil.h>
#include <zavbase/collections/ordered_cltn.h>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "tests/support/printed.h"
#include "tests/support/probe.h"

TEST(Dictionary, IsSearchedByValueButComparedByBoth) {
    Probe k1(1), k2(2), v1(10), v2(20);
    ZAV_Dictionary a, b(100);
    for (ZAV_Dictionary* d : {&a, &b}) {
        d->AddAssoc(&k1, &v1);
        d->AddAssoc(&k2, &v2);
    }
    EXPECT_TRUE(a.IsEqual(&b));
    b.AtKey(&k2, &v1);
    EXPECT_TRUE(a != b);
    ZAV_Set& asSet = a;
    EXPECT_EQ(k1.Hash() ^ k2.Hash(), asSet.Hash());
    EXPECT_FALSE(asSet.IsEqual(&k1));

    std::unique_ptr<ZAV_Set> set(a.AsSet());
    EXPECT_TRUE(set->Includes(&v1));
    ZAV_OrderedCltn keys(1), values(1);
    a.AddKeysTo(&keys);
    a.AddValuesTo(&values);
    for (int i : {0, 1}) EXPECT_EQ(values[i], a.AtKey(keys[i]));
    a.ClearAndDestroy();
    b.ClearAndDestroy();
}

TEST(Dictionary, AbsentKeysDoNoHarm) {
    Probe key(1), absent(2);
    ZAV_Dictionary d;
    std::unique_ptr<ZAV_Assoc> a(d.AddAssoc(&key, nullptr));
    EXPECT_EQ(GetNilObj(), d.KeyAtValue(&absent));
    EXPECT_EQ(0u, d.OccurrencesOf(&absent)) << "beside a null value";
    ZAV_Assoc sought(&absent, nullptr);
    EXPECT_EQ(nullptr, d.RemoveAssoc(&sought));
    EXPECT_EQ(0u, d.Size()) << "the count drops as a set's does";
}

TEST(DictAutoDel, DeletesKeysValuesAndAssociations) {
    const int before = Probe::Living();
    {
        ZAV_DictAutoDel d(1);
        for (int i = 0; i < 1000; ++i) d.AddAssoc(new Probe(i), i % 2 ? new Probe(i) : nullptr);
        d.Add(new ZAV_AssocInt(new Probe(5000), 7));
        d.Add(new ZAV_LookupKey(new Probe(5001)));
        ASSERT_EQ(before + 1502, Probe::Living());
        Probe odd(11), absent(-1);
        d.RemoveAndDestroy(&odd);
        EXPECT_EQ(before + 1502, Probe::Living()) << "two gone, two here";
        d.RemoveAndDestroy(&absent);
        EXPECT_EQ(1001u, d.Size());
        std::unique_ptr<ZAV_CltObject> copy(d.ShallowCopy());
        EXPECT_EQ(1001u, copy->Size());
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

template <class Collection>
class Destroying : public testing::Test {};
typedef testing::Types<ZAV_Set, ZAV_OrderedCltn> DestroyingTypes;
TYPED_TEST_SUITE(Destroying, DestroyingTypes);

TYPED_TEST(Destroying, DeletesItsElements) {
    const int before = Probe::Living();
    TypeParam c(2);
    for (int i = 0; i < 100; ++i) c.Add(new Probe(i));
    Probe seven(7);
    c.RemoveAndDestroy(&seven);
    EXPECT_EQ(before + 1 + 99, Probe::Living());
    const unsigned capacity = c.Capacity();
    c.Add(nullptr);
    c.Add(GetNilObj());
    c.ClearAndDestroy();
    EXPECT_EQ(before + 1, Probe::Living());
    EXPECT_EQ(0u, c.Size());
    EXPECT_EQ(capacity, c.Capacity()) << "never shrinks";
}

TEST(Set, NeitherNullNorNilFillsASlot) {
    ZAV_Set set(16);
    EXPECT_EQ(nullptr, set.Add(nullptr));
    EXPECT_EQ(0u, set.Size());
    EXPECT_EQ(GetNilObj(), set.FindObjectWithKey(nullptr));
    EXPECT_EQ(GetNilObj(), set.Add(GetNilObj())) << "it is only counted";
    EXPECT_EQ(1u, set.Size());
    EXPECT_EQ(nullptr, ++ZAV_Iterator(&set));
}

TEST(Set, GrowsWhenTheCountHasGoneBelowZero) {
    ZAV_Set set(16);
    ZAV_Integer absent(-1);
    for (int i = 0; i < 40; ++i) set.Remove(&absent);
    EXPECT_EQ(0u - 40, set.Size());
    std::vector<ZAV_Integer> numbers;
    for (int i = 0; i < 33; ++i) numbers.emplace_back(i);
    for (ZAV_Integer& n : numbers) set.Add(&n);
    for (ZAV_Integer& n : numbers) EXPECT_EQ(&n, set.FindObjectWithKey(&n));
}

TEST(Iterator, EqualAtTheSamePlaceOfTheSameCollection) {
    Probe a(1);
    ZAV_Bag bag, other;
    for (ZAV_Bag* c : {&bag, &other}) c->AddWithOccurrences(&a, 2);
    ZAV_Iterator x(&bag), y(&bag), z(&other);
    EXPECT_EQ(nullptr, x());
    EXPECT_TRUE(x.IsEqual(&y));
    EXPECT_FALSE(x == &z);
    EXPECT_FALSE(x.IsEqual(&a));
    ++x;
    EXPECT_TRUE(x != &y);
    EXPECT_EQ(x(), y.Next());
    EXPECT_TRUE(x == &y);
    EXPECT_EQ(x.Hash(), y.Hash());
    x.Reset();
    EXPECT_EQ(nullptr, x());
}
