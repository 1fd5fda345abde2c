#include <zavbase/collections/clt_object.h>

ZAV_DEFINE_CLASS(ZAV_CltObject, ZAV_Object)

ZAV_CltObject::~ZAV_CltObject() {}
const ZAV_RuntimeClass* ZAV_CltObject::Species() const { return GetRuntimeClass(); }
unsigned int ZAV_CltObject::Size() const { return 0; }
boolean_t ZAV_CltObject::IsEqual(const ZAV_CltObject*) { return B_FALSE; }
int ZAV_CltObject::Compare(const ZAV_CltObject*) const { return 0; }
unsigned int ZAV_CltObject::Hash() const { return 0; }
