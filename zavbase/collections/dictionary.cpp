#include <zavbase/collections/dictionary.h>

#include <typeinfo>

#include <zavbase/collections/iterator.h>
#include <zavbase/collections/nil_internal.h>
#include <zavbase/collections/set_access_internal.h>

ZAV_DEFINE_CLASS(ZAV_Dictionary, ZAV_Set)

namespace {

// An element as what it holds a key for, or null. AddAll of another dictionary puts in bare values.
ZAV_LookupKey* AsHolder(ZAV_CltObject* o) {
    if (!o) return nullptr;
    if (&typeid(*o) != &typeid(ZAV_Assoc) && !o->IsKindOf(&ZAV_LookupKey::classZAV_LookupKey)) return nullptr;
    return ZAV_LookupKey::Castdown(o);
}

/// Walks the associations of a dictionary.
class Associations {
public:
    explicit Associations(const ZAV_Dictionary* d) : mIterator(d) {}
    ZAV_LookupKey* Next() {
        while (ZAV_CltObject* o = ++mIterator)
            if (ZAV_LookupKey* a = AsHolder(o)) return a;
        return nullptr;
    }

private:
    ZAV_Iterator mIterator;
};

// The value asked for says whether it is equal. A bare key has no value to be equal to.
bool HasValue(const ZAV_LookupKey* a, const ZAV_CltObject* value) {
    ZAV_CltObject* own = a->Value();
    return own && value && const_cast<ZAV_CltObject*>(value)->IsEqual(own);
}

} // namespace

ZAV_Dictionary::~ZAV_Dictionary() {}

ZAV_Dictionary& ZAV_Dictionary::operator=(const ZAV_Dictionary& d) {
    ZAV_Set::operator=(d);
    return *this;
}

unsigned int ZAV_Dictionary::OccurrencesOf(const ZAV_CltObject* value) const {
    unsigned int n = 0;
    Associations walk(this);
    while (ZAV_LookupKey* a = walk.Next()) n += HasValue(a, value) ? 1 : 0;
    return n;
}

ZAV_Collection* ZAV_Dictionary::AddContentsTo(ZAV_Collection* target) const { return AddValuesTo(target); }

ZAV_Collection* ZAV_Dictionary::AddValuesTo(ZAV_Collection* target) const {
    Associations walk(this);
    while (ZAV_LookupKey* a = walk.Next()) target->Add(a->Value());
    return target;
}

ZAV_Collection* ZAV_Dictionary::AddKeysTo(ZAV_Collection* target) const {
    Associations walk(this);
    while (ZAV_LookupKey* a = walk.Next()) target->Add(a->Key());
    return target;
}

boolean_t ZAV_Dictionary::operator==(const ZAV_Dictionary& d) const {
    if (Size() != d.Size()) return B_FALSE;
    Associations walk(this);
    while (ZAV_LookupKey* a = walk.Next())
        if (!const_cast<ZAV_Dictionary&>(d).IncludesAssoc(a)) return B_FALSE;
    return B_TRUE;
}

boolean_t ZAV_Dictionary::IsEqual(const ZAV_CltObject* o) {
    return ZAV_Bool(o && o->IsSpecies(Species()) && *this == *Castdown(o));
}

ZAV_CltObject* ZAV_Dictionary::ShallowCopy() const { return new ZAV_Dictionary(*this); }

ZAV_Assoc* ZAV_Dictionary::AddAssoc(ZAV_CltObject* key, ZAV_CltObject* value) {
    ZAV_Assoc* a = new ZAV_Assoc(key, value);
    ZAV_CltObject* there = Add(a);
    if (there != a) delete a;
    return static_cast<ZAV_Assoc*>(AsHolder(there));
}

ZAV_LookupKey* ZAV_Dictionary::AssocAt(const ZAV_CltObject* key) const { return AsHolder(Lookup(key)); }

ZAV_CltObject* ZAV_Dictionary::AtKey(const ZAV_CltObject* key, ZAV_CltObject* value) {
    ZAV_LookupKey* a = AssocAt(key);
    return a ? a->Value(value) : ZAV_Nil();
}

ZAV_CltObject* ZAV_Dictionary::AtKey(const ZAV_CltObject* key) const {
    ZAV_LookupKey* a = AssocAt(key);
    return a ? a->Value() : ZAV_Nil();
}

boolean_t ZAV_Dictionary::IncludesAssoc(const ZAV_LookupKey* a) {
    ZAV_LookupKey* found = AssocAt(a->Key());
    return ZAV_Bool(found && HasValue(found, a->Value()));
}

boolean_t ZAV_Dictionary::IncludesKey(const ZAV_CltObject* key) { return ZAV_Bool(AssocAt(key) != nullptr); }

ZAV_CltObject* ZAV_Dictionary::KeyAtValue(const ZAV_CltObject* value) const {
    Associations walk(this);
    while (ZAV_LookupKey* a = walk.Next())
        if (HasValue(a, value)) return a->Key();
    return ZAV_Nil();
}

ZAV_LookupKey* ZAV_Dictionary::RemoveAssoc(const ZAV_LookupKey* a) { return AsHolder(Remove(a)); }

ZAV_LookupKey* ZAV_Dictionary::RemoveKey(const ZAV_CltObject* key) {
    ZAV_LookupKey* a = AssocAt(key);
    return a ? RemoveAssoc(a) : nullptr;
}

// What a dictionary owns is detached first. A value that stays where it is after that is part of its
// association and goes with it.
static void DestroyContents(ZAV_LookupKey* a) {
    ZAV_DestroyElement(a->Key(nullptr));
    ZAV_CltObject* value = a->Value(nullptr);
    if (value != a->Value()) ZAV_DestroyElement(value);
}

ZAV_DictAutoDel::~ZAV_DictAutoDel() { ClearAndDestroy(); }

void ZAV_DictAutoDel::RemoveAndDestroy(const ZAV_CltObject* key) {
    ZAV_LookupKey* a = RemoveKey(key);
    if (!a) return;
    DestroyContents(a);
    ZAV_DestroyElement(a);
}

void ZAV_DictAutoDel::ClearAndDestroy() {
    ZAV_SetAccess::ForEachSlot(*this, [](ZAV_CltObject*& slot) {
        if (slot == ZAV_Nil()) return;
        if (ZAV_LookupKey* a = AsHolder(slot))
            DestroyContents(a);
        else
            slot = ZAV_Nil();
    });
    ZAV_Dictionary::ClearAndDestroy();
}
