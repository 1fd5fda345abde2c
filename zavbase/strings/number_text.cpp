#include <zavbase/strings/number_text_internal.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>

namespace zav_number {

namespace {

constexpr int kMostDecimals = 40;
constexpr int kFastDecimals = 9;
constexpr double kExactPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int kExactPowerCount = static_cast<int>(std::size(kExactPowers));

template <class Int>
unsigned formatDecimal(char (&out)[kIntegerRoom], Int value) {
    char* const end = std::to_chars(out, out + kIntegerRoom, value).ptr;
    *end = '\0';
    return static_cast<unsigned>(end - out);
}

unsigned copyText(char* out, const char* text) {
    const size_t n = std::strlen(text);
    std::memcpy(out, text, n + 1);
    return static_cast<unsigned>(n);
}

unsigned formatNonFinite(char* out, double value) {
    if (std::isnan(value)) return copyText(out, "nan");
    return copyText(out, value < 0 ? "-inf" : "inf");
}

// floor(m * scale / 2^shift), rounded half to even; `oddBelow` says whether a quotient of 0 counts as odd.
// The product has at most 83 bits and is kept in two words. m < 2^53, scale < 2^30, shift >= 53.
uint64_t scaledFraction(uint64_t m, uint32_t scale, int shift, bool oddBelow) {
    if (shift > 84) return 0;
    const uint64_t low = (m & 0xFFFFFFFFu) * scale;
    const uint64_t high = (m >> 32) * scale;
    const uint64_t w0 = low + (high << 32);
    const uint64_t w1 = (high >> 32) + (w0 < low ? 1 : 0);
    uint64_t quotient, rest, half;
    bool sticky = false;
    if (shift < 64) {
        quotient = (w1 << (64 - shift)) | (w0 >> shift);
        rest = w0 & ((uint64_t{1} << shift) - 1);
        half = uint64_t{1} << (shift - 1);
    } else if (shift == 64) {
        quotient = w1;
        rest = w0;
        half = uint64_t{1} << 63;
    } else {
        const int s = shift - 64;
        quotient = w1 >> s;
        rest = w1 & ((uint64_t{1} << s) - 1);
        half = uint64_t{1} << (s - 1);
        sticky = w0 != 0;
    }
    const bool odd = scale == 1 ? oddBelow : (quotient & 1) != 0;
    const bool up = rest > half || (rest == half && (sticky || odd));
    return quotient + (up ? 1 : 0);
}

// For 0 <= value < 2^53, where the part before the point and the part behind it are both exact.
char* formatFixedFast(char* out, double value, int decimals) {
    uint64_t whole = static_cast<uint64_t>(value);
    const double fraction = value - static_cast<double>(whole);
    const uint32_t scale = static_cast<uint32_t>(kExactPowers[decimals]);
    uint64_t digits = 0;
    uint64_t bits;
    std::memcpy(&bits, &fraction, sizeof bits);
    if (const int exponent = static_cast<int>(bits >> 52); exponent != 0) {
        const uint64_t mantissa = (bits & 0xFFFFFFFFFFFFFu) | 0x10000000000000u;
        digits = scaledFraction(mantissa, scale, 1075 - exponent, (whole & 1) != 0);
    }
    if (digits == scale) {
        digits = 0;
        ++whole;
    }
    out = std::to_chars(out, out + 20, whole).ptr;
    if (decimals == 0) return out;
    *out = '.';
    uint32_t rest = static_cast<uint32_t>(digits);
    for (int i = decimals; i > 0; --i, rest /= 10) out[i] = static_cast<char>('0' + rest % 10);
    return out + decimals + 1;
}

char at(const char* text, size_t length, size_t i) { return i < length ? text[i] : '\0'; }

bool isDigit(char c) { return c >= '0' && c <= '9'; }

size_t afterSpace(const char* text, size_t length) {
    size_t i = 0;
    while (std::isspace(static_cast<unsigned char>(at(text, length, i)))) ++i;
    return i;
}

// True for "-"; steps over a sign.
bool readSign(const char* text, size_t length, size_t& i) {
    const char c = at(text, length, i);
    if (c == '+' || c == '-') ++i;
    return c == '-';
}

// Values beyond the range of double stay there: more digits change nothing.
int readExponent(const char* text, size_t length, size_t& i) {
    const bool negative = readSign(text, length, i);
    int x = 0;
    for (char c; isDigit(c = at(text, length, i)); ++i) x = (std::min)(x * 10 + (c - '0'), 99999);
    return negative ? -x : x;
}

} // namespace

unsigned FormatInteger(char (&out)[kIntegerRoom], int32_t value) { return formatDecimal(out, value); }

unsigned FormatUnsigned(char (&out)[kIntegerRoom], uint32_t value) { return formatDecimal(out, value); }

int32_t ParseInteger(const char* text) { return ParseInteger(text, SIZE_MAX); }

int32_t ParseInteger(const char* text, size_t length) {
    size_t i = afterSpace(text, length);
    const bool negative = readSign(text, length, i);
    uint32_t value = 0;
    for (char c; isDigit(c = at(text, length, i)); ++i) value = value * 10 + static_cast<uint32_t>(c - '0');
    return static_cast<int32_t>(negative ? 0 - value : value);
}

unsigned FormatFixed(char (&out)[kRealRoom], double value, int decimals) {
    if (!std::isfinite(value)) return formatNonFinite(out, value);
    decimals = (std::clamp)(decimals, 0, kMostDecimals);
    char* p = out;
    if (std::signbit(value)) *p++ = '-';
    const double magnitude = std::fabs(value);
    if (decimals <= kFastDecimals && magnitude < 9007199254740992.0)
        p = formatFixedFast(p, magnitude, decimals);
    else
        p = std::to_chars(p, out + kRealRoom - 1, magnitude, std::chars_format::fixed, decimals).ptr;
    *p = '\0';
    return static_cast<unsigned>(p - out);
}

unsigned FormatFixedForFile(char (&out)[kRealRoom], double value, int decimals) {
    if (std::isfinite(value)) return FormatFixed(out, value, decimals);
    if (std::isnan(value)) return FormatFixed(out, 0.0, decimals);
    return copyText(out, value < 0 ? "-1e999" : "1e999");
}

unsigned FormatGeneral(char (&out)[kRealRoom], double value, int precision) {
    if (!std::isfinite(value)) return formatNonFinite(out, value);
    precision = (std::clamp)(precision, 1, kMostDecimals);
    char* const end =
        std::to_chars(out, out + kRealRoom - 1, value, std::chars_format::general, precision).ptr;
    *end = '\0';
    return static_cast<unsigned>(end - out);
}

double PowerOfTen(int exponent) {
    if (exponent > 308) return std::numeric_limits<double>::infinity();
    if (exponent < -323) return 0.0;
    if (exponent >= 0 && exponent < kExactPowerCount) return kExactPowers[exponent];
    char text[8] = {'1', 'e'};
    const char* const end = std::to_chars(text + 2, text + sizeof text, exponent).ptr;
    double power = 0.0;
    std::from_chars(text, end, power);
    return power;
}

double ParseReal(const char* text, size_t length, char decimalSeparator, size_t* used) {
    size_t i = afterSpace(text, length);
    const bool negative = readSign(text, length, i);
    double value = 0.0;
    char c;
    for (; isDigit(c = at(text, length, i)); ++i) value = value * 10.0 + (c - '0');
    if (c == decimalSeparator && c != '\0') {
        ++i;
        for (double weight = 0.1; isDigit(c = at(text, length, i)); ++i, weight *= 0.1)
            value += (c - '0') * weight;
    }
    if (c == 'e' || c == 'E') {
        ++i;
        value *= PowerOfTen(readExponent(text, length, i));
    }
    if (used != nullptr) *used = i;
    return negative ? -value : value;
}

} // namespace zav_number
