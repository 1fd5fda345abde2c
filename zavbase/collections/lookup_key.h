#ifndef ZAVBASE_COLLECTIONS_LOOKUP_KEY_H
#define ZAVBASE_COLLECTIONS_LOOKUP_KEY_H

#include <zavbase/collections/clt_object.h>
#include <zavbase/foundation/pooled.h>

/// Holds a key; the associations derive from it and add a value. Neither key nor value is owned.
///
/// IsEqual and Compare pass the question on to the other object, with this object's key as argument. So two
/// holders compare by their keys, and a holder can be searched for with a bare key. With a bare `o` the sign
/// of Compare is the one seen from `o`.
class ZAV_API ZAV_LookupKey : public ZAV_CltObject, public ZAV_Pooled {
    ZAV_DECLARE_CLASS(ZAV_LookupKey)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_LookupKey)

    ZAV_LookupKey(ZAV_CltObject* key) : mKey(key) {}
    ZAV_LookupKey(const ZAV_LookupKey& o) : ZAV_CltObject(o), ZAV_Pooled(), mKey(o.mKey) {}
    ZAV_LookupKey& operator=(const ZAV_LookupKey& o);
    ~ZAV_LookupKey() override;

    /// The key's print, "=>" and the value's print; nothing in place of a null.
    void PrintOn(std::ostream& os) override;
    boolean_t IsEqual(const ZAV_CltObject* o) override;
    int Compare(const ZAV_CltObject* o) const override;
    unsigned int Hash() const override; ///< the key's

    virtual ZAV_CltObject* ShallowCopy() const; ///< a new object with the same pointers
    virtual void DeepenShallowCopy();           ///< does nothing

    /// Stores `key` and returns the previous one. A holder in a hashed collection keeps its key.
    virtual ZAV_CltObject* Key(ZAV_CltObject* key);
    virtual ZAV_CltObject* Key() const { return mKey; }
    /// A bare key has no value: both return null.
    virtual ZAV_CltObject* Value(ZAV_CltObject* value);
    virtual ZAV_CltObject* Value() const;

private:
    ZAV_CltObject* mKey;
};

#endif
