#include <zavbase/collections/set_index_internal.h>

#include <algorithm>
#include <functional>

#include <zavbase/collections/nil_internal.h>

// Taking elements out of an indexed table. The rule is backward shifting: going down from the gap, the first
// element whose home is not below the gap moves into it and leaves the next gap. What results is the table
// that would stand if the element had never been put in; so it does not depend on when the gaps are closed.
// Long shifts are put off: removals and additions are noted, and the slots are put right for all of them
// together when somebody looks at a slot.
namespace {

// Slots walked at most to close a gap at once.
const uint32_t AT_ONCE = 512;

// The lowest clear bit at or above bit `from`, of `n` bits; NONE if there is none.
uint32_t ClearBitUp(const uint64_t* bits, uint32_t from, uint32_t n) {
    uint32_t word = from / 64;
    for (uint64_t clear = ~bits[word] & (~uint64_t{0} << from % 64);; clear = ~bits[word]) {
        const uint32_t bit = clear ? word * 64 + ZAV_SetIndex::LowestBit(clear) : n;
        if (bit < n) return bit;
        if (++word * 64 >= n) return ZAV_SetIndex::NONE;
    }
}

} // namespace

// No element is moved down the table: it is where it was last seen, or above, up to its home.
uint32_t ZAV_SetIndex::Locate(ZAV_CltObject* const* slots, const Entry& e, uint32_t steps) const {
    const std::atomic_ref<uint32_t> seen(const_cast<Entry&>(e).mSlot);
    uint32_t slot = seen.load(std::memory_order_relaxed);
    for (uint32_t n = 0; slots[slot] != e.mElement; ++n, slot = (slot + 1) & mMask)
        if (n == steps) return NONE;
    seen.store(slot, std::memory_order_relaxed);
    return slot;
}

uint32_t ZAV_SetIndex::SlotOf(ZAV_CltObject* const* slots, const Place& place) const {
    return Locate(slots, mEntries[place.mEntry], mMask);
}

ZAV_CltObject* ZAV_SetIndex::Take(ZAV_CltObject** slots, const Sought& key, const ZAV_CltObject* o) {
    const Place place = Find(key);
    if (!place.mElement) return nullptr;
    Entry& e = mEntries[place.mEntry];
    const bool isLater = mIsPending.load(std::memory_order_relaxed) || IsFarFromTheEnd(slots, e);
    if (isLater && Note(slots, e, o->Hash())) return place.mElement;
    Settle(slots);
    Remove(slots, Locate(slots, e, mMask));
    return place.mElement;
}

// Whether closing the gap of the element may take long. A table more than half full, which growing prevents
// unless the set's count is wrong, may have no end to its clusters: there nothing is put off.
bool ZAV_SetIndex::IsFarFromTheEnd(ZAV_CltObject* const* slots, const Entry& e) {
    if (mCount > mMask / 2 + 1) return false;
    const uint32_t before = e.mSlot, slot = Locate(slots, e, AT_ONCE);
    mSteps += slot == NONE ? AT_ONCE : ((slot - before) & mMask) + 1;
    return slot == NONE || ((slot - EmptyDown(slot)) & mMask) > AT_ONCE;
}

void ZAV_SetIndex::Remove(ZAV_CltObject** slots, uint32_t slot) {
    EraseEntry(EntryOf(mHashes[slot].mStrong, slots[slot]));
    uint32_t hole = slot, i = (slot - 1) & mMask;
    for (; i != slot && IsOccupied(i); i = (i - 1) & mMask) {
        // An element whose home lies below the hole is found without it.
        const uint32_t home = HomeOf(mHashes[i].mHash);
        if (((home - i) & mMask) < ((hole - i) & mMask)) continue;
        mHashes[hole] = mHashes[i];
        slots[hole] = slots[i];
        hole = i;
    }
    mSteps += (slot - i) & mMask;
    slots[hole] = ZAV_Nil();
    Vacate(hole);
    --mCount;
}

// False when there is no memory to note it. The notes never outgrow what they save.
bool ZAV_SetIndex::Note(ZAV_CltObject** slots, Entry& e, uint32_t hash) {
    if (e.mSlot & NOTED)
        mAdded[e.mSlot & ~NOTED].mElement = nullptr;
    else if (!mRemoved.Push({e.mElement, hash}))
        return false;
    mIsPending.store(true, std::memory_order_relaxed);
    EraseEntry(e);
    --mCount;
    if (mRemoved.Size() + mAdded.Size() > mCount / 2 + 1024) Settle(slots);
    return true;
}

