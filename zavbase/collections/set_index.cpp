#include <zavbase/collections/set_index_internal.h>

#include <bit>
#include <cstdlib>
#include <cstring>
#include <new>

#include <zavbase/collections/nil_internal.h>

namespace {

// The highest clear bit at or below bit `from`; NONE if there is none.
uint32_t ClearBitDown(const uint64_t* bits, uint32_t from) {
    uint32_t word = from / 64;
    uint64_t clear = ~bits[word] & (~uint64_t{0} >> (63 - from % 64));
    while (!clear) {
        if (word == 0) return ZAV_SetIndex::NONE;
        clear = ~bits[--word];
    }
    return word * 64 + 63 - static_cast<uint32_t>(std::countl_zero(clear));
}

// Whether `stored` says that it is equal to `sought`. A holder compares by its key with either, a bare key
// only with a bare one; `oneSided` tells that this alone was the difference.
bool SaysEqual(const ZAV_CltObject* stored, const zav_strong::KeyView& sought, bool& oneSided) {
    zav_strong::KeyView v;
    if (!zav_strong::View(stored, v)) return false;
    if (v.mKind != sought.mKind || v.mLength != sought.mLength) return false;
    if (v.mBytes != sought.mBytes && std::memcmp(v.mBytes, sought.mBytes, v.mLength) != 0) return false;
    if (v.mWrapped >= sought.mWrapped) return true;
    oneSided = true;
    return false;
}

}  // namespace

size_t ZAV_SetIndex::BytesFor(uint32_t nbits) {
    const size_t n = size_t{1} << nbits;
    return n * (sizeof(Entry) + sizeof(Hashes)) + n / 8 + (n / 4096 + 1) * 8;
}

ZAV_SetIndex::ZAV_SetIndex(uint32_t nbits, void* memory) : mNbits(nbits), mMask((1u << nbits) - 1), mCount(0) {
    const size_t n = size_t{1} << nbits;
    // The words come first: their alignment is the strictest.
    mOccupied = static_cast<uint64_t*>(memory);
    mFull = mOccupied + n / 64;
    mEntries = reinterpret_cast<Entry*>(mFull + n / 4096 + 1);
    mHashes = reinterpret_cast<Hashes*>(mEntries + n);
}

ZAV_SetIndex::~ZAV_SetIndex() { std::free(mOccupied); }

std::unique_ptr<ZAV_SetIndex> ZAV_SetIndex::Make(uint32_t nbits) {
    if (nbits < 6 || nbits > 28) return nullptr;
    // Large blocks come zeroed from the system, page by page as they are used.
    void* memory = std::calloc(BytesFor(nbits), 1);
    if (!memory) return nullptr;
    std::unique_ptr<ZAV_SetIndex> index(new (std::nothrow) ZAV_SetIndex(nbits, memory));
    if (!index) std::free(memory);
    return index;
}

std::unique_ptr<ZAV_SetIndex> ZAV_SetIndex::Build(ZAV_CltObject* const* slots, uint32_t nbits) {
    std::unique_ptr<ZAV_SetIndex> index = Make(nbits);
    for (uint32_t i = 0; index && i <= index->mMask; ++i) {
        if (slots[i] == ZAV_Nil()) continue;
        zav_strong::KeyView v;
        if (!slots[i] || !zav_strong::View(slots[i], v)) return nullptr;
        const uint32_t strong = zav_strong::Hash(v);
        const Place twin = index->Find(slots[i], v, strong);
        if (twin.mElement || twin.mOneSided) return nullptr;
        index->Insert(slots[i], i, strong, slots[i]->Hash());
    }
    return index;
}

std::unique_ptr<ZAV_SetIndex> ZAV_SetIndex::Clone() const {
    std::unique_ptr<ZAV_SetIndex> copy = Make(mNbits);
    if (!copy) return nullptr;
    std::memcpy(copy->mOccupied, mOccupied, BytesFor(mNbits));
    copy->mCount = mCount;
    return copy;
}

ZAV_SetIndex::Place ZAV_SetIndex::Find(const ZAV_CltObject* sought, const zav_strong::KeyView& v,
                                       uint32_t strong) const {
    Place place = {nullptr, 0, false};
    for (uint32_t i = strong >> (32 - mNbits); mEntries[i].mElement; i = (i + 1) & mMask) {
        const Entry& e = mEntries[i];
        if (e.mStrong != strong) continue;
        if (e.mElement != sought && !SaysEqual(e.mElement, v, place.mOneSided)) continue;
        place.mElement = e.mElement;
        place.mSlot = e.mSlot;
        break;
    }
    return place;
}

