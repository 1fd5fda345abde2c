#ifndef ZAVBASE_COLLECTIONS_COLLECTION_H
#define ZAVBASE_COLLECTIONS_COLLECTION_H

#include <zavbase/collections/clt_object.h>

class ZAV_ArrayObj;
class ZAV_Bag;
class ZAV_Iterator;
class ZAV_OrderedCltn;
class ZAV_Set;

/// The abstract container of collectable objects. Hosts may derive their own collections.
///
/// A collection holds pointers and owns nothing: Clear and Remove leave the objects alone, the ...AndDestroy
/// calls delete them. Where there is no element to give, the result is the nil object unless a call says
/// null. A collection and its iterators belong to one thread at a time. Nothing here throws.
class ZAV_API ZAV_Collection : public ZAV_CltObject {
    ZAV_DECLARE_CLASS(ZAV_Collection)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_Collection)

    ~ZAV_Collection() override;

    /// The elements in iteration order, separated by single line feeds.
    void PrintOn(std::ostream& os) override;

    unsigned int Size() const override = 0;
    boolean_t IsEqual(const ZAV_CltObject* o) override = 0;
    int Compare(const ZAV_CltObject* o) const override = 0;
    unsigned int Hash() const override = 0;

    virtual ZAV_CltObject* Add(ZAV_CltObject* o) = 0;
    /// Adds every element to `target` in iteration order; returns `target`. What the elements are is the
    /// class's own affair: a dictionary adds its values, a linked list its links.
    virtual ZAV_Collection* AddContentsTo(ZAV_Collection* target) const;
    /// The element (of a hashed collection: the raw slot) at a position, which is not checked. The reference
    /// is good until the collection changes.
    virtual ZAV_CltObject*& At(int i) = 0;
    virtual ZAV_CltObject* const& At(int i) const = 0;
    /// The iterator's hooks: the next element or null at the end; end of use; back to the start.
    virtual ZAV_CltObject* DoNext(ZAV_Iterator* it) const = 0;
    virtual ZAV_CltObject* Remove(const ZAV_CltObject* o) = 0;
    virtual void RemoveAndDestroy(const ZAV_CltObject* o) = 0;
    virtual const ZAV_Collection* AddAll(const ZAV_Collection* c);    ///< returns `c`
    virtual const ZAV_Collection* RemoveAll(const ZAV_Collection* c); ///< returns `c`
    virtual void DeepenShallowCopy();
    virtual void DoFinish(ZAV_Iterator* it) const;
    virtual void DoReset(ZAV_Iterator* it) const;
    virtual void Clear() = 0;
    virtual void ClearAndDestroy() = 0;
    virtual boolean_t Includes(const ZAV_CltObject* o);
    virtual boolean_t IsEmpty();
    virtual unsigned int OccurrencesOf(const ZAV_CltObject* o) const = 0;

    /// New collections for the caller, who deletes them. The array has Size() slots in iteration order; the
    /// others start with a capacity of Size(), at least 16, and are filled by AddContentsTo. A Size that went
    /// below 0 by removing what was absent stands for the number of elements walked.
    ZAV_ArrayObj* AsArrayObj() const;
    ZAV_Bag* AsBag() const;
    ZAV_Set* AsSet() const;
    ZAV_OrderedCltn* AsOrderedCltn() const;

protected:
    ZAV_Collection() {}
    ZAV_Collection(const ZAV_Collection& c) : ZAV_CltObject(c) {}
    ZAV_Collection& operator=(const ZAV_Collection&) { return *this; }
};

#endif
