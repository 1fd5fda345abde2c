// Random operations on every collection beside a plain model. After each the whole of what can be seen is
// compared: elements and their order, sizes, counts, ends, results.
#include <zavbase/collections/bag.h>
#include <zavbase/collections/iterator.h>
#include <zavbase/collections/linked_list.h>
#include <zavbase/collections/nil.h>
#include <zavbase/collections/stack.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>

#include "tests/support/probe.h"

namespace {

typedef std::vector<ZAV_CltObject*> Elements;

Elements Walk(const ZAV_Collection& c) {
    Elements elements;
    ZAV_Iterator it(&c);
    while (ZAV_CltObject* o = ++it) elements.push_back(o);
    return elements;
}

ZAV_Collection& Plain(ZAV_Collection& c) { return c; }
template <class C>
ZAV_Collection& Plain(const std::unique_ptr<C>& c) {
    return *c;
}

bool Same(ZAV_CltObject* a, const ZAV_CltObject* b) { return a->IsEqual(b) == B_TRUE; }

/// What the runs draw from: 60 objects, each equal to two others.
struct Pool {
    Pool() {
        for (int i = 0; i < 60; ++i)
            mObjects.emplace_back(new Probe(i % 20, static_cast<unsigned>(i % 20 / 3)));
    }
    unsigned Number(size_t below) { return static_cast<unsigned>(mRandom() % (below ? below : 1)); }
    ZAV_CltObject* Any() { return mObjects[Number(60)].get(); }

    std::mt19937 mRandom{99};
    std::vector<std::unique_ptr<Probe>> mObjects;
};

/// An ordered collection, which must grow by 32, beside a vector.
struct Ordered {
    struct Open : ZAV_OrderedCltn {
        Open() : ZAV_OrderedCltn(0) {}
        using ZAV_OrderedCltn::AddAtIndex;
        using ZAV_OrderedCltn::RemoveAtIndex;
    };
    static const bool ordered = true;
    std::unique_ptr<Open> real{new Open};
    Elements model;
    unsigned capacity = 0;

    const Elements& Model() { return model; }

    int Index(const ZAV_CltObject* o) {
        auto at = std::find_if(model.begin(), model.end(), [o](auto* e) { return Same(e, o); });
        return at == model.end() ? -1 : static_cast<int>(at - model.begin());
    }
    ZAV_CltObject* ModelAt(int i) {
        return i < 0 || i >= static_cast<int>(model.size()) ? GetNilObj() : model[static_cast<size_t>(i)];
    }
    void Insert(int i, ZAV_CltObject* o) {
        if (model.size() == capacity) capacity += 32;
        model.insert(model.begin() + i, o);
    }
    ZAV_CltObject* Erase(int i) {
        ZAV_CltObject* o = ModelAt(i);
        if (o != GetNilObj()) model.erase(model.begin() + i);
        return o;
    }

    void Step(Pool& pool) {
        ZAV_CltObject *o = pool.Any(), *existing = pool.Any();
        const int size = static_cast<int>(model.size()), at = Index(existing);
        const int i = static_cast<int>(pool.Number(model.size() + 1));
        const unsigned what = pool.Number(15);
        if (what < 3) {
            EXPECT_EQ(o, real->Add(o));
            Insert(size, o);
        } else if (what == 3) {
            EXPECT_EQ(o, real->AddAtIndex(i, o));
            Insert(i, o);
        } else if (what < 6) {
            const bool after = what == 4;
            EXPECT_EQ(at < 0 ? GetNilObj() : o,
                      after ? real->AddAfter(existing, o) : real->AddBefore(existing, o));
            if (at >= 0) Insert(at + after, o);
        } else if (what == 6) {
            EXPECT_EQ(Erase(at), real->Remove(existing));
        } else if (what == 7) {
            const auto id = std::find(model.begin(), model.end(), existing) - model.begin();
            EXPECT_EQ(Erase(static_cast<int>(id)), real->RemoveId(existing));
        } else if (what == 8) {
            EXPECT_EQ(Erase(size - 1), real->RemoveLast());
        } else if (what == 9 && i < size) {
            EXPECT_EQ(Erase(i), real->RemoveAtIndex(i));
        } else if (what == 10) {
            const unsigned n = pool.Number(model.size() * 2 + 2);
            real->ReSize(n);
            if (n > model.size()) capacity = n;
        } else if (what == 11) {
            real->Sort();
            std::sort(model.begin(), model.end(), [](auto* a, auto* b) { return a->Compare(b) < 0; });
            // Equal elements may stand in any order.
            for (int k = 0; k < size; ++k) EXPECT_TRUE(Same(ModelAt(k), (*real)[k]));
            model = Walk(*real);
        } else if (what == 12 && size < 100) {
            real->AddAllLast(real.get());
            for (int k = 0; k < size; ++k) Insert(size + k, ModelAt(k));
        } else if (what == 13) {
            const int start = static_cast<int>(pool.Number(model.size()));
            const int count =
                static_cast<int>(pool.Number(model.size() + 1 - static_cast<size_t>((std::max)(start, i))));
            real->ReplaceFrom(start, start + count - 1, real.get(), i);
            for (int k = 0; k < count; ++k) model[static_cast<size_t>(start + k)] = ModelAt(i + k);
        } else {
            std::unique_ptr<Open> copy(new Open(*real));
            EXPECT_TRUE(*copy == *real);
            *copy = Open();
            *copy = *real;
            real.swap(copy);
        }
        EXPECT_EQ(capacity, real->Capacity());
        const int now = Index(existing);
        EXPECT_EQ(now, real->IndexOf(existing));
        EXPECT_EQ(now < 0 ? GetNilObj() : ModelAt(now + 1), real->After(existing));
        EXPECT_EQ(now < 0 ? GetNilObj() : ModelAt(now - 1), real->Before(existing));
        EXPECT_EQ(ModelAt(0), real->First());
        EXPECT_EQ(ModelAt(static_cast<int>(model.size()) - 1), real->Last());
        for (unsigned k = real->Size(); k < real->Capacity(); ++k)
            ASSERT_EQ(GetNilObj(), (*real)[static_cast<int>(k)]) << "behind the elements";
    }
};

/// A linked list beside a vector. A link is in the list once.
struct Linked {
    static const bool ordered = true;
    std::vector<std::unique_ptr<ZAV_LinkObj>> links;
    ZAV_LinkedList real;
    Elements model;

