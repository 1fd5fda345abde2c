// Arrays, ordered collections, stacks and lists: what random operations do not reach.
#include <zavbase/collections/assoc.h>
#include <zavbase/collections/clt_string.h>
#include <zavbase/collections/iterator.h>
#include <zavbase/collections/linked_list.h>
#include <zavbase/collections/nil.h>
#include <zavbase/collections/stack.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <sstream>

#include "tests/support/probe.h"

namespace {

typedef std::vector<std::unique_ptr<ZAV_CltObject>> Objects;

void Fill(ZAV_OrderedCltn& c, const Objects& objects) {
    for (const auto& o : objects) c.Add(o.get());
}

// Sorts and expects every neighbour in order and all elements still there.
void ExpectSorts(const Objects& objects) {
    ZAV_OrderedCltn c(3);
    Fill(c, objects);
    c.Sort();
    std::vector<const ZAV_CltObject*> before, after;
    for (size_t i = 0; i < objects.size(); ++i) {
        before.push_back(objects[i].get());
        after.push_back(c[static_cast<int>(i)]);
        if (i > 0) {
            ASSERT_LE(after[i - 1]->Compare(after[i]), 0) << "at " << i;
        }
    }
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    EXPECT_EQ(before, after);
}

struct Liar : Probe {
    using Probe::Probe;
    int Compare(const ZAV_CltObject*) const override { return static_cast<int>(++sAsked * 2654435761u >> 30) - 1; }
    static unsigned sAsked;
};
unsigned Liar::sAsked = 0;

struct Thrower : Probe {
    using Probe::Probe;
    int Compare(const ZAV_CltObject*) const override { throw 42; }
};

} // namespace

TEST(Sort, EveryKindOfElement) {
    std::mt19937 random(5);
    ZAV_CltString shared("shared");
    for (int n : {1, 2, 3, 10, 511, 512, 5000}) {
        SCOPED_TRACE(n);
        Objects numbers, near, texts, utf, probes, held, holders;
        for (int i = 0; i < n; ++i) {
            const int r = static_cast<int>(random() % 100000);
            const std::string text = std::string(random() % 3 * 4, 'x') + std::to_string(r) + (r % 5 ? "" : "\xE2");
            numbers.emplace_back(new ZAV_Integer(r - 50000));
            near.emplace_back(new ZAV_Integer(2147483647L - r));
            texts.emplace_back(new ZAV_CltString(text.c_str()));
            utf.emplace_back(new ZAV_CltUTFString(text.c_str()));
            probes.emplace_back(new Probe(r));
            held.emplace_back(new ZAV_CltString(text.c_str()));
            holders.emplace_back(new ZAV_Assoc(held.back().get(), &shared));
        }
        for (const Objects* objects : {&numbers, &near, &texts, &utf, &probes, &holders}) ExpectSorts(*objects);
    }
    // Text ends at a NUL for the order: all four are equal.
    Objects nuls;
    for (const char* tail : {"d", "c", "b", "a"}) nuls.emplace_back(new ZAV_CltString(ZAV_String("sameprefix\0", 11) + tail));
    ExpectSorts(nuls);
    Objects empty;
    for (int i = 0; i < 3; ++i) empty.emplace_back(new ZAV_CltString(ZAV_String()));
    ExpectSorts(empty);
}

// Differences wrap, so that there is no order to find: any order of the same elements will do, the same one that
// asking about neighbours gives for two.
TEST(Sort, NumbersFarApart) {
    Objects two;
    two.emplace_back(new ZAV_Integer(2147483647L));
    two.emplace_back(new ZAV_Integer(-2147483647L));
    ExpectSorts(two);
    ZAV_OrderedCltn c(2);
    Fill(c, two);
    c.Sort();
    EXPECT_EQ(two[0].get(), c[0]);
}

TEST(Sort, ACompareThatLiesOrThrowsLosesNothing) {
    for (int n : {2, 3, 100, 3000}) {
        Objects liars, throwers;
        for (int i = 0; i < n; ++i) {
            liars.emplace_back(new Liar(i));
            throwers.emplace_back(new Thrower(i));
        }
        ZAV_OrderedCltn c(16), t(16);
        Fill(c, liars);
        c.Sort();
        std::vector<int> numbers;
        for (int i = 0; i < n; ++i) numbers.push_back(NumberOf(c[i]));
        std::sort(numbers.begin(), numbers.end());
        for (int i = 0; i < n; ++i) ASSERT_EQ(i, numbers[static_cast<size_t>(i)]);
        Fill(t, throwers);
        EXPECT_THROW(t.Sort(), int);
        for (int i = 0; i < n; ++i) ASSERT_EQ(i, NumberOf(t[i]));
    }
}

