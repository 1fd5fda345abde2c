#include <zavbase/values/value_dict_fill_internal.h>

#include <cstring>
#include <memory>
#include <utility>

#include <zavbase/collections/set_access_internal.h>
#include <zavbase/values/dict_help_internal.h>
#include <zavbase/values/value_dict_internal.h>

ZAV_UValDict::Chain::Chain(Chain&& other) noexcept
    : mFirst(other.mFirst), mLast(other.mLast), mCount(other.mCount) {
    other.Release();
}

ZAV_UValDict::Chain& ZAV_UValDict::Chain::operator=(Chain&& other) noexcept {
    std::swap(mFirst, other.mFirst);
    std::swap(mLast, other.mLast);
    std::swap(mCount, other.mCount);
    return *this;
}

ZAV_UValDict::Chain::~Chain() { DestroyEntries(mFirst); }

ZAV_AssocUVal* ZAV_UValDict::Chain::Release() {
    ZAV_AssocUVal* first = mFirst;
    mFirst = mLast = nullptr;
    mCount = 0;
    return first;
}

void ZAV_UValDict::Chain::Append(const char* key, unsigned int length, ZAV_UVal* value) {
    std::unique_ptr<ZAV_UVal> owned(value);
    ZAV_AssocUVal* entry = new ZAV_AssocUVal(key, length, value);
    owned.release();
    entry->mPrev = mLast;
    (mLast ? mLast->mNext : mFirst) = entry;
    mLast = entry;
    ++mCount;
}

void ZAV_UValDict::Filler::TakeHashes(const Chain& chain) {
    mEntries.clear();
    mHashes.clear();
    for (ZAV_AssocUVal* entry = chain.mFirst; entry; entry = entry->mNext) {
        mEntries.push_back(entry);
        mHashes.push_back(ZAV_EntryHash(entry->mKey, entry->mKeyLength));
    }
}

bool ZAV_UValDict::Filler::Fill(ZAV_UValDict& dict, Chain& chain) {
    TakeHashes(chain);
    bool isPlain = dict.GetSize() == 0 && !dict.mCaseInsensitive && Play(ZAV_SetAccess::Bits(dict.mSet));
    if (!isPlain) return FillOneByOne(dict, chain.Release());
    ZAV_SetAccess::MakeTable(dict.mSet, mNbits);
    Store(dict, chain);
    return true;
}

// A table made in its last size is no other than one that grew to it.
std::unique_ptr<ZAV_UValDict> ZAV_UValDict::Filler::Make(Chain& chain, bool* allNew) {
    TakeHashes(chain);
    *allNew = Play(NEW_BITS);
    std::unique_ptr<ZAV_UValDict> dict(new ZAV_UValDict(*allNew ? 1u << (mNbits - 1) : 16));
    if (*allNew)
        Store(*dict, chain);
    else
        *allNew = FillOneByOne(*dict, chain.Release());
    return dict;
}

void ZAV_UValDict::Filler::Store(ZAV_UValDict& dict, Chain& chain) {
    for (uint32_t slot = 0; slot < mSlots.size(); ++slot)
        if (mSlots[slot] != NONE) ZAV_SetAccess::Store(dict.mSet, slot, mEntries[mSlots[slot]]);
    ZAV_SetAccess::Stored(dict.mSet, chain.mCount);
    if (ZAV_DictHelp* help = ZAV_DictHelp::IfAny(dict.mSet)) help->Clear();
    dict.mLast = chain.mLast;
    dict.mFirst = chain.Release();
}

bool ZAV_UValDict::Filler::FillOneByOne(ZAV_UValDict& dict, ZAV_AssocUVal* first) {
    Chain rest;
    rest.mFirst = first;
    bool allNew = true;
    while (ZAV_AssocUVal* entry = rest.mFirst) {
        rest.mFirst = entry->mNext;
        ZAV_AssocUVal* there = dict.AssocAt(entry->mKey, entry->mKeyLength);
        if (!there) {
            dict.Adopt(entry);
            continue;
        }
        allNew = false;
        dict.Replace(there, entry->Value(nullptr));
        delete entry;
    }
    return allNew;
}

// False for a key that comes twice, and for hashes that collide so much that a side index is wanted on the
// way.
bool ZAV_UValDict::Filler::Play(uint32_t nbits) {
    if (nbits < 2) return false;
    mNbits = nbits;
    mSlots.assign(size_t{1} << nbits, NONE);
    for (uint32_t i = 0; i < mEntries.size(); ++i)
        if (!Place(i, true) || (i + 1 > mSlots.size() / 2 && !Grow())) return false;
    return true;
}

bool ZAV_UValDict::Filler::Place(uint32_t entry, bool isNew) {
    uint32_t mask = static_cast<uint32_t>(mSlots.size()) - 1;
    uint32_t slot = ZAV_SetAccess::Home(mHashes[entry], mNbits);
    for (uint32_t steps = 0; mSlots[slot] != NONE; ++steps, slot = (slot - 1) & mask)
        if (steps == LONGEST_PROBE || (isNew && IsTwice(entry, mSlots[slot]))) return false;
    mSlots[slot] = entry;
    return true;
}

bool ZAV_UValDict::Filler::IsTwice(uint32_t a, uint32_t b) const {
    const ZAV_AssocUVal &x = *mEntries[a], &y = *mEntries[b];
    return mHashes[a] == mHashes[b] && x.mKeyLength == y.mKeyLength &&
           std::memcmp(x.mKey, y.mKey, x.mKeyLength) == 0;
}

bool ZAV_UValDict::Filler::Grow() {
    mOld.swap(mSlots);
    mSlots.assign(2 * mOld.size(), NONE);
    ++mNbits;
    for (uint32_t entry : mOld)
        if (entry != NONE && !Place(entry, false)) return false;
    return true;
}
