#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
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

std::string exact(double value, std::chars_format format, int precision) {
    char out[400];
    return std::string(out, std::to_chars(out, out + sizeof out, value, format, precision).ptr);
}

TEST(NumberText, IntegersWrapAtThirtyTwoBits) {
    const struct {
        const char* text;
        int32_t value;
    } rows[] = {{"0", 0},
                {" \t42", 42},
                {"+5", 5},
                {"", 0},
                {"--5", 0},
                {"4294967295", -1},
                {"-2147483648", INT32_MIN},
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
    for (double value : {0.5, 2.5, 0.375, 0.99999949, 0.99999995, 9.9999999, 5.0000001e-7, 4.9e-324, -1e-9,
                         9007199254740992.0, 4503599627370495.5})
        for (int decimals : {0, 1, 2, 6, 9, 20})
            EXPECT_EQ(fixed(value, decimals), exact(value, std::chars_format::fixed, decimals));
    EXPECT_EQ(fixed(2.5, 0) + fixed(0.375, 2) + fixed(-1e-9) + fixed(0.1, 20),
              "20.38-0.0000000.10000000000000000555");
    EXPECT_EQ(fixed(1.7976931348623157e308).size(), 309u + 7);
    EXPECT_EQ(fixed(kInf) + fixed(-kInf) + fixed(std::nan("")), "inf-infnan");
    EXPECT_EQ(forFile(kInf) + forFile(-kInf) + forFile(std::nan("")) + forFile(-0.5),
              "1e999-1e9990.000000-0.500000");
}

TEST(NumberText, RoundsAsTheStandardLibrarysExactConversion) {
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
        ASSERT_EQ(fixed(value, decimals), exact(value, std::chars_format::fixed, decimals));
        ASSERT_EQ(general(value, decimals + 1), exact(value, std::chars_format::general, decimals + 1));
        // Exact halves of the last decimal.
        value = static_cast<double>(bits % 100000) + static_cast<double>((bits >> 20) % 128) / 128.0;
        ASSERT_EQ(fixed(value, 6), exact(value, std::chars_format::fixed, 6));
    }
}

TEST(NumberText, GeneralIsWhatAStreamWrites) {
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
                {"", '.', 0.0},
                {".5", '.', 0.5},
                {"+7.", '.', 7.0},
                {"2E-1x", '.', 0.2},
                {"3e+", '.', 3.0},
                {"-1e999", '.', -kInf},
                {"1e-999", '.', 0.0},
                {"1e99999999999999999999", '.', kInf},
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
