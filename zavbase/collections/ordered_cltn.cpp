#include <zavbase/collections/ordered_cltn.h>

#include <algorithm>

#include <zavbase/collections/iterator.h>
#include <zavbase/collections/nil_internal.h>
#include <zavbase/collections/slot_block_internal.h>

ZAV_DEFINE_CLASS(ZAV_OrderedCltn, ZAV_SeqCltn)

ZAV_OrderedCltn::ZAV_OrderedCltn(unsigned int capacity) : mCount(0), mContents(capacity) {}

ZAV_OrderedCltn::ZAV_OrderedCltn(const ZAV_OrderedCltn& c)
    : ZAV_SeqCltn(c), mCount(c.mCount), mContents(c.mContents) {}

ZAV_OrderedCltn& ZAV_OrderedCltn::operator=(const ZAV_OrderedCltn& c) {
    mContents = c.mContents;
    mCount = c.mCount;
    return *this;
}

ZAV_OrderedCltn::~ZAV_OrderedCltn() {}

void ZAV_OrderedCltn::Grow() { mContents.GrowWithSlack(mContents.mLength + 32); }

ZAV_CltObject* ZAV_OrderedCltn::AddAtIndex(int i, ZAV_CltObject* o) {
    if (mCount == mContents.mLength) Grow();
    ZAV_CltObject** at = mContents.mArray + i;
    ZAV_CltObject** end = mContents.mArray + mCount;
    if (at < end) std::copy_backward(at, end, end + 1);
    ++mCount;
    return *at = o;
}

ZAV_CltObject* ZAV_OrderedCltn::RemoveAtIndex(int i) {
    ZAV_CltObject** at = mContents.mArray + i;
    ZAV_CltObject** end = mContents.mArray + mCount;
    ZAV_CltObject* o = *at;
    std::copy(at + 1, end, at);
    end[-1] = ZAV_Nil();
    --mCount;
    return o;
}

ZAV_CltObject* ZAV_OrderedCltn::AddAfter(const ZAV_CltObject* existing, ZAV_CltObject* o) {
    int i = IndexOf(existing);
    return i < 0 ? ZAV_Nil() : AddAtIndex(i + 1, o);
}

ZAV_CltObject* ZAV_OrderedCltn::AddBefore(const ZAV_CltObject* existing, ZAV_CltObject* o) {
    int i = IndexOf(existing);
    return i < 0 ? ZAV_Nil() : AddAtIndex(i, o);
}

const ZAV_OrderedCltn* ZAV_OrderedCltn::AddAllLast(const ZAV_OrderedCltn* c) {
    // The count is taken first: `c` may be this collection, which grows meanwhile.
    for (uint32_t i = 0, n = c->mCount; i < n; ++i) Add(c->mContents.mArray[i]);
    return c;
}

ZAV_CltObject*& ZAV_OrderedCltn::At(int i) { return mContents.mArray[i]; }
ZAV_CltObject* const& ZAV_OrderedCltn::At(int i) const { return mContents.mArray[i]; }
ZAV_CltObject* ZAV_OrderedCltn::First() const { return mCount ? mContents.mArray[0] : ZAV_Nil(); }
ZAV_CltObject* ZAV_OrderedCltn::Last() const { return mCount ? mContents.mArray[mCount - 1] : ZAV_Nil(); }

ZAV_CltObject* ZAV_OrderedCltn::After(const ZAV_CltObject* o) const {
    int i = IndexOf(o);
    return i < 0 || i + 1 == static_cast<int>(mCount) ? ZAV_Nil() : mContents.mArray[i + 1];
}

ZAV_CltObject* ZAV_OrderedCltn::Before(const ZAV_CltObject* o) const {
    int i = IndexOf(o);
    return i <= 0 ? ZAV_Nil() : mContents.mArray[i - 1];
}

ZAV_CltObject* ZAV_OrderedCltn::DoNext(ZAV_Iterator* it) const {
    return it->mIndex < mCount ? mContents.mArray[it->mIndex++] : nullptr;
}

unsigned int ZAV_OrderedCltn::Size() const { return mCount; }

ZAV_CltObject* ZAV_OrderedCltn::Remove(const ZAV_CltObject* o) {
    int i = IndexOf(o);
    return i < 0 ? ZAV_Nil() : RemoveAtIndex(i);
}

ZAV_CltObject* ZAV_OrderedCltn::RemoveId(const ZAV_CltObject* o) {
    ZAV_CltObject** end = mContents.mArray + mCount;
    ZAV_CltObject** at = std::find(mContents.mArray, end, o);
    return at == end ? ZAV_Nil() : RemoveAtIndex(static_cast<int>(at - mContents.mArray));
}

ZAV_CltObject* ZAV_OrderedCltn::RemoveLast() {
    return mCount ? RemoveAtIndex(static_cast<int>(mCount) - 1) : ZAV_Nil();
}

void ZAV_OrderedCltn::RemoveAndDestroy(const ZAV_CltObject* o) {
    ZAV_CltObject* removed = Remove(o);
    if (removed != ZAV_Nil()) delete removed;
}

void ZAV_OrderedCltn::Clear() {
    zav_slots::FillNil(mContents.mArray, mContents.mArray + mCount);
    mCount = 0;
}

void ZAV_OrderedCltn::ClearAndDestroy() {
    mContents.ClearAndDestroy();
    mCount = 0;
}

void ZAV_OrderedCltn::AtAllPut(ZAV_CltObject* o) { std::fill_n(mContents.mArray, mCount, o); }

boolean_t ZAV_OrderedCltn::operator==(const ZAV_OrderedCltn& c) const {
    if (mCount != c.mCount) return B_FALSE;
    for (uint32_t i = 0; i < mCount; ++i)
        if (!ZAV_OrNil(mContents.mArray[i])->IsEqual(c.mContents.mArray[i])) return B_FALSE;
    return B_TRUE;
}

ZAV_OrderedCltn ZAV_OrderedCltn::operator&(const ZAV_OrderedCltn& c) const {
    ZAV_OrderedCltn result((std::max)(mCount, 16u));
    for (uint32_t i = 0; i < mCount; ++i)
        if (const_cast<ZAV_OrderedCltn&>(c).Includes(mContents.mArray[i])) result.Add(mContents.mArray[i]);
    return result;
}

ZAV_OrderedCltn& ZAV_OrderedCltn::operator&=(const ZAV_OrderedCltn& c) {
    ZAV_OrderedCltn kept = *this & c;
    Clear();
    AddAllLast(&kept);
    return *this;
}

ZAV_CltObject* ZAV_OrderedCltn::ShallowCopy() const { return new ZAV_OrderedCltn(*this); }
unsigned int ZAV_OrderedCltn::Capacity() const { return mContents.mLength; }

void ZAV_OrderedCltn::ReSize(unsigned int n) {
    if (n > mCount) mContents.ReSize(n);
}

void ZAV_OrderedCltn::Sort() { zav_slots::Sort(mContents.mArray, mCount); }
