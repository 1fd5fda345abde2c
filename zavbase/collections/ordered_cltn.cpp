#include <zavbase/collections/ordered_cltn.h>

#include <algorithm>
#include <typeinfo>

#include <zavbase/collections/iterator.h>
#include <zavbase/collections/nil_internal.h>
#include <zavbase/collections/slot_block_internal.h>
#include <zavbase/collections/stack.h>

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

// The slot of the first element equal to `o`, or -1. Where a host's At gives the elements at other positions,
// the one found is sought in the table.
int ZAV_OrderedCltn::SlotOf(const ZAV_CltObject* o) const {
    const int i = IndexOf(o);
    if (i < 0) return i;
    ZAV_CltObject* const found = At(i);
    ZAV_CltObject* const* const slots = mContents.mArray;
    if (static_cast<uint32_t>(i) < mCount && slots[i] == found) return i;
    const auto at = std::find(slots, slots + mCount, found);
    return at == slots + mCount ? -1 : static_cast<int>(at - slots);
}

ZAV_CltObject* ZAV_OrderedCltn::AddAfter(const ZAV_CltObject* existing, ZAV_CltObject* o) {
    int i = SlotOf(existing);
    return i < 0 ? ZAV_Nil() : AddAtIndex(i + 1, o);
}

ZAV_CltObject* ZAV_OrderedCltn::AddBefore(const ZAV_CltObject* existing, ZAV_CltObject* o) {
    int i = SlotOf(existing);
    return i < 0 ? ZAV_Nil() : AddAtIndex(i, o);
}

const ZAV_OrderedCltn* ZAV_OrderedCltn::AddAllLast(const ZAV_OrderedCltn* c) {
    // The count is taken first: `c` may be this collection, which grows meanwhile.
    for (uint32_t i = 0, n = c->Size(); i < n; ++i) Add(c->At(static_cast<int>(i)));
    return c;
}

ZAV_CltObject*& ZAV_OrderedCltn::At(int i) { return mContents.mArray[i]; }
ZAV_CltObject* const& ZAV_OrderedCltn::At(int i) const { return mContents.mArray[i]; }
ZAV_CltObject* ZAV_OrderedCltn::First() const { return mCount ? mContents.mArray[0] : ZAV_Nil(); }
ZAV_CltObject* ZAV_OrderedCltn::Last() const { return mCount ? mContents.mArray[mCount - 1] : ZAV_Nil(); }

ZAV_CltObject* ZAV_OrderedCltn::After(const ZAV_CltObject* o) const {
    int i = IndexOf(o);
    return i < 0 || i + 1 == static_cast<int>(Size()) ? ZAV_Nil() : At(i + 1);
}

ZAV_CltObject* ZAV_OrderedCltn::Before(const ZAV_CltObject* o) const {
    int i = IndexOf(o);
    return i <= 0 ? ZAV_Nil() : At(i - 1);
}

// The quick way is for the library's own classes: a host may have overridden Size or At.
ZAV_CltObject* ZAV_OrderedCltn::DoNext(ZAV_Iterator* it) const {
    const std::type_info* t = &typeid(*this);
    if (t != &typeid(ZAV_OrderedCltn) && t != &typeid(ZAV_Stack)) return ZAV_SeqCltn::DoNext(it);
    return it->mIndex < mCount ? mContents.mArray[it->mIndex++] : nullptr;
}

unsigned int ZAV_OrderedCltn::Size() const { return mCount; }

ZAV_CltObject* ZAV_OrderedCltn::Remove(const ZAV_CltObject* o) {
    int i = SlotOf(o);
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

void ZAV_OrderedCltn::RemoveAndDestroy(const ZAV_CltObject* o) { ZAV_DestroyElement(Remove(o)); }

void ZAV_OrderedCltn::Clear() {
    zav_slots::FillNil(mContents.mArray, mContents.mArray + mCount);
    mCount = 0;
}

void ZAV_OrderedCltn::ClearAndDestroy() {
    mContents.DestroyFirst(mCount);
    mCount = 0;
}

void ZAV_OrderedCltn::AtAllPut(ZAV_CltObject* o) { std::fill_n(mContents.mArray, mCount, o); }

boolean_t ZAV_OrderedCltn::operator==(const ZAV_OrderedCltn& c) const {
    if (Size() != c.Size()) return B_FALSE;
    for (int i = 0, n = static_cast<int>(Size()); i < n; ++i)
        if (!ZAV_OrNil(At(i))->IsEqual(c.At(i))) return B_FALSE;
    return B_TRUE;
}

ZAV_OrderedCltn ZAV_OrderedCltn::operator&(const ZAV_OrderedCltn& c) const {
    ZAV_OrderedCltn result((std::max)(mCount, 16u));
    for (int i = 0, n = static_cast<int>(Size()); i < n; ++i)
        if (const_cast<ZAV_OrderedCltn&>(c).Includes(At(i))) result.Add(At(i));
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
