// Byte strings against std::string and strstr, UTF-8 scans against GLib.
#include <benchmark/benchmark.h>
#include <glib.h>

#include <cstring>
#include <string>

#include <zavbase/strings/utf_string.h>

namespace {

constexpr int kAppends = 1000000;
constexpr size_t kTextSize = 1 << 20;

template <class String>
void appendChars(benchmark::State& state) {
    for (auto _ : state) {
        String s;
        for (int i = 0; i < kAppends; ++i) s += static_cast<char>('a' + (i & 15));
        benchmark::DoNotOptimize(static_cast<const char*>(&s[0]));
    }
    state.SetItemsProcessed(state.iterations() * kAppends);
}
BENCHMARK(appendChars<ZAV_String>)->Name("Strings/zav/append_char")->Unit(benchmark::kMicrosecond);
BENCHMARK(appendChars<std::string>)->Name("Strings/std/append_char")->Unit(benchmark::kMicrosecond);

const std::string& haystack() {
    static const std::string text = [] {
        std::string s;
        while (s.size() < kTextSize) s += "the quick brown fox jumps over the lazy dog; ";
        return s + "the needle";
    }();
    return text;
}

void findZav(benchmark::State& state) {
    const ZAV_String text(haystack().c_str());
    for (auto _ : state) benchmark::DoNotOptimize(text.Find("the needle"));
}
BENCHMARK(findZav)->Name("Strings/zav/find")->Unit(benchmark::kMicrosecond);

void findStrstr(benchmark::State& state) {
    const std::string text(haystack().c_str());
    for (auto _ : state) benchmark::DoNotOptimize(std::strstr(text.c_str(), "the needle"));
}
BENCHMARK(findStrstr)->Name("Strings/strstr/find")->Unit(benchmark::kMicrosecond);

std::string repeated(const char* piece) {
    std::string s;
    while (s.size() < kTextSize) s += piece;
    return s;
}

const char* text(bool mixed) {
    static const std::string ascii = repeated("plain text without any accent; ");
    static const std::string various =
        repeated("Gr\xC3\xB6\xC3\x9F"
                 "e 12 \xE2\x82\xAC, \xD0\x9F\xD1\x80\xD0\xB8 \xE4\xB8\x80\xE4\xBA\x8C; ");
    return (mixed ? various : ascii).c_str();
}

// Asks for the same text again and again, which the compiler must not notice.
template <class Function>
void scan(benchmark::State& state, Function function, bool mixed) {
    const char* s = text(mixed);
    for (auto _ : state) {
        benchmark::DoNotOptimize(s);
        benchmark::DoNotOptimize(function(s));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kTextSize));
}

long glibLength(const char* s) { return g_utf8_strlen(s, -1); }
bool glibValid(const char* s) { return g_utf8_validate(s, -1, nullptr); }

#define SCAN(FUNCTION, NAME)                                                                                 \
    BENCHMARK_CAPTURE(scan, FUNCTION##_ascii, FUNCTION, false)->Name("Strings/" NAME "_ascii");              \
    BENCHMARK_CAPTURE(scan, FUNCTION##_mixed, FUNCTION, true)->Name("Strings/" NAME "_mixed")
SCAN(utflen, "zav/utflen");
SCAN(glibLength, "glib/utflen");
SCAN(isutfstr, "zav/isutfstr");
SCAN(glibValid, "glib/isutfstr");

} // namespace
