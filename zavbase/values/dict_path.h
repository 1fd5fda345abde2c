#ifndef ZAVBASE_VALUES_DICT_PATH_H
#define ZAVBASE_VALUES_DICT_PATH_H

#include <cstdint>

#include <zavbase/foundation/object.h>
#include <zavbase/strings/byte_string.h>

/// The name of a value in a tree of dictionaries: a list of keys, written as text with a separator between
/// them. A separator at the end changes nothing ("a:b" is "a:b:"), empty keys count ("a::b" has three keys,
/// ":a" two), the empty text has none. Text ends at its first NUL. Not locked.
class ZAV_API ZAV_DictPath : public ZAV_Object {
public:
    ZAV_DictPath();
    ZAV_DictPath(const char* text);
    ZAV_DictPath(const ZAV_String& text);
    ZAV_DictPath(const ZAV_DictPath& other);
    /// The keys of `base`, then those of `text`.
    ZAV_DictPath(const ZAV_DictPath& base, const char* text);
    ~ZAV_DictPath() override;

    ZAV_DictPath& operator=(const ZAV_DictPath& other);
    ZAV_DictPath& operator=(const char* text);
    ZAV_DictPath& operator=(const ZAV_String& text);

    /// Appends the keys of `text`: as many as it holds, none for the empty text.
    ZAV_DictPath& operator+=(const char* text);
    ZAV_DictPath operator+(const char* text) const;
    /// Both drop the last key, if there is one, and return the path itself.
    ZAV_DictPath& operator--();
    ZAV_DictPath& operator--(int);

    /// The same keys, counted and byte for byte. (The forms for text keep a comparison with text
    /// unambiguous; those with text on the left are found only where the right side is a path.)
    boolean_t operator==(const ZAV_DictPath& other) const;
    boolean_t operator==(const char* text) const { return *this == ZAV_DictPath(text); }
    boolean_t operator==(const ZAV_String& text) const { return *this == ZAV_DictPath(text); }
    boolean_t operator==(const ZAV_SubString& text) const { return *this == ZAV_String(text); }
    boolean_t operator!=(const ZAV_DictPath& other) const { return ZAV_Bool(!(*this == other)); }
    boolean_t operator!=(const char* text) const { return ZAV_Bool(!(*this == text)); }
    boolean_t operator!=(const ZAV_String& text) const { return ZAV_Bool(!(*this == text)); }
    boolean_t operator!=(const ZAV_SubString& text) const { return ZAV_Bool(!(*this == text)); }
    friend boolean_t operator==(const char* text, const ZAV_DictPath& path) { return path == text; }
    friend boolean_t operator==(const ZAV_String& text, const ZAV_DictPath& path) { return path == text; }
    friend boolean_t operator==(const ZAV_SubString& text, const ZAV_DictPath& path) { return path == text; }
    friend boolean_t operator!=(const char* text, const ZAV_DictPath& path) { return path != text; }
    friend boolean_t operator!=(const ZAV_String& text, const ZAV_DictPath& path) { return path != text; }
    friend boolean_t operator!=(const ZAV_SubString& text, const ZAV_DictPath& path) { return path != text; }

    /// The number of keys.
    int Size() const { return mSize; }
    /// The first key for null, else the key after `previous`. After the last key comes one empty text, then
    /// null: call it Size() times. Valid until the path changes.
    const char* NextKey(const char* previous) const;

    /// Each key followed by the separator.
    operator ZAV_String() const;
    void PrintOn(std::ostream& os) override;

    /// The process-wide separator, at first ':'. Set it once at start-up; paths built before keep their keys.
    static void SetSeparator(char separator) { sSeparator = separator; }
    static char GetSeparator() { return sSeparator; }

private:
    friend class ZAV_UValDict;
    void AddKeys(const char* text, unsigned int length);
    void CountAll();
    unsigned int CountedLength() const { return static_cast<unsigned int>(mEnd - mFirstKey); }

    static char sSeparator;

    ZAV_String mPath; // the keys, each ended by a NUL
    const char* mFirstKey;
    const char* mEnd; // behind the NUL of the last counted key
    int32_t mSize;
};

ZAV_API std::ostream& operator<<(std::ostream& os, const ZAV_DictPath& path);

#endif
