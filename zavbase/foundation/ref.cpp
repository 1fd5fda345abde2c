#include <zavbase/foundation/ref.h>

#include <utility>

ZAV_DEFINE_CLASS(ZAV_Ref, ZAV_Link)

ZAV_Ref::ZAV_Ref() { TakeBody(new ZAV_RefCount); }
ZAV_Ref::ZAV_Ref(ZAV_RefCount* body) { TakeBody(body); }
ZAV_Ref::ZAV_Ref(const ZAV_Ref& other) : ZAV_Link() { TakeBody(other.mBody); }
ZAV_Ref::~ZAV_Ref() { RemoveBody(); }

ZAV_Ref& ZAV_Ref::operator=(const ZAV_Ref& other) { return *this = other.mBody; }

// The new body is counted before the old one goes: the old one may be what keeps the new one alive.
ZAV_Ref& ZAV_Ref::operator=(ZAV_RefCount* body) {
    ZAV_Ref old(body);
    std::swap(mBody, old.mBody);
    return *this;
}

void ZAV_Ref::PrintOn(std::ostream& os) { mBody->PrintOn(os); }

void ZAV_Ref::TakeBody(ZAV_RefCount* body) {
    mBody = body;
    if (body) body->mRefCount.fetch_add(1, std::memory_order_relaxed);
}

void ZAV_Ref::RemoveBody() {
    if (mBody && mBody->mRefCount.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete mBody;
        mBody = nullptr;
    }
}
