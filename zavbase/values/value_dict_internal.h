#ifndef ZAVBASE_VALUES_VALUE_DICT_INTERNAL_H
#define ZAVBASE_VALUES_VALUE_DICT_INTERNAL_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <typeinfo>

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

/// Whether a value is of exactly this class of the library. A host may derive from any class, also from
/// ZAV_UVal with one of the library's types: its objects are asked by their virtual accessors only.
template <class Typed>
bool ZAV_IsExactly(const ZAV_UVal& value) {
    return typeid(value) == typeid(Typed);
}

/// Whether a value is a dictionary, of the library's class or one derived from it.
inline bool ZAV_IsDict(const ZAV_UVal* value) {
    return value && value->GetType() == UVAL_DICT &&
           (ZAV_IsExactly<ZAV_UValDict>(*value) || dynamic_cast<const ZAV_UValDict*>(value));
}

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
        // A key is cut anyway; its full length might not fit.
        mLength =
            static_cast<unsigned int>((std::min)(end - mAt, std::ptrdiff_t{ZAV_AssocUVal::kMaxKeyLength}));
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
