#ifndef ZAVBASE_COLLECTIONS_NIL_H
#define ZAVBASE_COLLECTIONS_NIL_H

#include <zavbase/collections/clt_object.h>

/// The class of the nil object, which fills empty slots of collections and stands for "not found". It is
/// equal to itself only, compares as 0 with everything and prints as "NIL". A program uses the one static
/// instance.
class ZAV_API ZAV_CltNil : public ZAV_CltObject {
    ZAV_DECLARE_CLASS(ZAV_CltNil)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_CltNil)

    constexpr ZAV_CltNil() {}
    constexpr ZAV_CltNil(const ZAV_CltNil& o) : ZAV_CltObject(o) {}
    ZAV_CltNil& operator=(const ZAV_CltNil&) { return *this; }
    ~ZAV_CltNil() override;

    void PrintOn(std::ostream& os) override;
    boolean_t IsEqual(const ZAV_CltObject* o) override;
    unsigned int Hash() const override;
};

/// The nil object: the same address on every call, valid from before the first constructor runs to the end of
/// the process, shared by all threads. Results of collections are tested against it, not against null.
ZAV_API ZAV_CltNil* GetNilObj();

#endif
