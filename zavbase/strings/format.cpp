#include <algorithm>
#include <cctype>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include <zavbase/strings/byte_string.h>

namespace {

enum class Size { Char, Short, Int, Long, LongLong, Pointer, LongDouble };

struct Conversion {
    bool left = false;
    bool plus = false;
    bool blank = false;
    bool alternate = false;
    bool zero = false;
    unsigned width = 0;
    int precision = -1; // -1: none given
    Size size = Size::Int;
    char letter = '\0';
};

bool contains(const char* set, char c) { return c != '\0' && std::strchr(set, c) != nullptr; }

int readNumber(const char*& p) {
    int n = 0;
    for (; *p >= '0' && *p <= '9'; ++p) n = n > (INT_MAX - 9) / 10 ? INT_MAX : n * 10 + (*p - '0');
    return n;
}

// Formats without the C run-time, whose results differ between platforms and with the locale. The text is
// built apart from the string that asked for it, because arguments may point into that string.
class Formatter {
public:
    Formatter(va_list args) : mText(112u) { va_copy(mArgs, args); }
    ~Formatter() { va_end(mArgs); }
    Formatter(const Formatter&) = delete;
    Formatter& operator=(const Formatter&) = delete;

    void Run(const char* fmt) {
        while (*fmt != '\0') {
            if (*fmt != '%') {
                const char* const end = fmt + std::strcspn(fmt, "%");
                ordinary(fmt, end);
                fmt = end;
            } else if (fmt[1] == '%') {
                ordinary(fmt, fmt + 1);
                fmt += 2;
            } else {
                fmt = convert(fmt);
            }
        }
    }

    const ZAV_String& Text() const { return mText; }
    /// The room that is reserved for the text, which decides the capacity of the string.
    unsigned Estimate() const { return static_cast<unsigned>((std::min)(mEstimate, uint64_t{UINT_MAX})); }

private:
    void ordinary(const char* from, const char* to) {
        const unsigned n = static_cast<unsigned>(to - from);
        mText.Append(from, n);
        mEstimate += n;
    }

    // Returns what follows the conversion.
    const char* convert(const char* const start) {
        Conversion c;
        const char* p = readFlags(start + 1, c);
        p = readWidth(p, c);
        p = readSize(p, c);
        c.letter = *p;
        switch (c.letter) {
        case 'c':
        case 'C':
            character(c);
            break;
        case 's':
        case 'S':
            text(c);
            break;
        case 'd':
        case 'i':
            signedInteger(c);
            break;
        case 'o':
        case 'u':
        case 'x':
        case 'X':
        case 'p':
            unsignedInteger(c);
            break;
        case 'e':
        case 'f':
        case 'g':
        case 'G':
        case 'E':
        case 'F':
            real(c);
            break;
        case 'n':
            storeCount(c);
            break;
        case '\0':
            mText.Append(start, static_cast<unsigned>(p - start));
            return p;
        default:
            mText.Append(start, static_cast<unsigned>(p + 1 - start));
            break;
        }
        return p + 1;
    }

    const char* readFlags(const char* p, Conversion& c) {
        for (;; ++p) {
            switch (*p) {
            case '-':
                c.left = true;
                break;
            case '+':
                c.plus = true;
                break;
            case ' ':
                c.blank = true;
                break;
            case '0':
                c.zero = true;
                break;
            case '#':
                c.alternate = true;
                mEstimate += 2;
                break;
            default:
                return p;
            }
        }
    }

    const char* readWidth(const char* p, Conversion& c) {
        if (*p == '*') {
            const int width = va_arg(mArgs, int);
            if (width < 0) c.left = true;
            c.width = width < 0 ? 0u - static_cast<unsigned>(width) : static_cast<unsigned>(width);
            ++p;
        } else {
            c.width = static_cast<unsigned>(readNumber(p));
        }
        if (*p != '.') return p;
        if (*++p == '*') {
            c.precision = (std::max)(va_arg(mArgs, int), -1);
            return p + 1;
        }
        c.precision = readNumber(p);
        return p;
    }

    // The old memory-model prefixes N and F mean nothing; F alone is a conversion.
    static const char* readSize(const char* p, Conversion& c) {
        switch (*p) {
        case 'N':
            return p + 1;
        case 'F':
            return contains("cCsSdiopuxXn", p[1]) ? p + 1 : p;
        case 'L':
            c.size = Size::LongDouble;
            return p + 1;
        case 'z':
        case 't':
            c.size = Size::Pointer;
            return p + 1;
        case 'j':
            c.size = Size::LongLong;
            return p + 1;
        case 'h':
            c.size = p[1] == 'h' ? Size::Char : Size::Short;
            return p + (p[1] == 'h' ? 2 : 1);
        case 'l':
            c.size = p[1] == 'l' ? Size::LongLong : Size::Long;
            return p + (p[1] == 'l' ? 2 : 1);
        case 'I':
            if (p[1] == '6' && p[2] == '4') {
                c.size = Size::LongLong;
                return p + 3;
            }
            return p[1] == '3' && p[2] == '2' ? p + 3 : p;
        default:
            return p;
        }
    }

