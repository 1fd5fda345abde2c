#ifndef ZAVBASE_COLLECTIONS_STRONG_HASH_INTERNAL_H
#define ZAVBASE_COLLECTIONS_STRONG_HASH_INTERNAL_H

#include <typeinfo>

#include <zavbase/collections/clt_object.h>

/// Seeing through an element to the bytes that its equality compares. A hashed collection uses it to find
/// elements by a hash of all their bytes where their own Hash() collides; see set_index_internal.h.
///
/// Only exact classes of the library are seen through: a derived class may have its own idea of equality.
namespace zav_strong {

enum Kind : uint16_t { TEXT, NUMBER, FIRST_REGISTERED };

/// What an element is equal by: the same kind, length and bytes.
struct KeyView {
    const char* mBytes;
    uint32_t mLength;
    uint16_t mKind;    ///< TEXT, NUMBER, or FIRST_REGISTERED and up for the registered classes
    uint16_t mWrapped; ///< 1 when the bytes are those of a ZAV_LookupKey's key
};

/// The bytes that an object of a registered class is compared by; they stay where they are until the object
/// changes.
typedef const char* (*BytesOf)(const ZAV_CltObject* o, uint32_t* length);

/// Makes a class known whose IsEqual is true exactly for objects of the same class with equal bytes, and
/// whose Hash() depends on these bytes only. To be called when the library is loaded, from a static
/// initialiser; the table it fills needs none. At most 4 classes: false for a fifth, whose objects stay
/// strangers.
bool RegisterKeyClass(const std::type_info& type, BytesOf bytes);

/// Fills `v` and returns true when the exact class of `o` is known.
bool View(const ZAV_CltObject* o, KeyView& v);

/// A view in 16 bytes: up to 15 bytes of the key and a tag. Of two keys of at most 15 bytes it tells whether
/// they are equal without looking at the objects again.
struct Brief {
    uint64_t mLow;
    uint64_t mHigh; ///< the top byte is the tag: 4 bits length, 1 bit wrapped, 3 bits kind

    static const uint64_t WRAPPED = uint64_t{1} << 60;

    bool IsWrapped() const { return (mHigh & WRAPPED) != 0; }
    /// Whether the bytes behind it count too, because there are more than 15.
    bool IsCut() const { return mHigh >> 61 == 7; }
    /// Whether the keys are the same as far as this tells, wrapped or not.
    bool SameKey(const Brief& b) const { return mLow == b.mLow && ((mHigh ^ b.mHigh) & ~WRAPPED) == 0; }
};
Brief MakeBrief(const KeyView& v);

/// 32 well-mixed bits of the kind and all the bytes; the same for wrapped and bare. `brief` is the view's.
uint32_t Hash(const KeyView& v, const Brief& brief);

} // namespace zav_strong

#endif
