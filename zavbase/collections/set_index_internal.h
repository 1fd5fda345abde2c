#ifndef ZAVBASE_COLLECTIONS_SET_INDEX_INTERNAL_H
#define ZAVBASE_COLLECTIONS_SET_INDEX_INTERNAL_H

#include <memory>

#include <zavbase/collections/strong_hash_internal.h>

/// The side index of a hashed table: finds an element, or the slot where a new one goes, without probing.
///
/// The table itself stays what probing would have made it: same slots, same order. But probing asks the
/// elements one after the other, and hashes that collide by the thousand (decimal numbers do) make that slow.
/// The index keeps
///   - a hash table from a strong hash of each element's key to the element and its slot, with a copy of a
///     short key beside it: most keys are found without looking at any element,
///   - a bit for each occupied slot, and one for each 64 of them that are all occupied: the free slot below a
///     home slot is found by words, and iteration skips what is empty,
///   - for each occupied slot the strong hash and the element's own hash: a larger table is filled, and a gap
///     is closed after a removal, without touching the elements. Closing a gap still moves as many elements as
///     the table's rule moves, which may be the rest of the cluster.
/// It serves elements of the classes that zav_strong::View sees through, and is given up for a table that
/// gets another one. Its memory is optional: where there is none, the table does without.
class ZAV_SetIndex {
public:
    static const uint32_t NONE = 0xFFFFFFFFu;

    /// A key with what finding it takes.
    struct Sought {
        /// Of an element whose class is not known, nothing but that.
        explicit Sought(const ZAV_CltObject* o) : mKnown(zav_strong::View(o, mView)) {
            if (mKnown) Prepare();
        }
        explicit Sought(const zav_strong::KeyView& v) : mKnown(true), mView(v) { Prepare(); }

        bool mKnown;
        zav_strong::KeyView mView;
        zav_strong::Brief mBrief;
        uint32_t mStrong;

    private:
        void Prepare() {
            mBrief = zav_strong::MakeBrief(mView);
            mStrong = zav_strong::Hash(mView, mBrief);
        }
    };

    struct Place {
        ZAV_CltObject* mElement; ///< the equal element, or null
        uint32_t mSlot;          ///< its slot
        bool mOneSided;          ///< there is an element with the same key that does not call itself equal
    };

    /// An empty index for 2^nbits slots, at least 64; null without memory.
    static std::unique_ptr<ZAV_SetIndex> Make(uint32_t nbits);
    /// An index of the elements in `slots`; null if it cannot serve them.
    static std::unique_ptr<ZAV_SetIndex> Build(ZAV_CltObject* const* slots, uint32_t nbits);
    std::unique_ptr<ZAV_SetIndex> Clone() const;
    ~ZAV_SetIndex();

    uint32_t Count() const { return mCount; }
    Place Find(const Sought& sought) const;
    /// The first empty slot from the home slot of a hash down; NONE when the table is full.
    uint32_t EmptyFrom(uint32_t hash) const;
    /// The first occupied slot from `slot` up; NONE if there is none.
    uint32_t OccupiedFrom(uint32_t slot) const;

    /// False when there is no memory; the index is of no use then.
    bool Insert(ZAV_CltObject* o, const Sought& key, uint32_t slot, uint32_t hash);
    /// Empties a slot and closes the gap, in `slots` too, as backward shifting does.
    void Remove(ZAV_CltObject** slots, uint32_t slot);
    /// Moves every element of the table that `from` indexes to this, empty, one, slot by slot. `from` is of
    /// no use afterwards.
    void TakeAll(ZAV_CltObject** slots, ZAV_SetIndex& from, ZAV_CltObject* const* fromSlots);

private:
    struct Entry {
        ZAV_CltObject* mElement; ///< null when free
        uint32_t mStrong;
        uint32_t mSlot;
        zav_strong::Brief mBrief;
    };
    struct Hashes {
        uint32_t mStrong;
        uint32_t mHash;
    };

    explicit ZAV_SetIndex(uint32_t nbits);
    ZAV_SetIndex(const ZAV_SetIndex&) = delete;
    void operator=(const ZAV_SetIndex&) = delete;

    size_t SlotBytes() const;
    bool MakeEntries(uint32_t nbits);
    bool GrowEntries();
    Entry& FreeEntryFor(uint32_t strong);
    uint32_t HomeOf(uint32_t hash) const { return hash * 0x9E3779B9u >> (32 - mNbits); }
    Entry& EntryOf(uint32_t strong, const ZAV_CltObject* o) const;
    void EraseEntry(Entry& e);
    void Occupy(uint32_t slot);
    void Vacate(uint32_t slot);
    bool IsOccupied(uint32_t slot) const { return mOccupied[slot / 64] >> slot % 64 & 1; }

    uint32_t mNbits; // of the slots
    uint32_t mMask;
    uint32_t mCount;
    Hashes* mHashes;     // by slot; nothing for empty ones
    uint64_t* mOccupied; // a bit for each slot
    uint64_t* mFull;     // a bit for each word of mOccupied

    // Sized by the number of elements, not of slots. A home is the top bits of the strong hash, probing goes
    // up.
    uint32_t mEntryBits;
    uint32_t mEntryMask;
    Entry* mEntries;
};

#endif