    void estimateText(const Conversion& c, size_t n) {
        n = (std::max)(n, size_t{c.width});
        if (c.precision >= 0) n = (std::min)(n, static_cast<size_t>(c.precision));
        mEstimate += n;
    }

    void estimateNumber(const Conversion& c) {
        const uint64_t precision = static_cast<uint64_t>((std::max)(c.precision, 0));
        mEstimate += (std::max)(uint64_t{32}, c.width + precision);
    }

    void fill(char ch, size_t n) {
        if (n != 0) mText += ZAV_String(ch, static_cast<unsigned>(n));
    }

    // Puts `body` behind `prefix` (sign or base), filled to the width with blanks, or with zeros between
    // them.
    void put(const Conversion& c, const char* prefix, const char* body, size_t n, bool zeros) {
        const size_t length = std::strlen(prefix) + n;
        const size_t missing = c.width > length ? c.width - length : 0;
        if (!c.left && !zeros) fill(' ', missing);
        mText += prefix;
        if (!c.left && zeros) fill('0', missing);
        mText.Append(body, static_cast<unsigned>(n));
        if (c.left) fill(' ', missing);
    }

    static char narrow(int wide) { return wide >= 0 && wide < 0x80 ? static_cast<char>(wide) : '?'; }

    static bool isWide(const Conversion& c) {
        return c.size == Size::Long || (c.letter <= 'Z' && c.size != Size::Short);
    }

    void character(const Conversion& c) {
        const int value = va_arg(mArgs, int);
        const char ch = isWide(c) ? narrow(value) : static_cast<char>(value);
        estimateText(c, 2);
        put(c, "", &ch, 1, false);
    }

    void text(const Conversion& c) {
        const size_t most = c.precision < 0 ? SIZE_MAX : static_cast<size_t>(c.precision);
        const void* const arg = va_arg(mArgs, const void*);
        ZAV_String narrowed;
        const char* p = static_cast<const char*>(arg);
        if (arg == nullptr) {
            p = "(null)";
        } else if (isWide(c)) {
            for (const wchar_t* w = static_cast<const wchar_t*>(arg); narrowed.Length() < most && *w; ++w)
                narrowed += narrow(*w < 0x80 ? static_cast<int>(*w) : -1);
            p = narrowed.Ptr();
        }
        size_t n = 0;
        while (n < most && p[n] != '\0') ++n;
        estimateText(c, (std::max)(n, size_t{1}));
        put(c, "", p, n, false);
    }

    int64_t signedArgument(Size size) {
        switch (size) {
        case Size::Char:
            return static_cast<signed char>(va_arg(mArgs, int));
        case Size::Short:
            return static_cast<short>(va_arg(mArgs, int));
        case Size::Long:
            return va_arg(mArgs, long);
        case Size::LongLong:
            return va_arg(mArgs, long long);
        case Size::Pointer:
            return va_arg(mArgs, ptrdiff_t);
        default:
            return va_arg(mArgs, int);
        }
    }

    uint64_t unsignedArgument(Size size) {
        switch (size) {
        case Size::Char:
            return static_cast<unsigned char>(va_arg(mArgs, unsigned));
        case Size::Short:
            return static_cast<unsigned short>(va_arg(mArgs, unsigned));
        case Size::Long:
            return va_arg(mArgs, unsigned long);
        case Size::LongLong:
            return va_arg(mArgs, unsigned long long);
        case Size::Pointer:
            return va_arg(mArgs, size_t);
        default:
            return va_arg(mArgs, unsigned);
        }
    }

    void signedInteger(const Conversion& c) {
        const int64_t value = signedArgument(c.size);
        const uint64_t magnitude =
            value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
        putDigits(c, sign(c, value < 0), magnitude, 10, c.precision);
    }

    void unsignedInteger(const Conversion& c) {
        if (c.letter == 'p') {
            const uintptr_t address = reinterpret_cast<uintptr_t>(va_arg(mArgs, void*));
            return putDigits(c, "", address, 16, static_cast<int>(2 * sizeof address));
        }
        const uint64_t value = unsignedArgument(c.size);
        const int base = c.letter == 'o' ? 8 : c.letter == 'u' ? 10 : 16;
        const char* prefix = "";
        if (c.alternate && base == 16 && value != 0) prefix = c.letter == 'x' ? "0x" : "0X";
        putDigits(c, prefix, value, base, c.precision);
    }