    const Elements& Model() { return model; }

    void Insert(size_t i, ZAV_CltObject* l) { model.insert(model.begin() + static_cast<int>(i), l); }
    ZAV_CltObject* Take(Elements::iterator at) {
        if (at == model.end()) return nullptr;
        ZAV_CltObject* o = *at;
        model.erase(at);
        EXPECT_EQ(nullptr, ZAV_Link::Castdown(o)->NextLink()) << "of a removed link";
        return o;
    }

    void Step(Pool& pool) {
        const size_t i = pool.Number(model.size());
        const unsigned what = pool.Number(model.size() > 40 ? 9 : 7);
        ZAV_LinkObj* fresh = links.emplace_back(new ZAV_LinkObj(pool.Any())).get();
        if (what < 2) {
            EXPECT_EQ(fresh, real.Add(fresh));
            Insert(model.size(), fresh);
        } else if (what == 2) {
            EXPECT_EQ(fresh, real.AddFirst(fresh));
            Insert(0, fresh);
        } else if (what == 3 && !model.empty()) {
            EXPECT_EQ(fresh, real.AddAfter(model[i], fresh));
            Insert(i + 1, fresh);
        } else if (what == 4) {
            // Any link there ever was: equal ones and removed ones do not count.
            ZAV_LinkObj* l = links[pool.Number(links.size())].get();
            ZAV_CltObject* removed = real.Remove(l);
            EXPECT_EQ(Take(std::find(model.begin(), model.end(), l)), removed);
        } else if (what % 2) {
            ZAV_Link* removed = real.RemoveFirst();
            EXPECT_EQ(Take(model.begin()), removed);
        } else {
            ZAV_Link* removed = real.RemoveLast();
            EXPECT_EQ(Take(model.empty() ? model.end() : model.end() - 1), removed);
        }
        EXPECT_EQ(model.empty() ? ZAV_Link::GetNilLink() : model.front(), real.First());
        EXPECT_EQ(model.empty() ? ZAV_Link::GetNilLink() : model.back(), real.Last());
        EXPECT_EQ(i < model.size() ? model[i] : ZAV_Link::GetNilLink(), real[static_cast<int>(i)]);
        EXPECT_EQ(nullptr, real.Remove(ZAV_Link::GetNilLink()));
    }
};

/// Counts by number, with the object that came first.
struct Bagged {
    static const bool ordered = false;
    std::unique_ptr<ZAV_Bag> real{new ZAV_Bag(2)};
    std::map<int, Elements> counts;

    Elements Model() {
        Elements model;
        for (auto& c : counts) model.insert(model.end(), c.second.begin(), c.second.end());
        return model;
    }

    void Step(Pool& pool) {
        ZAV_CltObject* o = pool.Any();
        Elements& same = counts[NumberOf(o)];
        ZAV_CltObject* first = same.empty() ? o : same[0];
        const unsigned n = pool.Number(3) + 1, what = pool.Number(5);
        if (what < 2) {
            EXPECT_EQ(first, real->AddWithOccurrences(o, n));
            same.insert(same.end(), n, first);
        } else if (what < 4) {
            EXPECT_EQ(same.size() == 1 ? first : nullptr, real->Remove(o));
            if (!same.empty()) same.pop_back();
        } else {
            std::unique_ptr<ZAV_Bag> copy(new ZAV_Bag(*real));
            EXPECT_TRUE(*copy == *real);
            EXPECT_EQ(copy->Hash(), real->Hash());
            copy->Add(o);
            EXPECT_TRUE(*copy != *real);
            *copy = *real;
            real.swap(copy);
        }
    }
};

/// Sets combined: union keeps the own object, difference and intersection filter.
struct Combined {
    static const bool ordered = false;
    ZAV_Set real{1};
    std::map<int, ZAV_CltObject*> elements;

