#ifndef ZAVBASE_EVENTS_HELD_HANDLER_INTERNAL_H
#define ZAVBASE_EVENTS_HELD_HANDLER_INTERNAL_H

#include <zavbase/events/ev_handler.h>

/// Owns the reference on a handler that an event gave up (ZAV_Event::TakeDestination).
class ZAV_HeldHandler {
public:
    enum Kind { kOwn, kQueued };
    ZAV_HeldHandler(ZAV_EvHandlerBody* handler, Kind kind) : mHandler(handler), mKind(kind) {}
    ~ZAV_HeldHandler() { mKind == kQueued ? mHandler->LetGoQueued() : mHandler->LetGo(); }
    ZAV_HeldHandler(const ZAV_HeldHandler&) = delete;
    ZAV_HeldHandler& operator=(const ZAV_HeldHandler&) = delete;

    ZAV_EvHandlerBody* operator->() const { return mHandler; }
    ZAV_EvHandlerBody* Get() const { return mHandler; }

private:
    ZAV_EvHandlerBody* const mHandler;
    const Kind mKind;
};

#endif
