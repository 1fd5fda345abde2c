#ifndef ZAVBASE_COLLECTIONS_DICTIONARY_H
#define ZAVBASE_COLLECTIONS_DICTIONARY_H

#include <zavbase/collections/assoc.h>
#include <zavbase/collections/set.h>

/// A set of associations found by key. Iteration gives the associations in table order. Includes,
/// OccurrencesOf and AddContentsTo look at the values, not at the keys. Keys, values and associations are not
/// owned; whoever adds them deletes them.
///
/// So AddAll of a dictionary adds its values, without their keys, which is seldom meant: to merge, walk the
/// other one and call AddAssoc. Elements that are no ZAV_LookupKey count in Size and come up in a plain walk;
/// what looks at keys or values passes them by.
class ZAV_API ZAV_Dictionary : public ZAV_Set {
    ZAV_DECLARE_CLASS(ZAV_Dictionary)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_Dictionary)

    explicit ZAV_Dictionary(unsigned int capacity = 16) : ZAV_Set(capacity) {}
    ZAV_Dictionary(const ZAV_Dictionary& d) : ZAV_Set(d) {}
    ZAV_Dictionary& operator=(const ZAV_Dictionary& d);
    ~ZAV_Dictionary() override;

    unsigned int OccurrencesOf(const ZAV_CltObject* value) const override;
    ZAV_Collection* AddContentsTo(ZAV_Collection* target) const override; ///< the values
    boolean_t operator==(const ZAV_Dictionary& d) const;
    boolean_t operator!=(const ZAV_Dictionary& d) const { return ZAV_Bool(!(*this == d)); }
    boolean_t IsEqual(const ZAV_CltObject* o) override;
    ZAV_CltObject* ShallowCopy() const override;

    /// Adds a new association, which the caller owns; when the key is present already, returns that
    /// association with its value unchanged.
    virtual ZAV_Assoc* AddAssoc(ZAV_CltObject* key, ZAV_CltObject* value);
    virtual ZAV_Collection* AddKeysTo(ZAV_Collection* target) const;   ///< returns `target`
    virtual ZAV_Collection* AddValuesTo(ZAV_Collection* target) const; ///< returns `target`
    /// The association with an equal key, or null.
    virtual ZAV_LookupKey* AssocAt(const ZAV_CltObject* key) const;
    /// Stores a value under a present key and returns the previous one; the nil object for an absent key,
    /// which stays absent.
    virtual ZAV_CltObject* AtKey(const ZAV_CltObject* key, ZAV_CltObject* value);
    /// The value under a key; the nil object for an absent key.
    virtual ZAV_CltObject* AtKey(const ZAV_CltObject* key) const;
    virtual boolean_t IncludesAssoc(const ZAV_LookupKey* a); ///< key and value are equal to one here
    virtual boolean_t IncludesKey(const ZAV_CltObject* key);
    /// The key of the first association, in table order, with an equal value; the nil object if none.
    virtual ZAV_CltObject* KeyAtValue(const ZAV_CltObject* value) const;
    /// Take an association out and return it; null if absent. RemoveAssoc is Remove: of an absent one it
    /// drops the count. RemoveKey of an absent key changes nothing.
    virtual ZAV_LookupKey* RemoveAssoc(const ZAV_LookupKey* a);
    virtual ZAV_LookupKey* RemoveKey(const ZAV_CltObject* key);
};

/// A dictionary that owns its keys, its values and its associations: the ...AndDestroy calls and the
/// destructor delete all three, whatever is not the nil object. An object must come up in one place only;
/// elements that are no ZAV_LookupKey are not owned. The plain Clear and Remove calls leave all to the
/// caller. It cannot be copied; ShallowCopy gives a plain dictionary that owns nothing.
class ZAV_API ZAV_DictAutoDel : public ZAV_Dictionary {
public:
    ZAV_DECLARE_CASTDOWN(ZAV_DictAutoDel)

    ZAV_DictAutoDel() {}
    explicit ZAV_DictAutoDel(unsigned int capacity) : ZAV_Dictionary(capacity) {}
    ZAV_DictAutoDel(const ZAV_DictAutoDel&) = delete;
    ZAV_DictAutoDel& operator=(const ZAV_DictAutoDel&) = delete;
    ~ZAV_DictAutoDel() override;

    void RemoveAndDestroy(const ZAV_CltObject* key) override; ///< nothing for an absent key
    void ClearAndDestroy() override;
};

#endif