    Elements Model() {
        Elements model;
        for (auto& e : elements) model.push_back(e.second);
        return model;
    }

    void Step(Pool& pool) {
        ZAV_Set other(16);
        std::map<int, ZAV_CltObject*> others;
        for (unsigned n = pool.Number(20); n > 0; --n) {
            ZAV_CltObject* o = pool.Any();
            other.Add(o);
            others.insert({NumberOf(o), o});
        }
        const unsigned what = pool.Number(3);
        real = what == 0 ? real | other : what == 1 ? real - other : real & other;
        if (what == 0) {
            elements.insert(others.begin(), others.end());
        } else {
            std::erase_if(elements, [&](auto& e) { return others.count(e.first) == (what == 1); });
        }
        EXPECT_EQ(real == other, std::equal(others.begin(), others.end(), elements.begin(), elements.end(),
                                            [](auto& a, auto& b) { return a.first == b.first; }));
    }
};

/// A dictionary from probes to probes. Includes and OccurrencesOf look at the values.
struct Keyed {
    static const bool ordered = false;
    ZAV_Dictionary real{2};
    std::map<int, ZAV_Assoc*> entries;

    ~Keyed() { real.ClearAndDestroy(); }
    Elements Model() {
        Elements model;
        for (auto& e : entries) model.push_back(e.second);
        return model;
    }

    void Step(Pool& pool) {
        ZAV_CltObject *key = pool.Any(), *value = pool.Any();
        const auto at = entries.find(NumberOf(key));
        ZAV_Assoc* a = at == entries.end() ? nullptr : at->second;
        ZAV_CltObject* old = a ? a->Value() : GetNilObj();
        EXPECT_EQ(a, real.AssocAt(key));
        EXPECT_EQ(old, real.AtKey(key));
        EXPECT_EQ(a != nullptr, real.IncludesKey(key));
        const unsigned what = pool.Number(4);
        if (what == 0) {
            ZAV_Assoc* added = real.AddAssoc(key, value);
            EXPECT_EQ(entries.insert({NumberOf(key), added}).first->second, added);
            EXPECT_EQ(a ? old : value, real.AtKey(key)) << "there already: with its old value";
        } else if (what == 1) {
            EXPECT_EQ(old, real.AtKey(key, value));
            EXPECT_EQ(a ? value : GetNilObj(), real.AtKey(key));
        } else if (what == 2) {
            std::unique_ptr<ZAV_LookupKey> removed(real.RemoveKey(key));
            EXPECT_EQ(a, removed.get());
            entries.erase(NumberOf(key));
        } else {
            ZAV_Dictionary copy(real);
            EXPECT_TRUE(copy == real);
            ZAV_Assoc sought(key, value);
            EXPECT_EQ(a && Same(value, old), real.IncludesAssoc(&sought));
        }
        const auto n = std::count_if(entries.begin(), entries.end(),
                                     [value](auto& e) { return Same(value, e.second->Value()); });
        EXPECT_EQ(static_cast<unsigned>(n), real.OccurrencesOf(value));
        EXPECT_EQ(n != 0, real.Includes(value));
        ZAV_CltObject* found = real.KeyAtValue(value);
        EXPECT_EQ(n != 0, found != GetNilObj());
        EXPECT_TRUE(n == 0 || Same(value, real.AtKey(found)));
    }
};

template <class Pair>
class RandomOps : public testing::Test {};

typedef testing::Types<Ordered, Linked, Bagged, Combined, Keyed> Pairs;

} // namespace

TYPED_TEST_SUITE(RandomOps, Pairs);

TYPED_TEST(RandomOps, AgreeWithTheModel) {
    Pool pool;
    TypeParam pair;
    const bool values = std::is_same<TypeParam, Keyed>::value;
    for (int step = 0; step < 3000 && !this->HasFailure(); ++step) {
        SCOPED_TRACE(step);
        pair.Step(pool);
        ZAV_Collection& real = Plain(pair.real);
        const Elements walked = Walk(real), model = pair.Model();
        ASSERT_TRUE(TypeParam::ordered
                        ? walked == model
                        : std::is_permutation(walked.begin(), walked.end(), model.begin(), model.end()));
        EXPECT_EQ(model.size(), real.Size());
        EXPECT_EQ(model.empty(), real.IsEmpty());
        ZAV_CltObject* o = pool.Any();
        const auto n = std::count_if(model.begin(), model.end(), [&](auto* e) { return Same(e, o); });
        EXPECT_TRUE(values || real.OccurrencesOf(o) == static_cast<unsigned>(n)) << n;
        std::unique_ptr<ZAV_ArrayObj> array(real.AsArrayObj());
        EXPECT_EQ(walked, Walk(*array));
        EXPECT_EQ(model.size(), std::unique_ptr<ZAV_Bag>(real.AsBag())->Size());
        std::unique_ptr<ZAV_OrderedCltn> list(real.AsOrderedCltn());
        EXPECT_EQ((std::max)(model.size(), size_t{16}), list->Capacity());
    }
}
