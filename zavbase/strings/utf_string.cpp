#include <zavbase/strings/utf_string.h>

#include <ostream>

#include <zavbase/strings/char_class_internal.h>
#include <zavbase/strings/rune_internal.h>
#include <zavbase/strings/text_length_internal.h>

using zav_text::LengthOf;

ZAV_UTFString::ZAV_UTFString(const ZAV_UTFSubString& u) : ZAV_String(static_cast<const ZAV_SubStr&>(u)) {}

ZAV_UTFString::ZAV_UTFString(const char* p) : ZAV_String(p) { clean(0); }

ZAV_UTFString::ZAV_UTFString(const ZAV_Str& s) : ZAV_String(s) { clean(0); }

ZAV_UTFString::ZAV_UTFString(const ZAV_SubStr& s) : ZAV_String(s) { clean(0); }

ZAV_UTFString::ZAV_UTFString(const char* p, unsigned int n) : ZAV_String(p, n) { clean(0); }

ZAV_UTFString::~ZAV_UTFString() {}

// Makes what stands from byte `from` on valid, unless it is.
void ZAV_UTFString::clean(unsigned int from) {
    if (zav_utf::IsValid(mData + from, mLength - from)) return;
    for (unsigned i = from; i < mLength; ++i)
        if ((mData[i] & 0x80) != 0) mData[i] = '#';
}

ZAV_UTFString& ZAV_UTFString::operator=(const ZAV_UTFString& u) {
    ZAV_String::operator=(u);
    return *this;
}

ZAV_UTFString& ZAV_UTFString::operator=(const ZAV_UTFSubString& u) {
    ZAV_String::operator=(static_cast<const ZAV_SubStr&>(u));
    return *this;
}

ZAV_UTFString& ZAV_UTFString::operator=(const char* p) {
    ZAV_String::operator=(p);
    clean(0);
    return *this;
}

ZAV_UTFString& ZAV_UTFString::operator=(const ZAV_Str& s) {
    ZAV_String::operator=(s);
    clean(0);
    return *this;
}

ZAV_UTFString& ZAV_UTFString::operator=(const ZAV_SubStr& s) {
    ZAV_String::operator=(s);
    clean(0);
    return *this;
}

ZAV_UTFString& ZAV_UTFString::operator+=(const ZAV_UTFString& u) {
    ZAV_String::operator+=(static_cast<const ZAV_Str&>(u));
    return *this;
}

ZAV_UTFString& ZAV_UTFString::operator+=(const ZAV_UTFSubString& u) {
    ZAV_String::operator+=(static_cast<const ZAV_SubStr&>(u));
    return *this;
}

ZAV_UTFString& ZAV_UTFString::operator+=(const char* p) { return Append(p, LengthOf(p)); }

ZAV_UTFString& ZAV_UTFString::operator+=(const ZAV_Str& s) { return Append(s.Ptr(), s.Size()); }

ZAV_UTFString& ZAV_UTFString::operator+=(const ZAV_SubStr& s) { return Append(s.Ptr(), s.Size()); }

ZAV_UTFString& ZAV_UTFString::Append(const char* p, unsigned int n) {
    const unsigned before = mLength;
    concatInPlace(n, p);
    clean(before);
    return *this;
}

namespace {

// Appending cleans what needs it: the overload of the second operand decides.
template <class First, class Second>
ZAV_UTFString sum(const First& first, unsigned n1, const Second& second, unsigned n2) {
    ZAV_UTFString s(zav_text::Checked(uint64_t{n1} + n2));
    s += first;
    s += second;
    return s;
}

} // namespace

ZAV_UTFString ZAV_UTFString::operator+(const ZAV_UTFString& u) const {
    return sum(*this, mLength, u, u.mLength);
}

ZAV_UTFString ZAV_UTFString::operator+(const ZAV_UTFSubString& u) const {
    return sum(*this, mLength, u, u.Size());
}

ZAV_UTFString ZAV_UTFString::operator+(const char* p) const { return sum(*this, mLength, p, LengthOf(p)); }

ZAV_UTFString ZAV_UTFString::operator+(const ZAV_Str& s) const { return sum(*this, mLength, s, s.Size()); }

ZAV_UTFString ZAV_UTFString::operator+(const ZAV_SubStr& s) const { return sum(*this, mLength, s, s.Size()); }

ZAV_UTFString ZAV_UTFString::operator+(const ZAV_String& s) const { return sum(*this, mLength, s, s.Size()); }

ZAV_UTFString ZAV_UTFString::operator+(const ZAV_SubString& s) const {
    return sum(*this, mLength, s, s.Size());
}

ZAV_UTFString ZAV_UTFString::operator+(char c) const { return sum(*this, mLength, c, 1); }

