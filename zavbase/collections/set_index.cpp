#include <zavbase/collections/set_index_internal.h>

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include <zavbase/collections/nil_internal.h>
#include <zavbase/os/memory.h>

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

// Large blocks come zeroed from the system, page by page as they are used.
void* AllocateZeroed(size_t size) {
    void* p = std::calloc(size, 1);
    if (p) zav_os::AdviseRandomUse(p, size);
    return p;
}

// Starts to fetch what will be needed in a moment.
void Prefetch([[maybe_unused]] const void* p) {
#if defined(__GNUC__)
    __builtin_prefetch(p);
#endif
}

// Whether a key too long for its brief is the element's.
bool HasKey(const ZAV_CltObject* stored, const zav_strong::KeyView& sought) {
    zav_strong::KeyView v;
    return zav_strong::View(stored, v) && v.mKind == sought.mKind && v.mLength == sought.mLength &&
           std::memcmp(v.mBytes, sought.mBytes, v.mLength) == 0;
}

} // namespace

ZAV_SetIndex::ZAV_SetIndex(uint32_t nbits)
    : mNbits(nbits), mMask((1u << nbits) - 1), mCount(0), mHashes(nullptr), mOccupied(nullptr),
      mFull(nullptr), mSteps(0), mIsPending(false), mEntryBits(0), mEntryMask(0), mEntries(nullptr) {}

ZAV_SetIndex::~ZAV_SetIndex() {
    std::free(mOccupied);
    std::free(mEntries);
}

size_t ZAV_SetIndex::SlotBytes() const {
    const size_t n = size_t{mMask} + 1;
    return n / 8 + (n / 4096 + 1) * 8 + n * sizeof(Hashes);
}

std::unique_ptr<ZAV_SetIndex> ZAV_SetIndex::Make(uint32_t nbits) {
    if (nbits < 6 || nbits > 28) return nullptr;
    std::unique_ptr<ZAV_SetIndex> index(new (std::nothrow) ZAV_SetIndex(nbits));
    if (!index) return nullptr;
    index->mOccupied = static_cast<uint64_t*>(AllocateZeroed(index->SlotBytes()));
    if (!index->mOccupied) return nullptr;
    const size_t n = size_t{1} << nbits;
    index->mFull = index->mOccupied + n / 64;
    index->mHashes = reinterpret_cast<Hashes*>(index->mFull + n / 4096 + 1);
    return index;
}

std::unique_ptr<ZAV_SetIndex> ZAV_SetIndex::Build(ZAV_CltObject* const* slots, uint32_t nbits) {
    std::unique_ptr<ZAV_SetIndex> index = Make(nbits);
    for (uint32_t i = 0; index && i <= index->mMask; ++i) {
        if (slots[i] == ZAV_Nil()) continue;
        if (!slots[i]) return nullptr;
        const Sought key(slots[i]);
        if (!key.mKnown) return nullptr;
        const Place twin = index->Find(key);
        if (twin.mElement || twin.mOneSided) return nullptr;
        if (!index->Insert(slots[i], key, i, slots[i]->Hash())) return nullptr;
    }
    return index;
}

std::unique_ptr<ZAV_SetIndex> ZAV_SetIndex::Clone() const {
    std::unique_ptr<ZAV_SetIndex> copy = Make(mNbits);
    if (!copy || (mEntries && !copy->MakeEntries(mEntryBits))) return nullptr;
    std::memcpy(copy->mOccupied, mOccupied, SlotBytes());
    if (mEntries) std::copy_n(mEntries, size_t{mEntryMask} + 1, copy->mEntries);
    copy->mCount = mCount;
    return copy;
}

bool ZAV_SetIndex::MakeEntries(uint32_t nbits) {
    Entry* entries = static_cast<Entry*>(AllocateZeroed(sizeof(Entry) << nbits));
    if (!entries) return false;
    mEntries = entries;
    mEntryBits = nbits;
    mEntryMask = (1u << nbits) - 1;
    return true;
}

bool ZAV_SetIndex::GrowEntries() {
    Entry* old = mEntries;
    const uint32_t n = old ? mEntryMask + 1 : 0;
    if (!MakeEntries(old ? mEntryBits + 1 : 6)) return false;
    for (uint32_t i = 0; i < n; ++i)
        if (old[i].mElement) FreeEntryFor(old[i].mStrong) = old[i];
    std::free(old);
    return true;
}

