#ifndef ZAVBASE_COLLECTIONS_NIL_INTERNAL_H
#define ZAVBASE_COLLECTIONS_NIL_INTERNAL_H

#include <zavbase/collections/nil.h>

/// The nil object's storage: built by the compiler and, being in a union, never destroyed, so that
/// collections in static objects may use it at any time.
union ZAV_NilHolder {
    constexpr ZAV_NilHolder() : mNil() {}
    ~ZAV_NilHolder() {}
    ZAV_CltNil mNil;
};
extern ZAV_NilHolder zav_nil_holder;

/// The nil object, without a call.
inline ZAV_CltObject* ZAV_Nil() { return &zav_nil_holder.mNil; }

/// `o`, or the nil object for null.
inline ZAV_CltObject* ZAV_OrNil(ZAV_CltObject* o) { return o ? o : ZAV_Nil(); }

/// The one place that deletes an element of a collection. The nil object and the nil link come up as elements
/// too; they and null are left alone.
void ZAV_DestroyElement(ZAV_CltObject* o);

#endif
