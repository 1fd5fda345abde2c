#ifndef ZAVBASE_COLLECTIONS_SET_ACCESS_INTERNAL_H
#define ZAVBASE_COLLECTIONS_SET_ACCESS_INTERNAL_H

#include <zavbase/collections/nil_internal.h>
#include <zavbase/collections/set.h>
#include <zavbase/collections/set_index_internal.h>
#include <zavbase/collections/slot_block_internal.h>

/// Lookup in a ZAV_Set by the bytes of a key, without an object that holds them and without calls to the
/// elements. For a set of exactly class ZAV_Set, all of whose elements are of one registered class.
struct ZAV_SetAccess {
    /// The element with the key `v`, whose Hash() would be `hash`; null if there is none. `isIt(element)`
    /// tells whether an element has the key.
    template <class IsIt>
    static ZAV_CltObject* Find(const ZAV_Set& set, const zav_strong::KeyView& v, uint32_t hash, IsIt isIt) {
        ZAV_CltObject** slots = set.mContents.mArray;
        if (const ZAV_SetIndex* index = zav_slots::HeaderOf(slots).mIndex)
            return index->Find(ZAV_SetIndex::Sought(v)).mElement;
        uint32_t i = set.mNbits == 0 ? 0 : hash * 0x9E3779B9u >> (32 - set.mNbits);
        for (uint32_t n = 0; n <= set.mMask; ++n, i = (i - 1) & set.mMask) {
            if (slots[i] == ZAV_Nil()) return nullptr;
            if (isIt(slots[i])) return slots[i];
        }
        return nullptr;
    }
};

#endif
