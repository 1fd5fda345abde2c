#include <zavbase/collections/linked_list.h>

#include <zavbase/collections/iterator.h>
#include <zavbase/collections/nil_internal.h>

ZAV_DEFINE_CLASS(ZAV_LinkedList, ZAV_SeqCltn)

ZAV_LinkedList::ZAV_LinkedList()
    : mFirst(ZAV_Link::GetNilLink()), mLast(mFirst), mCount(0), mNil(ZAV_Nil()) {}

ZAV_LinkedList::~ZAV_LinkedList() {}

// Where a chain ends: at the nil link, or behind a link that another list took and gave up again.
static bool IsEnd(const ZAV_Link* l) { return !l || l->IsListEnd(); }

ZAV_Link* ZAV_LinkedList::Add(ZAV_Link* l) {
    if (IsEnd(l)) return l;
    (mCount ? mLast->mNext : mFirst) = l;
    mLast = l;
    l->mNext = ZAV_Link::GetNilLink();
    ++mCount;
    return l;
}

ZAV_CltObject* ZAV_LinkedList::Add(ZAV_CltObject* o) { return Add(LinkCastdown(o)); }

ZAV_Link* ZAV_LinkedList::AddFirst(ZAV_Link* l) {
    if (IsEnd(l)) return l;
    l->mNext = mFirst;
    if (!mCount) mLast = l;
    mFirst = l;
    ++mCount;
    return l;
}

ZAV_CltObject* ZAV_LinkedList::AddFirst(ZAV_CltObject* o) { return AddFirst(LinkCastdown(o)); }

ZAV_Link* ZAV_LinkedList::AddAfter(ZAV_Link* existing, ZAV_Link* l) {
    if (IsEnd(l)) return l;
    if (IsEnd(existing)) return Add(l);
    l->mNext = existing->mNext;
    existing->mNext = l;
    if (mLast == existing) mLast = l;
    ++mCount;
    return l;
}

ZAV_CltObject* ZAV_LinkedList::AddAfter(ZAV_CltObject* existing, ZAV_CltObject* o) {
    return AddAfter(LinkCastdown(existing), LinkCastdown(o));
}

ZAV_Link* ZAV_LinkedList::Remove(const ZAV_Link* l) {
    // The nil link ends every list but is in none.
    if (IsEnd(l) || !mCount) return nullptr;
    ZAV_Link* before = ZAV_Link::GetNilLink();
    ZAV_Link* at = mFirst;
    while (at != l && !IsEnd(at)) {
        before = at;
        at = at->mNext;
    }
    if (at != l) return nullptr;
    (at == mFirst ? mFirst : before->mNext) = IsEnd(at->mNext) ? ZAV_Link::GetNilLink() : at->mNext;
    if (at == mLast) mLast = before;
    at->mNext = nullptr;
    --mCount;
    return at;
}

ZAV_CltObject* ZAV_LinkedList::Remove(const ZAV_CltObject* o) { return Remove(LinkCastdown(o)); }
ZAV_Link* ZAV_LinkedList::RemoveFirst() { return Remove(mFirst); }
ZAV_Link* ZAV_LinkedList::RemoveLast() { return Remove(mLast); }
void ZAV_LinkedList::RemoveAndDestroy(const ZAV_CltObject* o) { ZAV_DestroyElement(Remove(o)); }

// Fewer links than the count says are left where some were added to another list meanwhile.
void ZAV_LinkedList::Clear() {
    while (RemoveFirst()) {
    }
    Forget();
}

void ZAV_LinkedList::ClearAndDestroy() {
    while (ZAV_Link* l = RemoveFirst()) ZAV_DestroyElement(l);
    Forget();
}

void ZAV_LinkedList::Forget() {
    mFirst = mLast = ZAV_Link::GetNilLink();
    mCount = 0;
}

ZAV_CltObject* ZAV_LinkedList::First() const { return mFirst; }
ZAV_CltObject* ZAV_LinkedList::Last() const { return mLast; }

ZAV_Link* ZAV_LinkedList::operator[](int i) const {
    ZAV_Link* l = mFirst;
    while (i-- > 0 && !IsEnd(l)) l = l->mNext;
    return IsEnd(l) ? ZAV_Link::GetNilLink() : l;
}

ZAV_CltObject* ZAV_LinkedList::DoNext(ZAV_Iterator* it) const {
    if (!it->mCurrent) {
        if (!mCount || IsEnd(mFirst)) return nullptr;
        it->mIndex = 1;
        return mFirst;
    }
    ZAV_Link* current = LinkCastdown(it->mCurrent);
    if (current == mLast || IsEnd(current->mNext)) return nullptr;
    ++it->mIndex;
    return current->mNext;
}

unsigned int ZAV_LinkedList::Size() const { return mCount; }
boolean_t ZAV_LinkedList::IsEmpty() { return ZAV_Bool(mCount == 0); }

ZAV_CltObject*& ZAV_LinkedList::At(int) { return mNil; }
ZAV_CltObject* const& ZAV_LinkedList::At(int) const { return mNil; }
int ZAV_LinkedList::IndexOfSubCollection(const ZAV_SeqCltn*, int) const { return 0; }
void ZAV_LinkedList::ReplaceFrom(int, int, const ZAV_SeqCltn*, int) {}
