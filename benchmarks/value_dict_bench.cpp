// Value dictionaries: lookups under keys whose required hash collides, paths of three levels beside the ways
// others read a setting, and the memory of an entry.
#include <benchmark/benchmark.h>

#include <string>
#include <unordered_map>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif
#if defined(HAVE_GLIB)
#include <glib.h>
#endif
#if defined(HAVE_NLOHMANN)
#include <nlohmann/json.hpp>
#endif

#include <zavbase/values/config.h>
#include <zavbase/values/uval_types.h>
#include <zavbase/values/value_dict.h>

namespace {

typedef std::vector<std::string> Keys;

uint32_t NextRandom(uint32_t& state) { return state = state * 1664525u + 1013904223u; }

/// The same keys in another order, so that a run does not follow the order of memory.
Keys Shuffled(Keys keys) {
    uint32_t state = 1;
    for (size_t i = keys.size(); i > 1; --i) std::swap(keys[i - 1], keys[(NextRandom(state) >> 8) % i]);
    return keys;
}

Keys Numbered(const char* prefix, int count) {
    Keys keys;
    for (int i = 0; i < count; ++i) keys.push_back(prefix + std::to_string(i));
    return keys;
}

Keys Random(int count) {
    Keys keys;
    uint32_t state = 4711;
    for (int i = 0; i < count; ++i) {
        std::string key(8, ' ');
        for (char& c : key) c = static_cast<char>('a' + (NextRandom(state) >> 16) % 26);
        keys.push_back(key + std::to_string(i % 10));
    }
    return keys;
}

ZAV_UVal* Number(long n) {
    ZAV_UValLong* value = new ZAV_UValLong;
    value->SetValue(n, 0);
    return value;
}

void FindAll(benchmark::State& state, const Keys& keys) {
    ZAV_UValDict dict(16);
    for (const std::string& key : keys) dict.SetUVal(key.c_str(), Number(1));
    const Keys sought = Shuffled(keys);
    for (auto _ : state)
        for (const std::string& key : sought) benchmark::DoNotOptimize(dict.GetUVal(key.c_str()));
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(keys.size()));
}

void FillAll(benchmark::State& state, const Keys& keys) {
    for (auto _ : state) {
        ZAV_UValDict dict(16);
        for (const std::string& key : keys) dict.SetUVal(key.c_str(), Number(1));
        benchmark::DoNotOptimize(dict.GetSize());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(keys.size()));
}

// Keys "0" to "9999" and "key0" to "key99999", each beside as many random ones.
void RegisterKeys() {
    const struct {
        const char* name;
        Keys zav, peer;
    } rows[] = {{"decimal_10000", Numbered("", 10000), Random(10000)},
                {"numbered_100000", Numbered("key", 100000), Random(100000)}};
    for (const auto& row : rows) {
        const std::string rest = row.name;
        benchmark::RegisterBenchmark(("ValueDictFind/zav/" + rest).c_str(), FindAll, row.zav);
        benchmark::RegisterBenchmark(("ValueDictFind/zav-random-keys/" + rest).c_str(), FindAll, row.peer);
        benchmark::RegisterBenchmark(("ValueDictFill/zav/" + rest).c_str(), FillAll, row.zav);
        benchmark::RegisterBenchmark(("ValueDictFill/zav-random-keys/" + rest).c_str(), FillAll, row.peer);
    }
}
const bool registered = (RegisterKeys(), true);

// A configuration of 1000 numbers in 10 x 10 dictionaries.
struct Setting {
    std::string a, b, c;
};

const std::vector<Setting>& Settings() {
    static const std::vector<Setting> settings = [] {
        std::vector<Setting> all;
        for (const char* a : {"SCANNER", "DETECTOR", "GANTRY", "TABLE", "COOLING", "HOST", "NETWORK",
                              "DISPLAY", "ARCHIVE", "SERVICE"})
            for (int b = 0; b < 10; ++b)
                for (const char* c : {"PRIORITY", "TIMEOUT", "RETRIES", "ENABLED", "OFFSET", "GAIN",
                                      "LIMIT_LOW", "LIMIT_HIGH", "PORT", "LEVEL"})
                    all.push_back({a, "SECTION_" + std::to_string(b), c});
        return all;
    }();
    return settings;
}

