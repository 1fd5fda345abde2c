// Collections beside the standard containers. A set or dictionary of ours holds pointers to keys that are
// there already, the peer copies the key into its node; both are given keys made beforehand. Hits look up
// equal keys in other objects, in another order; a set tells whether it has the key, a dictionary gives the
// value. Taking down what was built is not timed.
#include <zavbase/collections/clt_string.h>
#include <zavbase/collections/dictionary.h>
#include <zavbase/collections/integer.h>
#include <zavbase/collections/iterator.h>
#include <zavbase/collections/ordered_cltn.h>

#include <benchmark/benchmark.h>

#include "settle_allocator.h"

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

const int N = 1000000;

typedef std::unordered_map<std::string, void*> Map;
typedef std::vector<std::unique_ptr<ZAV_CltString>> Texts;

enum Keys { DECIMAL, RANDOM };

std::vector<std::string> MakeKeys(Keys kind) {
    std::mt19937_64 random(1);
    std::vector<std::string> keys;
    for (int i = 0; i < N; ++i) {
        std::string key = std::to_string(i);
        if (kind == RANDOM) {
            key.clear();
            for (uint64_t r = random(); key.size() < 12; r >>= 5) key += static_cast<char>('a' + r % 26);
        }
        keys.push_back(key);
    }
    return keys;
}

Texts MakeTexts(const std::vector<std::string>& keys) {
    Texts texts;
    for (const std::string& key : keys) texts.emplace_back(new ZAV_CltString(key.c_str()));
    return texts;
}

/// The keys of a kind, once in the order of insertion and once shuffled, as both sides need them.
struct Input {
    explicit Input(Keys kind) : keys(MakeKeys(kind)), texts(MakeTexts(keys)), sought(keys) {
        std::shuffle(sought.begin(), sought.end(), std::mt19937(2));
        soughtTexts = MakeTexts(sought);
    }
    static const Input& Of(Keys kind) {
        static const Input inputs[] = {Input(DECIMAL), Input(RANDOM)};
        return inputs[kind];
    }

    std::vector<std::string> keys;
    Texts texts;
    std::vector<std::string> sought;
    Texts soughtTexts;
};

struct SetSide {
    ZAV_Set set{16};
    explicit SetSide(const Input& in) {
        for (const auto& t : in.texts) set.Add(t.get());
    }
    static bool Hit(SetSide& s, const Input& in, size_t i) {
        return s.set.Includes(in.soughtTexts[i].get()) == B_TRUE;
    }
    static uintptr_t Sum(SetSide& s) {
        uintptr_t sum = 0;
        ZAV_Iterator it(&s.set);
        while (ZAV_CltObject* o = ++it) sum += reinterpret_cast<uintptr_t>(o);
        return sum;
    }
};

struct DictSide {
    ZAV_Dictionary dict{16};
    explicit DictSide(const Input& in) {
        for (const auto& t : in.texts) dict.AddAssoc(t.get(), t.get());
    }
    ~DictSide() { dict.ClearAndDestroy(); }
    static bool Hit(DictSide& s, const Input& in, size_t i) {
        return s.dict.AtKey(in.soughtTexts[i].get()) != nullptr;
    }
    static uintptr_t Sum(DictSide& s) {
        uintptr_t sum = 0;
        ZAV_Iterator it(&s.dict);
        while (ZAV_CltObject* o = ++it) sum += reinterpret_cast<uintptr_t>(o);
        return sum;
    }
};

struct MapSide {
    Map map;
    explicit MapSide(const Input& in) {
        for (const std::string& key : in.keys) map.emplace(key, nullptr);
    }
    static bool Hit(MapSide& s, const Input& in, size_t i) {
        const auto at = s.map.find(in.sought[i]);
        return at != s.map.end() && at->second == nullptr;
    }
    static uintptr_t Sum(MapSide& s) {
        uintptr_t sum = 0;
        for (const auto& e : s.map) sum += reinterpret_cast<uintptr_t>(&e);
        return sum;
    }
};

template <class Side>
void Insert(benchmark::State& state, Keys kind) {
    const Input& in = Input::Of(kind);
    SettleAllocator();
    for (auto _ : state) {
        std::unique_ptr<Side> side(new Side(in));
        state.PauseTiming();
        side.reset();
        SettleAllocator();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * N);
}

