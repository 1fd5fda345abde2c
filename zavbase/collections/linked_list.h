#ifndef ZAVBASE_COLLECTIONS_LINKED_LIST_H
#define ZAVBASE_COLLECTIONS_LINKED_LIST_H

#include <zavbase/collections/link.h>
#include <zavbase/collections/seq_cltn.h>

/// An intrusive singly linked list: the elements are the links themselves, so nothing is allocated and a link
/// is in one list at a time. The links are not owned. Adding at either end and removing the first take
/// constant time; removing another link walks the list.
///
/// Adding a link of another list (AddAll of a list does) moves it without telling that list, whose count is
/// then wrong and whose walk ends where its chain does: Clear it and nothing else.
///
/// A walk goes on from the link it is at, so that link must live. To remove links while walking, step first:
///
///     ZAV_Iterator it(&list);
///     for (ZAV_CltObject *next, *o = ++it; o; o = next) {
///         next = ++it;
///         if (...) list.RemoveAndDestroy(o);
///     }
class ZAV_API ZAV_LinkedList : public ZAV_SeqCltn {
    ZAV_DECLARE_CLASS(ZAV_LinkedList)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_LinkedList)

    ZAV_LinkedList();
    ZAV_LinkedList(const ZAV_LinkedList&) = delete;
    ZAV_LinkedList& operator=(const ZAV_LinkedList&) = delete;
    ~ZAV_LinkedList() override;

    /// Append, put at the front, put behind `existing`, which must be in the list. All return the link put
    /// in. Where an object is given it must be a link; that is not checked. Null and the nil link are not put
    /// in; behind them means at the end.
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
    void Forget();
    int IndexOfSubCollection(const ZAV_SeqCltn* c, int start) const override;
    void ReplaceFrom(int start, int stop, const ZAV_SeqCltn* source, int sourceStart) override;

    ZAV_Link* mFirst;
    ZAV_Link* mLast;
    uint32_t mCount;
    ZAV_CltObject* mNil;
};

#endif
