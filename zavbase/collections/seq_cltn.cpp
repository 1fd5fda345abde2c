#include <zavbase/collections/seq_cltn.h>

#include <zavbase/collections/iterator.h>
#include <zavbase/collections/nil_internal.h>

ZAV_DEFINE_CLASS(ZAV_SeqCltn, ZAV_Collection)

ZAV_SeqCltn::~ZAV_SeqCltn() {}

ZAV_CltObject* ZAV_SeqCltn::DoNext(ZAV_Iterator* it) const {
    return it->mIndex < Size() ? At(static_cast<int>(it->mIndex++)) : nullptr;
}

// What follows walks by iterator, so that it holds for chained collections too.
boolean_t ZAV_SeqCltn::IsEqual(const ZAV_CltObject* o) {
    if (!o || !o->IsSpecies(Species()) || o->Size() != Size()) return B_FALSE;
    ZAV_Iterator mine(this), others(ZAV_Collection::Castdown(o));
    for (;;) {
        ZAV_CltObject *a = ++mine, *b = ++others;
        if (!a || !b) return ZAV_Bool(a == b);
        if (!a->IsEqual(b)) return B_FALSE;
    }
}

int ZAV_SeqCltn::Compare(const ZAV_CltObject* o) const {
    ZAV_Iterator mine(this), others(ZAV_Collection::Castdown(o));
    for (;;) {
        ZAV_CltObject *a = ++mine, *b = ++others;
        if (!a || !b) return a ? 1 : b ? -1 : 0;
        if (int r = a->Compare(b)) return r;
    }
}

unsigned int ZAV_SeqCltn::Hash() const {
    unsigned int h = Size();
    ZAV_Iterator it(this);
    while (ZAV_CltObject* o = ++it) h ^= o->Hash();
    return h;
}

unsigned int ZAV_SeqCltn::OccurrencesOf(const ZAV_CltObject* o) const {
    unsigned int n = 0;
    ZAV_Iterator it(this);
    while (ZAV_CltObject* e = ++it) n += e->IsEqual(o) ? 1 : 0;
    return n;
}

ZAV_CltObject* ZAV_SeqCltn::First() const { return At(0); }
ZAV_CltObject* ZAV_SeqCltn::Last() const { return At(static_cast<int>(Size()) - 1); }

int ZAV_SeqCltn::IndexOf(const ZAV_CltObject* o) const {
    ZAV_Iterator it(this);
    for (int i = 0; ZAV_CltObject* e = ++it; ++i)
        if (e->IsEqual(o)) return i;
    return -1;
}

static bool StandsAt(const ZAV_SeqCltn& whole, const ZAV_SeqCltn& part, int start, int n) {
    for (int i = 0; i < n; ++i)
        if (!whole.At(start + i)->IsEqual(part.At(i))) return false;
    return true;
}

int ZAV_SeqCltn::IndexOfSubCollection(const ZAV_SeqCltn* c, int start) const {
    const int n = static_cast<int>(c->Size());
    const int last = static_cast<int>(Size()) - n;
    for (int i = start < 0 ? 0 : start; i <= last; ++i)
        if (StandsAt(*this, *c, i, n)) return i;
    return -1;
}

void ZAV_SeqCltn::ReplaceFrom(int start, int stop, const ZAV_SeqCltn* source, int sourceStart) {
    for (int i = start; i <= stop; ++i) At(i) = source->At(sourceStart + i - start);
}
