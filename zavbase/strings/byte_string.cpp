#include <zavbase/strings/byte_string.h>

#include <algorithm>
#include <cstdint>

#include <zavbase/strings/char_class_internal.h>
#include <zavbase/strings/number_text_internal.h>
#include <zavbase/strings/text_length_internal.h>
#include <zavbase/strings/utf_string.h>

namespace {

using zav_text::LengthOf;

ZAV_String sum(const char* p1, unsigned n1, const char* p2, unsigned n2) {
    ZAV_String s(zav_text::Checked(uint64_t{n1} + n2));
    s.Append(p1, n1);
    return s.Append(p2, n2);
}

} // namespace

ZAV_String::ZAV_String(const char* p, unsigned int n) {
    allocBuffer(n);
    if (n != 0) std::memcpy(mData, p, n);
    mData[n] = '\0';
}

ZAV_String::ZAV_String(char c, unsigned int n) {
    allocBuffer(n);
    std::memset(mData, c, n);
    mData[n] = '\0';
}

ZAV_String::ZAV_String(const char* p) : ZAV_String(p, LengthOf(p)) {}

ZAV_String::ZAV_String(const unsigned char* p)
    : ZAV_String(p ? reinterpret_cast<const char*>(p) + 1 : nullptr, p ? p[0] : 0u) {}

ZAV_String::~ZAV_String() {}

ZAV_String& ZAV_String::operator=(const ZAV_Str& s) {
    ZAV_Str::operator=(s);
    return *this;
}

ZAV_String& ZAV_String::operator=(const ZAV_SubStr& s) {
    ZAV_Str::operator=(s);
    return *this;
}

ZAV_String& ZAV_String::operator=(const char* p) {
    assignCopy(LengthOf(p), p);
    return *this;
}

ZAV_String& ZAV_String::operator+=(const ZAV_Str& s) {
    ZAV_Str::operator+=(s);
    return *this;
}

ZAV_String& ZAV_String::operator+=(const ZAV_SubStr& s) {
    ZAV_Str::operator+=(s);
    return *this;
}

ZAV_String& ZAV_String::operator+=(const char* p) { return Append(p, LengthOf(p)); }

ZAV_String& ZAV_String::Append(const char* p, unsigned int n) {
    concatInPlace(n, p);
    return *this;
}

ZAV_String ZAV_String::operator+(const ZAV_Str& s) const { return sum(mData, mLength, s.Ptr(), s.Size()); }

ZAV_String ZAV_String::operator+(const ZAV_SubStr& s) const { return sum(mData, mLength, s.Ptr(), s.Size()); }

ZAV_String ZAV_String::operator+(const ZAV_String& s) const { return *this + static_cast<const ZAV_Str&>(s); }

ZAV_String ZAV_String::operator+(const ZAV_UTFString& u) const {
    return *this + static_cast<const ZAV_Str&>(u);
}

ZAV_String ZAV_String::operator+(const ZAV_SubString& s) const {
    return *this + static_cast<const ZAV_SubStr&>(s);
}

ZAV_String ZAV_String::operator+(const ZAV_UTFSubString& u) const {
    return *this + static_cast<const ZAV_SubStr&>(u);
}

ZAV_String ZAV_String::operator+(const char* p) const { return sum(mData, mLength, p, LengthOf(p)); }

ZAV_String ZAV_String::operator+(char c) const { return sum(mData, mLength, &c, 1); }

ZAV_String operator+(const char* p, const ZAV_String& s) { return sum(p, LengthOf(p), s.Ptr(), s.Length()); }

ZAV_String operator+(char c, const ZAV_String& s) { return sum(&c, 1, s.Ptr(), s.Length()); }

ZAV_String operator+(const char* p, const ZAV_SubString& s) {
    return sum(p, LengthOf(p), s.Ptr(), s.Length());
}

ZAV_SubString ZAV_String::operator()(unsigned int pos, unsigned int len) {
    return ZAV_SubString(this, mData + pos, len);
}

ZAV_SubString ZAV_String::operator()(unsigned int pos, unsigned int len) const {
    return ZAV_SubString(const_cast<ZAV_String*>(this), mData + pos, len);
}

ZAV_String& ZAV_String::FindAndReplace(char from, char to) {
    for (char* p = mData; *p != '\0'; ++p)
        if (*p == from) *p = to;
    return *this;
}

ZAV_String& ZAV_String::ToAscii() {
    for (unsigned i = 0; i < mLength; ++i) mData[i] = static_cast<char>(mData[i] & 0x7F);
    return *this;
}

ZAV_String& ZAV_String::ToLower() {
    zav_text::ToLower(mData, mLength, zav_text::kAllBytes);
    return *this;
}

ZAV_String& ZAV_String::ToUpper() {
    zav_text::ToUpper(mData, mLength, zav_text::kAllBytes);
    return *this;
}

boolean_t ZAV_String::operator==(const ZAV_String& s) const {
    return ZAV_Bool(mLength == s.mLength && std::memcmp(mData, s.mData, mLength) == 0);
}

boolean_t ZAV_String::operator==(const ZAV_SubString& s) const { return s == *this; }
boolean_t ZAV_String::operator!=(const ZAV_SubString& s) const { return s != *this; }
boolean_t ZAV_String::operator<(const ZAV_SubString& s) const { return s > *this; }
boolean_t ZAV_String::operator>(const ZAV_SubString& s) const { return s < *this; }
boolean_t ZAV_String::operator<=(const ZAV_SubString& s) const { return s >= *this; }
boolean_t ZAV_String::operator>=(const ZAV_SubString& s) const { return s <= *this; }

ZAV_SubString::ZAV_SubString(ZAV_String* owner, char* start, unsigned int length) {
    mStart = start;
    mLength = length;
    mOwner = owner;
}

ZAV_SubString& ZAV_SubString::operator=(const ZAV_SubStr& s) {
    ZAV_SubStr::operator=(s);
    return *this;
}

ZAV_SubString& ZAV_SubString::operator=(const ZAV_Str& s) {
    ZAV_SubStr::operator=(s);
    return *this;
}

ZAV_SubString& ZAV_SubString::operator=(const char* p) {
    replace(p, LengthOf(p));
    return *this;
}

ZAV_String ZAV_SubString::operator+(const ZAV_SubStr& s) const {
    return sum(mStart, mLength, s.Ptr(), s.Size());
}

ZAV_String ZAV_SubString::operator+(const ZAV_Str& s) const {
    return sum(mStart, mLength, s.Ptr(), s.Size());
}

ZAV_String ZAV_SubString::operator+(const char* p) const { return sum(mStart, mLength, p, LengthOf(p)); }

unsigned int ZAV_SubString::Position() const { return static_cast<unsigned>(mStart - mOwner->Ptr()); }

ZAV_SubString& ZAV_SubString::ToLower() {
    zav_text::ToLower(mStart, mLength, zav_text::kAllBytes);
    return *this;
}

ZAV_SubString& ZAV_SubString::ToUpper() {
    zav_text::ToUpper(mStart, mLength, zav_text::kAllBytes);
    return *this;
}

// No range is as long as the length that stands for all longer texts, so nothing is lost by it.
int ZAV_SubString::compare(const char* p) const {
    const size_t length = p ? std::strlen(p) : 0;
    return ZAV_SubStr::compare(p ? p : "", static_cast<unsigned>((std::min)(length, size_t{UINT32_MAX})));
}

double ZAV_atof(const char* text, char decimalSeparator) {
    return zav_number::ParseReal(text, SIZE_MAX, decimalSeparator);
}
