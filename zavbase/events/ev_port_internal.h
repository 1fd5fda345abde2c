#ifndef ZAVBASE_EVENTS_EV_PORT_INTERNAL_H
#define ZAVBASE_EVENTS_EV_PORT_INTERNAL_H

#include <atomic>
#include <cstdint>

#include <zavbase/collections/link.h>
#include <zavbase/events/event_queue_internal.h>
#include <zavbase/threads/mutex.h>

class ZAV_Event;
class ZAV_EvDispatcher;
class ZAV_EvHandlerBody;

/// The part of a dispatcher that may outlive it: where handlers put their events. The dispatcher and every
/// handler that was ever registered with it hold a count, so a handler may be used on any thread while the
/// dispatcher is destroyed: the port is then closed and takes nothing more.
///
/// Any thread posts, by one exchange of the inbox's head; the dispatching thread takes the whole inbox at a
/// time, sorts it into its queue by priority, and works from there without a lock. It looks into the inbox
/// before every event, so an event is taken exactly in the order that one locked list would give. The head
/// also says when the dispatcher sleeps: who replaces that mark wakes it.
class ZAV_EvPort : public ZAV_Link {
public:
    explicit ZAV_EvPort(ZAV_EvDispatcher* owner);  ///< counted once, for the owner
    void Hold();
    void Release();

    /// Addresses the event to the handler and posts it; when closed, discards it. Afterwards the event, its
    /// handler and even the port may be gone unless the caller holds them.
    void Send(ZAV_EvHandlerBody* handler, ZAV_Event* event, long priority);
    /// Destroys an event that will not be handled, after its EmergencyCleanup.
    static void Discard(ZAV_Event* event);
    bool IsClosed() const { return mInbox.load(std::memory_order_acquire) == kClosed; }

    std::uint32_t Length() const;
    std::uint32_t HighWater() const;

    /// For the dispatching thread only.
    std::size_t Drain();  ///< fetches what was posted; the number of events now at hand
    ZAV_Event* Take();    ///< the first of the events at hand, or null
    /// False, and nothing happens, when events are there. In the other case posts wake the owner.
    bool BeginSleep();
    void EndSleep();

    /// For the owner's destructor: no post gets in after it, and the owner is not called any more.
    void Close();

    /// Guards the owner's list of handlers.
    ZAV_Mutex mHandlersLock;
    /// Counts what a sleeping dispatcher would have to look at; under the owner's signaller.
    unsigned mChanges = 0;
    std::atomic<std::uint32_t> mWakeUpInterval{0};

    /// Where the walks through the listeners stand that are under way, the innermost first.
    struct Walk {
        ZAV_Link* next;
        Walk* outer;
    };
    Walk* mWalks = nullptr;

private:
    typedef std::uintptr_t Head;
    static const Head kEmpty = 0;
    static const Head kSleeping = 1;
    static const Head kClosed = 2;

    ~ZAV_EvPort() override;
    bool Post(ZAV_Event* event);
    void WakeOwner();
    void FetchInbox(Head mark);
    void NoteLength();

    std::atomic<int> mUsers{1};
    std::atomic<std::uint32_t> mPosted{0};
    std::atomic<Head> mInbox{kEmpty};  // or the last event posted, linked to the one before
    char mApart[64];                   // producers and the consumer write to different cache lines

    ZAV_Event* mArrived = nullptr;  // fetched and in the order of posting, not sorted in yet
    ZAV_EventQueue mQueue;
    std::atomic<std::uint32_t> mTaken{0};
    std::atomic<std::uint32_t> mHighWater{0};

    ZAV_Mutex mOwnerLock;
    ZAV_EvDispatcher* mOwner;
};

/// A handler's tie to a port. A handler keeps those it ever had until it is destroyed, so that another thread
/// that is just posting never meets a port that is gone; they are as many as dispatchers it was added to.
struct ZAV_EvRegistration {
    ZAV_EvPort* port;
    ZAV_EvRegistration* older;
    std::atomic<bool> active;
};

#endif
