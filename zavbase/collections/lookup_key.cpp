#include <zavbase/collections/lookup_key.h>

#include <ostream>

ZAV_DEFINE_CLASS(ZAV_LookupKey, ZAV_CltObject)

ZAV_LookupKey::~ZAV_LookupKey() {}

ZAV_LookupKey& ZAV_LookupKey::operator=(const ZAV_LookupKey& o) {
    mKey = o.mKey;
    return *this;
}

void ZAV_LookupKey::PrintOn(std::ostream& os) {
    if (ZAV_CltObject* key = Key()) key->PrintOn(os);
    os.write("=>", 2);
    if (ZAV_CltObject* value = Value()) value->PrintOn(os);
}

// The other object is only const here because the protocol says so; IsEqual is not, for the sake of hosts.
boolean_t ZAV_LookupKey::IsEqual(const ZAV_CltObject* o) {
    return o && mKey ? const_cast<ZAV_CltObject*>(o)->IsEqual(mKey) : B_FALSE;
}

int ZAV_LookupKey::Compare(const ZAV_CltObject* o) const { return o && mKey ? o->Compare(mKey) : 0; }
unsigned int ZAV_LookupKey::Hash() const { return mKey ? mKey->Hash() : 0; }

ZAV_CltObject* ZAV_LookupKey::ShallowCopy() const { return new ZAV_LookupKey(*this); }
void ZAV_LookupKey::DeepenShallowCopy() {}

ZAV_CltObject* ZAV_LookupKey::Key(ZAV_CltObject* key) {
    ZAV_CltObject* old = mKey;
    mKey = key;
    return old;
}

ZAV_CltObject* ZAV_LookupKey::Value(ZAV_CltObject*) { return nullptr; }
ZAV_CltObject* ZAV_LookupKey::Value() const { return nullptr; }
