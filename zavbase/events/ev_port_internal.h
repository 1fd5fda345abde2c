#ifndef ZAVBASE_EVENTS_EV_PORT_INTERNAL_H
#define ZAVBASE_EVENTS_EV_PORT_INTERNAL_H

#include <atomic>
#include <cstdint>

#include <zavbase/collections/link.h>
#include <zavbase/events/event_queue_internal.h>
#include <zavbase/foundation/spin_lock_internal.h>
#include <zavbase/threads/mutex.h>

class ZAV_Event;
class ZAV_EvDispatcher;
class ZAV_EvHandlerBody;
class ZAV_EvRegistration;

/// The part of a dispatcher that may outlive it: where handlers put their events. The dispatcher and every
/// handler that was ever registered with it hold a count, so a handler may be used on any thread while the
/// dispatcher is destroyed: the port is then closed and takes nothing more.
///
/// The queue is in the hands of one thread at a time, of the dispatching one while it dispatches. Who posts
/// and finds it in nobody's hands puts the event into it. Else nobody waits: the event goes in front of a
/// list of what was posted, newest first, which whoever has the queue takes as a whole and sorts in. From the
/// queue the dispatching thread takes all events of the highest priority at a time and works through them;
/// before each it looks whether one of a higher priority was posted meanwhile. So the order is exactly that
/// of one locked list.
class ZAV_EvPort : public ZAV_Link {
public:
    explicit ZAV_EvPort(ZAV_EvDispatcher* owner); ///< counted once, for the owner
    void Hold();
    void Release();

    /// Addresses the event to the handler and posts it; when closed, discards it. Afterwards the event may be
    /// gone, and so may be the handler and the port unless the caller holds them. `tie` is the handler's with
    /// this port, or null if it has none.
    void Send(ZAV_EvRegistration* tie, ZAV_EvHandlerBody* handler, ZAV_Event* event, long priority);
    /// Destroys an event that will not be handled, after its EmergencyCleanup.
    static void Discard(ZAV_Event* event);
    bool IsClosed() const { return mClosed.load(std::memory_order_acquire); }

    std::uint32_t Length() const;
    std::uint32_t HighWater(); ///< what Length would have told at most; looked at every kLook events
    /// For ties: has events counted that were not counted there, or not any more.
    void CountPosted(std::uint32_t count) { mPostedApart.fetch_add(count, std::memory_order_relaxed); }
    ZAV_EvRegistration* mTies = nullptr; ///< under ZAV_EvRegistration::Lock

    /// Takes the queue into this thread's hands as long as it lives.
    class Dispatching {
    public:
        explicit Dispatching(ZAV_EvPort& port);
        ~Dispatching();
        Dispatching(const Dispatching&) = delete;
        Dispatching& operator=(const Dispatching&) = delete;

        /// Of those of this thread, on whatever port; null when there is none.
        static Dispatching* Innermost();
        Dispatching* Outer() const { return mOuter; }

        /// Where its walk through the listeners stands.
        ZAV_Link* mNextListener = nullptr;

    private:
        friend class ZAV_EvPort;

        bool IsDispatchedBy(const Dispatching* scope) const;

        ZAV_EvPort& mPort;
        Dispatching* const mOuter;
        const bool mAgain; // an outer one has it already
    };

    // For the dispatching thread only. Collect and Take throw when memory runs out; no event is lost then.

    /// Sorts in what was posted, and gives the number of events there are then.
    std::uint32_t Collect();
    /// The number of events without those posted since Collect.
    std::uint32_t AtHand() const { return mCurrent.count + mQueue.Length(); }
    ZAV_Event* Take(); ///< the first event, or null
    /// Destroys a taken event, after its EmergencyCleanup.
    void DiscardTaken(ZAV_Event* event);
    /// The same with the first event, or without memory with any; false when there is none.
    bool DiscardNext();
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

private:
    // What the newest event is when there is none; any other number is its address.
    static const std::uintptr_t kNone = 0, kAsleep = 1, kClosed = 2;
    static const std::uint32_t kLook = 32;
    static const std::uint32_t kCountsEnd = 1u << 31;

    class Sorting;

    ~ZAV_EvPort() override;
    bool Post(ZAV_Event* event, std::int32_t priority);
    void NoteLength(std::uint32_t length);
    void WakeOwner();
    void HoldByEvent(ZAV_Event* event);
    bool PushAtOnce(ZAV_Event* event);
    bool PushHere(ZAV_Event* event);
    void RaiseUrgent(std::int32_t priority);
    void SortIn(ZAV_Event* newest);
    ZAV_Event* TakeUnsorted();
    ZAV_Event* TakeUnordered();
    void Refill();
    ZAV_Event* CountTaken(ZAV_Event* event);

    std::atomic<int> mUsers{1};
    ZAV_Mutex mOwnerLock;
    ZAV_EvDispatcher* mOwner;

    // For whoever has the queue.
    alignas(64) ZAV_EventQueue::Chain mCurrent; // taken out of the queue and not yet handled
    ZAV_EventQueue mQueue;
    bool mSorting = false;
    ZAV_Event* mUnsorted = nullptr; // taken from the producers, newest first; null unless memory ran out
    std::atomic<std::uint32_t> mTaken{0}; // modulo 2^32

    // Changed by those who post.
    alignas(64) std::atomic<std::uintptr_t> mNewest{kNone};
    ZAV_SpinLock mQueueLock; // of who posts while nobody dispatches

    // What is read with every event and seldom changes.
    alignas(64) std::atomic<std::int32_t> mUrgent{INT32_MIN}; // no less than any priority posted since Refill
    std::atomic<std::uint32_t> mPostedApart{0};               // modulo 2^32; without what ties count
    std::atomic<std::uint32_t> mHighWater{0};
    std::atomic<bool> mClosed{false};
    std::atomic<bool> mDispatched{false}; // or about to be: the queue is the dispatching thread's
};

#endif
