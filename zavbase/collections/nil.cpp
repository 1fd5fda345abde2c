#include <zavbase/collections/nil_internal.h>

#include <ostream>

#include <zavbase/collections/link.h>

ZAV_DEFINE_CLASS(ZAV_CltNil, ZAV_CltObject)

constinit ZAV_NilHolder zav_nil_holder;

ZAV_CltNil* GetNilObj() { return &zav_nil_holder.mNil; }

void ZAV_DestroyElement(ZAV_CltObject* o) {
    if (o != ZAV_Nil() && o != ZAV_Link::GetNilLink()) delete o;
}

ZAV_CltNil::~ZAV_CltNil() {}
void ZAV_CltNil::PrintOn(std::ostream& os) { os << "NIL"; }
boolean_t ZAV_CltNil::IsEqual(const ZAV_CltObject* o) { return ZAV_Bool(o == ZAV_Nil()); }
unsigned int ZAV_CltNil::Hash() const { return 0; }
