#ifndef ZAVBASE_COLLECTIONS_INTEGER_H
#define ZAVBASE_COLLECTIONS_INTEGER_H

#include <zavbase/collections/clt_object.h>

/// A boxed signed 32-bit integer. On machines with a wider long, arguments are cut to 32 bits.
class ZAV_API ZAV_Integer : public ZAV_CltObject {
    ZAV_DECLARE_CLASS(ZAV_Integer)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_Integer)

    ZAV_Integer(long v) : mValue(static_cast<int32_t>(v)) {}
    ZAV_Integer(const ZAV_Integer& o) : ZAV_CltObject(o), mValue(o.mValue) {}
    ZAV_Integer& operator=(const ZAV_Integer& o);
    ~ZAV_Integer() override;

    long Value() const { return mValue; }
    long Value(long v) { return mValue = static_cast<int32_t>(v); } ///< stores and returns it

    void PrintOn(std::ostream& os) override;
    boolean_t IsEqual(const ZAV_CltObject* o) override; ///< same species and same number
    /// The difference in 32-bit arithmetic, which wraps: numbers more than 2^31 apart compare the other way
    /// round. `o` must be a ZAV_Integer; the nil object compares as 0.
    int Compare(const ZAV_CltObject* o) const override;
    unsigned int Hash() const override; ///< the number itself

    virtual ZAV_CltObject* ShallowCopy() const;
    virtual void DeepenShallowCopy(); ///< does nothing

    /// The 4 bytes of the number, for the hashed collections.
    const char* Bytes() const { return reinterpret_cast<const char*>(&mValue); }

private:
    int32_t mValue;
};

#endif
