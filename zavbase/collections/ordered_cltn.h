#ifndef ZAVBASE_COLLECTIONS_ORDERED_CLTN_H
#define ZAVBASE_COLLECTIONS_ORDERED_CLTN_H

#include <zavbase/collections/array_obj.h>
#include <zavbase/collections/seq_cltn.h>

/// A growable array of element pointers. Elements stand at 0 to Size() - 1; the other slots of the table hold
/// the nil object. The elements are not owned; positions are not checked.
///
/// Walking, searching, comparing and copying the elements stand on Size and At, which a derived class may
/// override; adding, removing, First, Last, operator[], AtAllPut and Sort work on the table.
///
/// A full table grows by 32 slots. The memory behind it grows by a factor, so appending stays cheap.
class ZAV_API ZAV_OrderedCltn : public ZAV_SeqCltn {
    ZAV_DECLARE_CLASS(ZAV_OrderedCltn)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_OrderedCltn)

    explicit ZAV_OrderedCltn(unsigned int capacity = 16);
    ZAV_OrderedCltn(const ZAV_OrderedCltn& c); ///< copies the pointers
    ZAV_OrderedCltn& operator=(const ZAV_OrderedCltn& c);
    ~ZAV_OrderedCltn() override;

    /// Appends and returns `o`.
    ZAV_CltObject* Add(ZAV_CltObject* o) override {
        if (mCount == mContents.mLength) Grow();
        return mContents.mArray[mCount++] = o;
    }
    /// Put `o` behind or in front of the first element equal to `existing` and return it; without such an
    /// element they change nothing and return the nil object.
    ZAV_CltObject* AddAfter(const ZAV_CltObject* existing, ZAV_CltObject* o);
    ZAV_CltObject* AddBefore(const ZAV_CltObject* existing, ZAV_CltObject* o);
    /// Appends all elements of `c`, which may be this collection; returns `c`.
    const ZAV_OrderedCltn* AddAllLast(const ZAV_OrderedCltn* c);

    ZAV_CltObject*& operator[](int i) { return mContents.mArray[i]; }
    ZAV_CltObject* const& operator[](int i) const { return mContents.mArray[i]; }
    ZAV_CltObject*& At(int i) override;
    ZAV_CltObject* const& At(int i) const override;
    ZAV_CltObject* First() const override; ///< the nil object when empty
    ZAV_CltObject* Last() const override;  ///< the nil object when empty
    /// The neighbour of the first element equal to `o`; the nil object if there is none.
    ZAV_CltObject* After(const ZAV_CltObject* o) const;
    ZAV_CltObject* Before(const ZAV_CltObject* o) const;
    ZAV_CltObject* DoNext(ZAV_Iterator* it) const override;
    unsigned int Size() const override;

    /// Take the first element that says IsEqual to `o`, that is `o` itself, or the last one, and return it;
    /// the nil object if there is none.
    ZAV_CltObject* Remove(const ZAV_CltObject* o) override;
    ZAV_CltObject* RemoveId(const ZAV_CltObject* o);
    ZAV_CltObject* RemoveLast();
    void RemoveAndDestroy(const ZAV_CltObject* o) override;
    void Clear() override;
    void ClearAndDestroy() override;
    void AtAllPut(ZAV_CltObject* o); ///< stores `o` at every position in use

    boolean_t operator==(const ZAV_OrderedCltn& c) const;
    boolean_t operator!=(const ZAV_OrderedCltn& c) const { return ZAV_Bool(!(*this == c)); }
    /// The elements of this collection that `c` includes, in their order.
    ZAV_OrderedCltn operator&(const ZAV_OrderedCltn& c) const;
    ZAV_OrderedCltn& operator&=(const ZAV_OrderedCltn& c);

    virtual ZAV_CltObject* ShallowCopy() const;
    virtual unsigned int Capacity() const; ///< slots of the table
    virtual void ReSize(unsigned int n);   ///< a table of `n` slots; does nothing unless n > Size()
    virtual void Sort();                   ///< as ZAV_ArrayObj::Sort, of the elements in use

protected:
    ZAV_CltObject* AddAtIndex(int i, ZAV_CltObject* o);
    ZAV_CltObject* RemoveAtIndex(int i);

private:
    void Grow();
    int SlotOf(const ZAV_CltObject* o) const;

    uint32_t mCount;
    ZAV_ArrayObj mContents;
};

#endif
