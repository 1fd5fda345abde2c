#include <zavbase/foundation/object.h>

#include <ostream>

// The root's base link is null, which is what ends every walk; so it is written out.
ZAV_RuntimeClass ZAV_Object::classZAV_Object = {"ZAV_Object", sizeof(ZAV_Object), nullptr, nullptr};
ZAV_RuntimeClass* ZAV_Object::_GetBaseClass(void) { return &classZAV_Object; }
ZAV_RuntimeClass* ZAV_Object::GetRuntimeClass(void) const { return &classZAV_Object; }

ZAV_Object::~ZAV_Object() {}

void ZAV_Object::PrintOn(std::ostream& os) { os << "Base class"; }

void ZAV_Object::DumpOn(std::ostream&) {}

boolean_t ZAV_Object::IsKindOf(const ZAV_RuntimeClass* rc) const {
    // The base link is tested before the record: so the root record is never found.
    for (const ZAV_RuntimeClass* r = GetRuntimeClass(); r && r->mGetBaseClass; r = r->mGetBaseClass())
        if (r == rc) return B_TRUE;
    return B_FALSE;
}

const char* ZAV_Object::ClassName() const { return GetRuntimeClass()->mName; }

std::ostream& operator<<(std::ostream& os, ZAV_Object& o) {
    o.PrintOn(os);
    return os;
}

std::ostream& operator<<(std::ostream& os, ZAV_Object* o) { return os << *o; }

std::ostream& operator<<(std::ostream& os, const ZAV_Object& o) { return os << const_cast<ZAV_Object&>(o); }

std::ostream& operator<<(std::ostream& os, const ZAV_Object* o) { return os << *o; }

std::ostream& operator<<(std::ostream& os, boolean_t b) { return os << (b ? "B_TRUE" : "B_FALSE"); }
