// Random operations on every collection beside a plain model. After each the whole of what can be seen is
// compared: elements and their order, sizes, counts, ends, results.
#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include <algorithm>
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

    const ZAV_Collection& Real() { return *real; }
    const Elements& Model() { return model; }

    int Size() { return static_cast<int>(model.size()); }
    ZAV_CltObject* At(int i) { return i < 0 || i >= Size() ? GetNilObj() : model[static_cast<size_t>(i)]; }
    int Index(const ZAV_CltObject* o) {
        auto at = std::find_if(model.begin(), model.end(), [o](auto* e) { return Same(e, o); });
        return at == model.end() ? -1 : static_cast<int>(at - model.begin());
    }
    void Inserted(int i, ZAV_CltObject* o, ZAV_CltObject* result) {
        EXPECT_EQ(i < 0 ? GetNilObj() : o, result);
        if (i < 0) return;
        if (model.size() == capacity) capacity += 32;
        model.insert(model.begin() + i, o);
    }
    void Erased(int i, ZAV_CltObject* result) {
        EXPECT_EQ(At(i), result);
        if (At(i) != GetNilObj()) model.erase(model.begin() + i);
    }
    void Sort() {
        real->Sort();
        std::sort(model.begin(), model.end(), [](auto* a, auto* b) { return a->Compare(b) < 0; });
        // Equal elements may stand in any order.
        for (int k = 0; k < Size(); ++k) EXPECT_TRUE(Same(At(k), (*real)[k]));
        model = Walk(*real);
    }
    void Replace(int start, int count, int from) {
        real->ReplaceFrom(start, start + count - 1, real.get(), from);
        for (int k = 0; k < count; ++k) model[static_cast<size_t>(start + k)] = At(from + k);
    }
    void ReSize(unsigned n) {
        real->ReSize(n);
        if (n > model.size()) capacity = n;
    }
    void AppendItself() {
        const Elements before = model;
        real->AddAllLast(real.get());
        for (ZAV_CltObject* o : before) Inserted(Size(), o, o);
    }
    void Clear() {
        real->Clear();
        model.clear();
        Erased(-1, real->RemoveLast());
    }
    void Copy() {
        std::unique_ptr<Open> copy(new Open(*real));
        EXPECT_TRUE(*copy == *real);
        *copy = Open();
        *copy = *real;
        real.swap(copy);
    }

    void Step(Pool& pool) {
        ZAV_CltObject *o = pool.Any(), *existing = pool.Any();
        const int size = Size(), at = Index(existing), i = static_cast<int>(pool.Number(model.size() + 1));
        const auto id = std::find(model.begin(), model.end(), existing) - model.begin();
        const int start = static_cast<int>(pool.Number(model.size()));
        const int most = size - (std::max)(start, i);
        const unsigned what = pool.Number(size > 60 ? 16 : 15);
        if (what < 3) Inserted(size, o, real->Add(o));
        if (what == 3) Inserted(i, o, real->AddAtIndex(i, o));
        if (what == 4) Inserted(at < 0 ? -1 : at + 1, o, real->AddAfter(existing, o));
        if (what == 5) Inserted(at, o, real->AddBefore(existing, o));
        if (what == 6) Erased(at, real->Remove(existing));
        if (what == 7) Erased(static_cast<int>(id), real->RemoveId(existing));
        if (what == 8) Erased(size - 1, real->RemoveLast());
        if (what == 9 && i < size) Erased(i, real->RemoveAtIndex(i));
        if (what == 10) ReSize(pool.Number(model.size() * 2 + 2));
        if (what == 11) Sort();
        if (what == 12 && size < 100) AppendItself();
        if (what == 13) Replace(start, static_cast<int>(pool.Number(static_cast<size_t>(most) + 1)), i);
        if (what == 14) Copy();
        if (what == 15) Clear();
        EXPECT_EQ(capacity, real->Capacity());
        const int now = Index(existing);
        EXPECT_EQ(now, real->IndexOf(existing));
        EXPECT_EQ(now < 0 ? GetNilObj() : At(now + 1), real->After(existing));
        EXPECT_EQ(now < 0 ? GetNilObj() : At(now - 1), real->Before(existing));
        EXPECT_TRUE(real->First() == At(0) && real->Last() == At(Size() - 1));
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

    const ZAV_Collection& Real() { return real; }
    const Elements& Model() { return model; }

    void Inserted(size_t i, ZAV_CltObject* link, ZAV_CltObject* result) {
        EXPECT_EQ(link, result);
        model.insert(model.begin() + static_cast<int>(i), link);
    }
    void Erased(Elements::iterator at, ZAV_CltObject* result) {
        EXPECT_EQ(at == model.end() ? nullptr : *at, result);
        if (at == model.end()) return;
        EXPECT_EQ(nullptr, ZAV_Link::Castdown(*at)->NextLink()) << "of a removed link";
        model.erase(at);
    }

    void Clear(ZAV_Link* any) {
        real.Clear();
        model.clear();
        EXPECT_EQ(nullptr, real.Remove(any));
    }

    void Step(Pool& pool) {
        const size_t i = pool.Number(model.size()), size = model.size();
        const unsigned what = pool.Number(size > 40 ? 10 : 7);
        ZAV_LinkObj* fresh = links.emplace_back(new ZAV_LinkObj(pool.Any())).get();
        // Any link there ever was: equal ones and removed ones do not count.
        ZAV_LinkObj* any = links[pool.Number(links.size())].get();
        if (what < 2) Inserted(size, fresh, real.Add(fresh));
        if (what == 2) Inserted(0, fresh, real.AddFirst(fresh));
        if (what == 3 && size > 0) Inserted(i + 1, fresh, real.AddAfter(model[i], fresh));
        if (what == 4) Erased(std::find(model.begin(), model.end(), any), real.Remove(any));
        if (what == 5 || what == 7) Erased(model.begin(), real.RemoveFirst());
        if (what == 6 || what == 8) Erased(size > 0 ? model.end() - 1 : model.end(), real.RemoveLast());
        if (what == 9) Clear(any);
        ZAV_Link* const none = ZAV_Link::GetNilLink();
        EXPECT_EQ(model.empty() ? none : model.front(), real.First());
        EXPECT_EQ(model.empty() ? none : model.back(), real.Last());
        EXPECT_EQ(i < model.size() ? model[i] : none, real[static_cast<int>(i)]);
        EXPECT_EQ(nullptr, real.Remove(none));
    }
};

