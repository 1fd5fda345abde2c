#ifndef ZAVBASE_FOUNDATION_REF_H
#define ZAVBASE_FOUNDATION_REF_H

#include <zavbase/collections/link.h>
#include <zavbase/foundation/ref_count.h>

/// A handle that shares a counted body. It is copied by value; being a link it can also be kept in a list,
/// and copying or assigning a handle never changes its place there. One handle belongs to one thread at a
/// time, the body's count does not (see ZAV_RefCount).
///
/// To make a pair of one's own, derive the body from ZAV_RefCount and the handle from ZAV_Ref, with a
/// constructor that makes the body, `GetBody` and `operator->` that return it in its own type, and an
/// `operator=` that takes the handle's own type.
class ZAV_API ZAV_Ref : public ZAV_Link {
    ZAV_DECLARE_CLASS(ZAV_Ref)
public:
    ZAV_Ref();                   ///< a new plain body: a default handle is never empty
    ZAV_Ref(ZAV_RefCount* body); ///< adopts the body
    ZAV_Ref(const ZAV_Ref& other);
    ~ZAV_Ref() override;

    ZAV_Ref& operator=(const ZAV_Ref& other);
    ZAV_Ref& operator=(ZAV_RefCount* body);

    void PrintOn(std::ostream& os) override; ///< prints the body

    ZAV_RefCount* GetBody() const { return mBody; }
    ZAV_RefCount* operator->() const { return mBody; }

    boolean_t IsRefEqual(const ZAV_Ref& other) const { return ZAV_Bool(mBody == other.mBody); }
    boolean_t IsRefEqual(const ZAV_RefCount* body) const { return ZAV_Bool(mBody == body); }

protected:
    ZAV_RefCount* mBody;

private:
    void RemoveBody();
    void TakeBody(ZAV_RefCount* body);
};

#endif
