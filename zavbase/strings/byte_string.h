#ifndef ZAVBASE_STRINGS_BYTE_STRING_H
#define ZAVBASE_STRINGS_BYTE_STRING_H

#include <climits>
#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <type_traits>
#if defined(__cpp_impl_three_way_comparison)
#include <compare>
#endif

#include <zavbase/strings/str.h>

class ZAV_SubString;
class ZAV_UTFString;
class ZAV_UTFSubString;

/// Lets the compiler check the arguments of a printf-style member.
#if defined(__clang__)
#define ZAV_PRINTF_LIKE(FORMAT, ARGS) __attribute__((format(printf, FORMAT, ARGS)))
#elif defined(__GNUC__)
#define ZAV_PRINTF_LIKE(FORMAT, ARGS) __attribute__((format(gnu_printf, FORMAT, ARGS)))
#else
#define ZAV_PRINTF_LIKE(FORMAT, ARGS)
#endif

/// A room of any integer type as the 32 bits that a string takes. One that does not fit is the largest, which
/// the allocator refuses.
template <class Int>
constexpr unsigned int ZAV_Room(Int n) {
    return static_cast<unsigned long long>(n) > UINT_MAX ? UINT_MAX : static_cast<unsigned int>(n);
}

/// The library's byte string: ZAV_Str (buffer, stream reads, trimming) with construction from text,
/// concatenation, search, comparison and formatting. It adds no data.
///
/// Index arguments are not checked; they must lie within the text. A null `const char*` counts as empty text
/// except where a text is searched for. Texts may hold NUL bytes: copies, `==` between strings and
/// concatenations keep them; searches, `!=`, the orderings and comparisons with `const char*` end at the
/// first.
class ZAV_API ZAV_String : public ZAV_Str {
public:
    ZAV_String() {}
    /// Empty, with room for `n` characters: ZAV_String('x') is an empty string with room for 120.
    explicit ZAV_String(unsigned int n) : ZAV_Str(n) {}
    template <class Int, std::enable_if_t<std::is_integral_v<Int>, int> = 0>
    explicit ZAV_String(Int n) : ZAV_Str(ZAV_Room(n)) {}
    ZAV_String(const ZAV_String& s) : ZAV_Str(s) {}
    ZAV_String(const ZAV_Str& s) : ZAV_Str(s) {}
    ZAV_String(const ZAV_SubStr& s) : ZAV_Str(s) {}
    ZAV_String(const char* p, unsigned int n);
    ZAV_String(char c, unsigned int n);
    ZAV_String(const char* p);
    /// Empty, but it owns a buffer of 16.
    ZAV_String(std::nullptr_t) : ZAV_String(static_cast<const char*>(nullptr)) {}
    /// A length-prefixed text: p[0] characters follow.
    ZAV_String(const unsigned char* p);
    ~ZAV_String() override;

    ZAV_String& operator=(const ZAV_String& s) { return *this = static_cast<const ZAV_Str&>(s); }
    ZAV_String& operator=(const ZAV_Str& s);
    ZAV_String& operator=(const ZAV_SubStr& s);
    ZAV_String& operator=(const char* p);
    ZAV_String& operator+=(const ZAV_Str& s);
    ZAV_String& operator+=(const ZAV_SubStr& s);
    ZAV_String& operator+=(const char* p);
    ZAV_String& operator+=(char c) {
        const unsigned int n = mLength;
        if (n >= mCapacity) growByOne();
        storeTerminated(mData + n, c);
        mLength = n + 1;
        return *this;
    }
    /// Appends `n` bytes.
    ZAV_String& Append(const char* p, unsigned int n);

    /// Each kind of operand has its own form: taking one as its base would be no better a match than taking
    /// this string as a const char*.
    ZAV_String operator+(const ZAV_Str& s) const;
    ZAV_String operator+(const ZAV_String& s) const;
    ZAV_String operator+(const ZAV_UTFString& u) const;
    ZAV_String operator+(const ZAV_SubStr& s) const;
    ZAV_String operator+(const ZAV_SubString& s) const;
    ZAV_String operator+(const ZAV_UTFSubString& u) const;
    ZAV_String operator+(const char* p) const;
    ZAV_String operator+(char c) const;

    unsigned int Length() const { return mLength; }
    char& At(unsigned int i) { return mData[i]; }
    char At(unsigned int i) const { return mData[i]; }
    /// A view of `len` bytes from `pos` on; assigning to it splices this string.
    ZAV_SubString operator()(unsigned int pos, unsigned int len);
    ZAV_SubString operator()(unsigned int pos, unsigned int len) const;

