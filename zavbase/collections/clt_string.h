#ifndef ZAVBASE_COLLECTIONS_CLT_STRING_H
#define ZAVBASE_COLLECTIONS_CLT_STRING_H

#include <zavbase/collections/clt_object.h>
#include <zavbase/strings/byte_string.h>
#include <zavbase/strings/utf_string.h>

/// The hash of a text: its length XOR each 4-byte little-endian word, the last 1 to 3 bytes as a shorter
/// word. The same on every platform; cheap, and weak for texts that differ in few places.
ZAV_API unsigned int ZAV_StringHash(const char* bytes, unsigned int length);

/// A byte string that collections can hold. Both bases are meant to be used: it is a string to string
/// functions and a collectable object to collections. A key in a hashed collection must not be changed.
class ZAV_API ZAV_CltString : public ZAV_CltObject, public ZAV_String {
    ZAV_DECLARE_CLASS(ZAV_CltString)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_CltString)

    ZAV_CltString(const char* p) : ZAV_String(p) {}
    ZAV_CltString(const ZAV_String& s) : ZAV_String(s) {}
    ZAV_CltString(const ZAV_CltString& s) : ZAV_CltObject(s), ZAV_String(s) {}
    ZAV_CltString& operator=(const ZAV_CltString& s);
    using ZAV_String::operator=;
    ~ZAV_CltString() override;

    void PrintOn(std::ostream& os) override; ///< writes the text
    unsigned int Size() const override;      ///< the number of bytes
    /// Whether `o` is a text, of this class or ZAV_CltUTFString, of the same length and bytes.
    boolean_t IsEqual(const ZAV_CltObject* o) override;
    /// As strcmp; what is no text compares as 0.
    int Compare(const ZAV_CltObject* o) const override;
    using ZAV_String::Compare;
    unsigned int Hash() const override;

    virtual ZAV_CltObject* ShallowCopy() const; ///< a new object with a copy of the text
};

/// The same for UTF-8 text. Size is the number of bytes, Length the number of runes.
class ZAV_API ZAV_CltUTFString : public ZAV_CltObject, public ZAV_UTFString {
    ZAV_DECLARE_CLASS(ZAV_CltUTFString)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_CltUTFString)

    ZAV_CltUTFString(const char* p) : ZAV_UTFString(p) {}
    ZAV_CltUTFString(const ZAV_CltUTFString& s) : ZAV_CltObject(s), ZAV_UTFString(s) {}
    ZAV_CltUTFString& operator=(const ZAV_CltUTFString& s);
    using ZAV_UTFString::operator=;
    ~ZAV_CltUTFString() override;

    void PrintOn(std::ostream& os) override;
    unsigned int Size() const override;
    boolean_t IsEqual(const ZAV_CltObject* o) override;
    int Compare(const ZAV_CltObject* o) const override;
    using ZAV_UTFString::Compare;
    unsigned int Hash() const override;

    virtual ZAV_CltObject* ShallowCopy() const;
};

/// The two bases both have an output operator; these settle which text is meant.
ZAV_API std::ostream& operator<<(std::ostream& os, const ZAV_CltString& s);
ZAV_API std::ostream& operator<<(std::ostream& os, const ZAV_CltUTFString& s);
ZAV_API std::ostream& operator<<(std::ostream& os, ZAV_CltString& s);
ZAV_API std::ostream& operator<<(std::ostream& os, ZAV_CltUTFString& s);

#endif
