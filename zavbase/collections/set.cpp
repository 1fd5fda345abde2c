#include <zavbase/collections/set.h>

#include <algorithm>
#include <bit>
#include <typeinfo>
#include <utility>

#include <zavbase/collections/dictionary.h>
#include <zavbase/collections/iterator.h>
#include <zavbase/collections/nil_internal.h>
#include <zavbase/collections/ordered_cltn.h>
#include <zavbase/collections/set_index_internal.h>
#include <zavbase/collections/slot_block_internal.h>

ZAV_DEFINE_CLASS(ZAV_Set, ZAV_Collection)

namespace {

// A table gets its side index with this many elements, or when a smaller one has a cluster this long.
const uint32_t INDEXED_COUNT = 512;
const uint32_t CLUSTERED_COUNT = 32;
const uint32_t LONG_CLUSTER = 16;

// The table is the smallest power of two that is at least twice as large as the capacity.
uint32_t NbitsFor(uint32_t capacity) {
    const uint32_t nbits =
        static_cast<uint32_t>(std::bit_width(capacity)) + (capacity & (capacity - 1) ? 1 : 0);
    return (std::min)(nbits, 31u);
}

} // namespace

ZAV_Set::ZAV_Set(unsigned int capacity) : mContents(0) {
    SetCapacity(capacity);
    mContents.ReSize(mMask + 1);
}

ZAV_Set::ZAV_Set(const ZAV_Set& s)
    : ZAV_Collection(s), mCount(s.mCount), mNbits(s.mNbits), mMask(s.mMask), mContents(s.Table()) {
    if (s.Index()) SetIndex(s.Index()->Clone().release());
}

ZAV_Set& ZAV_Set::operator=(const ZAV_Set& s) {
    if (this == &s) return *this;
    DropIndex(false);
    mCount = s.mCount;
    mNbits = s.mNbits;
    mMask = s.mMask;
    mContents = s.Table();
    if (s.Index()) SetIndex(s.Index()->Clone().release());
    return *this;
}

ZAV_Set::~ZAV_Set() { DropIndex(false); }

ZAV_SetIndex* ZAV_Set::Index() const { return zav_slots::HeaderOf(mContents.mArray).mIndex; }
void ZAV_Set::SetIndex(ZAV_SetIndex* index) { zav_slots::HeaderOf(mContents.mArray).mIndex = index; }

// The table as it must look; the index may have put off some of it.
const ZAV_ArrayObj& ZAV_Set::Table() const {
    if (ZAV_SetIndex* index = Index()) index->Settle(mContents.mArray);
    return mContents;
}

void ZAV_Set::DropIndex(bool forGood) {
    Table();
    zav_slots::Header& header = zav_slots::HeaderOf(mContents.mArray);
    delete header.mIndex;
    header.mIndex = nullptr;
    header.mNoIndex = forGood;
}

void ZAV_Set::TryIndex() {
    zav_slots::Header& header = zav_slots::HeaderOf(mContents.mArray);
    if (header.mIndex || header.mNoIndex) return;
    header.mIndex = ZAV_SetIndex::Build(mContents.mArray, mNbits).release();
    header.mNoIndex = !header.mIndex;
}

// A class of a host may find its elements by a rule of its own; it is asked every time.
bool ZAV_Set::ProbesItself() const {
    const std::type_info* t = &typeid(*this);
    return t == &typeid(ZAV_Set) || t == &typeid(ZAV_Dictionary) || t == &typeid(ZAV_DictAutoDel);
}

void ZAV_Set::SetCapacity(unsigned int n) {
    mCount = 0;
    mNbits = NbitsFor(n);
    mMask = (1u << mNbits) - 1;
}

int ZAV_Set::HashIdx(unsigned long h) const {
    if (mNbits == 0) return 0;
    return static_cast<int>(static_cast<uint32_t>(h) * 0x9E3779B9u >> (32 - mNbits) & mMask);
}

int ZAV_Set::FindIndexOf(const ZAV_CltObject* o) const {
    if (!o) return -1;
    ZAV_CltObject* const* slots = Table().mArray;
    if (ZAV_SetIndex* index = Index()) {
        const ZAV_SetIndex::Sought key(o);
        if (key.mKnown) {
            const ZAV_SetIndex::Place place = index->Find(key);
            return static_cast<int>(place.mElement ? index->SlotOf(slots, place)
                                                   : index->EmptyFrom(o->Hash()));
        }
    }
    uint32_t i = static_cast<uint32_t>(HashIdx(o->Hash()));
    for (uint32_t n = 0; n <= mMask; ++n, i = (i - 1) & mMask) {
        ZAV_CltObject* e = slots[i];
        if (e == ZAV_Nil() || e->IsEqual(o)) return static_cast<int>(i);
    }
    return -1;
}

ZAV_CltObject* ZAV_Set::Lookup(const ZAV_CltObject* o) const {
    if (!o) return nullptr;
    const ZAV_SetIndex* index = Index();
    if (index && ProbesItself()) {
        const ZAV_SetIndex::Sought key(o);
        if (key.mKnown) return index->Find(key).mElement;
    }
    const int i = FindIndexOf(o);
    return i < 0 || mContents.mArray[i] == ZAV_Nil() ? nullptr : mContents.mArray[i];
}

