// Arrays, ordered collections, stacks and lists: what random operations do not reach.
#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/support/printed.h"
#include "tests/support/probe.h"

namespace {

typedef std::vector<std::unique_ptr<ZAV_CltObject>> Objects;

// Sorts and expects every neighbour in order and all elements still there.
void ExpectSorts(const Objects& objects) {
    ZAV_OrderedCltn c(3);
    std::vector<const ZAV_CltObject*> before, after;
    for (const auto& o : objects) before.push_back(c.Add(o.get()));
    c.Sort();
    for (int i = 0; i < static_cast<int>(objects.size()); ++i) {
        after.push_back(c[i]);
        ASSERT_TRUE(i == 0 || c[i - 1]->Compare(c[i]) <= 0) << "at " << i;
    }
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    ASSERT_TRUE(before == after);
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
    // Text ends at a NUL for the order: all are equal, and so are the empty ones. A sort that looked behind
    // the NUL would put the first in another order, and read beyond the one byte that the others share.
    for (const ZAV_String& start :
         {ZAV_String("sameprefix\0", 11), ZAV_String("8letters\0", 9), ZAV_String("a\0behind", 8)}) {
        Objects nuls;
        ZAV_OrderedCltn c;
        for (const char* tail : {"d", "c", "b", "a"}) {
            nuls.emplace_back(new ZAV_CltString(start + tail));
            c.Add(nuls.back().get());
        }
        c.Sort();
        for (int i = 0; i < 4; ++i) EXPECT_EQ(c[i], nuls[static_cast<size_t>(i)].get()) << start;
    }
    Objects empty;
    for (int i = 0; i < 3; ++i) {
        ZAV_CltString* const text = new ZAV_CltString("x");
        text->Empty();
        empty.emplace_back(text);
    }
    ExpectSorts(empty);
}

TEST(Sort, WhatHasNoOrderLosesNothing) {
    // Differences wrap: two stay as asking about neighbours leaves them.
    ZAV_Integer high(2147483647L), low(-2147483647L);
    ZAV_OrderedCltn far(2);
    far.Add(&high);
    far.Add(&low);
    far.Sort();
    EXPECT_TRUE(far[0] == &high && far[1] == &low);

    ZAV_CltString text("text");
    ZAV_ArrayObj array(4);
    array[1] = &text;
    array[2] = nullptr;
    array.Sort();
    EXPECT_EQ(1, std::count(&array[0], &array[0] + 4, &text)) << "beside empty slots";

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

TEST(ArrayObj, CountsAndHandsOutEmptySlots) {
    Probe a(1), b(2);
    ZAV_ArrayObj array(3);
    array[1] = &a;
    ZAV_OrderedCltn target(2);
    array.AddContentsTo(&target);
    EXPECT_TRUE(target.Size() == 3 && target[2] == GetNilObj());
    EXPECT_EQ(2u, array.OccurrencesOf(GetNilObj()));
    EXPECT_EQ(3u ^ a.Hash(), array.Hash());

    ZAV_ArrayObj other(array);
    EXPECT_TRUE(array == other && !array.IsEqual(&target));
    other[1] = &b;
    EXPECT_LT(array.Compare(&other), 0);
    other = array;
    other.ReSize(2);
    EXPECT_GT(array.Compare(&other), 0);
    EXPECT_LT(other.Compare(&array), 0);
    other.ReSize(200);
    EXPECT_TRUE(other[1] == &a && other.OccurrencesOf(GetNilObj()) == 199);
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
    for (int times : {1, 2}) {
        array.ClearAndDestroy();
        EXPECT_EQ(before + 1, Probe::Living()) << times;
    }
}

TEST(OrderedCltn, DestroysWhatIsInUse) {
    const int before = Probe::Living();
    Probe behind(1);
    ZAV_OrderedCltn c(4);
    c.Add(new Probe(2));
    c.Add(nullptr);
    c[3] = &behind;
    c.ClearAndDestroy();
    EXPECT_EQ(before + 1, Probe::Living());
    EXPECT_TRUE(c[0] == GetNilObj() && c[3] == &behind);
}

// Walking, searching and copying ask a host's class where its elements are.
TEST(OrderedCltn, AHostsPositionsAreObeyed) {
    struct Reversed : ZAV_OrderedCltn {
        using ZAV_OrderedCltn::At;
        ZAV_CltObject* const& At(int i) const override {
            return (*this)[static_cast<int>(ZAV_OrderedCltn::Size()) - 1 - i];
        }
        unsigned int Size() const override { return ZAV_OrderedCltn::Size() - 1; } // hides the first
    } c;
    Probe p[] = {Probe(0), Probe(1), Probe(2), Probe(2)};
    for (Probe& e : p) c.Add(&e);
    EXPECT_EQ("probe 2\nprobe 2\nprobe 1", Printed(c));
    EXPECT_TRUE(c.IndexOf(&p[1]) == 2 && c.IndexOf(&p[0]) == -1 && c.OccurrencesOf(&p[2]) == 2);
    EXPECT_EQ(3u ^ 1u, c.Hash());
    EXPECT_TRUE(c.Before(&p[1]) == &p[2] && c.After(&p[3]) == &p[2] && c.After(&p[1]) == GetNilObj());
    ZAV_OrderedCltn plain;
    plain.AddAllLast(&c);
    EXPECT_TRUE(plain == c && !(plain != c) && (c & plain) == plain && plain.Size() == 3);
    for (ZAV_Collection* copy :
         {static_cast<ZAV_Collection*>(c.AsOrderedCltn()), static_cast<ZAV_Collection*>(c.AsArrayObj())}) {
        EXPECT_TRUE(copy->Size() == 3 && copy->At(0) == &p[3]);
        delete copy;
    }
    EXPECT_TRUE(c.Remove(&p[0]) == GetNilObj() && c.Remove(&p[2]) == &p[3] && c[2] == &p[2]);
    c.AddBefore(&p[1], &p[3]);
    EXPECT_TRUE(c[1] == &p[3] && c[2] == &p[1]);

    struct Half : ZAV_ArrayObj {
        Half() : ZAV_ArrayObj(2) {}
        unsigned int Size() const override { return 1; }
    } half;
    EXPECT_TRUE(Printed(half) == "NIL" && half.OccurrencesOf(GetNilObj()) == 1);
    EXPECT_EQ(1u, std::unique_ptr<ZAV_Bag>(half.AsBag())->Size());
}

TEST(OrderedCltn, ComparesAndFindsRows) {
    Probe p[] = {Probe(1), Probe(2), Probe(1), Probe(2), Probe(3)};
    ZAV_OrderedCltn c(16), row(16), longer(16), empty(16);
    for (Probe& e : p) c.Add(&e);
    for (int i : {1, 4}) longer.Add(row.Add(&p[i]));
    EXPECT_TRUE(c.IndexOfSubCollection(&row, 0) == 3 && c.IndexOfSubCollection(&row, 4) == -1);
    EXPECT_TRUE(c.IndexOfSubCollection(&empty, 2) == 2 && row.IndexOfSubCollection(&c, 0) == -1);
    EXPECT_LT(c.Compare(&row), 0);
    EXPECT_TRUE(row.IsEqual(&longer) && row.Hash() == longer.Hash());
    longer.Add(&p[0]);
    EXPECT_TRUE(row.Compare(&longer) < 0 && longer.Compare(&row) > 0 && !row.IsEqual(&longer));
    c &= row;
    EXPECT_TRUE(c.Size() == 3 && c[1] == &p[3]);
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
    EXPECT_TRUE(s.Top(1) == &a && s.Top(2) == nullptr);
    for (ZAV_Integer* top : {&b, &a, static_cast<ZAV_Integer*>(nullptr)}) EXPECT_EQ(top, s.Pop());
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

TEST(LinkedList, EndsWhereItsChainDoes) {
    const int before = Probe::Living();
    struct Owner : ZAV_Link {
        Probe mProbe{1};
    };
    ZAV_LinkedList a, b;
    Owner* links[3];
    for (Owner*& l : links) a.Add(l = new Owner);
    b.AddAll(&a);
    EXPECT_TRUE(b.Size() == 3 && b[2] == links[2] && b[3]->IsListEnd() && b.Last() == links[2]);
    a.Clear();
    EXPECT_TRUE(a.Size() == 0 && a.First() == ZAV_Link::GetNilLink());
    for (Owner* l : links) a.Add(l); // again, from under the other list
    a.AddAll(&a);
    b.Clear();
    for (ZAV_LinkedList* list : {&a, &b}) {
        ZAV_Iterator it(list);
        for (int steps = 0; ++it; ++steps) ASSERT_LT(steps, 3);
    }
    a.Clear();
    for (ZAV_Link* none : {static_cast<ZAV_Link*>(nullptr), ZAV_Link::GetNilLink()})
        EXPECT_TRUE(a.Add(none) == none && a.AddFirst(none) == none && a.AddAfter(a.Last(), none) == none);
    EXPECT_EQ(0u, a.Size());
    for (Owner* l : links) a.AddAfter(a.Last(), l);
    ZAV_Iterator it(&a);
    for (ZAV_CltObject *next, *o = ++it; o; o = next) {
        next = ++it;
        if (o != links[1]) a.RemoveAndDestroy(o);
    }
    EXPECT_TRUE(Probe::Living() == before + 1 && a.First() == links[1] && a.Last() == links[1]);
    a.ClearAndDestroy();
    EXPECT_EQ(before, Probe::Living());
}

TEST(LinkedList, FindsByEqualityAndRemovesByIdentity) {
    Probe p(1), q(2);
    ZAV_LinkObj l(&p), other(&q), again(&p);
    ZAV_LinkedList list, second;
    list.Add(&l);
    EXPECT_TRUE(l.NextLink()->IsListEnd());
    EXPECT_TRUE(list.IndexOf(&again) == 0 && list.Remove(&again) == nullptr);
    second.Add(&again);
    EXPECT_TRUE(list.IsEqual(&second) && list.Hash() == second.Hash());
    EXPECT_LT(l.Compare(&other), 0) << "as their objects";
    list.Remove(&l);
    list.Add(&other);
    EXPECT_FALSE(list.IsEqual(&second));
    // A walk that has ended starts again.
    ZAV_Iterator it(&list);
    for (ZAV_LinkObj* o : {&other, static_cast<ZAV_LinkObj*>(nullptr), &other}) EXPECT_EQ(o, ++it);
}
