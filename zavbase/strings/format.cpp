#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include <zavbase/strings/byte_string.h>
#include <zavbase/strings/format_spec_internal.h>
#include <zavbase/strings/text_length_internal.h>

namespace {

using zav_format::Argument;
using zav_format::Conversion;
using zav_format::Size;
using zav_text::Checked;

// The arguments, taken one after the other; before each of them the next may be chosen by its number.
class Arguments {
public:
    Arguments(const char* fmt, va_list args) : mFormat(fmt) {
        va_copy(mFirst, args);
        va_copy(mNext, args);
    }
    ~Arguments() {
        va_end(mNext);
        va_end(mFirst);
    }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

    /// 0 leaves it at the next one.
    void Choose(int number) {
        if (number == zav_format::kNextArgument) return;
        if (mKinds.empty()) findKinds();
        va_end(mNext);
        va_copy(mNext, mFirst);
        for (int i = 1; i < number; ++i) skip(mKinds[static_cast<size_t>(i)]);
    }

    int Int() { return va_arg(mNext, int); }
    long Long() { return va_arg(mNext, long); }
    long long LongLong() { return va_arg(mNext, long long); }
    ptrdiff_t Difference() { return va_arg(mNext, ptrdiff_t); }
    void* Pointer() { return va_arg(mNext, void*); }
    double Double() { return va_arg(mNext, double); }
    long double LongDouble() { return va_arg(mNext, long double); }

private:
    // An argument can only be stepped over when its type is known, which is that of the conversion that
    // prints it.
    void findKinds() {
        mKinds.assign(zav_format::kMostNumbered + 1, Argument::Int);
        for (const char* p = mFormat; (p = std::strchr(p, '%')) != nullptr;) {
            Conversion c;
            p = zav_format::Read(p + 1, c);
            if (c.number != 0) mKinds[static_cast<size_t>(c.number)] = zav_format::ArgumentOf(c);
            if (*p != '\0') ++p;
        }
    }

    void skip(Argument kind) {
        switch (kind) {
        case Argument::Long:
            Long();
            break;
        case Argument::LongLong:
            LongLong();
            break;
        case Argument::Pointer:
            Pointer();
            break;
        case Argument::Double:
            Double();
            break;
        case Argument::LongDouble:
            LongDouble();
            break;
        case Argument::Int:
            Int();
            break;
        case Argument::None:
            break;
        }
    }

    const char* mFormat;
    va_list mFirst;
    va_list mNext;
    std::vector<Argument> mKinds; // by number; empty until one is chosen
};

// Formats without the C run-time, whose results differ between platforms and with the locale. The text is
// built apart from the string that asked for it, because arguments may point into that string.
class Formatter {
public:
    Formatter(const char* fmt, va_list args) : mArgs(fmt, args), mText(112u) {}

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
        const unsigned n = Checked(static_cast<size_t>(to - from));
        mText.Append(from, n);
        mEstimate += n;
    }

