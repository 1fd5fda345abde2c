#include <zavbase/collections/integer.h>

#include <ostream>
#include <string>

#include <zavbase/collections/nil_internal.h>

ZAV_DEFINE_CLASS(ZAV_Integer, ZAV_CltObject)

ZAV_Integer::~ZAV_Integer() {}

ZAV_Integer& ZAV_Integer::operator=(const ZAV_Integer& o) {
    mValue = o.mValue;
    return *this;
}

// Decimal whatever the stream's flags are, and they stay.
void ZAV_Integer::PrintOn(std::ostream& os) { os << std::to_string(mValue); }

boolean_t ZAV_Integer::IsEqual(const ZAV_CltObject* o) {
    return ZAV_Bool(o && o->IsSpecies(Species()) && Castdown(o)->mValue == mValue);
}

int ZAV_Integer::Compare(const ZAV_CltObject* o) const {
    if (!o || o == ZAV_Nil()) return 0;
    return static_cast<int>(static_cast<uint32_t>(mValue) - static_cast<uint32_t>(Castdown(o)->mValue));
}

unsigned int ZAV_Integer::Hash() const { return static_cast<unsigned int>(mValue); }

ZAV_CltObject* ZAV_Integer::ShallowCopy() const { return new ZAV_Integer(*this); }
void ZAV_Integer::DeepenShallowCopy() {}