ZAV_UTFString operator+(const char* p, const ZAV_UTFString& u) { return sum(p, LengthOf(p), u, u.Size()); }

ZAV_UTFString operator+(const char* p, const ZAV_UTFSubString& u) { return sum(p, LengthOf(p), u, u.Size()); }

unsigned int ZAV_UTFString::Length() const { return static_cast<unsigned>(utflen(mData)); }

ZAV_UTFSubString ZAV_UTFString::operator()(unsigned int pos, unsigned int len) {
    char* const start = mData + static_cast<unsigned>(utfbytepos(mData, pos));
    return ZAV_UTFSubString(this, start, static_cast<unsigned>(utfnsize(start, len)));
}

ZAV_UTFSubString ZAV_UTFString::operator()(unsigned int pos, unsigned int len) const {
    return const_cast<ZAV_UTFString&>(*this)(pos, len);
}

int ZAV_UTFString::Find(const char* s, int start) const {
    int at;
    if (isutfstr(s)) {
        at = ZAV_String::Find(s, start);
    } else {
        at = ZAV_String::Find(ZAV_UTFString(s).Ptr(), start);
    }
    return at < 0 ? -1 : utfrunepos(mData, static_cast<unsigned>(at));
}

ZAV_UTFString& ZAV_UTFString::Format(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    FormatV(fmt, args);
    va_end(args);
    return *this;
}

ZAV_UTFString& ZAV_UTFString::FormatV(const char* fmt, va_list args) {
    ZAV_String::FormatV(fmt, args);
    clean(0);
    return *this;
}

void ZAV_UTFString::TrimLeft() { cutFront(zav_text::LeadingSpace(mData, zav_text::kAscii)); }

void ZAV_UTFString::TrimRight() { trimEnd(zav_text::kAscii); }

ZAV_String& ZAV_UTFString::ToLower() {
    zav_text::ToLower(mData, mLength, zav_text::kAscii);
    return *this;
}

ZAV_String& ZAV_UTFString::ToUpper() {
    zav_text::ToUpper(mData, mLength, zav_text::kAscii);
    return *this;
}

std::istream& ZAV_UTFString::ReadLine(std::istream& is, boolean_t skipWhite) {
    readSkipping(is, '\n', skipWhite ? zav_text::kAscii : 0);
    clean(0);
    return is;
}

std::istream& ZAV_UTFString::ReadString(std::istream& is) { return ReadToDelim(is, '\0'); }

std::istream& ZAV_UTFString::ReadToDelim(std::istream& is, char delim) {
    readToDelim(is, delim, B_FALSE);
    clean(0);
    return is;
}

// The digits are made here: the stream's own flags and locale must not reach them.
void ZAV_UTFString::PrintOn(std::ostream& os) {
    static constexpr char kDigits[] = "0123456789abcdef";
    ZAV_String text(mLength);
    for (const char* p = mData; *p != '\0';) {
        if (static_cast<unsigned char>(*p) < 0xA0) {
            text += *p++;
            continue;
        }
        Rune r;
        p += chartorune(&r, p);
        text += '[';
        for (int shift = r > 0xFFF ? 12 : r > 0xFF ? 8 : 4; shift >= 0; shift -= 4)
            text += kDigits[r >> shift & 0xF];
        text += ']';
    }
    os << text.Ptr();
}

ZAV_UTFSubString& ZAV_UTFSubString::operator=(const ZAV_UTFSubString& u) {
    replace(u.mStart, u.mLength);
    return *this;
}

ZAV_UTFSubString& ZAV_UTFSubString::operator=(const ZAV_UTFString& u) {
    replace(u.Ptr(), u.Size());
    return *this;
}

ZAV_UTFSubString& ZAV_UTFSubString::operator=(const char* p) { return *this = ZAV_UTFString(p); }

ZAV_UTFSubString& ZAV_UTFSubString::operator=(const ZAV_Str& s) { return *this = ZAV_UTFString(s); }

ZAV_UTFSubString& ZAV_UTFSubString::operator=(const ZAV_SubStr& s) { return *this = ZAV_UTFString(s); }

ZAV_SubString& ZAV_UTFSubString::ToLower() {
    zav_text::ToLower(mStart, mLength, zav_text::kAscii);
    return *this;
}

ZAV_SubString& ZAV_UTFSubString::ToUpper() {
    zav_text::ToUpper(mStart, mLength, zav_text::kAscii);
    return *this;
}

unsigned int ZAV_UTFSubString::Length() const {
    return static_cast<unsigned>(zav_utf::CountRunes(mStart, mLength));
}

int ZAV_UTFSubString::Position() const {
    return utfrunepos(mOwner->Ptr(), static_cast<unsigned>(mStart - mOwner->Ptr()));
}
