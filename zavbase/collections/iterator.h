#ifndef ZAVBASE_COLLECTIONS_ITERATOR_H
#define ZAVBASE_COLLECTIONS_ITERATOR_H

#include <zavbase/collections/collection.h>

/// Walks any collection:
///
///     ZAV_Iterator it(&collection);
///     while (ZAV_CltObject* o = ++it) ...
///
/// The collection is not owned and must outlive the iterator. A hashed collection must not be changed while
/// it is walked; to empty one, use Clear or ClearAndDestroy, or walk a copy (AsOrderedCltn). Removing from an
/// ordered collection makes the walk skip elements; a linked list says how it is done there. The element last
/// returned must live until the next step. The cursors are public for the collections that implement DoNext.
class ZAV_API ZAV_Iterator : public ZAV_CltObject {
    ZAV_DECLARE_CLASS(ZAV_Iterator)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_Iterator)

    explicit ZAV_Iterator(const ZAV_Collection* c);
    ~ZAV_Iterator() override;

    ZAV_CltObject* operator++() { return mCurrent = mCollection->DoNext(this); } ///< null at the end
    ZAV_CltObject* Next() { return ++*this; }
    ZAV_CltObject* operator()() const { return mCurrent; } ///< null before the first and after the last
    const ZAV_Collection* Collection() const { return mCollection; }
    void Reset() { mCollection->DoReset(this); }

    /// Whether both stand at the same place of the same collection.
    boolean_t operator==(const ZAV_Iterator* o) const;
    boolean_t operator!=(const ZAV_Iterator* o) const { return ZAV_Bool(!(*this == o)); }
    boolean_t IsEqual(const ZAV_CltObject* o) override;
    unsigned int Hash() const override;
    void PrintOn(std::ostream& os) override; ///< the current element's print, or nothing

private:
    const ZAV_Collection* mCollection;

public:
    uint32_t mIndex;         ///< the collection's cursor
    uint32_t mOccurrence;    ///< a second cursor
    ZAV_CltObject* mCurrent; ///< the element last returned
    ZAV_CltObject* mState;   ///< for the collection's own use; the nil object if unused
};

#endif