TEST(Sort, LeavesTheSlotsBehindAlone) {
    ZAV_Integer a(3), b(1), c(2);
    ZAV_OrderedCltn o(5);
    o.Add(&a);
    o.Add(&b);
    o.Add(&c);
    o.Sort();
    std::ostringstream os;
    os << o;
    EXPECT_EQ("1\n2\n3", os.str());
    EXPECT_EQ(GetNilObj(), o[3]);

    ZAV_CltString text("text");
    ZAV_ArrayObj array(4);
    array[1] = &text;
    array[2] = nullptr;
    array.Sort();
    int found = 0;
    for (int i = 0; i < 4; ++i) found += array[i] == &text;
    EXPECT_EQ(1, found);
}

TEST(ArrayObj, CountsAndHandsOutEmptySlots) {
    Probe a(1), b(2);
    ZAV_ArrayObj array(3);
    array[1] = &a;
    ZAV_OrderedCltn target(2);
    array.AddContentsTo(&target);
    EXPECT_EQ(3u, target.Size());
    EXPECT_EQ(&a, target[1]);
    EXPECT_EQ(GetNilObj(), target[2]);
    EXPECT_EQ(2u, array.OccurrencesOf(GetNilObj()));
    EXPECT_EQ(3u ^ a.Hash(), array.Hash());

    ZAV_ArrayObj other(array);
    EXPECT_TRUE(array == other);
    EXPECT_TRUE(array.IsEqual(&other));
    EXPECT_FALSE(array.IsEqual(&target));
    other[1] = &b;
    EXPECT_LT(array.Compare(&other), 0);
    other = array;
    other.ReSize(2);
    EXPECT_GT(array.Compare(&other), 0);
    EXPECT_LT(other.Compare(&array), 0);
    other.ReSize(200);
    EXPECT_EQ(&a, other[1]);
    for (int i = 2; i < 200; ++i) ASSERT_EQ(GetNilObj(), other[i]);

    ZAV_Collection& collection = array;
    EXPECT_EQ(&b, collection.Add(&b));
    EXPECT_EQ(GetNilObj(), collection.Remove(&a));
    collection.RemoveAndDestroy(&a);
    EXPECT_EQ(1u, array.OccurrencesOf(&a));
}

TEST(ArrayObj, DestroysWhatItHoldsOnce) {
    const int before = Probe::Living();
    ZAV_ArrayObj array(4);
    array[0] = new Probe(1);
    array[2] = new Probe(2);
    array[3] = nullptr;
    std::unique_ptr<ZAV_CltObject> dropped(array[2]);
    array.ReSize(2);
    EXPECT_EQ(before + 2, Probe::Living()) << "dropping a slot deletes nothing";
    array.ClearAndDestroy();
    EXPECT_EQ(before + 1, Probe::Living());
    array.ClearAndDestroy();
    EXPECT_EQ(GetNilObj(), array[0]);
}

TEST(OrderedCltn, GrowsBy32AndOnlyWhenFull) {
    Probe p(1);
    ZAV_OrderedCltn c(2), none(0);
    for (unsigned i = 1; i <= 200; ++i) {
        c.Add(&p);
        ASSERT_EQ(i <= 2 ? 2 : 2 + (i - 2 + 31) / 32 * 32, c.Capacity());
    }
    c.RemoveLast();
    EXPECT_EQ(GetNilObj(), c[199]);
    EXPECT_EQ(GetNilObj(), none.RemoveLast());
    EXPECT_EQ(GetNilObj(), none.First());
    EXPECT_EQ(GetNilObj(), none.Last());
    none.Add(&p);
    EXPECT_EQ(32u, none.Capacity());
}

TEST(OrderedCltn, ComparesAndFindsRows) {
    Probe p[] = {Probe(1), Probe(2), Probe(1), Probe(2), Probe(3)};
    ZAV_OrderedCltn c(16), row(16), longer(16), empty(16);
    for (Probe& e : p) c.Add(&e);
    row.Add(&p[1]);
    row.Add(&p[4]);
    EXPECT_EQ(3, c.IndexOfSubCollection(&row, 0));
    EXPECT_EQ(-1, c.IndexOfSubCollection(&row, 4));
    EXPECT_EQ(2, c.IndexOfSubCollection(&empty, 2));
    EXPECT_EQ(-1, row.IndexOfSubCollection(&c, 0));
    EXPECT_LT(c.Compare(&row), 0);
    longer.AddAllLast(&row);
    longer.Add(&p[0]);
    EXPECT_LT(row.Compare(&longer), 0);
    EXPECT_GT(longer.Compare(&row), 0);
    EXPECT_FALSE(row.IsEqual(&longer));
    longer.RemoveLast();
    EXPECT_TRUE(row.IsEqual(&longer));
    EXPECT_EQ(0, row.Compare(&longer));
    EXPECT_EQ(row.Hash(), longer.Hash());
    c &= row;
    EXPECT_EQ(3u, c.Size());
    EXPECT_EQ(&p[3], c[1]);
}

