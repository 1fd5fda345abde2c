#include <zavbase/collections/assoc.h>

ZAV_DEFINE_CLASS(ZAV_Assoc, ZAV_LookupKey)
ZAV_DEFINE_CLASS(ZAV_AssocInt, ZAV_LookupKey)
ZAV_DEFINE_CLASS(ZAV_AssocIs, ZAV_LookupKey)
ZAV_DEFINE_CLASS(ZAV_AssocOs, ZAV_LookupKey)

ZAV_Assoc::~ZAV_Assoc() {}

ZAV_Assoc& ZAV_Assoc::operator=(const ZAV_Assoc& o) {
    ZAV_LookupKey::operator=(o);
    mValue = o.mValue;
    return *this;
}

ZAV_CltObject* ZAV_Assoc::ShallowCopy() const { return new ZAV_Assoc(*this); }

ZAV_CltObject* ZAV_Assoc::Value(ZAV_CltObject* value) {
    ZAV_CltObject* old = mValue;
    mValue = value;
    return old;
}

ZAV_CltObject* ZAV_Assoc::Value() const { return mValue; }

ZAV_AssocInt::~ZAV_AssocInt() {}

ZAV_AssocInt& ZAV_AssocInt::operator=(const ZAV_AssocInt& o) {
    ZAV_LookupKey::operator=(o);
    mValue = o.mValue;
    return *this;
}

ZAV_CltObject* ZAV_AssocInt::ShallowCopy() const { return new ZAV_AssocInt(*this); }

ZAV_CltObject* ZAV_AssocInt::Value(ZAV_CltObject* value) {
    if (value) mValue = *ZAV_Integer::Castdown(value);
    return &mValue;
}

ZAV_CltObject* ZAV_AssocInt::Value() const { return const_cast<ZAV_Integer*>(&mValue); }

ZAV_AssocIs::~ZAV_AssocIs() {}

ZAV_AssocIs& ZAV_AssocIs::operator=(const ZAV_AssocIs& o) {
    ZAV_LookupKey::operator=(o);
    mValue = o.mValue;
    return *this;
}

ZAV_CltObject* ZAV_AssocIs::ShallowCopy() const { return new ZAV_AssocIs(*this); }

ZAV_CltObject* ZAV_AssocIs::Value(ZAV_CltObject* value) {
    if (value) mValue = *ZAV_IStream::Castdown(value);
    return &mValue;
}

ZAV_CltObject* ZAV_AssocIs::Value() const { return const_cast<ZAV_IStream*>(&mValue); }

ZAV_AssocOs::~ZAV_AssocOs() {}

ZAV_AssocOs& ZAV_AssocOs::operator=(const ZAV_AssocOs& o) {
    ZAV_LookupKey::operator=(o);
    mValue = o.mValue;
    return *this;
}

ZAV_CltObject* ZAV_AssocOs::ShallowCopy() const { return new ZAV_AssocOs(*this); }

ZAV_CltObject* ZAV_AssocOs::Value(ZAV_CltObject* value) {
    if (value) mValue = *ZAV_OStream::Castdown(value);
    return &mValue;
}

ZAV_CltObject* ZAV_AssocOs::Value() const { return const_cast<ZAV_OStream*>(&mValue); }
