#ifndef ZAVBASE_STRINGS_UTF_STRING_H
#define ZAVBASE_STRINGS_UTF_STRING_H

#include <zavbase/strings/byte_string.h>
#include <zavbase/strings/rune.h>

/// A byte string whose text is UTF-8 and whose Length(), sub-string positions and Find results count runes.
/// It adds no data to ZAV_String.
///
/// Text that comes in (const char*, ZAV_String, ZAV_SubString, streams, Format) is taken as it is when
/// isutfstr accepts it; otherwise every one of its bytes with the top bit set becomes "#". So the text is
/// always valid, unless it is changed through the byte operations inherited from ZAV_String: At, Find(char),
/// FindOneOf, ReverseFind and FindAndReplace work on bytes here too. Comparisons are the inherited ones; byte
/// order is rune order.
///
/// Trimming, blanks skipped by ReadLine, ToLower and ToUpper know ASCII only: bytes from 0x80 up are parts of
/// runes and stay, whatever the locale says of them. These calls hide those of the base; they are not
/// virtual, so through a `ZAV_String&` or `ZAV_Str&` the base's run and follow the locale, which in a
/// one-byte locale may change or cut such bytes.
class ZAV_API ZAV_UTFString : public ZAV_String {
public:
    ZAV_UTFString() {}
    /// Empty, with room for `n` bytes.
    explicit ZAV_UTFString(unsigned int n) : ZAV_String(n) {}
    template <class Int, std::enable_if_t<std::is_integral_v<Int>, int> = 0>
    explicit ZAV_UTFString(Int n) : ZAV_String(ZAV_Room(n)) {}
    ZAV_UTFString(const ZAV_UTFString& u) : ZAV_String(u) {}
    ZAV_UTFString(const ZAV_UTFSubString& u);
    ZAV_UTFString(const char* p);
    ZAV_UTFString(std::nullptr_t) : ZAV_String(nullptr) {}
    ZAV_UTFString(const ZAV_Str& s);
    ZAV_UTFString(const ZAV_SubStr& s);
    /// `n` bytes from `p` on, NUL bytes included.
    ZAV_UTFString(const char* p, unsigned int n);
    ~ZAV_UTFString() override;
    /// Writes bytes below 0xA0 as they are and every other rune as its hexadecimal code in brackets: a euro
    /// sign is [20ac]. (Ptr() gives the UTF-8 itself.)
    void PrintOn(std::ostream& os) override;

    ZAV_UTFString& operator=(const ZAV_UTFString& u);
    ZAV_UTFString& operator=(const ZAV_UTFSubString& u);
    ZAV_UTFString& operator=(const char* p);
    ZAV_UTFString& operator=(const ZAV_Str& s);
    ZAV_UTFString& operator=(const ZAV_SubStr& s);

    ZAV_UTFString& operator+=(const ZAV_UTFString& u);
    ZAV_UTFString& operator+=(const ZAV_UTFSubString& u);
    ZAV_UTFString& operator+=(const char* p);
    ZAV_UTFString& operator+=(const ZAV_Str& s);
    ZAV_UTFString& operator+=(const ZAV_SubStr& s);
    ZAV_UTFString& operator+=(char c) {
        if ((c & 0x80) != 0) return Append(&c, 1);
        ZAV_String::operator+=(c);
        return *this;
    }
    ZAV_UTFString& Append(const char* p, unsigned int n);

    ZAV_UTFString operator+(const ZAV_UTFString& u) const;
    ZAV_UTFString operator+(const ZAV_UTFSubString& u) const;
    ZAV_UTFString operator+(const char* p) const;
    ZAV_UTFString operator+(const ZAV_Str& s) const;
    ZAV_UTFString operator+(const ZAV_String& s) const;
    ZAV_UTFString operator+(const ZAV_SubStr& s) const;
    ZAV_UTFString operator+(const ZAV_SubString& s) const;
    ZAV_UTFString operator+(char c) const;

    /// Runes, up to the first NUL; Size() gives the bytes.
    unsigned int Length() const;
    /// A view of `len` runes from rune `pos` on.
    ZAV_UTFSubString operator()(unsigned int pos, unsigned int len);
    ZAV_UTFSubString operator()(unsigned int pos, unsigned int len) const;

    using ZAV_String::Find;
    /// Begins at BYTE `start`, answers the index of the RUNE, or -1.
    int Find(const char* s, int start = 0) const;

    ZAV_UTFString& Format(const char* fmt, ...) ZAV_PRINTF_LIKE(2, 3);
    ZAV_UTFString& FormatV(const char* fmt, va_list args);

    void TrimLeft();
    void TrimRight();
    /// Return this string as the byte string that it is.
    ZAV_String& ToLower();
    ZAV_String& ToUpper();

    /// As ZAV_Str's, then the whole text is made valid. A line ends at a line feed only; a carriage return
    /// before it is kept.
    std::istream& ReadLine(std::istream& is, boolean_t skipWhite = B_FALSE);
    std::istream& ReadString(std::istream& is);
    std::istream& ReadToDelim(std::istream& is, char delim);

private:
    void clean(unsigned int from);
};

/// A view of a range of whole runes of a ZAV_UTFString, made by its operator(). See ZAV_SubStr for how long
/// it lives. Size() gives its bytes.
class ZAV_API ZAV_UTFSubString : public ZAV_SubString {
public:
    /// Replace the range inside the owner; what is not valid UTF-8 is cleaned first.
    ZAV_UTFSubString& operator=(const ZAV_UTFSubString& u);
    ZAV_UTFSubString& operator=(const ZAV_UTFString& u);
    ZAV_UTFSubString& operator=(const char* p);
    ZAV_UTFSubString& operator=(const ZAV_Str& s);
    ZAV_UTFSubString& operator=(const ZAV_SubStr& s);

    /// Both in runes.
    unsigned int Length() const;
    int Position() const;
    /// ASCII only.
    ZAV_SubString& ToLower();
    ZAV_SubString& ToUpper();

private:
    friend class ZAV_UTFString;

    ZAV_UTFSubString(const ZAV_UTFSubString& u) : ZAV_SubString(u) {}
    ZAV_UTFSubString(ZAV_UTFString* owner, char* start, unsigned int length)
        : ZAV_SubString(owner, start, length) {}
};

/// `p` is cleaned like all text that comes in.
ZAV_API ZAV_UTFString operator+(const char* p, const ZAV_UTFString& u);
ZAV_API ZAV_UTFString operator+(const char* p, const ZAV_UTFSubString& u);

#endif
