#ifndef ZAVBASE_EVENTS_EV_STATE_INTERNAL_H
#define ZAVBASE_EVENTS_EV_STATE_INTERNAL_H

#include <zavbase/collections/link.h>
#include <zavbase/events/ev_dispatcher.h>
#include <zavbase/events/ev_intake_internal.h>
#include <zavbase/events/ev_port_internal.h>

/// What belongs to a dispatcher and has no room in its fields: the one link of its queue.
class ZAV_EvState final : public ZAV_Link, public ZAV_EvPortOwner {
public:
    explicit ZAV_EvState(ZAV_EvDispatcher& owner)
        : mPort(*ZAV_EvPort::Open(this)), mIntake(mPort), mOwner(owner) {}
    ~ZAV_EvState() override { mPort.Release(); }

    void Wake() override { mOwner.Wake(); }
    bool TakeIn(ZAV_Event* event) override { return mIntake.Push(event); }

    ZAV_EvPort& mPort;
    ZAV_EvIntake mIntake;
    ZAV_Mutex mHandlersLock; ///< guards the list of handlers
    unsigned mChanges = 0;   ///< what a sleeping dispatcher would have to look at; under its signaller
    std::atomic<std::uint32_t> mWakeUpInterval{0};

private:
    ZAV_EvDispatcher& mOwner;
};

#endif
