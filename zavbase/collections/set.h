#ifndef ZAVBASE_COLLECTIONS_SET_H
#define ZAVBASE_COLLECTIONS_SET_H

#include <zavbase/collections/array_obj.h>

class ZAV_SetIndex;

/// A hash table of distinct objects, by Hash and IsEqual; the stored element is asked whether it equals the
/// sought one. Iteration follows the slots of the table, so the order depends on hashes and history only and
/// is the same on every platform.
///
/// The table has a power-of-two number of slots of which at most half are used; probing goes down from the
/// slot of the hash, and removal shifts elements back, without markers. Large tables of the library's own
/// kinds of keys find elements with a side index instead of probing; slots and order are the same. An element
/// must not change its hash or equality while it is in a set: which elements are found after that, and where
/// the next removal or growth puts them, is not defined.
class ZAV_API ZAV_Set : public ZAV_Collection {
    ZAV_DECLARE_CLASS(ZAV_Set)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_Set)

    /// Room for `capacity` elements; the set grows by itself beyond that.
    explicit ZAV_Set(unsigned int capacity = 16);
    ZAV_Set(const ZAV_Set& s); ///< copies the pointers, not the elements
    ZAV_Set& operator=(const ZAV_Set& s);
    ~ZAV_Set() override;

    /// Returns `o` when it was put in, else the equal element that was there. Null is not put in.
    ZAV_CltObject* Add(ZAV_CltObject* o) override;
    /// Returns the equal element taken out, or the nil object; the count drops in both cases, so ask Includes
    /// first.
    ZAV_CltObject* Remove(const ZAV_CltObject* o) override;
    void RemoveAndDestroy(const ZAV_CltObject* o) override;
    unsigned int OccurrencesOf(const ZAV_CltObject* o) const override; ///< 1 or 0
    unsigned int Size() const override;
    /// The raw table slot, which may hold the nil object. A slot stored to by hand ends the use of the side
    /// index until the table is next re-sized.
    ZAV_CltObject*& At(int i) override;
    ZAV_CltObject* const& At(int i) const override;
    ZAV_CltObject* DoNext(ZAV_Iterator* it) const override;
    void Clear() override;
    void ClearAndDestroy() override;

    boolean_t operator==(const ZAV_Set& s) const;
    boolean_t operator!=(const ZAV_Set& s) const { return ZAV_Bool(!(*this == s)); }
    boolean_t IsEqual(const ZAV_CltObject* o) override;
    unsigned int Hash() const override;        ///< XOR of the elements' hashes
    ZAV_Set operator|(const ZAV_Set& s) const; ///< union
    ZAV_Set operator-(const ZAV_Set& s) const; ///< difference
    ZAV_Set operator&(const ZAV_Set& s) const; ///< intersection

    virtual ZAV_CltObject* ShallowCopy() const;

protected:
    /// The slot of the element equal to `o`, or the empty slot where it would go; -1 when the table is full.
    virtual int FindIndexOf(const ZAV_CltObject* o) const;

public:
    virtual unsigned int Capacity() const; ///< half the number of slots
    /// The element equal to `o`, or the nil object.
    virtual ZAV_CltObject* FindObjectWithKey(const ZAV_CltObject* o) const;
    /// Makes room for `n` elements, which may shrink the table; does nothing unless n > Size().
    virtual void ReSize(unsigned int n);

protected:
    void SetCapacity(unsigned int n);   ///< sets the sizes for `n` elements and the count to 0
    int HashIdx(unsigned long h) const; ///< the slot of a hash

private:
    int Compare(const ZAV_CltObject* o) const override; ///< 0

    friend class ZAV_Dictionary;
    friend struct ZAV_SetAccess;
    /// The element equal to `o`, or null: FindIndexOf and the slot in one step.
    ZAV_CltObject* Lookup(const ZAV_CltObject* o) const;
    bool ProbesItself() const;
    ZAV_SetIndex* Index() const;
    const ZAV_ArrayObj& Table() const;
    void SetIndex(ZAV_SetIndex* index);
    void DropIndex(bool forGood);
    void TryIndex();
    ZAV_CltObject* AddByIndex(ZAV_CltObject* o, ZAV_SetIndex& index, bool& added);
    void CountAdded();
    void CountStored(uint32_t count);
    bool StandsInLongCluster(uint32_t slot) const;
    void CloseGap(uint32_t hole);
    void Rehash(unsigned int n);
    bool TakeByIndex(ZAV_Set& table);
    void SwapTable(ZAV_Set& s);

    uint32_t mCount;
    uint32_t mNbits;
    uint32_t mMask;
    ZAV_ArrayObj mContents;
};

#endif