ZAV_SetIndex::Entry& ZAV_SetIndex::FreeEntryFor(uint32_t strong) {
    uint32_t i = strong >> (32 - mEntryBits);
    while (mEntries[i].mElement) i = (i + 1) & mEntryMask;
    return mEntries[i];
}

ZAV_SetIndex::Place ZAV_SetIndex::Find(const Sought& sought) const {
    Place place = {nullptr, NONE, false};
    if (!mCount) return place;
    for (uint32_t i = sought.mStrong >> (32 - mEntryBits); mEntries[i].mElement; i = (i + 1) & mEntryMask) {
        const Entry& e = mEntries[i];
        if (e.mStrong != sought.mStrong || !e.mBrief.SameKey(sought.mBrief)) continue;
        // Registered classes let their keys be changed in place, and their objects are looked at next anyway.
        const bool isSure = !e.mBrief.IsCut() && sought.mView.mKind < zav_strong::FIRST_REGISTERED;
        if (!isSure && !HasKey(e.mElement, sought.mView)) continue;
        // A holder compares by its key with either kind, a bare key is only equal to a bare one.
        place.mOneSided = sought.mBrief.IsWrapped() && !e.mBrief.IsWrapped();
        if (place.mOneSided) continue;
        place.mElement = e.mElement;
        place.mEntry = i;
        break;
    }
    return place;
}

uint32_t ZAV_SetIndex::EmptyDown(uint32_t slot) const {
    const uint32_t word = slot / 64;
    const uint64_t clear = ~mOccupied[word] & (~uint64_t{0} >> (63 - slot % 64));
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

bool ZAV_SetIndex::AddEntry(ZAV_CltObject* o, const Sought& key, uint32_t slot) {
    const uint64_t room = mEntries ? uint64_t{mEntryMask} + 1 : 0;
    if (mCount >= room * 13 / 16 && !GrowEntries()) return false;
    FreeEntryFor(key.mStrong) = {o, key.mStrong, slot, key.mBrief};
    ++mCount;
    return true;
}

bool ZAV_SetIndex::Insert(ZAV_CltObject* o, const Sought& key, uint32_t slot, uint32_t hash) {
    if (!AddEntry(o, key, slot)) return false;
    mHashes[slot] = {key.mStrong, hash};
    Occupy(slot);
    return true;
}

ZAV_SetIndex::Entry& ZAV_SetIndex::EntryOf(uint32_t strong, const ZAV_CltObject* o) const {
    uint32_t i = strong >> (32 - mEntryBits);
    while (mEntries[i].mElement != o) i = (i + 1) & mEntryMask;
    return mEntries[i];
}

void ZAV_SetIndex::EraseEntry(Entry& e) {
    uint32_t hole = static_cast<uint32_t>(&e - mEntries);
    for (uint32_t i = (hole + 1) & mEntryMask; mEntries[i].mElement; i = (i + 1) & mEntryMask) {
        const uint32_t home = mEntries[i].mStrong >> (32 - mEntryBits);
        if (((i - home) & mEntryMask) < ((i - hole) & mEntryMask)) continue;
        mEntries[hole] = mEntries[i];
        hole = i;
    }
    mEntries[hole].mElement = nullptr;
}

void ZAV_SetIndex::TakeAll(ZAV_CltObject** slots, ZAV_SetIndex& from, ZAV_CltObject* const* fromSlots) {
    std::swap(mEntries, from.mEntries);
    std::swap(mEntryBits, from.mEntryBits);
    std::swap(mEntryMask, from.mEntryMask);
    std::swap(mCount, from.mCount);
    for (uint32_t i = from.OccupiedFrom(0); i != NONE; i = from.OccupiedFrom(i + 1)) {
        // The slots come in order but their entries do not. (Of an empty slot some entry is fetched in vain.)
        Prefetch(&mEntries[from.mHashes[(std::min)(i + 32, from.mMask)].mStrong >> (32 - mEntryBits)]);
        const Hashes& h = from.mHashes[i];
        const uint32_t slot = EmptyFrom(h.mHash);
        slots[slot] = fromSlots[i];
        mHashes[slot] = h;
        EntryOf(h.mStrong, fromSlots[i]).mSlot = slot;
        Occupy(slot);
    }
}
