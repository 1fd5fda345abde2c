#ifndef ZAVBASE_COLLECTIONS_LINKED_LIST_H
#define ZAVBASE_COLLECTIONS_LINKED_LIST_H

#include <zavbase/collections/link.h>
#include <zavbase/collections/seq_cltn.h>

/// An intrusive singly linked list: the elements are the links themselves, so nothing is allocated and a link
/// is in one list at a time. The links are not owned. Adding at either end and removing the first take
/// constant time; removing another link walks the list.
class ZAV_API ZAV_LinkedList : public ZAV_SeqCltn {
    ZAV_DECLARE_CLASS(ZAV_LinkedList)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_LinkedList)

    ZAV_LinkedList();
    ZAV_LinkedList(const ZAV_LinkedList&) = delete;
    ZAV_LinkedList& operator=(const ZAV_LinkedList&) = delete;
    ~ZAV_LinkedList() override;

    /// Append, put at the front, put behind `existing`, which must be in the list. All return the link put
    /// in. Where an object is given it must be a link; that is not checked.
    ZAV_Link* Add(ZAV_Link* l);
    ZAV_CltObject* Add(ZAV_CltObject* o) override;
    ZAV_Link* AddFirst(ZAV_Link* l);
    ZAV_CltObject* AddFirst(ZAV_CltObject* o);
    ZAV_Link* AddAfter(ZAV_Link* existing, ZAV_Link* l);
    ZAV_CltObject* AddAfter(ZAV_CltObject* existing, ZAV_CltObject* o);

    /// Take this very link out (identity, not equality) and return it, its successor set to null; null when
    /// it is not in the list, or the list is empty.
    ZAV_Link* Remove(const ZAV_Link* l);
    ZAV_CltObject* Remove(const ZAV_CltObject* o) override;
    ZAV_Link* RemoveFirst();
    ZAV_Link* RemoveLast();
    void RemoveAndDestroy(const ZAV_CltObject* o) override;
    void Clear() override;
    void ClearAndDestroy() override;

    /// The first and last link; the nil link when empty.
    ZAV_CltObject* First() const override;
    ZAV_CltObject* Last() const override;
    ZAV_Link* operator[](int i) const; ///< by walking; the nil link beyond the end
    ZAV_CltObject* DoNext(ZAV_Iterator* it) const override;
    unsigned int Size() const override;
    boolean_t IsEmpty() override;

private:
    /// An object given as a link; unchecked.
    static ZAV_Link* LinkCastdown(ZAV_CltObject* o) { return ZAV_Link::Castdown(o); }
    static const ZAV_Link* LinkCastdown(const ZAV_CltObject* o) { return ZAV_Link::Castdown(o); }
    ZAV_CltObject*& At(int i) override;
    ZAV_CltObject* const& At(int i) const override;
    int IndexOfSubCollection(const ZAV_SeqCltn* c, int start) const override;
    void ReplaceFrom(int start, int stop, const ZAV_SeqCltn* source, int sourceStart) override;

    ZAV_Link* mFirst;
    ZAV_Link* mLast;
    uint32_t mCount;
    ZAV_CltObject* mNil;
};

#endif
