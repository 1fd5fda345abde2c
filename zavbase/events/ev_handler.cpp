#include <zavbase/events/ev_handler.h>

#include <mutex>
#include <ostream>
#include <utility>

#include <zavbase/events/count_internal.h>
#include <zavbase/events/ev_port_internal.h>
#include <zavbase/events/ev_registration_internal.h>
#include <zavbase/events/event.h>
#include <zavbase/events/timer_mgr.h>

ZAV_DEFINE_CLASS(ZAV_EvHandlerBody, ZAV_RefCount)
ZAV_DEFINE_CLASS(ZAV_EvHandlerRef, ZAV_Ref)
ZAV_DEFINE_CLASS(ZAV_EvHandlerHelper, ZAV_Object)

namespace {

bool IsOpen(const ZAV_EvRegistration* registration) {
    return registration != nullptr && registration->active.load(std::memory_order_acquire) &&
           !registration->port->IsClosed();
}

// Takes the tie to the port out from among those older than `current`; null when there is none.
ZAV_EvRegistration* UnlinkTie(ZAV_EvRegistration* current, const ZAV_EvPort* port) {
    for (ZAV_EvRegistration* newer = current; newer != nullptr; newer = newer->older) {
        ZAV_EvRegistration* tie = newer->older;
        if (tie == nullptr || tie->port != port) continue;
        newer->older = tie->older;
        return tie;
    }
    return nullptr;
}

} // namespace

int ZAV_EvHandlerBody::instance_counter = 0;

ZAV_EvHandlerBody::ZAV_EvHandlerBody() : mDispatcher(nullptr) { ZAV_CountLive(instance_counter, 1); }

ZAV_EvHandlerBody::ZAV_EvHandlerBody(const ZAV_EvHandlerBody& other)
    : ZAV_RefCount(other), mDispatcher(nullptr) {
    ZAV_CountLive(instance_counter, 1);
}

ZAV_EvHandlerBody& ZAV_EvHandlerBody::operator=(const ZAV_EvHandlerBody&) { return *this; }

ZAV_EvHandlerBody::~ZAV_EvHandlerBody() {
    if (ZAV_EvRegistration* tie = mDispatcher.load(std::memory_order_acquire)) {
        std::lock_guard<std::mutex> guard(ZAV_EvRegistration::Lock());
        while (tie != nullptr) delete std::exchange(tie, tie->older);
    }
    ZAV_CountLive(instance_counter, -1);
}

// Queued events hold the handler too, wherever they are counted.
void ZAV_EvHandlerBody::PrintOn(std::ostream& os) {
    int count = mRefCount;
    {
        std::lock_guard<std::mutex> guard(ZAV_EvRegistration::Lock());
        for (const ZAV_EvRegistration* tie = mDispatcher; tie != nullptr; tie = tie->older)
            count += tie->Queued();
    }
    os << "mRefCount=" << count;
}

int ZAV_EvHandlerBody::QueueEvent(ZAV_Event* event, long priority) {
    ZAV_EvRegistration* registration = mDispatcher.load(std::memory_order_acquire);
    if (!IsOpen(registration)) return -1;
    if (event != nullptr) registration->port->Send(registration, this, event, priority);
    return 0;
}

boolean_t ZAV_EvHandlerBody::IsActive() const {
    return ZAV_Bool(IsOpen(mDispatcher.load(std::memory_order_acquire)));
}

long ZAV_EvHandlerBody::RegisterTimer(unsigned long ms) { return ZAV_TimerMgr::AddTimer(ms, this, 0); }

void ZAV_EvHandlerBody::UnRegisterTimer(long id) { ZAV_TimerMgr::RemoveTimer(id); }

int ZAV_EvHandlerBody::HandleEvent(ZAV_Event*) { return 2; }

// Other threads may be posting through any of the ties, so none is taken apart; but they look at the current
// one only at the beginning, so the order of the older ones may change.
void ZAV_EvHandlerBody::Attach(ZAV_EvPort* port) {
    std::lock_guard<std::mutex> guard(ZAV_EvRegistration::Lock());
    ZAV_EvRegistration* current = mDispatcher.load(std::memory_order_relaxed);
    if (current == nullptr || current->port != port) {
        ZAV_EvRegistration* tie = UnlinkTie(current, port);
        if (tie == nullptr) tie = new ZAV_EvRegistration(port, this);
        if (current != nullptr) current->active.store(false, std::memory_order_release);
        tie->older = current;
        mDispatcher.store(tie, std::memory_order_release);
        current = tie;
    }
    current->Unsettle();
    current->active.store(true, std::memory_order_release);
}

void ZAV_EvHandlerBody::Detach(ZAV_EvPort* port) {
    Settle(port);
    std::lock_guard<std::mutex> guard(ZAV_EvRegistration::Lock());
    if (ZAV_EvRegistration* current = mDispatcher.load(std::memory_order_relaxed))
        current->active.store(false, std::memory_order_release);
}

// Before the dispatcher lets go of the handler: until then its reference keeps the handler for queued events.
void ZAV_EvHandlerBody::Settle(ZAV_EvPort* port) {
    std::lock_guard<std::mutex> guard(ZAV_EvRegistration::Lock());
    if (ZAV_EvRegistration* tie = ZAV_EvRegistration::Find(mDispatcher.load(std::memory_order_relaxed), port))
        tie->Settle();
}

// Without the lock if the handler is registered there now.
ZAV_EvRegistration* ZAV_EvHandlerBody::TieTo(const ZAV_EvPort* port) const {
    ZAV_EvRegistration* current = mDispatcher.load(std::memory_order_acquire);
    if (current == nullptr || current->port == port) return current;
    std::lock_guard<std::mutex> guard(ZAV_EvRegistration::Lock());
    return ZAV_EvRegistration::Find(current, port);
}

// What a reference does, for events: they would need one each.
void ZAV_EvHandlerBody::Hold() { mRefCount.fetch_add(1, std::memory_order_relaxed); }

void ZAV_EvHandlerBody::LetGo() {
    if (mRefCount.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

void ZAV_EvHandlerBody::LetGoQueued(ZAV_EvRegistration* tie) {
    if (tie == nullptr || !tie->CountTaken()) LetGo();
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
