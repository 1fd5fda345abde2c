#ifndef ZAVBASE_COLLECTIONS_ASSOC_H
#define ZAVBASE_COLLECTIONS_ASSOC_H

#include <zavbase/collections/clt_stream.h>
#include <zavbase/collections/integer.h>
#include <zavbase/collections/lookup_key.h>

/// A key with a value, the element of a dictionary. Owns neither; equality, order and hash are the key's.
class ZAV_API ZAV_Assoc : public ZAV_LookupKey {
    ZAV_DECLARE_CLASS(ZAV_Assoc)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_Assoc)

    ZAV_Assoc(ZAV_CltObject* key, ZAV_CltObject* value) : ZAV_LookupKey(key), mValue(value) {}
    ZAV_Assoc(const ZAV_Assoc& o) : ZAV_LookupKey(o), mValue(o.mValue) {}
    ZAV_Assoc& operator=(const ZAV_Assoc& o);
    ~ZAV_Assoc() override;

    ZAV_CltObject* ShallowCopy() const override;
    ZAV_CltObject* Value(ZAV_CltObject* value) override; ///< stores it and returns the previous one
    ZAV_CltObject* Value() const override;

private:
    ZAV_CltObject* mValue;
};

/// A key with an integer inside. Value() is the address of that integer, which lives and dies with the
/// association; Value(v) copies the number out of `v`, which must be a ZAV_Integer (null changes nothing),
/// and returns the same address.
class ZAV_API ZAV_AssocInt : public ZAV_LookupKey {
    ZAV_DECLARE_CLASS(ZAV_AssocInt)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_AssocInt)

    ZAV_AssocInt(ZAV_CltObject* key, int value) : ZAV_LookupKey(key), mValue(value) {}
    ZAV_AssocInt(const ZAV_AssocInt& o) : ZAV_LookupKey(o), mValue(o.mValue) {}
    ZAV_AssocInt& operator=(const ZAV_AssocInt& o);
    ~ZAV_AssocInt() override;

    ZAV_CltObject* ShallowCopy() const override;
    ZAV_CltObject* Value(ZAV_CltObject* value) override;
    ZAV_CltObject* Value() const override;

private:
    ZAV_Integer mValue;
};

/// As ZAV_AssocInt, with a holder of an input stream inside.
class ZAV_API ZAV_AssocIs : public ZAV_LookupKey {
    ZAV_DECLARE_CLASS(ZAV_AssocIs)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_AssocIs)

    ZAV_AssocIs(ZAV_CltObject* key, std::istream* s) : ZAV_LookupKey(key), mValue(s) {}
    ZAV_AssocIs(const ZAV_AssocIs& o) : ZAV_LookupKey(o), mValue(o.mValue) {}
    ZAV_AssocIs& operator=(const ZAV_AssocIs& o);
    ~ZAV_AssocIs() override;

    ZAV_CltObject* ShallowCopy() const override;
    ZAV_CltObject* Value(ZAV_CltObject* value) override;
    ZAV_CltObject* Value() const override;

private:
    ZAV_IStream mValue;
};

/// As ZAV_AssocInt, with a holder of an output stream inside.
class ZAV_API ZAV_AssocOs : public ZAV_LookupKey {
    ZAV_DECLARE_CLASS(ZAV_AssocOs)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_AssocOs)

    ZAV_AssocOs(ZAV_CltObject* key, std::ostream* s) : ZAV_LookupKey(key), mValue(s) {}
    ZAV_AssocOs(const ZAV_AssocOs& o) : ZAV_LookupKey(o), mValue(o.mValue) {}
    ZAV_AssocOs& operator=(const ZAV_AssocOs& o);
    ~ZAV_AssocOs() override;

    ZAV_CltObject* ShallowCopy() const override;
    ZAV_CltObject* Value(ZAV_CltObject* value) override;
    ZAV_CltObject* Value() const override;

private:
    ZAV_OStream mValue;
};

#endif
