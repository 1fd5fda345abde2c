#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <random>

#include <zavbase/strings/byte_string.h>
#include <zavbase/strings/number_text_internal.h>

namespace {

using namespace zav_number;

constexpr double kInf = std::numeric_limits<double>::infinity();

std::string made(unsigned (*format)(char (&)[kRealRoom], double, int), double value, int precision = 6) {
    char out[kRealRoom];
    const unsigned length = format(out, value, precision);
    EXPECT_EQ(length, std::strlen(out));
    return out;
}

std::string exact(double value, std::chars_format format, int precision) {
    char out[400];
    return std::string(out, std::to_chars(out, out + sizeof out, value, format, precision).ptr);
}

TEST(NumberText, FixedRoundsTheExactValueHalfToEven) {
    for (double value : {0.5, 2.5, 0.375, 0.99999949, 0.99999995, 9.9999999, 5.0000001e-7, 4.9e-324, -1e-9,
                         9007199254740992.0, 4503599627370495.5})
        for (int decimals : {0, 1, 2, 6, 9, 20})
            EXPECT_EQ(made(FormatFixed, value, decimals), exact(value, std::chars_format::fixed, decimals));
    EXPECT_EQ(made(FormatFixed, -1e-9) + made(FormatFixed, 0.1, 20), "-0.0000000.10000000000000000555");
    EXPECT_EQ(made(FormatFixed, 1.7976931348623157e308).size(), 309u + 7);
    const std::pair<double, std::pair<const char*, const char*>> rows[] = {
        {kInf, {"inf", "1e999"}}, {-kInf, {"-inf", "-1e999"}}, {std::nan(""), {"nan", "0.000000"}}};
    for (const auto& [value, texts] : rows) {
        EXPECT_EQ(made(FormatFixed, value), texts.first);
        EXPECT_EQ(made(FormatFixedForFile, value), texts.second);
    }
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
        ASSERT_EQ(made(FormatFixed, value, decimals), exact(value, std::chars_format::fixed, decimals));
        ASSERT_EQ(made(FormatGeneral, value, decimals + 1),
                  exact(value, std::chars_format::general, decimals + 1));
        // Exact halves of the last decimal.
        value = static_cast<double>(bits % 100000) + static_cast<double>((bits >> 20) % 128) / 128.0;
        ASSERT_EQ(made(FormatFixed, value), exact(value, std::chars_format::fixed, 6));
    }
}

TEST(NumberText, PowersOfTenAreTheNearest) {
    for (int x = -330; x <= 330; ++x)
        ASSERT_EQ(PowerOfTen(x), std::strtod(("1e" + std::to_string(x)).c_str(), nullptr)) << x;
}

TEST(NumberText, ReadingAccumulatesDigits) {
    const std::pair<const char*, double> rows[] = {
        {"  -1.5e2", -150}, {"1,5", 1},        {"", 0},    {".5", 0.5},   {"+7.", 7},
        {"2E-1x", 0.2},     {"-1e999", -kInf}, {"3e+", 3}, {"1e-999", 0}, {"1e99999999999999999999", kInf}};
    for (const auto& [text, value] : rows) EXPECT_EQ(ZAV_atof(text, '.'), value) << text;
    EXPECT_EQ(ZAV_atof("1,5", ','), 1.5);
    EXPECT_EQ(ZAV_atof("12", '\0'), 12.0) << "the end is no separator";
    // The digits behind the point are weighted with 0.1 multiplied by itself, unlike what strtod does.
    EXPECT_EQ(ZAV_atof("0.3", '.'), 3 * 0.1);
    EXPECT_NE(ZAV_atof("0.3", '.'), 0.3);
    EXPECT_TRUE(std::isnan(ZAV_atof("0e999", '.'))) << "zero times infinity";
    EXPECT_TRUE(std::signbit(ZAV_atof("-inf", '.')));
    size_t used = 0;
    EXPECT_EQ(ParseReal("12.5e1]", 4, '.', &used), 12.5);
    EXPECT_EQ(used, 4u);
    EXPECT_EQ(ParseInteger("12345", 3), 123);
    EXPECT_EQ(ParseInteger(" \t1-2"), 1);
    for (const char* none : {"", "--5", "0x10"}) EXPECT_EQ(ParseInteger(none), 0) << none;
}

} // namespace
