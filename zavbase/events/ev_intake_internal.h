#ifndef ZAVBASE_EVENTS_EV_INTAKE_INTERNAL_H
#define ZAVBASE_EVENTS_EV_INTAKE_INTERNAL_H

#include <zavbase/events/ev_port_internal.h>
#include <zavbase/events/event_queue_internal.h>

/// The dispatching thread's side of a port: sorts what was posted into the queue and gives it out. From the
/// queue it takes all events of the highest priority at a time and works through them; before each it looks
/// whether one of a higher priority was posted meanwhile. So the order is exactly that of one locked list.
///
/// For one thread at a time. Collect and Take throw when memory runs out; no event is lost then.
class ZAV_EvIntake {
public:
    explicit ZAV_EvIntake(ZAV_EvPort& port) : mPort(port) {}
    ZAV_EvIntake(const ZAV_EvIntake&) = delete;
    ZAV_EvIntake& operator=(const ZAV_EvIntake&) = delete;

    /// Sorts in an event behind what was posted. False, and the event stays the caller's, without memory or
    /// when called from inside: a new-handler of the host may post.
    bool Push(ZAV_Event* event);
    /// Sorts in what was posted, and gives the number of events there are then.
    std::uint32_t Collect();
    /// The number of events without those posted since Collect.
    std::uint32_t AtHand() const { return mCurrent.count + mQueue.Length(); }
    ZAV_Event* Take(); ///< the first event, which still holds its handler; null when there is none
    /// Destroys the first event, or without memory any, after its EmergencyCleanup; false when there is none.
    bool DiscardNext();
    /// False, and nothing happens, when events are there. In the other case the next post wakes the owner.
    bool BeginSleep() { return AtHand() == 0 && mPort.BeginSleep(); }
    void Close(); ///< closes the port; what was posted before can still be taken

private:
    static const std::uint32_t kLook = 32; // events

    class Sorting;

    void SortIn(ZAV_Event* newest);
    void Refill();
    ZAV_Event* TakeUnordered();
    ZAV_Event* Counted(ZAV_Event* event);

    ZAV_EvPort& mPort;
    ZAV_EventQueue::Chain mCurrent; // taken out of the queue and not yet given out
    ZAV_EventQueue mQueue;
    bool mSorting = false;          // the queue is being changed
    ZAV_Event* mUnsorted = nullptr; // taken from the port, newest first; null unless memory ran out
};

#endif
