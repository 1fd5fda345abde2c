#include <zavbase/values/dict_path.h>

#include <cstring>
#include <ostream>

#include <zavbase/strings/text_length_internal.h>

constinit char ZAV_DictPath::sSeparator = ':';

namespace {

/// The room for a path and `text` behind it, with a separator. Texts beyond 32 bits are refused.
unsigned int RoomFor(unsigned int length, const char* text) {
    return zav_text::Checked(uint64_t{length} + zav_text::LengthOf(text) + 1);
}

} // namespace

ZAV_DictPath::ZAV_DictPath() : mFirstKey(nullptr), mEnd(nullptr), mSize(0) { CountAll(); }

ZAV_DictPath::ZAV_DictPath(const char* text) : mPath(RoomFor(0, text)), mSize(0) {
    AddKeys(text, zav_text::LengthOf(text));
}

ZAV_DictPath::ZAV_DictPath(const ZAV_String& text) : ZAV_DictPath(text.Ptr()) {}

ZAV_DictPath::ZAV_DictPath(const ZAV_DictPath& other)
    : ZAV_Object(other), mPath(other.mFirstKey, other.CountedLength()), mSize(other.mSize) {
    CountAll();
}

ZAV_DictPath::ZAV_DictPath(const ZAV_DictPath& base, const char* text)
    : mPath(RoomFor(base.CountedLength(), text)), mSize(base.mSize) {
    mPath.Append(base.mFirstKey, base.CountedLength());
    AddKeys(text, zav_text::LengthOf(text));
}

ZAV_DictPath::~ZAV_DictPath() = default;

ZAV_DictPath& ZAV_DictPath::operator=(const ZAV_DictPath& other) {
    if (this == &other) return *this;
    mPath = ZAV_String(other.mFirstKey, other.CountedLength());
    mSize = other.mSize;
    CountAll();
    return *this;
}

// The text may lie inside this path, so it is parsed before this one changes.
ZAV_DictPath& ZAV_DictPath::operator=(const char* text) { return *this = ZAV_DictPath(text); }
ZAV_DictPath& ZAV_DictPath::operator=(const ZAV_String& text) { return *this = ZAV_DictPath(text); }

// Many keys may come one after the other: the path grows where it is, unless dropped keys stand behind its
// end.
ZAV_DictPath& ZAV_DictPath::operator+=(const char* text) {
    if (CountedLength() != mPath.Length()) return *this = ZAV_DictPath(*this, text);
    const ZAV_DictPath added(text);
    mPath.Append(added.mFirstKey, added.CountedLength());
    mSize += added.mSize;
    CountAll();
    return *this;
}

ZAV_DictPath ZAV_DictPath::operator+(const char* text) const { return ZAV_DictPath(*this, text); }

ZAV_DictPath& ZAV_DictPath::operator--() {
    if (mSize == 0) return *this;
    --mSize;
    --mEnd;
    while (mEnd > mFirstKey && mEnd[-1] != '\0') --mEnd;
    return *this;
}

ZAV_DictPath& ZAV_DictPath::operator--(int) { return --*this; }

boolean_t ZAV_DictPath::operator==(const ZAV_DictPath& other) const {
    return ZAV_Bool(mSize == other.mSize && CountedLength() == other.CountedLength() &&
                    std::memcmp(mFirstKey, other.mFirstKey, CountedLength()) == 0);
}

const char* ZAV_DictPath::NextKey(const char* previous) const {
    if (!previous) return mFirstKey;
    if (previous >= mEnd) return nullptr;
    const char* next = previous + std::strlen(previous) + 1;
    return next < mEnd ? next : mPath.Ptr() + mPath.Length();
}

ZAV_DictPath::operator ZAV_String() const {
    ZAV_String text(mFirstKey, CountedLength());
    for (unsigned int i = 0; i < text.Length(); ++i)
        if (text.At(i) == '\0') text.At(i) = sSeparator;
    return text;
}

void ZAV_DictPath::PrintOn(std::ostream& os) { os << static_cast<ZAV_String>(*this).Ptr(); }

void ZAV_DictPath::AddKeys(const char* text, unsigned int length) {
    if (length > 0) {
        const unsigned int start = mPath.Length();
        mPath.Append(text, length);
        if (text[length - 1] != sSeparator) mPath += sSeparator;
        const char separator = sSeparator;
        for (char *p = &mPath.At(start), *end = &mPath.At(mPath.Length()); p != end; ++p) {
            if (*p != separator) continue;
            *p = '\0';
            ++mSize;
        }
    }
    CountAll();
}

/// Every key of the text counts; to be called whenever the text has changed or moved.
void ZAV_DictPath::CountAll() {
    mFirstKey = mPath.Ptr();
    mEnd = mFirstKey + mPath.Length();
}

std::ostream& operator<<(std::ostream& os, const ZAV_DictPath& path) {
    return os << static_cast<ZAV_String>(path).Ptr();
}