    /// The index counted from the start of the string, or -1. The search begins at byte `start`.
    int Find(char c, int start = 0) const { return indexOf(std::strchr(mData + start, c)); }
    int Find(const char* s, int start = 0) const { return indexOf(std::strstr(mData + start, s)); }
    int ReverseFind(char c) const { return indexOf(std::strrchr(mData, c)); }
    /// The first character that is one of `set`.
    int FindOneOf(const char* set, int start = 0) const { return indexOf(std::strpbrk(mData + start, set)); }
    /// Up to the first NUL.
    ZAV_String& FindAndReplace(char from, char to);

    /// Clears bit 7 of every byte.
    ZAV_String& ToAscii();
    /// By isupper and islower of the process's locale, byte by byte.
    ZAV_String& ToLower();
    ZAV_String& ToUpper();

    /// printf-style; replaces the text. Every conversion that the compiler's check of the arguments lets pass
    /// takes its argument: c d i o u x X b B e E f F g G a A s p n, with flags, width and precision, "*" and
    /// "%2$s" too. Numbers come out the same on every platform and in every locale: exponents of at least two
    /// digits, %p as upper-case hexadecimal. F before a conversion letter is a size prefix without meaning;
    /// %I64d and %I32d tell the size as on Windows. Arguments may point into this string. %ls and %S take
    /// wchar_t text, of which only ASCII is kept.
    ZAV_String& Format(const char* fmt, ...) ZAV_PRINTF_LIKE(2, 3);
    ZAV_String& FormatV(const char* fmt, va_list args);

    /// Binary: length and all bytes. Note that != is not its opposite for texts that hold NUL bytes.
    boolean_t operator==(const ZAV_String& s) const;
    /// These six less one end at the first NUL.
    boolean_t operator!=(const ZAV_String& s) const { return ZAV_Bool(Compare(s) != 0); }
    boolean_t operator<(const ZAV_String& s) const { return ZAV_Bool(Compare(s) < 0); }
    boolean_t operator>(const ZAV_String& s) const { return ZAV_Bool(Compare(s) > 0); }
    boolean_t operator<=(const ZAV_String& s) const { return ZAV_Bool(Compare(s) <= 0); }
    boolean_t operator>=(const ZAV_String& s) const { return ZAV_Bool(Compare(s) >= 0); }

    boolean_t operator==(const char* p) const { return ZAV_Bool(compareText(p) == 0); }
    boolean_t operator!=(const char* p) const { return ZAV_Bool(compareText(p) != 0); }
    boolean_t operator<(const char* p) const { return ZAV_Bool(compareText(p) < 0); }
    boolean_t operator>(const char* p) const { return ZAV_Bool(compareText(p) > 0); }
    boolean_t operator<=(const char* p) const { return ZAV_Bool(compareText(p) <= 0); }
    boolean_t operator>=(const char* p) const { return ZAV_Bool(compareText(p) >= 0); }

#if defined(__cpp_impl_three_way_comparison)
    /// The order of the four above. Without these a pair, tuple or vector of strings would compare addresses.
    friend std::weak_ordering operator<=>(const ZAV_String& a, const ZAV_String& b) {
        return a.Compare(b) <=> 0;
    }
    friend std::weak_ordering operator<=>(const ZAV_String& a, const char* p) {
        return a.compareText(p) <=> 0;
    }
#endif

    boolean_t operator==(const ZAV_SubString& s) const;
    boolean_t operator!=(const ZAV_SubString& s) const;
    boolean_t operator<(const ZAV_SubString& s) const;
    boolean_t operator>(const ZAV_SubString& s) const;
    boolean_t operator<=(const ZAV_SubString& s) const;
    boolean_t operator>=(const ZAV_SubString& s) const;

private:
    int indexOf(const char* p) const { return p ? static_cast<int>(p - mData) : -1; }
    int compareText(const char* p) const { return std::strcmp(mData, p ? p : ""); }
    // The character and the terminator in one store. Unlike a store of a char it cannot change the string's
    // own fields, as far as the compiler is concerned, so that a loop of appends keeps these in registers.
    static void storeTerminated(char* to, char c) {
#if defined(__GNUC__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
        typedef unsigned short Pair __attribute__((aligned(1)));
        *reinterpret_cast<Pair*>(to) = static_cast<unsigned char>(c);
#else
        to[0] = c;
        to[1] = '\0';
#endif
    }
};

/// A view of a range of a ZAV_String, made by ZAV_String::operator(). See ZAV_SubStr for how long it lives.
class ZAV_API ZAV_SubString : public ZAV_SubStr {
public:
    /// Replace the range inside the owner.
    ZAV_SubString& operator=(const ZAV_SubString& s) { return *this = static_cast<const ZAV_SubStr&>(s); }
    ZAV_SubString& operator=(const ZAV_SubStr& s);
    ZAV_SubString& operator=(const ZAV_Str& s);
    ZAV_SubString& operator=(const char* p);

