#ifndef ZAVBASE_COLLECTIONS_SEQ_CLTN_H
#define ZAVBASE_COLLECTIONS_SEQ_CLTN_H

#include <zavbase/collections/collection.h>

/// The abstract base of collections that keep their elements by position. A derived class needs Size and At;
/// everything here is built on them. Positions are not checked.
class ZAV_API ZAV_SeqCltn : public ZAV_Collection {
    ZAV_DECLARE_CLASS(ZAV_SeqCltn)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_SeqCltn)

    ~ZAV_SeqCltn() override;

    ZAV_CltObject* DoNext(ZAV_Iterator* it) const override;
    boolean_t IsEqual(const ZAV_CltObject* o) override; ///< same species, same size, pairwise IsEqual
    /// The first pair of elements that differ decides; a collection that is the start of the other is less.
    /// `o` must be a collection.
    int Compare(const ZAV_CltObject* o) const override;
    unsigned int Hash() const override;
    unsigned int OccurrencesOf(const ZAV_CltObject* o) const override;

    virtual ZAV_CltObject* First() const;
    virtual ZAV_CltObject* Last() const;
    /// The position of the first element that says IsEqual to `o`, or -1.
    virtual int IndexOf(const ZAV_CltObject* o) const;
    /// The first position, not before `start`, where the elements of `c` stand in a row; -1 if nowhere. An
    /// empty `c` stands at `start`.
    virtual int IndexOfSubCollection(const ZAV_SeqCltn* c, int start) const;
    /// Positions `start` to `stop`, both included, take the elements of `source` from `sourceStart` on, one
    /// after the other.
    virtual void ReplaceFrom(int start, int stop, const ZAV_SeqCltn* source, int sourceStart);

protected:
    ZAV_SeqCltn() {}
    ZAV_SeqCltn(const ZAV_SeqCltn& c) : ZAV_Collection(c) {}
    ZAV_SeqCltn& operator=(const ZAV_SeqCltn&) { return *this; }
};

#endif