uint32_t ZAV_SetIndex::EmptyFrom(uint32_t hash) const {
    const uint32_t home = HomeOf(hash), word = home / 64;
    const uint64_t clear = ~mOccupied[word] & (~uint64_t{0} >> (63 - home % 64));
    if (clear) return word * 64 + 63 - static_cast<uint32_t>(std::countl_zero(clear));
    uint32_t next = word == 0 ? NONE : ClearBitDown(mFull, word - 1);
    if (next == NONE) next = ClearBitDown(mFull, mMask / 64);
    if (next == NONE) return NONE;
    return next * 64 + 63 - static_cast<uint32_t>(std::countl_zero(~mOccupied[next]));
}

uint32_t ZAV_SetIndex::OccupiedFrom(uint32_t slot) const {
    if (slot > mMask) return NONE;
    uint32_t word = slot / 64;
    uint64_t set = mOccupied[word] & (~uint64_t{0} << slot % 64);
    while (!set) {
        if (word == mMask / 64) return NONE;
        set = mOccupied[++word];
    }
    return word * 64 + static_cast<uint32_t>(std::countr_zero(set));
}

void ZAV_SetIndex::Occupy(uint32_t slot) {
    uint64_t& word = mOccupied[slot / 64];
    word |= uint64_t{1} << slot % 64;
    if (!~word) mFull[slot / 4096] |= uint64_t{1} << slot / 64 % 64;
}

void ZAV_SetIndex::Vacate(uint32_t slot) {
    mOccupied[slot / 64] &= ~(uint64_t{1} << slot % 64);
    mFull[slot / 4096] &= ~(uint64_t{1} << slot / 64 % 64);
}

void ZAV_SetIndex::Insert(ZAV_CltObject* o, uint32_t slot, uint32_t strong, uint32_t hash) {
    uint32_t i = strong >> (32 - mNbits);
    while (mEntries[i].mElement) i = (i + 1) & mMask;
    mEntries[i] = {o, strong, slot};
    mHashes[slot] = {strong, hash};
    Occupy(slot);
    ++mCount;
}

ZAV_SetIndex::Entry& ZAV_SetIndex::EntryOf(uint32_t strong, uint32_t slot) const {
    uint32_t i = strong >> (32 - mNbits);
    while (mEntries[i].mSlot != slot || mEntries[i].mStrong != strong) i = (i + 1) & mMask;
    return mEntries[i];
}

void ZAV_SetIndex::FreeEntry(Entry& e) {
    uint32_t hole = static_cast<uint32_t>(&e - mEntries);
    for (uint32_t i = (hole + 1) & mMask; mEntries[i].mElement; i = (i + 1) & mMask) {
        const uint32_t home = mEntries[i].mStrong >> (32 - mNbits);
        if (((i - home) & mMask) < ((i - hole) & mMask)) continue;
        mEntries[hole] = mEntries[i];
        hole = i;
    }
    mEntries[hole] = {nullptr, 0, 0};
}

void ZAV_SetIndex::Remove(ZAV_CltObject** slots, uint32_t slot) {
    FreeEntry(EntryOf(mHashes[slot].mStrong, slot));
    uint32_t hole = slot;
    for (uint32_t i = (slot - 1) & mMask; i != slot && IsOccupied(i); i = (i - 1) & mMask) {
        // An element whose home lies below the hole is found without it.
        const uint32_t home = HomeOf(mHashes[i].mHash);
        if (((home - i) & mMask) < ((hole - i) & mMask)) continue;
        EntryOf(mHashes[i].mStrong, i).mSlot = hole;
        mHashes[hole] = mHashes[i];
        slots[hole] = slots[i];
        hole = i;
    }
    slots[hole] = ZAV_Nil();
    Vacate(hole);
    --mCount;
}

void ZAV_SetIndex::TakeAll(ZAV_CltObject** slots, const ZAV_SetIndex& from, ZAV_CltObject* const* fromSlots) {
    for (uint32_t i = from.OccupiedFrom(0); i != NONE; i = from.OccupiedFrom(i + 1)) {
        const Hashes& h = from.mHashes[i];
        const uint32_t slot = EmptyFrom(h.mHash);
        slots[slot] = fromSlots[i];
        Insert(fromSlots[i], slot, h.mStrong, h.mHash);
    }
}
