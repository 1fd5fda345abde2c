#ifndef ZAVBASE_EVENTS_EV_PORT_INTERNAL_H
#define ZAVBASE_EVENTS_EV_PORT_INTERNAL_H

#include <atomic>
#include <cstdint>

#include <zavbase/collections/link.h>
#include <zavbase/events/event_queue_internal.h>
#include <zavbase/events/spin_lock_internal.h>
#include <zavbase/threads/mutex.h>

class ZAV_Event;
class ZAV_EvDispatcher;
class ZAV_EvHandlerBody;

/// The part of a dispatcher that may outlive it: where handlers put their events. The dispatcher and every
/// handler that was ever registered with it hold a count, so a handler may be used on any thread while the
/// dispatcher is destroyed: the port is then closed and takes nothing more.
///
/// Any thread posts, under the lock. The dispatching thread takes all events of the highest priority at a
/// time and works through them without the lock; before each it looks whether one of a higher priority was
/// posted meanwhile, and then puts the rest back. So the order is exactly that of one locked list.
class ZAV_EvPort : public ZAV_Link {
public:
    explicit ZAV_EvPort(ZAV_EvDispatcher* owner); ///< counted once, for the owner
    void Hold();
    void Release();

    /// Addresses the event to the handler and posts it; when closed, discards it. Afterwards the event, its
    /// handler and even the port may be gone unless the caller holds them. When memory runs out it throws and
    /// the event stays the caller's.
    void Send(ZAV_EvHandlerBody* handler, ZAV_Event* event, long priority);
    /// Destroys an event that will not be handled, after its EmergencyCleanup.
    static void Discard(ZAV_Event* event);
    bool IsClosed() const { return mClosed.load(std::memory_order_acquire); }

    std::uint32_t Length() const { return mPosted.load(std::memory_order_acquire) + AtHand(); }
    std::uint32_t HighWater() const { return mHighWater.load(std::memory_order_relaxed); }

    /// For the dispatching thread only.
    ZAV_Event* Take(); ///< the first event, or null
    /// Whether at least so many events are there. Does not look at what others write if it can do without.
    bool HasAtLeast(std::uint32_t count) const { return AtHand() >= count || Length() >= count; }
    /// False, and nothing happens, when events are there. In the other case the next post wakes the owner.
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
    static const std::int64_t kNothing = INT64_MIN;

    ~ZAV_EvPort() override;
    bool Post(ZAV_Event* event);
    void WakeOwner();
    void Fetch();
    void NotePosted();
    std::uint32_t AtHand() const { return mAtHand.load(std::memory_order_relaxed); }

    std::atomic<int> mUsers{1};
    ZAV_Mutex mOwnerLock;
    ZAV_EvDispatcher* mOwner;

    // What the dispatching thread writes for every event lies apart from what producers write; what it reads
    // for every event changes only when the highest priority does.
    alignas(64) ZAV_EventQueue::Chain mCurrent;               // taken out and not yet handled
    std::atomic<std::uint32_t> mAtHand{0};                    // its count
    alignas(64) std::atomic<std::int64_t> mHighest{kNothing}; // the highest priority posted
    std::atomic<bool> mClosed{false};
    alignas(64) ZAV_SpinLock mLock; // of all that follows; who waits for it leaves that alone
    alignas(64) bool mSleeping = false;
    std::atomic<std::uint32_t> mPosted{0};
    std::atomic<std::uint32_t> mHighWater{0};
    ZAV_EventQueue mQueue;
};

/// A handler's tie to a port. A handler keeps those it ever had until it is destroyed, so that another thread
/// that is just posting never meets a port that is gone; they are as many as dispatchers it was added to.
struct ZAV_EvRegistration {
    ZAV_EvPort* port;
    ZAV_EvRegistration* older;
    std::atomic<bool> active;
};

#endif
