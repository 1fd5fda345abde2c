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

Elements Sorted(Elements e) {
    std::sort(e.begin(), e.end());
    return e;
}

bool Same(ZAV_CltObject* a, const ZAV_CltObject* b) { return a->IsEqual(b) == B_TRUE; }

/// What the runs draw from: 60 objects, each equal to two others.
struct Pool {
    Pool() {
        for (int i = 0; i < 60; ++i) mObjects.emplace_back(new Probe(i % 20, static_cast<unsigned>(i % 20 / 3)));
    }
    unsigned Number(size_t below) { return static_cast<unsigned>(mRandom() % (below ? below : 1)); }
    ZAV_CltObject* Any() { return mObjects[Number(60)].get(); }

    std::mt19937 mRandom{99};
    std::vector<std::unique_ptr<Probe>> mObjects;
};

/// An ordered collection, which must grow by 32, beside a vector.
struct Ordered {
    struct Open : ZAV_OrderedCltn {
        Open() : ZAV_OrderedCltn(2) {}
        using ZAV_OrderedCltn::AddAtIndex;
        using ZAV_OrderedCltn::RemoveAtIndex;
    };
    static const bool ordered = true;
    std::unique_ptr<Open> real{new Open};
    Elements model;
    unsigned capacity = 2;

    ZAV_Collection& Real() { return *real; }
    const Elements& Model() { return model; }

