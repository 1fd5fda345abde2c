#include <memory>

#include <zavbase/events/ev_handler.h>
#include <zavbase/events/ev_port_internal.h>
#include <zavbase/events/event.h>

// How an event holds the handler that it is for: a queued one as the handler's tie has it, others by one in
// the handler's own count.

// The new handler is counted before the old one is let go: the event's may be the last reference to it.
void ZAV_Event::SetDestination(ZAV_EvHandlerBody* handler, long priority) {
    mPriority = static_cast<zav_long32>(priority);
    if (handler == mDestination) return;
    ZAV_EvHandlerBody* const old = mDestination;
    handler->Hold();
    mDestination = handler;
    if (old != nullptr) old->LetGo();
}

// The caller has entered the port. An old hold on a handler ends when the new one has begun.
void ZAV_Event::PostTo(ZAV_EvPort& port, ZAV_EvHandlerBody* handler, long priority) {
    handler->HoldQueued();
    if (mDestination != nullptr) DropDestination();
    mDestination = handler;
    mPriority = static_cast<zav_long32>(priority);
    if (!port.Post(this)) DiscardQueued(this);
}

// Destroys an event that will not be handled.
void ZAV_Event::Discard(ZAV_Event* event) {
    std::unique_ptr<ZAV_Event> owned(event);
    event->EmergencyCleanup();
}

// The same for one that was queued: from here on it holds its handler like others.
void ZAV_Event::DiscardQueued(ZAV_Event* event) {
    event->mDestination->Hold();
    event->mDestination->LetGoQueued();
    Discard(event);
}

// The count that the event held is the caller's now.
ZAV_EvHandlerBody* ZAV_Event::TakeDestination() {
    ZAV_EvHandlerBody* const handler = mDestination;
    mDestination = nullptr;
    mPriority = 0;
    return handler;
}

ZAV_EvHandlerRef* ZAV_Event::RemoveDestination() {
    if (mDestination == nullptr) return nullptr;
    ZAV_EvHandlerRef* const reference = new ZAV_EvHandlerRef(mDestination);
    DropDestination();
    mPriority = 0;
    return reference;
}

void ZAV_Event::DropDestination() {
    ZAV_EvHandlerBody* const handler = mDestination;
    mDestination = nullptr;
    handler->LetGo();
}