ZAV_CltObject* ZAV_Set::FindObjectWithKey(const ZAV_CltObject* o) const { return ZAV_OrNil(Lookup(o)); }
unsigned int ZAV_Set::OccurrencesOf(const ZAV_CltObject* o) const { return Lookup(o) ? 1 : 0; }

ZAV_CltObject* ZAV_Set::Add(ZAV_CltObject* o) {
    if (!o) return o;
    if (ZAV_SetIndex* index = Index()) {
        bool added = false;
        if (ZAV_CltObject* e = AddByIndex(o, *index, added)) {
            if (added) CountAdded();
            return e;
        }
        DropIndex(true);
    }
    int i = FindIndexOf(o);
    if (i < 0) {
        Rehash(mMask + 1);
        i = FindIndexOf(o);
    }
    if (mContents.mArray[i] != ZAV_Nil()) return mContents.mArray[i];
    mContents.mArray[i] = o;
    CountAdded();
    if (mCount == INDEXED_COUNT ||
        (mCount >= CLUSTERED_COUNT && StandsInLongCluster(static_cast<uint32_t>(i))))
        TryIndex();
    return o;
}

// Null when the index cannot serve `o`: its class is unknown, its equality with an element is one-sided, the
// table is full, or the set's class would put it somewhere else.
ZAV_CltObject* ZAV_Set::AddByIndex(ZAV_CltObject* o, ZAV_SetIndex& index, bool& added) {
    // The nil object is counted and fills a slot with what empty slots hold.
    added = o == ZAV_Nil();
    if (added) return o;
    const ZAV_SetIndex::Sought key(o);
    if (!key.mKnown) return nullptr;
    const ZAV_SetIndex::Place place = index.Find(key);
    if (!place.mElement && place.mOneSided) return nullptr;
    const uint32_t hash = place.mElement ? 0 : o->Hash();
    if (!ProbesItself()) {
        const uint32_t slot = place.mElement ? index.SlotOf(mContents.mArray, place) : index.EmptyFrom(hash);
        if (FindIndexOf(o) != static_cast<int>(slot)) return nullptr;
    }
    if (place.mElement) return place.mElement;
    added = index.Add(mContents.mArray, o, key, hash);
    return added ? o : nullptr;
}

// Grows the table when more than half is used. Tables of 1 and 2 slots are full by then, and doubling their
// capacity is no more than their count: they get 4 slots.
void ZAV_Set::CountAdded() {
    if (++mCount <= Capacity()) return;
    if (mMask < 2)
        Rehash(2);
    else
        ReSize(Capacity() * 2);
}

// The slots were filled from outside; gives them the index that adding one by one would have.
void ZAV_Set::CountStored(uint32_t count) {
    mCount = count;
    bool wanted = count >= INDEXED_COUNT;
    uint32_t cluster = 0;
    for (uint32_t i = 0; !wanted && count >= CLUSTERED_COUNT && i <= mMask; ++i) {
        cluster = mContents.mArray[i] == ZAV_Nil() ? 0 : cluster + 1;
        wanted = cluster > LONG_CLUSTER;
    }
    if (wanted) TryIndex();
}

bool ZAV_Set::StandsInLongCluster(uint32_t slot) const {
    if (mMask < 63) return false;
    for (uint32_t n = 1; n <= LONG_CLUSTER; ++n)
        if (mContents.mArray[(slot + n) & mMask] == ZAV_Nil()) return false;
    return true;
}

ZAV_CltObject* ZAV_Set::Remove(const ZAV_CltObject* o) {
    if (!o) return ZAV_Nil();
    --mCount;
    ++zav_slots::HeaderOf(mContents.mArray).mMoves;
    if (Index() && ProbesItself()) {
        const ZAV_SetIndex::Sought key(o);
        if (key.mKnown) return ZAV_OrNil(Index()->Take(mContents.mArray, key, o));
    }
    const int i = FindIndexOf(o);
    ZAV_CltObject* e = i < 0 ? ZAV_Nil() : mContents.mArray[i];
    if (e != ZAV_Nil()) {
        if (ZAV_SetIndex* index = Index())
            index->Remove(mContents.mArray, static_cast<uint32_t>(i));
        else
            CloseGap(static_cast<uint32_t>(i));
    }
    return e;
}

// The steps are counted, for hashes that change their minds.
void ZAV_Set::CloseGap(uint32_t hole) {
    ZAV_CltObject** slots = mContents.mArray;
    slots[hole] = ZAV_Nil();
    uint32_t i = (hole - 1) & mMask;
    for (uint32_t n = 0; n < mMask && slots[i] != ZAV_Nil(); ++n, i = (i - 1) & mMask) {
        const uint32_t home = static_cast<uint32_t>(HashIdx(slots[i]->Hash()));
        if (((home - i) & mMask) < ((hole - i) & mMask)) continue;
        slots[hole] = slots[i];
        slots[i] = ZAV_Nil();
        hole = i;
    }
}