bool ZAV_SetIndex::Add(ZAV_CltObject** slots, ZAV_CltObject* o, const Sought& key, uint32_t hash) {
    if (mIsPending.load(std::memory_order_relaxed) && mCount <= mMask &&
        mAdded.Push({o, key.mStrong, hash})) {
        if (AddEntry(o, key, NOTED | (mAdded.Size() - 1))) return true;
        mAdded.Pop();
    }
    Settle(slots);
    const uint32_t slot = EmptyFrom(hash);
    if (slot == NONE || !Insert(o, key, slot, hash)) return false;
    slots[slot] = o;
    return true;
}

void ZAV_SetIndex::PutRight(ZAV_CltObject** slots) {
    const std::lock_guard<std::mutex> guard(mSettling);
    if (!mIsPending.load(std::memory_order_relaxed)) return;
    // Cluster by cluster, each once.
    for (Removed& r : mRemoved) r.mHash = TopOf(HomeOf(r.mHash));
    std::sort(mRemoved.begin(), mRemoved.end(), [](const Removed& a, const Removed& b) {
        return a.mHash != b.mHash ? a.mHash < b.mHash : std::less<>()(a.mElement, b.mElement);
    });
    for (Removed *first = mRemoved.begin(), *last; first != mRemoved.end(); first = last) {
        last = std::find_if(first, mRemoved.end(), [=](const Removed& r) { return r.mHash != first->mHash; });
        CloseGaps(slots, first, last);
    }
    for (const Added& a : mAdded) {
        if (!a.mElement) continue;
        const uint32_t slot = EmptyFrom(a.mHash);
        slots[slot] = a.mElement;
        mHashes[slot] = {a.mStrong, a.mHash};
        // (An entry's other fields are what other readers look at now.)
        EntryOf(a.mStrong, a.mElement).mSlot = slot;
        Occupy(slot);
    }
    mSteps += mAdded.Size();
    mRemoved.Clear();
    mAdded.Clear();
    mIsPending.store(false, std::memory_order_release);
}

uint32_t ZAV_SetIndex::TopOf(uint32_t slot) const {
    const uint32_t words = mMask / 64 + 1, inWord = ClearBitUp(mOccupied + slot / 64, slot % 64, 64);
    if (inWord != NONE) return slot / 64 * 64 + inWord - 1;
    uint32_t word = slot / 64 + 1 < words ? ClearBitUp(mFull, slot / 64 + 1, words) : NONE;
    if (word == NONE) word = ClearBitUp(mFull, 0, words);
    return (word * 64 + LowestBit(~mOccupied[word]) - 1) & mMask;
}

// Each element goes to the first gap from its home down, if that is above where it stands. The elements taken
// out may be dead: only their addresses are looked at.
void ZAV_SetIndex::CloseGaps(ZAV_CltObject** slots, const Removed* first, const Removed* last) {
    const auto isBefore = [](const Removed& r, ZAV_CltObject* e) { return std::less<>()(r.mElement, e); };
    uint32_t highest = NONE;
    for (uint32_t i = first->mHash; IsOccupied(i); i = (i - 1) & mMask, ++mSteps) {
        ZAV_CltObject* const e = slots[i];
        const Removed* at = std::lower_bound(first, last, e, isBefore);
        const bool isRemoved = at != last && at->mElement == e;
        if (!isRemoved && highest == NONE) continue;
        if (!isRemoved) {
            const uint32_t fromHome = (HomeOf(mHashes[i].mHash) - i) & mMask;
            const uint32_t hole =
                ((highest - i) & mMask) <= fromHome ? highest : EmptyDown((i + fromHome) & mMask);
            if (((hole - i) & mMask) > fromHome) continue;
            slots[hole] = e;
            mHashes[hole] = mHashes[i];
            Occupy(hole);
        }
        slots[i] = ZAV_Nil();
        Vacate(i);
        if (highest == NONE || IsOccupied(highest)) highest = EmptyDown(highest == NONE ? i : highest);
    }
}
