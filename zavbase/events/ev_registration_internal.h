#ifndef ZAVBASE_EVENTS_EV_REGISTRATION_INTERNAL_H
#define ZAVBASE_EVENTS_EV_REGISTRATION_INTERNAL_H

#include <atomic>
#include <cstdint>
#include <mutex>

#include <zavbase/events/ev_handler.h>

class ZAV_EvPort;

/// A handler's tie to a port. A handler keeps those it ever had until it is destroyed, so that another thread
/// that is just posting never meets a port that is gone; they are as many as dispatchers it was added to.
///
/// Every queued event holds its handler. As long as the dispatcher's list of handlers holds it too, the
/// queued ones need not be in the handler's reference count: they are counted here, by those who post and by
/// the dispatching thread apart, so that the two do not wait for each other's cache line. The count that
/// holds is the sum of the handler's own and of Queued() of its ties. Before the list lets the handler go,
/// Settle moves what is counted here into the handler's own count, and from then on all is counted there.
class ZAV_EvRegistration {
public:
    /// Guards what ties handlers and ports together. Registering is rare; one lock serves all.
    static std::mutex& Lock();

    // Under the lock, all up to Unsettle; the counts may be looked at without it.
    ZAV_EvRegistration(ZAV_EvPort* port, ZAV_EvHandlerBody* handler); ///< settled; holds the port
    ~ZAV_EvRegistration();
    ZAV_EvRegistration(const ZAV_EvRegistration&) = delete;
    ZAV_EvRegistration& operator=(const ZAV_EvRegistration&) = delete;
    /// The tie to the port, from `newest` on; null when there is none.
    static ZAV_EvRegistration* Find(ZAV_EvRegistration* newest, const ZAV_EvPort* port);
    int Queued() const;
    std::uint32_t Posted() const; ///< what is counted here and nowhere else, modulo 2^31
    ZAV_EvRegistration* NextOfPort() const { return mNextOfPort; }
    /// While a reference that stays is in the handler's own count.
    void Settle();
    void Unsettle();

    /// On any thread, for an event that is about to be posted or that was taken and is done with: counts it,
    /// and gives false when the handler's own count is to be changed.
    bool CountPosted() { return (mPosted.fetch_add(kOne, std::memory_order_acquire) & kSettled) == 0; }
    bool CountTaken() { return (mTaken.fetch_add(kOne, std::memory_order_acq_rel) & kSettled) == 0; }

    /// Now and then, when thousands of events are queued: who posts then had better let others run.
    bool IsFarBehind() const { return Posted() % 1024 == 0 && Queued() > 4096; }

    ZAV_EvPort* const port;
    ZAV_EvRegistration* older = nullptr;
    std::atomic<bool> active{false};

private:
    // The counts are modulo 2^31, above the lowest bit.
    static const std::uint32_t kSettled = 1, kOne = 2;
    static int Difference(std::uint32_t a, std::uint32_t b);

    ZAV_EvHandlerBody* const mHandler;
    ZAV_EvRegistration* mNextOfPort;
    ZAV_EvRegistration** mPlaceOfPort; // what refers to this in the port's list
    alignas(64) std::atomic<std::uint32_t> mPosted{kSettled};
    alignas(64) std::atomic<std::uint32_t> mTaken{kSettled};
};

/// The hold on a handler that an event gave up.
class ZAV_HeldHandler {
public:
    /// `tie` is the handler's with the port that the event was taken from; null if it was not queued.
    ZAV_HeldHandler(ZAV_EvHandlerBody* handler, ZAV_EvRegistration* tie) : mHandler(handler), mTie(tie) {}
    ~ZAV_HeldHandler() { mHandler->LetGoQueued(mTie); }
    ZAV_HeldHandler(const ZAV_HeldHandler&) = delete;
    ZAV_HeldHandler& operator=(const ZAV_HeldHandler&) = delete;

    ZAV_EvHandlerBody* operator->() const { return mHandler; }
    ZAV_EvHandlerBody* Get() const { return mHandler; }

private:
    ZAV_EvHandlerBody* const mHandler;
    ZAV_EvRegistration* const mTie;
};

#endif
