#include <zavbase/collections/bag.h>

#include <zavbase/collections/iterator.h>
#include <zavbase/collections/nil_internal.h>

ZAV_DEFINE_CLASS(ZAV_Bag, ZAV_Collection)

namespace {

ZAV_Integer& CounterOf(ZAV_CltObject* a) {
    return *ZAV_Integer::Castdown(ZAV_AssocInt::Castdown(a)->Value());
}

unsigned int CountOf(ZAV_CltObject* a) { return static_cast<unsigned int>(CounterOf(a).Value()); }

} // namespace

ZAV_Bag::ZAV_Bag(unsigned int capacity) : mCount(0), mContents(capacity) {}

ZAV_Bag::ZAV_Bag(const ZAV_Bag& b) : ZAV_Collection(b), mCount(0), mContents(b.Capacity()) {
    CopyCounters(b);
}

ZAV_Bag& ZAV_Bag::operator=(const ZAV_Bag& b) {
    if (this == &b) return *this;
    Clear();
    CopyCounters(b);
    return *this;
}

ZAV_Bag::~ZAV_Bag() { ZAV_Bag::Clear(); }

void ZAV_Bag::CopyCounters(const ZAV_Bag& b) {
    ZAV_Iterator it(&b.mContents);
    while (ZAV_CltObject* a = ++it) mContents.Add(ZAV_AssocInt::Castdown(a)->ShallowCopy());
    mCount = b.mCount;
}

ZAV_CltObject* ZAV_Bag::Add(ZAV_CltObject* o) { return AddWithOccurrences(o, 1); }

ZAV_CltObject* ZAV_Bag::AddWithOccurrences(ZAV_CltObject* o, unsigned int n) {
    if (!o) return o;
    mCount += n;
    if (ZAV_LookupKey* a = mContents.AssocAt(o)) {
        CounterOf(a).Value(static_cast<long>(CountOf(a) + n));
        return a->Key();
    }
    mContents.Add(new ZAV_AssocInt(o, static_cast<int>(n)));
    return o;
}

ZAV_CltObject* ZAV_Bag::Remove(const ZAV_CltObject* o) {
    ZAV_LookupKey* a = mContents.AssocAt(o);
    if (!a) return nullptr;
    // One that was added 0 times is kept, but not counted.
    if (CountOf(a) != 0) --mCount;
    if (CountOf(a) > 1) {
        CounterOf(a).Value(static_cast<long>(CountOf(a) - 1));
        return nullptr;
    }
    mContents.RemoveAssoc(a);
    ZAV_CltObject* kept = a->Key();
    delete a;
    return kept;
}

void ZAV_Bag::RemoveAndDestroy(const ZAV_CltObject* o) { ZAV_DestroyElement(Remove(o)); }

unsigned int ZAV_Bag::OccurrencesOf(const ZAV_CltObject* o) const {
    ZAV_LookupKey* a = mContents.AssocAt(o);
    return a ? CountOf(a) : 0;
}

unsigned int ZAV_Bag::Size() const { return mCount; }
ZAV_CltObject*& ZAV_Bag::At(int i) { return mContents.At(i); }
ZAV_CltObject* const& ZAV_Bag::At(int i) const { return mContents.At(i); }

ZAV_CltObject* ZAV_Bag::DoNext(ZAV_Iterator* it) const {
    for (;;) {
        ZAV_CltObject* a =
            it->mOccurrence ? mContents.At(static_cast<int>(it->mIndex) - 1) : mContents.DoNext(it);
        if (!a) return nullptr;
        if (it->mOccurrence++ < CountOf(a)) return ZAV_AssocInt::Castdown(a)->Key();
        it->mOccurrence = 0;
    }
}

void ZAV_Bag::Clear() {
    mContents.ClearAndDestroy();
    mCount = 0;
}

void ZAV_Bag::ClearAndDestroy() {
    ZAV_Iterator it(&mContents);
    while (ZAV_CltObject* a = ++it) ZAV_DestroyElement(ZAV_AssocInt::Castdown(a)->Key(nullptr));
    Clear();
}

boolean_t ZAV_Bag::operator==(const ZAV_Bag& b) const {
    return ZAV_Bool(mCount == b.mCount && mContents == b.mContents);
}

boolean_t ZAV_Bag::IsEqual(const ZAV_CltObject* o) {
    return ZAV_Bool(o && o->IsSpecies(Species()) && *this == *Castdown(o));
}

int ZAV_Bag::Compare(const ZAV_CltObject*) const { return 0; }
unsigned int ZAV_Bag::Hash() const { return mContents.Hash() ^ mCount; }
ZAV_CltObject* ZAV_Bag::ShallowCopy() const { return new ZAV_Bag(*this); }