    int Index(const ZAV_CltObject* o) {
        for (size_t i = 0; i < model.size(); ++i)
            if (Same(model[i], o)) return static_cast<int>(i);
        return -1;
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
        switch (pool.Number(15)) {
            case 0: case 1: case 2:
                EXPECT_EQ(o, real->Add(o));
                Insert(size, o);
                break;
            case 3:
                EXPECT_EQ(o, real->AddAtIndex(i, o));
                Insert(i, o);
                break;
            case 4:
                EXPECT_EQ(at < 0 ? GetNilObj() : o, real->AddAfter(existing, o));
                if (at >= 0) Insert(at + 1, o);
                break;
            case 5:
                EXPECT_EQ(at < 0 ? GetNilObj() : o, real->AddBefore(existing, o));
                if (at >= 0) Insert(at, o);
                break;
            case 6: EXPECT_EQ(Erase(at), real->Remove(existing)); break;
            case 7: {
                auto id = std::find(model.begin(), model.end(), existing);
                EXPECT_EQ(Erase(id == model.end() ? -1 : static_cast<int>(id - model.begin())),
                          real->RemoveId(existing));
                break;
            }
            case 8: EXPECT_EQ(Erase(size - 1), real->RemoveLast()); break;
            case 9:
                if (i < size) {
                    EXPECT_EQ(Erase(i), real->RemoveAtIndex(i));
                }
                break;
            case 10: {
                const unsigned n = pool.Number(model.size() * 2 + 2);
                real->ReSize(n);
                if (n > model.size()) capacity = n;
                break;
            }
            case 11:
                real->Sort();
                std::sort(model.begin(), model.end(), [](auto* a, auto* b) { return a->Compare(b) < 0; });
                // Equal elements may stand in any order.
                for (int k = 0; k < size; ++k) EXPECT_TRUE(Same(ModelAt(k), (*real)[k]));
                model = Walk(*real);
                break;
            case 12:
                if (size < 100) {
                    real->AddAllLast(real.get());
                    for (int k = 0; k < size; ++k) Insert(static_cast<int>(model.size()), ModelAt(k));
                }
                break;
            case 13: {
                const int start = static_cast<int>(pool.Number(model.size()));
                const int count = static_cast<int>(pool.Number(static_cast<size_t>(size - (std::max)(start, i) + 1)));
                real->ReplaceFrom(start, start + count - 1, real.get(), i);
                for (int k = 0; k < count; ++k)
                    model[static_cast<size_t>(start + k)] = ModelAt(i + k);
                break;
            }
            default: {
                std::unique_ptr<Open> copy(new Open(*real));
                EXPECT_TRUE(*copy == *real);
                *copy = Open();
                *copy = *real;
                real.swap(copy);
            }
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

/// A linked list beside a std::list. A link is in the list once.
struct Linked {
    static const bool ordered = true;
    std::vector<std::unique_ptr<ZAV_LinkObj>> links;
    ZAV_LinkedList real;
    Elements model;

    ZAV_Collection& Real() { return real; }
    const Elements& Model() { return model; }

    ZAV_LinkObj* Fresh(Pool& pool) {
        links.emplace_back(new ZAV_LinkObj(pool.Any()));
        return links.back().get();
    }
    ZAV_CltObject* Take(Elements::iterator at) {
        if (at == model.end()) return nullptr;
        ZAV_CltObject* o = *at;
        model.erase(at);
        EXPECT_EQ(nullptr, ZAV_Link::Castdown(o)->NextLink()) << "of a removed link";
        return o;
    }

    void Step(Pool& pool) {
        const size_t i = pool.Number(model.size());
        switch (pool.Number(model.size() > 40 ? 9 : 7)) {
            case 0: case 1: {
                ZAV_CltObject* l = Fresh(pool);
                EXPECT_EQ(l, real.Add(l));
                model.push_back(l);
                break;
            }
            case 2: {
                ZAV_Link* l = Fresh(pool);
                EXPECT_EQ(l, real.AddFirst(l));
                model.insert(model.begin(), l);
                break;
            }
            case 3:
                if (!model.empty()) {
                    ZAV_CltObject* l = Fresh(pool);
                    EXPECT_EQ(l, real.AddAfter(model[i], l));
                    model.insert(model.begin() + static_cast<int>(i) + 1, l);
                }
                break;
            case 4: {
                // Any link there ever was: equal ones and removed ones do not count.
                ZAV_LinkObj* l = links.empty() ? Fresh(pool) : links[pool.Number(links.size())].get();
                auto at = std::find(model.begin(), model.end(), l);
                const bool there = at != model.end();
                EXPECT_EQ(there ? l : nullptr, real.Remove(l));
                if (there) Take(at);
                break;
            }
            case 5: case 7: {
                ZAV_Link* removed = real.RemoveFirst();
                EXPECT_EQ(Take(model.begin()), removed);
                break;
            }
            default: {
                ZAV_Link* removed = real.RemoveLast();
                EXPECT_EQ(Take(model.empty() ? model.end() : model.end() - 1), removed);
            }
        }
        EXPECT_EQ(model.empty() ? ZAV_Link::GetNilLink() : model.front(), real.First());
        EXPECT_EQ(model.empty() ? ZAV_Link::GetNilLink() : model.back(), real.Last());
        EXPECT_EQ(i < model.size() ? model[i] : ZAV_Link::GetNilLink(), real[static_cast<int>(i)]);
        EXPECT_EQ(nullptr, real.Remove(ZAV_Link::GetNilLink()));
    }
};

/// Counts by number, with the object that came first.
struct Counted {
    ZAV_CltObject* first;
    unsigned count;
};

struct Bagged {
    static const bool ordered = false;
    std::unique_ptr<ZAV_Bag> real{new ZAV_Bag(2)};
    std::map<int, Counted> counts;
    Elements model;

    ZAV_Collection& Real() { return *real; }
    const Elements& Model() {
        model.clear();
        for (auto& c : counts) model.insert(model.end(), c.second.count, c.second.first);
        return model;
    }

    void Step(Pool& pool) {
        ZAV_CltObject* o = pool.Any();
        const auto at = counts.find(NumberOf(o));
        const unsigned n = pool.Number(3);
        switch (pool.Number(5)) {
            case 0: case 1:
                EXPECT_EQ(at == counts.end() ? o : at->second.first, real->AddWithOccurrences(o, n + 1));
                counts.insert({NumberOf(o), {o, 0}}).first->second.count += n + 1;
                break;
            case 2: case 3: {
                ZAV_CltObject* last = at != counts.end() && at->second.count == 1 ? at->second.first : nullptr;
                EXPECT_EQ(last, real->Remove(o));
                if (at != counts.end() && --at->second.count == 0) counts.erase(at);
                break;
            }
            default: {
                std::unique_ptr<ZAV_Bag> copy(new ZAV_Bag(*real));
                EXPECT_TRUE(*copy == *real);
                EXPECT_EQ(copy->Hash(), real->Hash());
                copy->Add(o);
                EXPECT_TRUE(*copy != *real);
                *copy = *real;
                real.swap(copy);
            }
        }
    }
};

struct SetBeside {
    static const bool ordered = false;
    std::unique_ptr<ZAV_Set> real{new ZAV_Set(1)};
    std::map<int, ZAV_CltObject*> elements;
    Elements model;

    ZAV_Collection& Real() { return *real; }
    const Elements& Model() {
        model.clear();
        for (auto& e : elements) model.push_back(e.second);
        return model;
    }

    void Step(Pool& pool) {
        ZAV_CltObject* o = pool.Any();
        switch (pool.Number(4)) {
            case 0: EXPECT_EQ(elements.insert({NumberOf(o), o}).first->second, real->Add(o)); break;
            case 1:
                if (elements.count(NumberOf(o))) {
                    EXPECT_EQ(elements[NumberOf(o)], real->Remove(o));
                    elements.erase(NumberOf(o));
                }
                break;
            case 2: Combine(pool); break;
            default: EXPECT_EQ(elements.count(NumberOf(o)), real->OccurrencesOf(o)); break;
        }
    }

    // The model walks its pairs itself: union keeps the own object, difference and intersection filter.
    void Combine(Pool& pool) {
        ZAV_Set other(16);
        std::map<int, ZAV_CltObject*> others;
        for (int k = 0; k < 8; ++k) {
            ZAV_CltObject* o = pool.Any();
            other.Add(o);
            others.insert({NumberOf(o), o});
        }
        const unsigned operation = pool.Number(3);
        ZAV_Set result = operation == 0 ? *real | other : operation == 1 ? *real - other : *real & other;
        if (operation == 0) {
            elements.insert(others.begin(), others.end());
        } else {
            for (auto e = elements.begin(); e != elements.end();)
                e = (others.count(e->first) != 0) == (operation == 1) ? elements.erase(e) : std::next(e);
        }
        EXPECT_EQ(result == other, others.size() == elements.size() &&
                                       std::equal(others.begin(), others.end(), elements.begin(),
                                                  [](auto& a, auto& b) { return a.first == b.first; }));
        *real = result;
    }
};

/// A dictionary from probes to probes. Includes and OccurrencesOf look at the values.
struct Keyed {
    static const bool ordered = false;
    ZAV_Dictionary real{2};
    std::map<int, ZAV_Assoc*> entries;
    Elements model;

    ~Keyed() { real.ClearAndDestroy(); }
    ZAV_Collection& Real() { return real; }
    const Elements& Model() {
        model.clear();
        for (auto& e : entries) model.push_back(e.second);
        return model;
    }

    void Step(Pool& pool) {
        ZAV_CltObject *key = pool.Any(), *value = pool.Any();
        const auto at = entries.find(NumberOf(key));
        ZAV_Assoc* a = at == entries.end() ? nullptr : at->second;
        EXPECT_EQ(a, real.AssocAt(key));
        EXPECT_EQ(a ? a->Value() : GetNilObj(), real.AtKey(key));
        EXPECT_EQ(a != nullptr, real.IncludesKey(key));
        switch (pool.Number(4)) {
            case 0: {
                ZAV_Assoc* added = real.AddAssoc(key, value);
                if (a) {
                    EXPECT_EQ(a, added);
                } else {
                    entries[NumberOf(key)] = added;
                }
                break;
            }
            case 1: {
                ZAV_CltObject* old = a ? a->Value() : GetNilObj();
                EXPECT_EQ(old, real.AtKey(key, value));
                EXPECT_EQ(a ? value : GetNilObj(), real.AtKey(key));
                break;
            }
            case 2: {
                std::unique_ptr<ZAV_LookupKey> removed(real.RemoveKey(key));
                EXPECT_EQ(a, removed.get());
                entries.erase(NumberOf(key));
                break;
            }
            default: {
                ZAV_Dictionary copy(real);
                EXPECT_TRUE(copy == real);
                ZAV_Assoc sought(key, value);
                EXPECT_EQ(a && Same(value, a->Value()), real.IncludesAssoc(&sought));
            }
        }
        unsigned n = 0;
        for (auto& e : entries) n += Same(value, e.second->Value());
        EXPECT_EQ(n, real.OccurrencesOf(value));
        EXPECT_EQ(n != 0, real.Includes(value));
        ZAV_CltObject* found = real.KeyAtValue(value);
        EXPECT_EQ(n != 0, found != GetNilObj());
        if (n) {
            EXPECT_TRUE(Same(value, real.AtKey(found)));
        }
    }
};

template <class Pair>
class RandomOps : public testing::Test {};

typedef testing::Types<Ordered, Linked, Bagged, SetBeside, Keyed> Pairs;

} // namespace

TYPED_TEST_SUITE(RandomOps, Pairs);

TYPED_TEST(RandomOps, AgreeWithTheModel) {
    Pool pool;
    TypeParam pair;
    const bool values = std::is_same<TypeParam, Keyed>::value;
    for (int step = 0; step < 3000 && !this->HasFailure(); ++step) {
        SCOPED_TRACE(step);
        pair.Step(pool);
        ZAV_Collection& real = pair.Real();
        const Elements walked = Walk(real), model = pair.Model();
        ASSERT_EQ(TypeParam::ordered ? model : Sorted(model), TypeParam::ordered ? walked : Sorted(walked));
        EXPECT_EQ(model.size(), real.Size());
        EXPECT_EQ(model.empty(), real.IsEmpty());
        ZAV_CltObject* o = pool.Any();
        if (!values) {
            const auto n = std::count_if(model.begin(), model.end(), [&](auto* e) { return Same(e, o); });
            EXPECT_EQ(static_cast<unsigned>(n), real.OccurrencesOf(o));
        }
        std::unique_ptr<ZAV_ArrayObj> array(real.AsArrayObj());
        EXPECT_EQ(walked, Walk(*array));
        std::unique_ptr<ZAV_Bag> bag(real.AsBag());
        std::unique_ptr<ZAV_OrderedCltn> list(real.AsOrderedCltn());
        EXPECT_EQ(model.size(), bag->Size());
        EXPECT_EQ((std::max)(model.size(), size_t{16}), list->Capacity());
    }
}
