#ifndef ZAVBASE_EVENTS_EV_TIE_INTERNAL_H
#define ZAVBASE_EVENTS_EV_TIE_INTERNAL_H

#include <atomic>
#include <cstdint>

#include <zavbase/foundation/spin_lock_internal.h>

class ZAV_EvPort;

/// What a handler knows of dispatchers: the port that its events are posted to, and how many are queued,
/// wherever. Made when the handler is first registered, and destroyed with it.
///
/// Every queued event holds its handler. As long as the list of handlers of some dispatcher holds it too, the
/// queued events need not be in the handler's reference count: they are counted here, by those who post and
/// by dispatching threads apart, so that the two do not wait for each other's cache line. The count that
/// holds is always the sum of both. Before the last list lets the handler go, its events are moved into the
/// handler's own count (they settle), and then all are counted there.
class ZAV_EvTie {
public:
    explicit ZAV_EvTie(std::atomic<int>& references) : mReferences(references) {}
    ~ZAV_EvTie();
    ZAV_EvTie(const ZAV_EvTie&) = delete;
    ZAV_EvTie& operator=(const ZAV_EvTie&) = delete;

    /// The handler comes into or goes out of a list, while a reference that stays is in its own count.
    void Listed();
    void Unlisted();
    /// The port is held; null for none.
    void SetPort(ZAV_EvPort* port);
    int References(); ///< the handler's own count and the events that are counted here

    /// On any thread, for an event that is about to be posted or that was taken and is done with: counts it,
    /// and gives false when the handler's own count is to be changed instead. The tie may be gone after the
    /// second.
    bool CountPosted() { return (mPosted.fetch_add(kOne, std::memory_order_acquire) & kSettled) == 0; }
    bool CountDone() { return (mDone.fetch_add(kOne, std::memory_order_acq_rel) & kSettled) == 0; }

    std::atomic<ZAV_EvPort*> mPort{nullptr};

private:
    // The counts are modulo 2^31, above the lowest bit.
    static const std::uint32_t kSettled = 1, kOne = 2;
    static int Difference(std::uint32_t a, std::uint32_t b);
    void Settle();

    std::atomic<int>& mReferences;
    ZAV_SpinLock mLock;
    unsigned mLists = 0; // entries for the handler in lists of dispatchers; under the lock
    alignas(64) std::atomic<std::uint32_t> mPosted{kSettled};
    alignas(64) std::atomic<std::uint32_t> mDone{kSettled};
};

#endif