    /// A ZAV_String, unlike the base's: the sum can be compared and added to.
    ZAV_String operator+(const ZAV_SubStr& s) const;
    ZAV_String operator+(const ZAV_Str& s) const;
    /// `p` must not be null.
    ZAV_String operator+(const char* p) const;

    /// The byte index of the range within the owner.
    unsigned int Position() const;
    unsigned int Length() const { return mLength; }
    ZAV_SubString& ToLower();
    ZAV_SubString& ToUpper();

    boolean_t operator==(const ZAV_String& s) const { return ZAV_Bool(compare(s) == 0); }
    boolean_t operator!=(const ZAV_String& s) const { return ZAV_Bool(compare(s) != 0); }
    boolean_t operator<(const ZAV_String& s) const { return ZAV_Bool(compare(s) < 0); }
    boolean_t operator>(const ZAV_String& s) const { return ZAV_Bool(compare(s) > 0); }
    boolean_t operator<=(const ZAV_String& s) const { return ZAV_Bool(compare(s) <= 0); }
    boolean_t operator>=(const ZAV_String& s) const { return ZAV_Bool(compare(s) >= 0); }

    boolean_t operator==(const ZAV_SubString& s) const { return ZAV_Bool(compare(s) == 0); }
    boolean_t operator!=(const ZAV_SubString& s) const { return ZAV_Bool(compare(s) != 0); }
    boolean_t operator<(const ZAV_SubString& s) const { return ZAV_Bool(compare(s) < 0); }
    boolean_t operator>(const ZAV_SubString& s) const { return ZAV_Bool(compare(s) > 0); }
    boolean_t operator<=(const ZAV_SubString& s) const { return ZAV_Bool(compare(s) <= 0); }
    boolean_t operator>=(const ZAV_SubString& s) const { return ZAV_Bool(compare(s) >= 0); }

    boolean_t operator==(const char* p) const { return ZAV_Bool(compare(p) == 0); }
    boolean_t operator!=(const char* p) const { return ZAV_Bool(compare(p) != 0); }
    boolean_t operator<(const char* p) const { return ZAV_Bool(compare(p) < 0); }
    boolean_t operator>(const char* p) const { return ZAV_Bool(compare(p) > 0); }
    boolean_t operator<=(const char* p) const { return ZAV_Bool(compare(p) <= 0); }
    boolean_t operator>=(const char* p) const { return ZAV_Bool(compare(p) >= 0); }

private:
    friend class ZAV_String;
    friend class ZAV_UTFString;
    friend class ZAV_UTFSubString;

    ZAV_SubString() {}
    ZAV_SubString(const ZAV_SubString& s) : ZAV_SubStr(s) {}
    ZAV_SubString(ZAV_String* owner, char* start, unsigned int length);
    int compare(const ZAV_String& s) const { return ZAV_SubStr::compare(s); }
    int compare(const ZAV_SubString& s) const { return ZAV_SubStr::compare(s); }
    int compare(const char* p) const;
};

ZAV_API ZAV_String operator+(const char* p, const ZAV_String& s);
ZAV_API ZAV_String operator+(char c, const ZAV_String& s);
/// `p` must not be null.
ZAV_API ZAV_String operator+(const char* p, const ZAV_SubString& s);

/// Text on the left: without these the built-in comparison of two addresses would be taken.
inline boolean_t operator==(const char* p, const ZAV_String& s) { return s == p; }
inline boolean_t operator!=(const char* p, const ZAV_String& s) { return s != p; }
inline boolean_t operator<(const char* p, const ZAV_String& s) { return s > p; }
inline boolean_t operator>(const char* p, const ZAV_String& s) { return s < p; }
inline boolean_t operator<=(const char* p, const ZAV_String& s) { return s >= p; }
inline boolean_t operator>=(const char* p, const ZAV_String& s) { return s <= p; }
inline boolean_t operator==(const char* p, const ZAV_SubString& s) { return s == p; }
inline boolean_t operator!=(const char* p, const ZAV_SubString& s) { return s != p; }
inline boolean_t operator<(const char* p, const ZAV_SubString& s) { return s > p; }
inline boolean_t operator>(const char* p, const ZAV_SubString& s) { return s < p; }
inline boolean_t operator<=(const char* p, const ZAV_SubString& s) { return s >= p; }
inline boolean_t operator>=(const char* p, const ZAV_SubString& s) { return s <= p; }

/// Reads a decimal number: white space, sign, digits, `decimalSeparator` and digits, exponent; what does not
/// fit ends it, and a text without digits is 0. Digits are accumulated one by one in double precision, so the
/// last bit may differ from strtod. The locale does not matter, except to what counts as leading white space.
ZAV_API double ZAV_atof(const char* text, char decimalSeparator);

#endif
