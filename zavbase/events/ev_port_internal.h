#ifndef ZAVBASE_EVENTS_EV_PORT_INTERNAL_H
#define ZAVBASE_EVENTS_EV_PORT_INTERNAL_H

#include <atomic>
#include <cstdint>

#include <zavbase/threads/mutex.h>

class ZAV_Event;

/// What a port needs of the dispatcher that it works for.
class ZAV_EvPortOwner {
public:
    /// On any thread: an event was posted while the owner slept.
    virtual void Wake() = 0;
    /// On the dispatching thread: takes an event without a detour, behind all that was posted before it.
    /// False when it cannot: the event is to be posted like others.
    virtual bool TakeIn(ZAV_Event* event) = 0;

protected:
    ~ZAV_EvPortOwner() = default;
};

/// Where any thread puts the events for a dispatcher: a stack, newest first, that the dispatching thread
/// takes as a whole (ZAV_EvIntake). Nobody waits for anybody.
///
/// The dispatcher and every handler that refers to the port are its users. A thread that posts reads the
/// handler's reference without a lock, so it may come to a port that has just lost its last user. Therefore
/// the memory of ports is not freed: a port without users is kept for the next dispatcher. Enter counts the
/// post first and then reads the reference again; a port is opened anew only when no post is counted, and so
/// no event gets into the wrong dispatcher.
class ZAV_EvPort {
public:
    /// A port that is open and empty, with one user.
    static ZAV_EvPort* Open(ZAV_EvPortOwner* owner);
    void Hold();
    void Release();
    static void FreeUnused(); ///< when the library is unloaded

    /// The port that `place`, an atomic pointer, refers to, when that is open, else null. The caller must
    /// then Post or Leave. The count is changed before the second look at the place, and the place before
    /// anybody opens the port anew: one of the two sees the other.
    template <class Place>
    static ZAV_EvPort* Enter(const Place& place) {
        for (ZAV_EvPort* port = place.load(); port != nullptr;) {
            port->Enter();
            ZAV_EvPort* const now = place.load();
            if (now == port && !port->IsClosed()) return port;
            port->Leave();
            if (now == port) return nullptr;
            port = now;
        }
        return nullptr;
    }
    void Enter() { mPosted.fetch_add(1); }
    void Leave() { mPosted.fetch_sub(1); }
    /// Posts an event that has its destination and priority, and leaves. Afterwards the event may be gone.
    /// False when the port is closed: the event stays the caller's.
    bool Post(ZAV_Event* event);

    bool IsClosed() const { return mClosed.load(std::memory_order_acquire); }
    std::uint32_t Length() const; ///< events posted, or just being posted, and not yet taken
    std::uint32_t HighWater();    ///< the largest Length that was noted
    void NoteLength(std::uint32_t length);

    // For the dispatching thread, and for the destructor of its dispatcher.

    bool HasPosted() const { return mNewest.load(std::memory_order_seq_cst) > kClosed; }
    ZAV_Event* TakePosted(); ///< all that was posted, newest first; null for nothing
    void CountTaken();       ///< one event fewer
    std::uint32_t Taken() const { return mTaken.load(std::memory_order_relaxed); }
    /// No less than the priority of any event posted since Lower; see ZAV_EvIntake::Refill.
    std::int32_t Urgent() const { return mUrgent.load(std::memory_order_seq_cst); }
    void Lower(std::int32_t priority) { mUrgent.store(priority, std::memory_order_seq_cst); }
    bool BeginSleep(); ///< false, and nothing happens, when something was posted; else the next post wakes
    void EndSleep();
    ZAV_Event* Close(); ///< no post gets in after it, and nobody is woken; gives what TakePosted would

    /// Says that this thread dispatches for the port, as long as it lives.
    class Dispatching {
    public:
        explicit Dispatching(const ZAV_EvPort& port);
        ~Dispatching();
        Dispatching(const Dispatching&) = delete;
        Dispatching& operator=(const Dispatching&) = delete;

    private:
        const ZAV_EvPort* const mOuter;
    };

private:
    // What the newest event is when there is none; any other number is its address.
    static const std::uintptr_t kNone = 0, kAsleep = 1, kClosed = 2;

    ZAV_EvPort() = default;
    ~ZAV_EvPort() = default;
    bool IsQuiet() const;
    bool Push(ZAV_Event* event);
    void RaiseUrgent(std::int32_t priority);
    void WakeOwner();

    std::atomic<int> mUsers{0};
    ZAV_EvPort* mNextFree = nullptr; // under the lock of the free ports
    ZAV_Mutex mOwnerLock;
    ZAV_EvPortOwner* mOwner = nullptr;

    // Changed by every post.
    alignas(64) std::atomic<std::uintptr_t> mNewest{kClosed};
    std::atomic<std::uint32_t> mPosted{0}; // modulo 2^32, with those just entering

    // Changed by the dispatching thread with every event.
    alignas(64) std::atomic<std::uint32_t> mTaken{0}; // modulo 2^32

    // Read with every event and seldom changed.
    alignas(64) std::atomic<std::int32_t> mUrgent{INT32_MIN};
    std::atomic<std::uint32_t> mHighWater{0};
    std::atomic<bool> mClosed{true};
};

#endif
