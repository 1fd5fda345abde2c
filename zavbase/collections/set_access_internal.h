#ifndef ZAVBASE_COLLECTIONS_SET_ACCESS_INTERNAL_H
#define ZAVBASE_COLLECTIONS_SET_ACCESS_INTERNAL_H

#include <atomic>

#include <zavbase/collections/nil_internal.h>
#include <zavbase/collections/set.h>
#include <zavbase/collections/set_index_internal.h>
#include <zavbase/collections/slot_block_internal.h>

/// Lookup in, and filling of, a ZAV_Set by the bytes of a key, without an object that holds them and without
/// calls to the elements. For a set of exactly class ZAV_Set, all of whose elements are of one registered
/// class.
struct ZAV_SetAccess {
    /// The side index, or null while the set has none.
    static const ZAV_SetIndex* Index(const ZAV_Set& set) {
        return zav_slots::HeaderOf(set.mContents.mArray).mIndex;
    }

    /// The first element in the order of the slots of which isIt(element) is true; null if there is none.
    template <class IsIt>
    static ZAV_CltObject* First(const ZAV_Set& set, IsIt isIt) {
        ZAV_CltObject* const* slots = set.Table().mArray;
        for (uint32_t i = 0; i <= set.mMask; ++i)
            if (slots[i] != ZAV_Nil() && isIt(slots[i])) return slots[i];
        return nullptr;
    }

    /// The element of which isIt(element) is true and whose Hash() is `hash`, by probing; null if there is
    /// none.
    template <class IsIt>
    static ZAV_CltObject* Probe(const ZAV_Set& set, uint32_t hash, IsIt isIt) {
        ZAV_CltObject* const* slots = set.mContents.mArray;
        uint32_t i = set.mNbits == 0 ? 0 : hash * 0x9E3779B9u >> (32 - set.mNbits);
        for (uint32_t n = 0; n <= set.mMask && slots[i] != ZAV_Nil(); ++n, i = (i - 1) & set.mMask)
            if (isIt(slots[i])) return slots[i];
        return nullptr;
    }

    /// Calls act(slot) for every slot of the table, which may store to it; the set is to be cleared then.
    template <class Act>
    static void ForEachSlot(ZAV_Set& set, Act act) {
        set.Table();
        for (uint32_t i = 0; i <= set.mMask; ++i) act(set.mContents.mArray[i]);
    }

    /// For what the set's owner keeps beside the table; null at first. The owner deletes it.
    static std::atomic_ref<void*> Helper(const ZAV_Set& set) {
        return std::atomic_ref<void*>(zav_slots::HeaderOf(set.mContents.mArray).mHelper);
    }

    static constexpr uint32_t NO_SLOT = 0xFFFFFFFF;
    /// The slot of an element; NO_SLOT when it is not found there by its key. Holds as long as Moves does.
    static uint32_t SlotOf(const ZAV_Set& set, const ZAV_CltObject* o) {
        const int slot = set.ZAV_Set::FindIndexOf(o);
        return slot >= 0 && set.mContents.mArray[slot] == o ? static_cast<uint32_t>(slot) : NO_SLOT;
    }
    static uint32_t Moves(const ZAV_Set& set) { return zav_slots::HeaderOf(set.mContents.mArray).mMoves; }

    // Filling an empty set at once, by who has worked out where the elements would come to stand.

    /// The table has 2^Bits slots; an element is sought from its home down.
    static uint32_t Bits(const ZAV_Set& set) { return set.mNbits; }
    static uint32_t Home(uint32_t hash, uint32_t nbits) { return hash * 0x9E3779B9u >> (32 - nbits); }
    static void MakeTable(ZAV_Set& set, uint32_t nbits) {
        if (nbits != set.mNbits) set.ZAV_Set::ReSize(1u << (nbits - 1));
    }
    static void Store(ZAV_Set& set, uint32_t slot, ZAV_CltObject* o) { set.mContents.mArray[slot] = o; }
    /// To be called when all `count` elements are stored.
    static void Stored(ZAV_Set& set, uint32_t count) { set.CountStored(count); }
};

#endif
