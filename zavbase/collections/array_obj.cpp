#include <zavbase/collections/array_obj.h>

#include <algorithm>
#include <typeinfo>
#include <utility>

#include <zavbase/collections/iterator.h>
#include <zavbase/collections/nil_internal.h>
#include <zavbase/collections/slot_block_internal.h>

ZAV_DEFINE_CLASS(ZAV_ArrayObj, ZAV_Collection)

ZAV_ArrayObj::ZAV_ArrayObj(unsigned int n) : mArray(zav_slots::Allocate(n, n)), mLength(n) {}

ZAV_ArrayObj::ZAV_ArrayObj(const ZAV_ArrayObj& a)
    : ZAV_Collection(a), mArray(zav_slots::Allocate(0, a.mLength)), mLength(a.mLength) {
    std::copy_n(a.mArray, mLength, mArray);
}

ZAV_ArrayObj& ZAV_ArrayObj::operator=(const ZAV_ArrayObj& a) {
    if (this == &a) return *this;
    ReSize(a.mLength);
    std::copy_n(a.mArray, mLength, mArray);
    return *this;
}

ZAV_ArrayObj::~ZAV_ArrayObj() { zav_slots::Free(mArray); }

ZAV_CltObject*& ZAV_ArrayObj::At(int i) { return mArray[i]; }
ZAV_CltObject* const& ZAV_ArrayObj::At(int i) const { return mArray[i]; }
unsigned int ZAV_ArrayObj::Size() const { return mLength; }
unsigned int ZAV_ArrayObj::Capacity() const { return mLength; }

boolean_t ZAV_ArrayObj::operator==(const ZAV_ArrayObj& a) const {
    if (mLength != a.mLength) return B_FALSE;
    for (uint32_t i = 0; i < mLength; ++i)
        if (!ZAV_OrNil(mArray[i])->IsEqual(ZAV_OrNil(a.mArray[i]))) return B_FALSE;
    return B_TRUE;
}

boolean_t ZAV_ArrayObj::IsEqual(const ZAV_CltObject* o) {
    return ZAV_Bool(o && o->IsMemberOf(Species()) && *this == *Castdown(o));
}

int ZAV_ArrayObj::Compare(const ZAV_CltObject* o) const {
    const ZAV_ArrayObj& a = *Castdown(o);
    for (uint32_t i = 0; i < mLength; ++i) {
        if (i >= a.mLength) return 1;
        if (int r = ZAV_OrNil(mArray[i])->Compare(ZAV_OrNil(a.mArray[i]))) return r;
    }
    return mLength == a.mLength ? 0 : -1;
}

unsigned int ZAV_ArrayObj::Hash() const {
    unsigned int h = mLength;
    for (uint32_t i = 0; i < mLength; ++i) h ^= ZAV_OrNil(mArray[i])->Hash();
    return h;
}

unsigned int ZAV_ArrayObj::OccurrencesOf(const ZAV_CltObject* o) const {
    unsigned int n = 0;
    for (uint32_t i = 0; i < Size(); ++i) n += ZAV_OrNil(At(static_cast<int>(i)))->IsEqual(o) ? 1 : 0;
    return n;
}

ZAV_Collection* ZAV_ArrayObj::AddContentsTo(ZAV_Collection* target) const {
    for (uint32_t i = 0; i < Size(); ++i) target->Add(At(static_cast<int>(i)));
    return target;
}

// A class of a host may have another Size or At; it is asked every time.
ZAV_CltObject* ZAV_ArrayObj::DoNext(ZAV_Iterator* it) const {
    if (&typeid(*this) == &typeid(ZAV_ArrayObj)) return it->mIndex < mLength ? mArray[it->mIndex++] : nullptr;
    return it->mIndex < Size() ? At(static_cast<int>(it->mIndex++)) : nullptr;
}

void ZAV_ArrayObj::Clear() { zav_slots::FillNil(mArray, mArray + mLength); }

void ZAV_ArrayObj::ClearAndDestroy() { DestroyFirst(mLength); }

// Each slot is empty before its element dies, so that a destructor that looks here finds no dead object. Such
// a one may also shorten the array: the number is read every time.
void ZAV_ArrayObj::DestroyFirst(const uint32_t& n) {
    for (uint32_t i = 0; i < n; ++i) ZAV_DestroyElement(std::exchange(mArray[i], ZAV_Nil()));
}

ZAV_CltObject* ZAV_ArrayObj::ShallowCopy() const { return new ZAV_ArrayObj(*this); }

void ZAV_ArrayObj::ReSize(unsigned int n) {
    if (n > zav_slots::HeaderOf(mArray).mRoom || n < mLength) mArray = zav_slots::Reallocate(mArray, n);
    if (n > mLength) zav_slots::FillNil(mArray + mLength, mArray + n);
    mLength = n;
}

// The length grows to exactly `n`, the room behind it by a factor: so growing by a constant stays cheap.
void ZAV_ArrayObj::GrowWithSlack(uint32_t n) {
    uint32_t room = zav_slots::HeaderOf(mArray).mRoom;
    if (n > room) mArray = zav_slots::Reallocate(mArray, (std::max)(n, room > UINT32_MAX / 2 ? n : 2 * room));
    zav_slots::FillNil(mArray + mLength, mArray + n);
    mLength = n;
}

void ZAV_ArrayObj::Sort() { zav_slots::Sort(mArray, mLength); }

ZAV_CltObject* ZAV_ArrayObj::Add(ZAV_CltObject* o) { return o; }
ZAV_CltObject* ZAV_ArrayObj::Remove(const ZAV_CltObject*) { return ZAV_Nil(); }
void ZAV_ArrayObj::RemoveAndDestroy(const ZAV_CltObject*) {}
