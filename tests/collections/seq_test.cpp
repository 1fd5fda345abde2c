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

#include "tests/support/printed.h"
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
    std::vector<const ZAV_CltObject*> after;
    for (int i = 0; i < static_cast<int>(objects.size()); ++i) {
        after.push_back(c[i]);
        ASSERT_TRUE(i == 0 || c[i - 1]->Compare(c[i]) <= 0) << "at " << i;
    }
    std::sort(after.begin(), after.end());
    for (const auto& o : objects) ASSERT_TRUE(std::binary_search(after.begin(), after.end(), o.get()));
}

struct Liar : Probe {
    using Probe::Probe;
    int Compare(const ZAV_CltObject*) const override {
        return static_cast<int>(++sAsked * 2654435761u >> 30) - 1;
    }
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
    for (int n : {0, 1, 2, 3, 10, 511, 512, 5000}) {
        SCOPED_TRACE(n);
        Objects kinds[6];
        for (int i = 0; i < n; ++i) {
            const int r = static_cast<int>(random() % 100000);
            const std::string text =
                std::string(random() % 3 * 4, 'x') + std::to_string(r) + (r % 5 ? "" : "\xE2");
            kinds[0].emplace_back(new ZAV_Integer(r - 50000));
            kinds[1].emplace_back(new ZAV_Integer(2147483647L - r));
            kinds[2].emplace_back(new ZAV_CltString(text.c_str()));
            kinds[3].emplace_back(new ZAV_CltUTFString(text.c_str()));
            kinds[4].emplace_back(new Probe(r));
            kinds[5].emplace_back(new ZAV_Assoc(kinds[2].back().get(), &shared));
        }
        for (const Objects& objects : kinds) ExpectSorts(objects);
    }
    // Text ends at a NUL for the order: all are equal, and so are the empty ones.
    Objects nuls;
    for (const char* tail : {"d", "c", "b", "a"})
        nuls.emplace_back(new ZAV_CltString(ZAV_String("sameprefix\0", 11) + tail));
    for (int i = 0; i < 3; ++i) nuls.emplace_back(new ZAV_CltString(ZAV_String()));
    ExpectSorts(nuls);
}

// Differences wrap, so that there is no order to find: two stay as asking about neighbours leaves them.
TEST(Sort, NumbersFarApart) {
    ZAV_Integer high(2147483647L), low(-2147483647L);
    ZAV_OrderedCltn c(2);
    c.Add(&high);
    c.Add(&low);
    c.Sort();
    EXPECT_EQ(&high, c[0]);
    EXPECT_EQ(&low, c[1]);
}

TEST(Sort, ACompareThatLiesOrThrowsLosesNothing) {
    for (int n : {2, 3, 100, 3000}) {
        Objects liars, throwers;
        ZAV_OrderedCltn c(16), t(16);
        for (int i = 0; i < n; ++i) {
            c.Add(liars.emplace_back(new Liar(i)).get());
            t.Add(throwers.emplace_back(new Thrower(i)).get());
        }
        c.Sort();
        std::vector<bool> seen(static_cast<size_t>(n));
        for (int i = 0; i < n; ++i) seen[static_cast<size_t>(NumberOf(c[i]))] = true;
        EXPECT_EQ(0, std::count(seen.begin(), seen.end(), false));
        EXPECT_THROW(t.Sort(), int);
        for (int i = 0; i < n; ++i) ASSERT_EQ(i, NumberOf(t[i]));
    }
}

TEST(Sort, OfAnArrayWithEmptySlots) {
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
    EXPECT_EQ(GetNilObj(), target[2]);
    EXPECT_EQ(2u, array.OccurrencesOf(GetNilObj()));
    EXPECT_EQ(3u ^ a.Hash(), array.Hash());

    ZAV_ArrayObj other(array);
    EXPECT_TRUE(array == other);
    EXPECT_FALSE(array.IsEqual(&target));
    other[1] = &b;
    EXPECT_LT(array.Compare(&other), 0);
    other = array;
    other.ReSize(2);
    EXPECT_GT(array.Compare(&other), 0);
    EXPECT_LT(other.Compare(&array), 0);
    other.ReSize(200);
    EXPECT_EQ(&a, other[1]);
    EXPECT_EQ(199u, other.OccurrencesOf(GetNilObj()));
}