ZAV_UValDict& SettingsDict() {
    static ZAV_UValDict* dict = [] {
        ZAV_UValDict* made = new ZAV_UValDict(16);
        for (const Setting& s : Settings()) made->SetUVal((s.a + ":" + s.b + ":" + s.c).c_str(), Number(42));
        return made;
    }();
    return *dict;
}

template <class Name, class Read>
void ReadSettings(benchmark::State& state, Name name, Read read) {
    std::vector<decltype(name(Settings()[0]))> names;
    for (size_t i = 0; i < 1000; ++i) names.push_back(name(Settings()[i * 617 % 1000]));
    for (auto _ : state)
        for (const auto& n : names) benchmark::DoNotOptimize(read(n));
    state.SetItemsProcessed(state.iterations() * 1000);
}

std::string PathOf(const Setting& s) { return s.a + ":" + s.b + ":" + s.c; }
Setting Itself(const Setting& s) { return s; }

void PathText(benchmark::State& state) {
    ReadSettings(state, PathOf,
                 [](const std::string& path) { return SettingsDict().GetValue(path.c_str(), 0L); });
}
void PathObject(benchmark::State& state) {
    ReadSettings(state, PathOf, [](const std::string& path) {
        return SettingsDict().GetValue(ZAV_DictPath(path.c_str()), 0L);
    });
}
void Config(benchmark::State& state) {
    ZAV_ConfigInit(SettingsDict());
    ReadSettings(state, Itself,
                 [](const Setting& s) { return ZAV_ConfigGet(s.a.c_str(), s.b.c_str(), s.c.c_str(), 0L); });
    ZAV_ConfigCleanup();
}
BENCHMARK(PathText)->Name("ThreeLevels/zav/text");
BENCHMARK(PathObject)->Name("ThreeLevels/zav/path");
BENCHMARK(Config)->Name("ThreeLevels/zav/config");

#if defined(HAVE_GLIB)
void KeyFile(benchmark::State& state) {
    GKeyFile* file = g_key_file_new();
    for (const Setting& s : Settings())
        g_key_file_set_integer(file, (s.a + ":" + s.b).c_str(), s.c.c_str(), 42);
    ReadSettings(
        state, [](const Setting& s) { return std::pair<std::string, std::string>(s.a + ":" + s.b, s.c); },
        [file](const auto& name) {
            return g_key_file_get_integer(file, name.first.c_str(), name.second.c_str(), nullptr);
        });
    g_key_file_free(file);
}
#endif
#if defined(HAVE_NLOHMANN)
void Nlohmann(benchmark::State& state) {
    nlohmann::json root;
    for (const Setting& s : Settings()) root[s.a][s.b][s.c] = 42;
    ReadSettings(state, Itself, [&root](const Setting& s) {
        auto a = root.find(s.a);
        if (a == root.end()) return 0L;
        auto b = a->find(s.b);
        if (b == a->end()) return 0L;
        auto c = b->find(s.c);
        return c == b->end() ? 0L : c->get<long>();
    });
}
#endif

void RegisterPeers() {
    for (const char* form : {"text", "path", "config"}) {
        [[maybe_unused]] const std::string rest = form;
#if defined(HAVE_GLIB)
        benchmark::RegisterBenchmark(("ThreeLevels/glib/" + rest).c_str(), KeyFile);
#endif
#if defined(HAVE_NLOHMANN)
        benchmark::RegisterBenchmark(("ThreeLevels/nlohmann/" + rest).c_str(), Nlohmann);
#endif
    }
}
const bool peersRegistered = (RegisterPeers(), true);

#if defined(__GLIBC__)
// Bytes of heap for each entry with a long, all told: entry, value, table and its helps.
void Memory(benchmark::State& state) {
    const Keys keys = Numbered("key", static_cast<int>(state.range(0)));
    double bytes = 0;
    for (auto _ : state) {
        const struct mallinfo2 before = mallinfo2();
        ZAV_UValDict dict(16);
        for (const std::string& key : keys) dict.SetUVal(key.c_str(), Number(1));
        const struct mallinfo2 after = mallinfo2();
        bytes = static_cast<double>(after.uordblks + after.hblkhd) -
                static_cast<double>(before.uordblks + before.hblkhd);
    }
    state.counters["bytes_per_entry"] = bytes / static_cast<double>(keys.size());
}
BENCHMARK(Memory)
    ->Name("ValueDictMemory/zav")
    ->Arg(30)
    ->Arg(1000)
    ->Arg(2049)
    ->Arg(100000)
    ->Arg(140000)
    ->Iterations(1);
#endif

} // namespace