    void putDigits(const Conversion& c, const char* prefix, uint64_t value, int base, int precision) {
        estimateNumber(c);
        char digits[24];
        size_t n = 0;
        if (value != 0 || precision != 0)
            n = static_cast<size_t>(std::to_chars(digits, digits + sizeof digits, value, base).ptr - digits);
        if (c.letter == 'X' || c.letter == 'p') upper(digits, n);
        size_t zeros =
            precision > 0 && static_cast<size_t>(precision) > n ? static_cast<size_t>(precision) - n : 0;
        if (base == 8 && c.alternate && zeros == 0 && (n == 0 || digits[0] != '0')) zeros = 1;
        if (zeros == 0) return put(c, prefix, digits, n, c.zero && precision < 0);
        ZAV_String body('0', static_cast<unsigned>(zeros));
        body.Append(digits, static_cast<unsigned>(n));
        put(c, prefix, body.Ptr(), body.Length(), c.zero && precision < 0);
    }

    static const char* sign(const Conversion& c, bool negative) {
        return negative ? "-" : c.plus ? "+" : c.blank ? " " : "";
    }

    static void upper(char* p, size_t n) {
        for (size_t i = 0; i < n; ++i)
            if (p[i] >= 'a' && p[i] <= 'z') p[i] = static_cast<char>(p[i] - 32);
    }

    void real(const Conversion& c) {
        const double value = c.size == Size::LongDouble ? static_cast<double>(va_arg(mArgs, long double))
                                                        : va_arg(mArgs, double);
        if (c.letter != 'E') estimateNumber(c);
        const int precision = c.precision < 0 ? 6 : c.precision;
        const double magnitude = std::fabs(value);
        const bool finite = std::isfinite(value);
        char local[400];
        std::unique_ptr<char[]> heap;
        char* p = local;
        size_t room = sizeof local;
        if (precision > 64) {
            room = 336 + static_cast<size_t>(precision);
            heap.reset(p = new char[room]);
        }
        size_t n = 0;
        if (finite) {
            n = realDigits(p, room, c, magnitude, precision);
        } else {
            std::memcpy(p, std::isnan(value) ? "nan" : "inf", n = 3);
        }
        if (c.letter <= 'Z') upper(p, n);
        put(c, sign(c, std::signbit(value) && !std::isnan(value)), p, n, c.zero && finite);
    }

    static size_t realDigits(char* p, size_t room, const Conversion& c, double value, int precision) {
        const char letter = static_cast<char>(c.letter | 0x20);
        if (letter != 'g') {
            const auto format = letter == 'e' ? std::chars_format::scientific : std::chars_format::fixed;
            const size_t n = digits(p, room, value, format, precision);
            return c.alternate && precision == 0 ? addPoint(p, n) : n;
        }
        if (precision == 0) precision = 1;
        if (!c.alternate) return digits(p, room, value, std::chars_format::general, precision);
        // "#" keeps the zeros at the end, which the general form drops.
        size_t n = digits(p, room, value, std::chars_format::scientific, precision - 1);
        p[n] = '\0';
        const int exponent = std::atoi(std::strrchr(p, 'e') + 1);
        if (exponent >= -4 && exponent < precision)
            n = digits(p, room, value, std::chars_format::fixed, precision - 1 - exponent);
        return std::memchr(p, '.', n) ? n : addPoint(p, n);
    }

    static size_t digits(char* p, size_t room, double value, std::chars_format format, int precision) {
        return static_cast<size_t>(std::to_chars(p, p + room - 2, value, format, precision).ptr - p);
    }

    // Behind the digits and before the exponent.
    static size_t addPoint(char* p, size_t n) {
        const char* const exponent = static_cast<const char*>(std::memchr(p, 'e', n));
        const size_t at = exponent ? static_cast<size_t>(exponent - p) : n;
        std::memmove(p + at + 1, p + at, n - at);
        p[at] = '.';
        return n + 1;
    }

    void storeCount(const Conversion& c) {
        void* const to = va_arg(mArgs, void*);
        const int n = static_cast<int>(mText.Length());
        switch (c.size) {
        case Size::Char:
            *static_cast<signed char*>(to) = static_cast<signed char>(n);
            break;
        case Size::Short:
            *static_cast<short*>(to) = static_cast<short>(n);
            break;
        case Size::Long:
            *static_cast<long*>(to) = n;
            break;
        case Size::LongLong:
            *static_cast<long long*>(to) = n;
            break;
        case Size::Pointer:
            *static_cast<ptrdiff_t*>(to) = n;
            break;
        default:
            *static_cast<int*>(to) = n;
            break;
        }
    }

    va_list mArgs;
    ZAV_String mText;
    uint64_t mEstimate = 0;
};

} // namespace

ZAV_String& ZAV_String::Format(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    FormatV(fmt, args);
    va_end(args);
    return *this;
}

ZAV_String& ZAV_String::FormatV(const char* fmt, va_list args) {
    Formatter formatter(args);
    formatter.Run(fmt ? fmt : "");
    const unsigned length = static_cast<unsigned>(std::strlen(formatter.Text()));
    ReSize(formatter.Estimate());
    if (length > mCapacity) ReSize(length);
    assignCopy(length, formatter.Text());
    return *this;
}