TEST(ArrayObj, DestroysWhatItHoldsOnce) {
    const int before = Probe::Living();
    ZAV_ArrayObj array(4);
    array[0] = new Probe(1);
    array[2] = new Probe(2);
    std::unique_ptr<ZAV_CltObject> dropped(array[2]);
    array.ReSize(2);
    array[1] = nullptr;
    ZAV_Collection& collection = array;
    EXPECT_EQ(GetNilObj(), collection.Remove(array[0]));
    collection.RemoveAndDestroy(array[0]);
    EXPECT_EQ(before + 2, Probe::Living()) << "neither removing nor dropping a slot deletes";
    array.ClearAndDestroy();
    EXPECT_EQ(before + 1, Probe::Living());
    array.ClearAndDestroy();
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
    EXPECT_TRUE(row.IsEqual(&longer));
    EXPECT_EQ(row.Hash(), longer.Hash());
    longer.Add(&p[0]);
    EXPECT_LT(row.Compare(&longer), 0);
    EXPECT_GT(longer.Compare(&row), 0);
    EXPECT_FALSE(row.IsEqual(&longer));
    c &= row;
    EXPECT_EQ(3u, c.Size());
    EXPECT_EQ(&p[3], c[1]);
    c.AddAll(&c);
    EXPECT_EQ(6u, c.Size());
    c.RemoveAll(&c);
    EXPECT_EQ(0u, c.Size());
}

TEST(Stack, IsUsedFromItsEnd) {
    ZAV_Integer a(1), b(2);
    ZAV_Stack s(1);
    s.Push(&a);
    s.Push(&b);
    EXPECT_EQ("1\n2\n", Printed(s));
    EXPECT_EQ(&a, s.Top(1));
    EXPECT_EQ(nullptr, s.Top(2));
    EXPECT_EQ(&b, s.Pop());
    EXPECT_EQ(&a, s.Pop());
    EXPECT_EQ(nullptr, s.Pop());
}

TEST(LinkedList, IsNotRecursiveHoweverLong) {
    const int before = Probe::Living();
    Probe p(1);
    ZAV_LinkedList list;
    for (int i = 0; i < 1000000; ++i) list.Add(new ZAV_LinkObj(&p));
    EXPECT_EQ(8u * 1000000 - 1, Printed(list).size());
    list.ClearAndDestroy();
    EXPECT_EQ(0u, list.Size());
    EXPECT_EQ(before + 1, Probe::Living());
}

TEST(LinkedList, FindsByEqualityAndRemovesByIdentity) {
    Probe p(1), q(2);
    ZAV_LinkObj l(&p), other(&q), again(&p);
    ZAV_LinkedList list, second;
    list.Add(&l);
    EXPECT_TRUE(l.NextLink()->IsListEnd());
    EXPECT_EQ(0, list.IndexOf(&again));
    EXPECT_EQ(nullptr, list.Remove(&again));
    second.Add(&again);
    EXPECT_TRUE(list.IsEqual(&second));
    EXPECT_EQ(list.Hash(), second.Hash());
    EXPECT_LT(l.Compare(&other), 0) << "as their objects";
    list.Remove(&l);
    list.Add(&other);
    EXPECT_FALSE(list.IsEqual(&second));
    // A walk that has ended starts again.
    ZAV_Iterator it(&list);
    for (ZAV_LinkObj* o : {&other, static_cast<ZAV_LinkObj*>(nullptr), &other}) EXPECT_EQ(o, ++it);
}
