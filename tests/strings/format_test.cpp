#include <gtest/gtest.h>

#include <clocale>
#include <cmath>

#include <zavbase/strings/utf_string.h>

#pragma GCC diagnostic ignored "-Wformat-security"

namespace {

// The expected texts are those of C99; they are the same on every platform.
template <class... Args>
std::string made(const char* format, Args... args) {
    ZAV_String s;
    s.Format(format, args...);
    return std::string(s.Ptr(), s.Length());
}

TEST(Format, Integers) {
    EXPECT_EQ(made("%d|%5d|%-5d|%05d|%+d|% d", -7, -7, -7, -7, 7, 7), "-7|   -7|-7   |-0007|+7| 7");
    EXPECT_EQ(made("%i %u", INT32_MIN, UINT32_MAX), "-2147483648 4294967295");
    EXPECT_EQ(made("%x %X %#x %#X %#o %o %#x", 255, 255, 255, 255, 8, 8, 0), "ff FF 0xff 0XFF 010 10 0");
    EXPECT_EQ(made("%.3d|%8.3d|%08.3d|%04.1d|%.0d|%#.0o|%#.3o", 5, 5, 5, 5, 0, 0, 8),
              "005|     005|     005|   5||0|010");
    EXPECT_EQ(made("%ld %lu %lld %llu", -1L, 4294967295UL, INT64_MIN, UINT64_MAX),
              "-1 4294967295 -9223372036854775808 18446744073709551615");
    EXPECT_EQ(made("%hd %hhd %hu %hhu", 70000, 300, 70000, 300), "4464 44 4464 44");
    EXPECT_EQ(made("%zu %td %jd", size_t{9}, ptrdiff_t{-9}, intmax_t{9}), "9 -9 9");
    EXPECT_EQ(made("%I64d %I32d %Nd %Fd", int64_t{1} << 40, 5, 6, 7), "1099511627776 5 6 7");
    EXPECT_EQ(made("%*d|%-*d|%*d|%.*d|%.*d", 4, 1, 4, 2, -4, 3, 3, 4, -1, 5), "   1|2   |3   |004|5");
    EXPECT_EQ(made("%p", reinterpret_cast<void*>(0xBEEF)), std::string(2 * sizeof(void*) - 4, '0') + "BEEF");
}

TEST(Format, Reals) {
    EXPECT_EQ(made("%f|%.0f|%#.0f|%10.2f|%-10.2f|%+010.2f", 2.5, 2.5, 2.5, -2.555, 2.5, 2.5),
              "2.500000|2|2.|     -2.56|2.50      |+000002.50");
    EXPECT_EQ(made("%e|%.0e|%#.0e|%E|%.3e", 12345.678, 12345.678, 12345.678, 1e-300, 1e10),
              "1.234568e+04|1e+04|1.e+04|1.000000E-300|1.000e+10");
    EXPECT_EQ(made("%g|%g|%g|%G|%.3g|%.0g|%g", 100000.0, 1e6, 1e-5, 1e-5, 1234.0, 1234.0, 0.0),
              "100000|1e+06|1e-05|1E-05|1.23e+03|1e+03|0");
    EXPECT_EQ(made("%#g|%#g|%#.3g|%#.1g|%#g", 1.0, 1e10, 1.0, 100.0, 0.0),
              "1.00000|1.00000e+10|1.00|1.e+02|0.00000");
    EXPECT_EQ(made("%.20f|%.25g", 0.1, 0.1), "0.10000000000000000555|0.1000000000000000055511151");
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(made("%f|%5g|%05f|%F|%e|%f", inf, -inf, inf, -inf, std::nan(""), -0.0),
              "inf| -inf|  inf|-INF|nan|-0.000000");
    EXPECT_EQ(made("%Lf %lf", 1.5L, 1.5), "1.500000 1.500000");
    EXPECT_EQ(made("%.400f", 1.0), "1." + std::string(400, '0'));
}

TEST(Format, HexadecimalReals) {
    EXPECT_EQ(made("%a|%a|%a|%A|%La", 1.0, -2.5, 0.0, 0.1, 1.5L),
              "0x1p+0|-0x1.4p+1|0x0p+0|0X1.999999999999AP-4|0x1.8p+0");
    EXPECT_EQ(made("%.1a|%10.2a|%-9a|%+a|%010a|%#.0a", 1.9375, 1.0, 1.0, 1.0, -1.0, 1.0),
              "0x1.fp+0| 0x1.00p+0|0x1p+0   |+0x1p+0|-0x0001p+0|0x1.p+0");
    EXPECT_EQ(made("%a|%8A|%.70a", std::nan(""), std::numeric_limits<double>::infinity(), 1.0),
              "nan|     INF|0x1." + std::string(70, '0') + "p+0");
}

// Each conversion is followed by one that shows whether it took exactly its argument.
TEST(Format, EveryConversionThatCompilersLetPassTakesItsArgument) {
    const auto expectTaken = [](std::initializer_list<const char*> conversions, auto argument) {
        for (const std::string conversion : conversions) {
            const std::string text = made(("%" + conversion + "|%s").c_str(), argument, "end");
            EXPECT_EQ(text.substr(text.size() - 4), "|end") << conversion;
            EXPECT_NE(text[0], '%') << conversion << ": printed, not left as it stands";
        }
    };
    expectTaken(
        {"d", "i", "o", "u", "x", "X", "b", "B", "c", "C", "lc", "hd", "hhx", "Id", "'d", "I32d", "Fd", "Nd"},
        65);
    expectTaken({"ld", "lu", "lx"}, 65L);
    expectTaken({"lld", "llu", "Ld", "Lx", "qd", "jd", "I64d"}, 65LL);
    expectTaken({"zd", "zu", "Zu", "td", "zx"}, size_t{65});
    expectTaken({"e", "E", "f", "F", "g", "G", "a", "A", "lf", "la", "Fe", "FE", "Ff", "Fg", "FG"}, 65.5);
    expectTaken({"Le", "Lf", "LF", "Lg", "La", "LA"}, 65.5L);
    expectTaken({"s", "hs", "p", "-8s", ".1s"}, "text");
    expectTaken({"ls", "S"}, L"text");
    int count = 0;
    expectTaken({"n"}, &count);
    EXPECT_EQ(made("%b|%#b|%#B|%08.4b|%-4b|%hhb", 5, 5, 5, 5, 1, 257), "101|0b101|0B101|    0101|1   |1");
    EXPECT_EQ(made("%Fe|%Fg", 1.5, 1.5), "1.500000e+00|1.5") << "F before a letter is a prefix";
}

TEST(Format, ArgumentsByNumber) {
    EXPECT_EQ(made("%2$s %1$d %2$-3s|", 5, "x"), "x 5 x  |");
    EXPECT_EQ(made("%6$s %1$lld %2$c %3$Lf %4$f %5$ld", 1LL << 40, 'c', 1.5L, 2.5, -1L, "s"),
              "s 1099511627776 c 1.500000 2.500000 -1");
    EXPECT_EQ(made("%5$s %1$a %2$La %3$p %4$b", 1.0, 1.0L, nullptr, 2, "x").substr(0, 16),
              "x 0x1p+0 0x1p+0 ");
    EXPECT_EQ(made("%3$*1$d|%2$.*1$f|%3$-*1$d|", 4, 1.5, 7), "   7|1.5000|7   |");
    EXPECT_EQ(made("%100$d %0$d"), "%100$d %0$d") << "these are no numbers of arguments";
}

TEST(Format, TextsAndTheRest) {
    const char* const null = nullptr;
    EXPECT_EQ(made("%s|%5s|%-5s|%.2s|%5.1s|%s", "abc", "abc", "abc", "abc", "abc", null),
              "abc|  abc|abc  |ab|    a|(null)");
    const char unterminated[] = {'a', 'b', 'c'};
    EXPECT_EQ(made("%.3s|%.0s", unterminated, unterminated), "abc|");
    EXPECT_EQ(made("%c%3c%-3c|%C%lc", 'a', 'b', 'c', L'd', 0x20AC), "a  bc  |d?");
    EXPECT_EQ(made("%ls|%S|%.1ls|%hs", L"wide", L"\u20AC", L"wide", "thin"), "wide|?|w|thin");
    int count = -1;
    EXPECT_EQ(made("100%%%n!", &count), "100%!");
    EXPECT_EQ(count, 4);
    signed char small[] = {-1, -1};
    long long large = -1;
    EXPECT_EQ(made("a%hhnb%lln", small, &large), "ab");
    EXPECT_TRUE(small[0] == 1 && small[1] == -1 && large == 2) << "no byte more or less than asked for";
    EXPECT_EQ(made("%y%"), "%y%") << "what is no conversion stays as it is";
    EXPECT_EQ(made("a%cb", 0), "a") << "the length is that of the text up to its NUL";
    EXPECT_EQ(made(nullptr), "");
}

TEST(Format, ReservesItsEstimate) {
    ZAV_String s;
    EXPECT_EQ(s.Format("%d", 1).Capacity(), 47u);
    EXPECT_EQ(s.Format("abc").Capacity(), 15u) << "the old length counts, not the old buffer";
    EXPECT_EQ(s.Format("%40d%%", 1).Capacity(), 47u);
    EXPECT_EQ(s.Format("%E", 1.0).Capacity(), 47u) << "at least the length of the last text";
    EXPECT_EQ(ZAV_String().Format("%E", 1.0).Capacity(), 15u) << "12 characters in a reservation of 0";
    EXPECT_EQ(ZAV_String().Format("%#x%c%30s", 1, 'a', "b").Capacity(), 79u);
}

TEST(Format, ArgumentsMayPointIntoTheString) {
    ZAV_String s("%s-%s");
    s.Format(s, s.Ptr(), s.Ptr() + 4);
    EXPECT_STREQ(s, "%s-%s-s");
    EXPECT_STREQ(ZAV_UTFString().Format("%s%d", "caf\xE9", 1), "caf#1");
}

TEST(Format, IgnoresTheLocale) {
    const std::string old = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"de_DE.UTF-8", "de_DE", "German_Germany.1252"})
        if (std::setlocale(LC_ALL, name)) break;
    EXPECT_EQ(made("%.1f %g", 1.5, 2.5), "1.5 2.5");
    EXPECT_EQ(ZAV_atof("1.5", '.'), 1.5);
    std::setlocale(LC_ALL, old.c_str());
}

} // namespace
