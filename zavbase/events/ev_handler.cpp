#include <zavbase/events/ev_handler.h>

#include <memory>
#include <ostream>

#include <zavbase/events/count_internal.h>
#include <zavbase/events/ev_port_internal.h>
#include <zavbase/events/ev_tie_internal.h>
#include <zavbase/events/event.h>

ZAV_DEFINE_CLASS(ZAV_EvHandlerBody, ZAV_RefCount)
ZAV_DEFINE_CLASS(ZAV_EvHandlerRef, ZAV_Ref)
ZAV_DEFINE_CLASS(ZAV_EvHandlerHelper, ZAV_Object)

int ZAV_EvHandlerBody::instance_counter = 0;

ZAV_EvHandlerBody::ZAV_EvHandlerBody() : mDispatcher(nullptr) { ZAV_CountLive(instance_counter, 1); }

ZAV_EvHandlerBody::ZAV_EvHandlerBody(const ZAV_EvHandlerBody& other)
    : ZAV_RefCount(other), mDispatcher(nullptr) {
    ZAV_CountLive(instance_counter, 1);
}

ZAV_EvHandlerBody& ZAV_EvHandlerBody::operator=(const ZAV_EvHandlerBody&) { return *this; }

ZAV_EvHandlerBody::~ZAV_EvHandlerBody() {
    delete mDispatcher.load(std::memory_order_acquire);
    ZAV_CountLive(instance_counter, -1);
}

void ZAV_EvHandlerBody::PrintOn(std::ostream& os) {
    ZAV_EvTie* const tie = mDispatcher.load(std::memory_order_acquire);
    os << "mRefCount=" << (tie != nullptr ? tie->References() : mRefCount.load());
}

int ZAV_EvHandlerBody::QueueEvent(ZAV_Event* event, long priority) {
    const ZAV_EvTie* const tie = mDispatcher.load(std::memory_order_acquire);
    ZAV_EvPort* const port = tie != nullptr ? ZAV_EvPort::Enter(tie->mPort) : nullptr;
    if (port == nullptr) return -1;
    if (event != nullptr)
        event->PostTo(*port, this, priority);
    else
        port->Leave();
    return 0;
}

boolean_t ZAV_EvHandlerBody::IsActive() const {
    const ZAV_EvTie* const tie = mDispatcher.load(std::memory_order_acquire);
    if (tie == nullptr) return B_FALSE;
    const ZAV_EvPort* const port = tie->mPort.load(std::memory_order_acquire);
    return ZAV_Bool(port != nullptr && !port->IsClosed());
}

int ZAV_EvHandlerBody::HandleEvent(ZAV_Event*) { return 2; }

// Two threads may register the handler at once.
ZAV_EvTie& ZAV_EvHandlerBody::Tie() {
    ZAV_EvTie* tie = mDispatcher.load(std::memory_order_acquire);
    if (tie != nullptr) return *tie;
    auto made = std::make_unique<ZAV_EvTie>(mRefCount);
    return mDispatcher.compare_exchange_strong(tie, made.get()) ? *made.release() : *tie;
}

// What a reference does, for events: they would need one each.
void ZAV_EvHandlerBody::Hold() { mRefCount.fetch_add(1, std::memory_order_relaxed); }

void ZAV_EvHandlerBody::LetGo() {
    if (mRefCount.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

void ZAV_EvHandlerBody::HoldQueued() {
    ZAV_EvTie* const tie = mDispatcher.load(std::memory_order_acquire);
    if (tie == nullptr || !tie->CountPosted()) Hold();
}

void ZAV_EvHandlerBody::LetGoQueued() {
    ZAV_EvTie* const tie = mDispatcher.load(std::memory_order_acquire);
    if (tie == nullptr || !tie->CountDone()) LetGo();
}

ZAV_EvHandlerRef::ZAV_EvHandlerRef(ZAV_EvHandlerBody* body) : ZAV_Ref(body) {}

ZAV_EvHandlerRef::ZAV_EvHandlerRef(const ZAV_EvHandlerRef& other) : ZAV_Ref(other) {}

ZAV_EvHandlerRef::~ZAV_EvHandlerRef() {}

ZAV_EvHandlerRef& ZAV_EvHandlerRef::operator=(const ZAV_EvHandlerRef& other) {
    ZAV_Ref::operator=(other);
    return *this;
}

ZAV_EvHandlerRef& ZAV_EvHandlerRef::operator=(ZAV_EvHandlerBody* body) {
    ZAV_Ref::operator=(body);
    return *this;
}

ZAV_EvHandlerHelper::ZAV_EvHandlerHelper() : mMaster(nullptr) {}

ZAV_EvHandlerHelper::ZAV_EvHandlerHelper(const ZAV_EvHandlerHelper& other)
    : ZAV_Object(other), mMaster(other.mMaster != nullptr ? new ZAV_EvHandlerRef(*other.mMaster) : nullptr) {}

ZAV_EvHandlerHelper& ZAV_EvHandlerHelper::operator=(const ZAV_EvHandlerHelper& other) {
    ZAV_EvHandlerHelper::SetMaster(other.mMaster != nullptr ? other.mMaster->GetBody() : nullptr);
    return *this;
}

ZAV_EvHandlerHelper::~ZAV_EvHandlerHelper() { delete mMaster; }

// The new reference is made first: the old one may be the last on the same handler.
void ZAV_EvHandlerHelper::SetMaster(ZAV_EvHandlerBody* master) {
    ZAV_EvHandlerRef* old = mMaster;
    mMaster = master != nullptr ? new ZAV_EvHandlerRef(master) : nullptr;
    delete old;
}

int ZAV_EvHandlerHelper::CheckEvent(ZAV_Event*) { return 1; }
