#ifndef ZAVBASE_FOUNDATION_REF_COUNT_H
#define ZAVBASE_FOUNDATION_REF_COUNT_H

#include <atomic>

#include <zavbase/foundation/object.h>

/// The body of a body/handle pair: state that several handles (ZAV_Ref) share. The count is 0 after
/// construction; the last handle deletes the body. Bodies are made with new and never deleted by hand.
///
/// The count is atomic: handles of one body may be copied and destroyed on several threads. The state of the
/// body itself is the derived class's business.
class ZAV_API ZAV_RefCount : public ZAV_Object {
    ZAV_DECLARE_CLASS(ZAV_RefCount)
public:
    void PrintOn(std::ostream& os) override; ///< "mRefCount=" and the number of handles
    void DumpOn(std::ostream& os) override;

protected:
    friend class ZAV_Ref;

    ZAV_RefCount();
    /// A copy is a new body that no handle holds yet, and assignment leaves the count alone.
    ZAV_RefCount(const ZAV_RefCount& other);
    ZAV_RefCount& operator=(const ZAV_RefCount& other);
    ~ZAV_RefCount() override;

    std::atomic<int> mRefCount;
};

#endif