/// Counts by number, with the object that came first.
struct Bagged {
    static const bool ordered = false;
    std::unique_ptr<ZAV_Bag> real{new ZAV_Bag(2)};
    std::map<int, Elements> counts;

    const ZAV_Collection& Real() { return *real; }
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
            EXPECT_TRUE(*copy == *real && copy->Hash() == real->Hash());
            copy->Add(o);
            EXPECT_TRUE(*copy != *real);
            *copy = *real;
            real.swap(copy);
        }
    }
};

/// A dictionary from probes to probes. Includes and OccurrencesOf look at the values.
struct Keyed {
    static const bool ordered = false;
    ZAV_Dictionary real{2};
    std::map<int, ZAV_Assoc*> entries;

    ~Keyed() { real.ClearAndDestroy(); }
    const ZAV_Collection& Real() { return real; }
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
        EXPECT_TRUE(real.AtKey(key) == old && real.IncludesKey(key) == (a != nullptr));
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
        EXPECT_TRUE(real.OccurrencesOf(value) == static_cast<unsigned>(n) &&
                    real.Includes(value) == (n != 0));
        ZAV_CltObject* found = real.KeyAtValue(value);
        EXPECT_TRUE(n == 0 ? found == GetNilObj() : Same(value, real.AtKey(found)));
    }
};

template <class Pair>
class RandomOps : public testing::Test {};

typedef testing::Types<Ordered, Linked, Bagged, Keyed> Pairs;

} // namespace

TYPED_TEST_SUITE(RandomOps, Pairs);

TYPED_TEST(RandomOps, AgreeWithTheModel) {
    Pool pool;
    TypeParam pair;
    for (int step = 0; step < 3000 && !this->HasFailure(); ++step) {
        SCOPED_TRACE(step);
        pair.Step(pool);
        const ZAV_Collection& real = pair.Real();
        const Elements walked = Walk(real), model = pair.Model();
        ASSERT_TRUE(TypeParam::ordered
                        ? walked == model
                        : std::is_permutation(walked.begin(), walked.end(), model.begin(), model.end()));
        EXPECT_EQ(model.size(), real.Size());
        EXPECT_EQ(model.empty(), const_cast<ZAV_Collection&>(real).IsEmpty());
        ZAV_CltObject* o = pool.Any();
        const auto n = std::count_if(model.begin(), model.end(), [&](auto* e) { return Same(e, o); });
        EXPECT_TRUE((std::is_same<TypeParam, Keyed>::value) ||
                    real.OccurrencesOf(o) == static_cast<unsigned>(n))
            << n;
        EXPECT_EQ(walked, Walk(*std::unique_ptr<ZAV_ArrayObj>(real.AsArrayObj())));
        EXPECT_EQ(model.size(), std::unique_ptr<ZAV_Bag>(real.AsBag())->Size());
        EXPECT_EQ((std::max)(model.size(), size_t{16}),
                  std::unique_ptr<ZAV_OrderedCltn>(real.AsOrderedCltn())->Capacity());
    }
}
