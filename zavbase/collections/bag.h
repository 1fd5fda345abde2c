#ifndef ZAVBASE_COLLECTIONS_BAG_H
#define ZAVBASE_COLLECTIONS_BAG_H

#include <zavbase/collections/dictionary.h>

/// Counts occurrences of equal objects. Of each class of equal objects the one added first is kept, with a
/// count; iteration gives it as many times as it was added, in the order of the table. The objects are not
/// owned, the counters are.
class ZAV_API ZAV_Bag : public ZAV_Collection {
    ZAV_DECLARE_CLASS(ZAV_Bag)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_Bag)

    explicit ZAV_Bag(unsigned int capacity = 16);
    ZAV_Bag(const ZAV_Bag& b); ///< copies the counters, shares the objects
    ZAV_Bag& operator=(const ZAV_Bag& b);
    ~ZAV_Bag() override;

    /// Both return the object kept for this class of equals: `o` itself when it is the first. An object added
    /// 0 times is kept all the same; walking and Size leave it out.
    ZAV_CltObject* Add(ZAV_CltObject* o) override;
    ZAV_CltObject* AddWithOccurrences(ZAV_CltObject* o, unsigned int n);
    /// Takes one occurrence away. The kept object is returned with the last one, or where there is none;
    /// before that, and for an absent object, the result is null.
    ZAV_CltObject* Remove(const ZAV_CltObject* o) override;
    void RemoveAndDestroy(const ZAV_CltObject* o) override;
    unsigned int OccurrencesOf(const ZAV_CltObject* o) const override;
    unsigned int Size() const override; ///< all occurrences
    unsigned int Capacity() const { return mContents.Capacity(); }

    ZAV_CltObject*& At(int i) override; ///< the raw table slot: a counter or the nil object
    ZAV_CltObject* const& At(int i) const override;
    ZAV_CltObject* DoNext(ZAV_Iterator* it) const override;
    void Clear() override;
    void ClearAndDestroy() override; ///< deletes the kept objects too

    boolean_t operator==(const ZAV_Bag& b) const;
    boolean_t operator!=(const ZAV_Bag& b) const { return ZAV_Bool(!(*this == b)); }
    boolean_t IsEqual(const ZAV_CltObject* o) override;
    int Compare(const ZAV_CltObject* o) const override; ///< 0: bags have no order
    unsigned int Hash() const override;

    virtual ZAV_CltObject* ShallowCopy() const;

private:
    void CopyCounters(const ZAV_Bag& b);

    uint32_t mCount;
    ZAV_Dictionary mContents;
};

#endif
