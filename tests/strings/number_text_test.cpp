#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include <zavbase/strings/byte_string.h>
#include <zavbase/strings/number_text_internal.h>

namespace {

using namespace zav_number;

constexpr double kInf = std::numeric_limits<double>::infinity();

template <class Number, class... Rest>
std::string fixed(Number value, Rest... rest) {
    char out[kRealRoom];
    const unsigned n = FormatFixed(out, value, rest...);
    EXPECT_EQ(n, std::strlen(out));
    return out;
}

std::string forFile(double value) {
    char out[kRealRoom];
    FormatFixedForFile(out, value);
    return out;
}

std::string general(double value, int precision = 6) {
    char out[kRealRoom];
    FormatGeneral(out, value, precision);
    return out;
}

TEST(NumberText, IntegersWrapAtThirtyTwoBits) {
    const struct {
        const char* text;
        int32_t value;
    } rows[] = {{"0", 0},
                {" \t42", 42},
                {"-17x", -17},
                {"+5", 5},
                {"", 0},
                {"x", 0},
                {"--5", 0},
                {"4294967295", -1},
                {"2147483648", INT32_MIN},
                {"-2147483648", INT32_MIN},
                {"4294967296", 0},
                {"1-2", 1},
                {"0x10", 0},
                {"99999999999", 1215752191}};
    for (const auto& row : rows) EXPECT_EQ(ParseInteger(row.text), row.value) << row.text;
    EXPECT_EQ(ParseInteger("12345", 3), 123);
    char out[kIntegerRoom];
    EXPECT_EQ(FormatInteger(out, INT32_MIN), 11u);
    EXPECT_STREQ(out, "-2147483648");
    FormatUnsigned(out, UINT32_MAX);
    EXPECT_STREQ(out, "4294967295");
}

TEST(NumberText, FixedRoundsTheExactValueHalfToEven) {
    const struct {
        double value;
        int decimals;
        const char* text;
    } rows[] = {{0.5, 0, "0"},
                {1.5, 0, "2"},
                {2.5, 0, "2"},
                {0.125, 2, "0.12"},
                {0.375, 2, "0.38"},
                {1.005, 2, "1.00"},
                {0.99999949, 6, "0.999999"},
                {0.99999995, 6, "1.000000"},
                {9.9999999, 6, "10.000000"},
                {5e-7, 6, "0.000000"},
                {5.0000001e-7, 6, "0.000001"},
                {4.9e-324, 9, "0.000000000"},
                {-1e-9, 6, "-0.000000"},
                {9007199254740991.0, 6, "9007199254740991.000000"},
                {9007199254740992.0, 1, "9007199254740992.0"},
                {4503599627370495.5, 0, "4503599627370496"},
                {1e22, 6, "10000000000000000000000.000000"},
                {0.1, 20, "0.10000000000000000555"},
                {123456.789, 3, "123456.789"}};
    for (const auto& row : rows) EXPECT_EQ(fixed(row.value, row.decimals), row.text) << row.value;
    EXPECT_EQ(fixed(1.7976931348623157e308).size(), 309u + 7);
    EXPECT_EQ(fixed(kInf) + fixed(-kInf) + fixed(std::nan("")), "inf-infnan");
    EXPECT_EQ(forFile(kInf) + forFile(-kInf) + forFile(std::nan("")) + forFile(-0.5),
              "1e999-1e9990.000000-0.500000");
}

#if defined(__GLIBC__)
// Its printf is exact; the other platforms are held to the same texts by the tables.
TEST(NumberText, AgreesWithAnExactPrintf) {
    std::mt19937_64 random(11);
    for (int i = 0; i < 40000; ++i) {
        const uint64_t bits = random();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        if (i % 2)
            value = std::ldexp(1.0 + static_cast<double>(bits >> 40) / 16777216.0,
                               static_cast<int>(bits % 90) - 45);
        if (!std::isfinite(value)) continue;
        const int decimals = static_cast<int>(bits % 12);
        char expected[400];
        std::snprintf(expected, sizeof expected, "%.*f", decimals, value);
        ASSERT_EQ(fixed(value, decimals), expected);
        std::snprintf(expected, sizeof expected, "%.*g", decimals + 1, value);
        ASSERT_EQ(general(value, decimals + 1), expected);
    }
}
#endif

TEST(NumberText, GeneralIsWhatAStreamWrites) {
    for (const double value : {0.0, 1.0, 0.1, 123456.0, 1234567.0, 1e-4, 1e-5, 1e100, -2.5, 1.0 / 3})
        EXPECT_EQ(general(value), general(std::strtod(general(value).c_str(), nullptr)));
    EXPECT_EQ(general(1234567.0), "1.23457e+06");
    EXPECT_EQ(general(1e-5), "1e-05");
    EXPECT_EQ(general(1e100), "1e+100");
    EXPECT_EQ(general(0.1, 17), "0.10000000000000001");
}

TEST(NumberText, PowersOfTenAreTheNearest) {
    for (int x = -330; x <= 330; ++x)
        ASSERT_EQ(PowerOfTen(x), std::strtod(("1e" + std::to_string(x)).c_str(), nullptr)) << x;
}

TEST(NumberText, AtofAccumulatesDigits) {
    const struct {
        const char* text;
        char separator;
        double value;
    } rows[] = {{"  -1,5e2", ',', -150.0},
                {"1.5", ',', 1.0},
                {"x", '.', 0.0},
                {"", '.', 0.0},
                {".5", '.', 0.5},
                {"+7.", '.', 7.0},
                {"2E-1x", '.', 0.2},
                {"3e", '.', 3.0},
                {"3e+", '.', 3.0},
                {"1e999", '.', kInf},
                {"-1e999", '.', -kInf},
                {"1e-999", '.', 0.0},
                {"1e99999999999999999999", '.', kInf},
                {"0x10", '.', 0.0},
                {"12\0", '\0', 12.0}};
    for (const auto& row : rows) EXPECT_EQ(ZAV_atof(row.text, row.separator), row.value) << row.text;
    // The digits behind the point are weighted with 0.1 multiplied by itself, unlike what strtod does.
    EXPECT_EQ(ZAV_atof("0.3", '.'), 3 * 0.1);
    EXPECT_NE(ZAV_atof("0.3", '.'), 0.3);
    EXPECT_TRUE(std::isnan(ZAV_atof("0e999", '.'))) << "zero times infinity";
    EXPECT_TRUE(std::signbit(ZAV_atof("-inf", '.')));
    size_t used = 0;
    EXPECT_EQ(ParseReal("12.5e1]", 4, '.', &used), 12.5);
    EXPECT_EQ(used, 4u);
}

} // namespace
