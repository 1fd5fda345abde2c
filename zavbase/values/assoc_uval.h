#ifndef ZAVBASE_VALUES_ASSOC_UVAL_H
#define ZAVBASE_VALUES_ASSOC_UVAL_H

#include <cstdint>

#include <zavbase/collections/clt_object.h>
#include <zavbase/foundation/pooled.h>

class ZAV_UVal;

/// One entry of a value dictionary: a key of at most 64 characters and its value, which may be null. A longer
/// key is cut to its first 64 characters.
///
/// An entry inside a dictionary belongs to it, and so does its value. The entry itself never deletes a value:
/// the dictionary does, and who takes a value out with Value(ZAV_UVal*) disposes of it. Do not change the key
/// of an entry that is in a dictionary.
class ZAV_API ZAV_AssocUVal : public ZAV_CltObject, public ZAV_Pooled {
    ZAV_DECLARE_CLASS(ZAV_AssocUVal)

public:
    enum { kMaxKeyLength = 64 };

    ZAV_AssocUVal(const char* key, ZAV_UVal* value);
    /// The key is the first `length` bytes of `key`.
    ZAV_AssocUVal(const char* key, unsigned int length, ZAV_UVal* value);
    ZAV_AssocUVal(const ZAV_AssocUVal& other);
    ~ZAV_AssocUVal() override;
    ZAV_AssocUVal& operator=(const ZAV_AssocUVal& other);

    /// Key, " => " and the value's print, or "<NULL>".
    void PrintOn(std::ostream& os) override;
    /// Another entry with the same key; case counts.
    boolean_t IsEqual(const ZAV_CltObject* o) override;
    /// strcmp of the keys; `o` must be an entry.
    int Compare(const ZAV_CltObject* o) const override;
    /// The key length XOR-ed with each whole little-endian 4-byte word of the key. The last length % 4 bytes
    /// do not count, so that keys which differ only there have the same hash.
    unsigned int Hash() const override;

    /// A new entry, in no dictionary, with the same key and the same value pointer.
    virtual ZAV_CltObject* ShallowCopy() const;
    virtual const char* Key() const;
    virtual const char* Key(const char* key);
    virtual ZAV_UVal* Value() const;
    /// Stores a value and returns the one before, which is now the caller's.
    virtual ZAV_UVal* Value(ZAV_UVal* value);

    unsigned int KeyLength() const { return mKeyLength; }
    /// The neighbours in the order in which keys were added; null at the ends.
    ZAV_AssocUVal* GetPrev() const { return mPrev; }
    ZAV_AssocUVal* GetNext() const { return mNext; }

private:
    friend class ZAV_UValDict;
    void SetKey(const char* key, unsigned int length);

    char mKey[kMaxKeyLength + 1];
    uint32_t mKeyLength;
    ZAV_UVal* mValue;
    ZAV_AssocUVal* mPrev;
    ZAV_AssocUVal* mNext;
};

#endif
