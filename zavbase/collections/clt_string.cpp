#include <zavbase/collections/clt_string.h>

#include <cstring>

ZAV_DEFINE_CLASS(ZAV_CltString, ZAV_CltObject)
ZAV_DEFINE_CLASS(ZAV_CltUTFString, ZAV_CltObject)

namespace {

// Byte by byte, so that the result does not depend on the machine's byte order; compilers make it one load.
uint32_t LittleEndianWord(const unsigned char* p) {
    return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 |
           static_cast<uint32_t>(p[2]) << 16 | static_cast<uint32_t>(p[3]) << 24;
}

boolean_t SameBytes(const ZAV_Str& a, const ZAV_Str& b) {
    return ZAV_Bool(a.Size() == b.Size() && std::memcmp(a.Ptr(), b.Ptr(), a.Size()) == 0);
}

// The text of an object of either class, or null. Objects of other classes come up beside texts in tables and
// arrays.
const ZAV_Str* TextOf(const ZAV_CltObject* o) {
    if (!o) return nullptr;
    if (o->IsKindOf(&ZAV_CltString::classZAV_CltString)) return static_cast<const ZAV_CltString*>(o);
    if (o->IsKindOf(&ZAV_CltUTFString::classZAV_CltUTFString)) return static_cast<const ZAV_CltUTFString*>(o);
    return nullptr;
}

boolean_t IsEqualText(const ZAV_Str& s, const ZAV_CltObject* o) {
    const ZAV_Str* other = TextOf(o);
    return other ? SameBytes(s, *other) : B_FALSE;
}

int CompareTexts(const ZAV_Str& s, const ZAV_CltObject* o) {
    const ZAV_Str* other = TextOf(o);
    return other ? s.Compare(*other) : 0;
}

} // namespace

unsigned int ZAV_StringHash(const char* bytes, unsigned int length) {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(bytes);
    uint32_t h = length;
    for (unsigned int n = length / 4; n > 0; --n, p += 4) h ^= LittleEndianWord(p);
    for (unsigned int i = 0; i < length % 4; ++i) h ^= static_cast<uint32_t>(p[i]) << (8 * i);
    return h;
}

ZAV_CltString::~ZAV_CltString() {}

ZAV_CltString& ZAV_CltString::operator=(const ZAV_CltString& s) {
    ZAV_String::operator=(static_cast<const ZAV_String&>(s));
    return *this;
}

void ZAV_CltString::PrintOn(std::ostream& os) { ZAV_String::PrintOn(os); }
unsigned int ZAV_CltString::Size() const { return ZAV_Str::Size(); }

boolean_t ZAV_CltString::IsEqual(const ZAV_CltObject* o) { return IsEqualText(*this, o); }
int ZAV_CltString::Compare(const ZAV_CltObject* o) const { return CompareTexts(*this, o); }

unsigned int ZAV_CltString::Hash() const { return ZAV_StringHash(Ptr(), ZAV_Str::Size()); }
ZAV_CltObject* ZAV_CltString::ShallowCopy() const { return new ZAV_CltString(*this); }

ZAV_CltUTFString::~ZAV_CltUTFString() {}

ZAV_CltUTFString& ZAV_CltUTFString::operator=(const ZAV_CltUTFString& s) {
    ZAV_UTFString::operator=(static_cast<const ZAV_UTFString&>(s));
    return *this;
}

void ZAV_CltUTFString::PrintOn(std::ostream& os) { ZAV_UTFString::PrintOn(os); }
unsigned int ZAV_CltUTFString::Size() const { return ZAV_Str::Size(); }

boolean_t ZAV_CltUTFString::IsEqual(const ZAV_CltObject* o) { return IsEqualText(*this, o); }
int ZAV_CltUTFString::Compare(const ZAV_CltObject* o) const { return CompareTexts(*this, o); }

unsigned int ZAV_CltUTFString::Hash() const { return ZAV_StringHash(Ptr(), ZAV_Str::Size()); }
ZAV_CltObject* ZAV_CltUTFString::ShallowCopy() const { return new ZAV_CltUTFString(*this); }

std::ostream& operator<<(std::ostream& os, const ZAV_CltString& s) {
    return os << static_cast<const ZAV_Object&>(s);
}
std::ostream& operator<<(std::ostream& os, const ZAV_CltUTFString& s) {
    return os << static_cast<const ZAV_Object&>(s);
}
std::ostream& operator<<(std::ostream& os, ZAV_CltString& s) { return os << static_cast<ZAV_Object&>(s); }
std::ostream& operator<<(std::ostream& os, ZAV_CltUTFString& s) { return os << static_cast<ZAV_Object&>(s); }
