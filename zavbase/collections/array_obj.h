#ifndef ZAVBASE_COLLECTIONS_ARRAY_OBJ_H
#define ZAVBASE_COLLECTIONS_ARRAY_OBJ_H

#include <zavbase/collections/collection.h>

/// An array of element pointers with a fixed number of slots; also the table inside sets and ordered
/// collections. An unused slot holds the nil object, and every slot counts: Size() is the number of slots,
/// iteration and AddContentsTo hand out nil slots too. Nothing can be added or removed; store through At.
class ZAV_API ZAV_ArrayObj : public ZAV_Collection {
    ZAV_DECLARE_CLASS(ZAV_ArrayObj)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_ArrayObj)

    explicit ZAV_ArrayObj(unsigned int n = 16);
    ZAV_ArrayObj(const ZAV_ArrayObj& a);            ///< copies the pointers
    ZAV_ArrayObj& operator=(const ZAV_ArrayObj& a); ///< copies the pointers and the length
    ~ZAV_ArrayObj() override;

    ZAV_CltObject*& operator[](int i) { return mArray[i]; }
    ZAV_CltObject* const& operator[](int i) const { return mArray[i]; }
    ZAV_CltObject*& At(int i) override;
    ZAV_CltObject* const& At(int i) const override;
    unsigned int Size() const override;

    boolean_t operator==(const ZAV_ArrayObj& a) const;
    boolean_t operator!=(const ZAV_ArrayObj& a) const { return ZAV_Bool(!(*this == a)); }
    boolean_t IsEqual(const ZAV_CltObject* o) override;
    int Compare(const ZAV_CltObject* o) const override; ///< lexicographic; `o` must be an array
    unsigned int Hash() const override;
    unsigned int OccurrencesOf(const ZAV_CltObject* o) const override;

    ZAV_Collection* AddContentsTo(ZAV_Collection* target) const override;
    ZAV_CltObject* DoNext(ZAV_Iterator* it) const override;
    void Clear() override;           ///< every slot becomes the nil object
    void ClearAndDestroy() override; ///< the same, deleting what the slots held

    virtual ZAV_CltObject* ShallowCopy() const;
    virtual unsigned int Capacity() const;
    /// Takes `n` slots: pointers beyond are dropped, new slots hold the nil object.
    virtual void ReSize(unsigned int n);
    /// Sorts all slots by the elements' Compare, ascending; equal elements may change places. A Compare that
    /// contradicts itself gives some order of the same elements.
    virtual void Sort();

private:
    ZAV_CltObject* Add(ZAV_CltObject* o) override;
    ZAV_CltObject* Remove(const ZAV_CltObject* o) override;
    void RemoveAndDestroy(const ZAV_CltObject* o) override;

    friend class ZAV_OrderedCltn;
    friend class ZAV_Set;
    friend struct ZAV_SetAccess;
    void DestroyFirst(const uint32_t& n);
    void GrowWithSlack(uint32_t n);

    ZAV_CltObject** mArray; // room and helps of the slots stand in a hidden header in front of the first
    uint32_t mLength;
};

#endif
