#ifndef ZAVBASE_VALUES_VALUE_DICT_INTERNAL_H
#define ZAVBASE_VALUES_VALUE_DICT_INTERNAL_H

#include <cstring>

#include <zavbase/values/value_dict.h>

/// The number under which entries are registered with the sets; see strong_hash_internal.h.
extern const uint16_t ZAV_EntryKind;

/// ZAV_AssocUVal::Hash of a key.
inline uint32_t ZAV_EntryHash(const char* key, uint32_t length) {
    uint32_t hash = length;
    for (uint32_t i = 0; i + 4 <= length; i += 4) {
        uint32_t word;
        std::memcpy(&word, key + i, 4);
        hash ^= word;
    }
    return hash;
}

inline bool ZAV_IsDict(const ZAV_UVal* value) { return value && value->GetType() == UVAL_DICT; }

/// Walks the keys of a path: each runs to the separator, or to the end.
struct ZAV_LOCAL ZAV_UValDict::KeyWalk {
    explicit KeyWalk(const ZAV_DictPath& path) : mAt(path.mFirstKey), mEnd(path.mEnd), mSeparator('\0') {}
    explicit KeyWalk(const char* text)
        : mAt(text ? text : ""), mEnd(mAt + std::strlen(mAt)), mSeparator(ZAV_DictPath::GetSeparator()) {}

    bool Next() {
        if (AtEnd()) return false;
        const void* stop = std::memchr(mAt, mSeparator, static_cast<std::size_t>(mEnd - mAt));
        const char* end = stop ? static_cast<const char*>(stop) : mEnd;
        mKey = mAt;
        mLength = static_cast<unsigned int>(end - mAt);
        mAt = stop ? end + 1 : end;
        return true;
    }
    bool AtEnd() const { return mAt >= mEnd; }

    /// AssocAt, without a call through the library's exports.
    static ZAV_AssocUVal* Find(const ZAV_UValDict& dict, const char* key, unsigned int length);

    const char* mAt;
    const char* mEnd;
    char mSeparator;
    const char* mKey = nullptr;
    unsigned int mLength = 0;
};

#endif