    // Returns what follows the conversion.
    const char* convert(const char* const start) {
        Conversion c;
        const char* const p = zav_format::Read(start + 1, c);
        mEstimate += 2 * c.alternate;
        takeWidth(c);
        mArgs.Choose(c.number);
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
        case 'b':
        case 'B':
        case 'p':
            unsignedInteger(c);
            break;
        case 'a':
        case 'A':
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

    void takeWidth(Conversion& c) {
        if (c.widthFrom != zav_format::kNotGiven) {
            mArgs.Choose(c.widthFrom);
            const int width = mArgs.Int();
            if (width < 0) c.left = true;
            c.width = width < 0 ? 0u - static_cast<unsigned>(width) : static_cast<unsigned>(width);
        }
        if (c.precisionFrom != zav_format::kNotGiven) {
            mArgs.Choose(c.precisionFrom);
            c.precision = (std::max)(mArgs.Int(), -1);
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
        mText.Append(body, Checked(n));
        if (c.left) fill(' ', missing);
    }

    static char narrow(int wide) { return wide >= 0 && wide < 0x80 ? static_cast<char>(wide) : '?'; }

    static bool isWide(const Conversion& c) {
        return c.size == Size::Long || (c.letter <= 'Z' && c.size != Size::Short);
    }

    void character(const Conversion& c) {
        const int value = mArgs.Int();
        const char ch = isWide(c) ? narrow(value) : static_cast<char>(value);
        estimateText(c, 2);
        put(c, "", &ch, 1, false);
    }

    // Up to the NUL, which need not be there when a precision is given.
    static size_t boundedLength(const char* p, int precision) {
        if (precision < 0) return std::strlen(p);
        const size_t most = static_cast<size_t>(precision);
        const void* const end = std::memchr(p, '\0', most);
        return end ? static_cast<size_t>(static_cast<const char*>(end) - p) : most;
    }

    void text(const Conversion& c) {
        const size_t most = c.precision < 0 ? SIZE_MAX : static_cast<size_t>(c.precision);
        const void* const arg = mArgs.Pointer();
        ZAV_String narrowed;
        const char* p = static_cast<const char*>(arg);
        if (arg == nullptr) {
            p = "(null)";
        } else if (isWide(c)) {
            for (const wchar_t* w = static_cast<const wchar_t*>(arg); narrowed.Length() < most && *w; ++w)
                narrowed += narrow(*w < 0x80 ? static_cast<int>(*w) : -1);
            p = narrowed.Ptr();
        }
        const size_t n = boundedLength(p, c.precision);
        estimateText(c, (std::max)(n, size_t{1}));
        put(c, "", p, n, false);
    }

    // What the argument is: the conversions narrow it to what they print.
    int64_t integer(const Conversion& c) {
        switch (zav_format::ArgumentOf(c)) {
        case Argument::Long:
            return mArgs.Long();
        case Argument::LongLong:
            return mArgs.LongLong();
        case Argument::Pointer:
            return mArgs.Difference();
        default:
            return mArgs.Int();
        }
    }

    int64_t signedArgument(const Conversion& c) {
        const int64_t value = integer(c);
        if (c.size == Size::Char) return static_cast<signed char>(value);
        if (c.size == Size::Short) return static_cast<short>(value);
        return value;
    }

    uint64_t unsignedArgument(const Conversion& c) {
        const int64_t value = integer(c);
        switch (c.size) {
        case Size::Char:
            return static_cast<unsigned char>(value);
        case Size::Short:
            return static_cast<unsigned short>(value);
        case Size::Int:
            return static_cast<unsigned>(value);
        case Size::Long:
            return static_cast<unsigned long>(value);
        case Size::Pointer:
            return static_cast<size_t>(value);
        default:
            return static_cast<uint64_t>(value);
        }
    }

    void signedInteger(const Conversion& c) {
        const int64_t value = signedArgument(c);
        const uint64_t magnitude =
            value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
        putDigits(c, sign(c, value < 0), magnitude, 10, c.precision);
    }

    void unsignedInteger(const Conversion& c) {
        if (c.letter == 'p') {
            const uintptr_t address = reinterpret_cast<uintptr_t>(mArgs.Pointer());
            return putDigits(c, "", address, 16, static_cast<int>(2 * sizeof address));
        }
        const uint64_t value = unsignedArgument(c);
        const int base = c.letter == 'o' ? 8 : c.letter == 'u' ? 10 : (c.letter | 0x20) == 'b' ? 2 : 16;
        const char prefix[] = {'0', c.letter, '\0'};
        const bool withPrefix = c.alternate != 0 && (base == 2 || base == 16) && value != 0;
        putDigits(c, withPrefix ? prefix : "", value, base, c.precision);
    }

    void putDigits(const Conversion& c, const char* prefix, uint64_t value, int base, int precision) {
        if (base != 2) estimateNumber(c);
        char digits[64];
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
        const bool hexadecimal = (c.letter | 0x20) == 'a';
        const double value =
            c.size == Size::LongDouble ? static_cast<double>(mArgs.LongDouble()) : mArgs.Double();
        if (c.letter != 'E' && !hexadecimal) estimateNumber(c);
        const int precision = c.precision < 0 && !hexadecimal ? 6 : c.precision;
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
        char prefix[4] = {};
        std::strcpy(prefix, sign(c, std::signbit(value) && !std::isnan(value)));
        if (hexadecimal && finite) std::strcat(prefix, c.letter == 'a' ? "0x" : "0X");
        put(c, prefix, p, n, c.zero && finite);
    }

    static size_t realDigits(char* p, size_t room, const Conversion& c, double value, int precision) {
        const char letter = static_cast<char>(c.letter | 0x20);
        if (letter == 'a') {
            const size_t n = hexadecimalDigits(p, room, value, precision);
            return c.alternate && !std::memchr(p, '.', n) ? addPoint(p, n, 'p') : n;
        }
        if (letter != 'g') {
            const auto format = letter == 'e' ? std::chars_format::scientific : std::chars_format::fixed;
            const size_t n = digits(p, room, value, format, precision);
            return c.alternate && precision == 0 ? addPoint(p, n, 'e') : n;
        }
        if (precision == 0) precision = 1;
        if (!c.alternate) return digits(p, room, value, std::chars_format::general, precision);
        // "#" keeps the zeros at the end, which the general form drops.
        size_t n = digits(p, room, value, std::chars_format::scientific, precision - 1);
        p[n] = '\0';
        const int exponent = std::atoi(std::strrchr(p, 'e') + 1);
        if (exponent >= -4 && exponent < precision)
            n = digits(p, room, value, std::chars_format::fixed, precision - 1 - exponent);
        return std::memchr(p, '.', n) ? n : addPoint(p, n, 'e');
    }

    static size_t digits(char* p, size_t room, double value, std::chars_format format, int precision) {
        return static_cast<size_t>(std::to_chars(p, p + room - 2, value, format, precision).ptr - p);
    }

    // As many digits as it takes, unless the precision tells.
    static size_t hexadecimalDigits(char* p, size_t room, double value, int precision) {
        const auto format = std::chars_format::hex;
        if (precision >= 0) return digits(p, room, value, format, precision);
        return static_cast<size_t>(std::to_chars(p, p + room - 2, value, format).ptr - p);
    }

    // Behind the digits and before the exponent.
    static size_t addPoint(char* p, size_t n, char exponentLetter) {
        const char* const exponent = static_cast<const char*>(std::memchr(p, exponentLetter, n));
        const size_t at = exponent ? static_cast<size_t>(exponent - p) : n;
        std::memmove(p + at + 1, p + at, n - at);
        p[at] = '.';
        return n + 1;
    }

    void storeCount(const Conversion& c) {
        void* const to = mArgs.Pointer();
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
        case Size::LongDouble:
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

    Arguments mArgs;
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
    if (fmt == nullptr) fmt = "";
    Formatter formatter(fmt, args);
    formatter.Run(fmt);
    const unsigned length = static_cast<unsigned>(std::strlen(formatter.Text()));
    ReSize(formatter.Estimate());
    if (length > mCapacity) ReSize(length);
    assignCopy(length, formatter.Text());
    return *this;
}
