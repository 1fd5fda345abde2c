#include <zavbase/collections/iterator.h>

#include <ostream>

#include <zavbase/collections/nil_internal.h>

ZAV_DEFINE_CLASS(ZAV_Iterator, ZAV_CltObject)

ZAV_Iterator::ZAV_Iterator(const ZAV_Collection* c)
    : mCollection(c), mIndex(0), mOccurrence(0), mCurrent(ZAV_Nil()), mState(ZAV_Nil()) {
    c->DoReset(this);
}

ZAV_Iterator::~ZAV_Iterator() { mCollection->DoFinish(this); }

boolean_t ZAV_Iterator::operator==(const ZAV_Iterator* o) const {
    return ZAV_Bool(mCollection == o->mCollection && mIndex == o->mIndex && mOccurrence == o->mOccurrence &&
                    mState->IsEqual(o->mState));
}

boolean_t ZAV_Iterator::IsEqual(const ZAV_CltObject* o) {
    return ZAV_Bool(o && o->IsKindOf(&classZAV_Iterator) && *this == Castdown(o));
}

unsigned int ZAV_Iterator::Hash() const {
    return static_cast<unsigned int>(reinterpret_cast<uintptr_t>(mCollection)) ^ mIndex ^ mOccurrence;
}

void ZAV_Iterator::PrintOn(std::ostream& os) {
    if (mCurrent) mCurrent->PrintOn(os);
}