TEST(OrderedCltn, AddsAndRemovesItself) {
    Probe a(1), b(2);
    ZAV_OrderedCltn c(2);
    c.Add(&a);
    c.Add(&b);
    c.AddAll(&c);
    EXPECT_EQ(4u, c.Size());
    c.RemoveAll(&c);
    EXPECT_EQ(0u, c.Size());
}

TEST(OrderedCltn, DestroysItsElements) {
    const int before = Probe::Living();
    ZAV_OrderedCltn c(2);
    for (int i = 0; i < 100; ++i) c.Add(new Probe(i));
    Probe seven(7), absent(-1);
    c.RemoveAndDestroy(&seven);
    c.RemoveAndDestroy(&absent);
    EXPECT_EQ(before + 2 + 99, Probe::Living());
    c.Add(nullptr);
    c.Add(GetNilObj());
    c.ClearAndDestroy();
    EXPECT_EQ(before + 2, Probe::Living());
    EXPECT_EQ(0u, c.Size());
}

TEST(Stack, IsUsedFromItsEnd) {
    ZAV_Integer a(1), b(2), c(3);
    ZAV_Stack s(1);
    for (ZAV_Integer* o : {&a, &b, &c}) s.Push(o);
    std::ostringstream os;
    os << s;
    EXPECT_EQ("1\n2\n3\n", os.str());
    EXPECT_EQ(&c, s.Top(0));
    EXPECT_EQ(&a, s.Top(2));
    EXPECT_EQ(nullptr, s.Top(3));
    for (ZAV_CltObject* o : std::initializer_list<ZAV_CltObject*>{&c, &b, &a, nullptr}) EXPECT_EQ(o, s.Pop());
    EXPECT_TRUE(s.Empty());
    EXPECT_TRUE(s.IsKindOf(&ZAV_OrderedCltn::classZAV_OrderedCltn));
}

TEST(LinkedList, IsNotRecursiveHoweverLong) {
    const int before = Probe::Living();
    Probe p(1);
    ZAV_LinkedList list;
    for (int i = 0; i < 1000000; ++i) list.Add(new ZAV_LinkObj(&p));
    std::ostringstream os;
    os << list;
    EXPECT_EQ(8u * 1000000 - 1, os.str().size());
    list.ClearAndDestroy();
    EXPECT_EQ(0u, list.Size());
    EXPECT_EQ(before + 1, Probe::Living());
}

TEST(LinkedList, EmptyOnesAndOneLink) {
    Probe p(1), q(2);
    ZAV_LinkObj l(&p), other(&q), again(&p);
    ZAV_LinkedList list, second;
    EXPECT_EQ(nullptr, list.RemoveFirst());
    EXPECT_EQ(nullptr, list.RemoveLast());
    EXPECT_EQ(0u, list.Size());
    list.Add(&l);
    EXPECT_TRUE(l.NextLink()->IsListEnd());
    EXPECT_EQ(0, list.IndexOf(&again)) << "by equality";
    EXPECT_EQ(nullptr, list.Remove(&again)) << "by identity";
    second.Add(&again);
    EXPECT_TRUE(list.IsEqual(&second));
    EXPECT_EQ(list.Hash(), second.Hash());
    EXPECT_EQ(&l, list.Remove(&l));
    EXPECT_TRUE(ZAV_Link::Castdown(list.First())->IsListEnd());
    list.Add(&other);
    EXPECT_FALSE(list.IsEqual(&second));
    // A walk that has ended starts again.
    ZAV_Iterator it(&list);
    EXPECT_EQ(&other, ++it);
    EXPECT_EQ(nullptr, ++it);
    EXPECT_EQ(&other, ++it);
}

TEST(LinkObj, CarriesTheProtocolOfItsObject) {
    ZAV_CltString a("a"), b("b");
    ZAV_LinkObj la(&a), lb(&b);
    EXPECT_TRUE(la.IsEqual(&a));
    EXPECT_FALSE(la.IsEqual(&lb));
    EXPECT_LT(la.Compare(&lb), 0);
    EXPECT_EQ(a.Hash(), la.Hash());
    EXPECT_EQ(1u, la.Size());
}
