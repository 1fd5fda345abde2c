#ifndef ZAVBASE_COLLECTIONS_SET_INDEX_INTERNAL_H
#define ZAVBASE_COLLECTIONS_SET_INDEX_INTERNAL_H

#include <atomic>
#include <bit>
#include <cstdlib>
#include <memory>
#include <mutex>

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
///     is closed after a removal, without touching the elements,
///   - notes of removals from long clusters, and of what is added after them: the slots are put right for all
///     of these together, by Settle, before anybody looks at them.
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
        uint32_t mEntry;         ///< for SlotOf
        bool mOneSided;          ///< there is an element with the same key that does not call itself equal
    };

    /// An empty index for 2^nbits slots, at least 64; null without memory.
    static std::unique_ptr<ZAV_SetIndex> Make(uint32_t nbits);
    /// An index of the elements in `slots`; null if it cannot serve them.
    static std::unique_ptr<ZAV_SetIndex> Build(ZAV_CltObject* const* slots, uint32_t nbits);
    std::unique_ptr<ZAV_SetIndex> Clone() const;
    ~ZAV_SetIndex();

    uint32_t Count() const { return mCount; }
    /// Slots walked so far to take elements out.
    uint64_t Steps() const { return mSteps; }
    Place Find(const Sought& sought) const;
    static uint32_t LowestBit(uint64_t bits) { return static_cast<uint32_t>(std::countr_zero(bits)); }

    /// Puts an element in that is not there; false when the index cannot: the table is full or memory is.
    bool Add(ZAV_CltObject** slots, ZAV_CltObject* o, const Sought& key, uint32_t hash);
    /// Takes the element with the key out, which is that of `o`, and returns it; null if there is none.
    ZAV_CltObject* Take(ZAV_CltObject** slots, const Sought& key, const ZAV_CltObject* o);
    /// Puts the slots right. Needs no memory, and looks at no element. Threads that only read may do so, and
    /// call Find and SlotOf, at the same time.
    void Settle(ZAV_CltObject** slots) {
        if (mIsPending.load(std::memory_order_acquire)) PutRight(slots);
    }

    // These are for slots that are settled.

    /// The slot of an element found.
    uint32_t SlotOf(ZAV_CltObject* const* slots, const Place& place) const;
    /// The first empty slot from the home slot of a hash down; NONE when the table is full.
    uint32_t EmptyFrom(uint32_t hash) const { return EmptyDown(HomeOf(hash)); }
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
        uint32_t mSlot; ///< where it was last seen, or NOTED and the place among mAdded
        zav_strong::Brief mBrief;
    };
    struct Hashes {
        uint32_t mStrong;
        uint32_t mHash;
    };
    struct Removed {
        ZAV_CltObject* mElement; ///< may be dead
        uint32_t mHash;
    };
    struct Added {
        ZAV_CltObject* mElement; ///< null when taken out again
        uint32_t mStrong;
        uint32_t mHash;
    };

    /// Notes in order; there may be no memory for another one.
    template <class T>
    class Notes {
    public:
        Notes() : mFirst(nullptr), mSize(0), mRoom(0) {}
        ~Notes() { std::free(mFirst); }
        Notes(const Notes&) = delete;
        void operator=(const Notes&) = delete;

        bool Push(const T& t) {
            if (mSize == mRoom && !Grow()) return false;
            mFirst[mSize++] = t;
            return true;
        }
        void Pop() { --mSize; }
        void Clear() { mSize = 0; }
        uint32_t Size() const { return mSize; }
        T& operator[](uint32_t i) { return mFirst[i]; }
        T* begin() { return mFirst; }
        T* end() { return mFirst + mSize; }

    private:
        bool Grow() {
            const uint32_t room = mRoom * 2 + 64;
            void* p = std::realloc(static_cast<void*>(mFirst), room * sizeof(T));
            if (!p) return false;
            mFirst = static_cast<T*>(p);
            mRoom = room;
            return true;
        }

        T* mFirst;
        uint32_t mSize;
        uint32_t mRoom;
    };

    static const uint32_t NOTED = 0x80000000u;

    explicit ZAV_SetIndex(uint32_t nbits);
    ZAV_SetIndex(const ZAV_SetIndex&) = delete;
    void operator=(const ZAV_SetIndex&) = delete;

    size_t SlotBytes() const;
    bool MakeEntries(uint32_t nbits);
    bool GrowEntries();
    Entry& FreeEntryFor(uint32_t strong);
    bool AddEntry(ZAV_CltObject* o, const Sought& key, uint32_t slot);
    uint32_t Locate(ZAV_CltObject* const* slots, const Entry& e, uint32_t steps) const;
    bool IsFarFromTheEnd(ZAV_CltObject* const* slots, const Entry& e);
    bool Note(ZAV_CltObject** slots, Entry& e, uint32_t hash);
    void PutRight(ZAV_CltObject** slots);
    void CloseGaps(ZAV_CltObject** slots, const Removed* first, const Removed* last);
    uint32_t EmptyDown(uint32_t slot) const;
    uint32_t TopOf(uint32_t slot) const;
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
    uint64_t mSteps;
    std::atomic<bool> mIsPending; // whether there are notes
    std::mutex mSettling;
    Notes<Removed> mRemoved;
    Notes<Added> mAdded;

    // Sized by the number of elements, not of slots. A home is the top bits of the strong hash, probing goes
    // up.
    uint32_t mEntryBits;
    uint32_t mEntryMask;
    Entry* mEntries;
};

#endif