template <class Side>
void Hit(benchmark::State& state, Keys kind) {
    const Input& in = Input::Of(kind);
    Side side(in);
    for (auto _ : state) {
        size_t hits = 0;
        for (size_t i = 0; i < in.sought.size(); ++i) hits += Side::Hit(side, in, i);
        if (hits != in.sought.size()) state.SkipWithError("a key was not found");
    }
    state.SetItemsProcessed(state.iterations() * N);
}

template <class Side>
void Iterate(benchmark::State& state, Keys kind) {
    Side side(Input::Of(kind));
    for (auto _ : state) benchmark::DoNotOptimize(Side::Sum(side));
    state.SetItemsProcessed(state.iterations() * N);
}

void AppendZav(benchmark::State& state) {
    SettleAllocator();
    ZAV_Integer o(1);
    for (auto _ : state) {
        ZAV_OrderedCltn c(16);
        for (int i = 0; i < N; ++i) c.Add(&o);
        benchmark::DoNotOptimize(c.Last());
    }
    state.SetItemsProcessed(state.iterations() * N);
}

void AppendStd(benchmark::State& state) {
    SettleAllocator();
    ZAV_Integer o(1);
    for (auto _ : state) {
        std::vector<ZAV_CltObject*> c;
        c.reserve(16);
        for (int i = 0; i < N; ++i) c.push_back(&o);
        benchmark::DoNotOptimize(c.back());
    }
    state.SetItemsProcessed(state.iterations() * N);
}

const std::vector<std::unique_ptr<ZAV_Integer>>& Numbers() {
    static const auto numbers = [] {
        std::mt19937 random(3);
        std::vector<std::unique_ptr<ZAV_Integer>> made;
        for (int i = 0; i < N; ++i)
            made.emplace_back(new ZAV_Integer(static_cast<long>(random() % 1000000000)));
        return made;
    }();
    return numbers;
}

void SortZav(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        ZAV_OrderedCltn c(N);
        for (const auto& n : Numbers()) c.Add(n.get());
        state.ResumeTiming();
        c.Sort();
        benchmark::DoNotOptimize(c.First());
    }
}

void SortStd(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<ZAV_CltObject*> c;
        for (const auto& n : Numbers()) c.push_back(n.get());
        state.ResumeTiming();
        std::sort(c.begin(), c.end(), [](auto* a, auto* b) { return a->Compare(b) < 0; });
        benchmark::DoNotOptimize(c.front());
    }
}

BENCHMARK(AppendZav)->Name("Collections/zav/append 1M")->Unit(benchmark::kMillisecond);
BENCHMARK(AppendStd)->Name("Collections/std/append 1M")->Unit(benchmark::kMillisecond);
BENCHMARK(SortZav)->Name("Collections/zav/sort 1M integers")->Unit(benchmark::kMillisecond);
BENCHMARK(SortStd)->Name("Collections/std/sort 1M integers")->Unit(benchmark::kMillisecond);

template <class Zav>
void RegisterPair(const std::string& family, const std::string& keys, Keys kind) {
    auto add = [&](const std::string& side, const std::string& what, void (*run)(benchmark::State&, Keys)) {
        benchmark::RegisterBenchmark((family + "/" + side + "/" + what + " 1M " + keys).c_str(), run, kind)
            ->Unit(benchmark::kMillisecond);
    };
    add("zav", "insert", Insert<Zav>);
    add("std", "insert", Insert<MapSide>);
    add("zav", "hit", Hit<Zav>);
    add("std", "hit", Hit<MapSide>);
    add("zav", "iterate", Iterate<Zav>);
    add("std", "iterate", Iterate<MapSide>);
}

const bool registered = [] {
    RegisterPair<SetSide>("Set", "decimal keys", DECIMAL);
    RegisterPair<SetSide>("Set", "random keys", RANDOM);
    RegisterPair<DictSide>("Dictionary", "decimal keys", DECIMAL);
    RegisterPair<DictSide>("Dictionary", "random keys", RANDOM);
    return true;
}();

} // namespace
