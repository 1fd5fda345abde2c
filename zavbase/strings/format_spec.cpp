#include <zavbase/strings/format_spec_internal.h>

#include <climits>
#include <cstring>

namespace zav_format {

namespace {

bool contains(const char* set, char c) { return c != '\0' && std::strchr(set, c) != nullptr; }

int readDigits(const char*& p) {
    int n = 0;
    for (; *p >= '0' && *p <= '9'; ++p) n = n > (INT_MAX - 9) / 10 ? INT_MAX : n * 10 + (*p - '0');
    return n;
}

// The number before a "$", or 0 with `p` where it was.
int readNumber(const char*& p) {
    const char* end = p;
    const int n = readDigits(end);
    if (*end != '$' || n < 1 || n > kMostNumbered) return 0;
    p = end + 1;
    return n;
}

bool isSizeInBits(const char* p) { return std::strncmp(p, "I64", 3) == 0 || std::strncmp(p, "I32", 3) == 0; }

// "I" by itself asks for the digits of the locale, "'" for its groups of thousands: neither matters here.
bool isIgnoredFlag(const char* p) { return *p == '\'' || (*p == 'I' && !isSizeInBits(p)); }

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
            ++c.alternate;
            break;
        default:
            if (!isIgnoredFlag(p)) return p;
        }
    }
}

const char* readWidth(const char* p, Conversion& c) {
    if (*p == '*')
        c.widthFrom = readNumber(++p);
    else
        c.width = static_cast<unsigned>(readDigits(p));
    if (*p != '.') return p;
    if (*++p == '*')
        c.precisionFrom = readNumber(++p);
    else
        c.precision = readDigits(p);
    return p;
}

// The old memory-model prefixes N and F mean nothing; F alone is a conversion.
const char* readSize(const char* p, Conversion& c) {
    switch (*p) {
    case 'N':
        return p + 1;
    case 'F':
        return contains("cCsSdiopuxXneEfgG", p[1]) ? p + 1 : p;
    case 'L':
        c.size = Size::LongDouble;
        return p + 1;
    case 'z':
    case 'Z':
    case 't':
        c.size = Size::Pointer;
        return p + 1;
    case 'j':
    case 'q':
        c.size = Size::LongLong;
        return p + 1;
    case 'h':
        c.size = p[1] == 'h' ? Size::Char : Size::Short;
        return p + (p[1] == 'h' ? 2 : 1);
    case 'l':
        c.size = p[1] == 'l' ? Size::LongLong : Size::Long;
        return p + (p[1] == 'l' ? 2 : 1);
    case 'I':
        if (!isSizeInBits(p)) return p;
        c.size = p[1] == '6' ? Size::LongLong : Size::Int;
        return p + 3;
    default:
        return p;
    }
}

} // namespace

const char* Read(const char* p, Conversion& c) {
    c.number = readNumber(p);
    p = readFlags(p, c);
    p = readWidth(p, c);
    p = readSize(p, c);
    c.letter = *p;
    return p;
}

bool IsConversion(char letter) { return contains("cCsSdiouxXbBpeEfFgGaAn", letter); }

Argument ArgumentOf(const Conversion& c) {
    if (!IsConversion(c.letter)) return Argument::None;
    if (contains("cC", c.letter)) return Argument::Int;
    if (contains("sSpn", c.letter)) return Argument::Pointer;
    if (contains("eEfFgGaA", c.letter))
        return c.size == Size::LongDouble ? Argument::LongDouble : Argument::Double;
    switch (c.size) {
    case Size::Long:
        return Argument::Long;
    case Size::LongLong:
    case Size::LongDouble: // "%Ld"
        return Argument::LongLong;
    case Size::Pointer:
        return Argument::Pointer;
    default:
        return Argument::Int;
    }
}

} // namespace zav_format