void ZAV_Set::RemoveAndDestroy(const ZAV_CltObject* o) { ZAV_DestroyElement(Remove(o)); }

unsigned int ZAV_Set::Size() const { return mCount; }
unsigned int ZAV_Set::Capacity() const { return (mMask + 1) / 2; }

// The caller can store through the reference at any time as long as the slots stay where they are.
ZAV_CltObject*& ZAV_Set::At(int i) {
    DropIndex(true);
    return mContents.mArray[i];
}

ZAV_CltObject* const& ZAV_Set::At(int i) const { return Table().mArray[i]; }

ZAV_CltObject* ZAV_Set::DoNext(ZAV_Iterator* it) const {
    uint32_t i = it->mIndex;
    ZAV_CltObject* const* slots = Table().mArray;
    if (const ZAV_SetIndex* index = Index())
        i = (std::min)(index->OccupiedFrom(i), mMask + 1);
    else
        while (i <= mMask && slots[i] == ZAV_Nil()) ++i;
    it->mIndex = (std::min)(i, mMask) + 1;
    return i <= mMask ? slots[i] : nullptr;
}

void ZAV_Set::Clear() {
    DropIndex(false);
    mContents.Clear();
    mCount = 0;
}

void ZAV_Set::ClearAndDestroy() {
    DropIndex(false);
    mContents.ClearAndDestroy();
    mCount = 0;
}

boolean_t ZAV_Set::operator==(const ZAV_Set& s) const {
    if (mCount != s.mCount) return B_FALSE;
    ZAV_Iterator it(this);
    while (ZAV_CltObject* o = ++it)
        if (!const_cast<ZAV_Set&>(s).Includes(o)) return B_FALSE;
    return B_TRUE;
}

boolean_t ZAV_Set::IsEqual(const ZAV_CltObject* o) {
    return ZAV_Bool(o && o->IsSpecies(Species()) && *this == *Castdown(o));
}

unsigned int ZAV_Set::Hash() const {
    unsigned int h = 0;
    ZAV_Iterator it(this);
    while (ZAV_CltObject* o = ++it) h ^= o->Hash();
    return h;
}

int ZAV_Set::Compare(const ZAV_CltObject*) const { return 0; }

ZAV_Set ZAV_Set::operator|(const ZAV_Set& s) const {
    ZAV_Set result(*this);
    result.AddAll(&s);
    return result;
}

ZAV_Set ZAV_Set::operator-(const ZAV_Set& s) const {
    ZAV_Set result(*this);
    ZAV_Iterator it(this);
    while (ZAV_CltObject* o = ++it)
        if (const_cast<ZAV_Set&>(s).Includes(o)) result.Remove(o);
    return result;
}

ZAV_Set ZAV_Set::operator&(const ZAV_Set& s) const {
    ZAV_Set result(*this);
    ZAV_Iterator it(this);
    while (ZAV_CltObject* o = ++it)
        if (!const_cast<ZAV_Set&>(s).Includes(o)) result.Remove(o);
    return result;
}

ZAV_CltObject* ZAV_Set::ShallowCopy() const { return new ZAV_Set(*this); }

void ZAV_Set::ReSize(unsigned int n) {
    if (n <= mCount) return;
    if (mCount != 0) return Rehash(n);
    DropIndex(false);
    mContents.ReSize(1u << NbitsFor(n));
    SetCapacity(n);
}

// Every element moves, in slot order, to a new table for `n` elements. Nothing is touched before there is
// memory for all of it.
void ZAV_Set::Rehash(unsigned int n) {
    ZAV_Set table(n);
    if (TakeByIndex(table)) return SwapTable(table);
    // Removing what was absent may have taken the count below 0.
    ZAV_OrderedCltn elements((std::min)(mCount, mMask + 1));
    ZAV_Iterator it(this);
    while (ZAV_CltObject* o = ZAV_Set::DoNext(&it)) elements.Add(o);
    SwapTable(table);
    AddAll(&elements);
    if (mCount >= INDEXED_COUNT) TryIndex();
}

// Fills an empty table without asking the elements, where the index remembers what they would say.
bool ZAV_Set::TakeByIndex(ZAV_Set& table) {
    ZAV_SetIndex* index = Index();
    if (!index || !ProbesItself() || index->Count() > table.Capacity()) return false;
    std::unique_ptr<ZAV_SetIndex> filled = ZAV_SetIndex::Make(table.mNbits);
    if (!filled) return false;
    filled->TakeAll(table.mContents.mArray, *index, Table().mArray);
    table.mCount = filled->Count();
    table.SetIndex(filled.release());
    return true;
}

void ZAV_Set::SwapTable(ZAV_Set& s) {
    zav_slots::Header &from = zav_slots::HeaderOf(mContents.mArray),
                      &to = zav_slots::HeaderOf(s.mContents.mArray);
    std::swap(from.mHelper, to.mHelper);
    to.mMoves = from.mMoves + 1;
    std::swap(mCount, s.mCount);
    std::swap(mNbits, s.mNbits);
    std::swap(mMask, s.mMask);
    std::swap(mContents.mArray, s.mContents.mArray);
    std::swap(mContents.mLength, s.mContents.mLength);
}
