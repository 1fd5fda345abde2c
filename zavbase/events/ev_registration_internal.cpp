#include <zavbase/events/ev_registration_internal.h>

#include <zavbase/events/ev_port_internal.h>
#include <zavbase/foundation/process_hooks_internal.h>

// Never destroyed, and not constinit: not every platform builds a std::mutex at compile time.
std::mutex& ZAV_EvRegistration::Lock() {
    static std::mutex* const lock = new std::mutex;
    return *lock;
}
static ZAV_LockOverFork<ZAV_EvRegistration::Lock> overFork(ZAV_ProcessHooks::kListeners);

ZAV_EvRegistration::ZAV_EvRegistration(ZAV_EvPort* held, ZAV_EvHandlerBody* handler)
    : port(held), mHandler(handler), mNextOfPort(held->mTies), mPlaceOfPort(&held->mTies) {
    port->Hold();
    if (mNextOfPort != nullptr) mNextOfPort->mPlaceOfPort = &mNextOfPort;
    port->mTies = this;
}

ZAV_EvRegistration::~ZAV_EvRegistration() {
    *mPlaceOfPort = mNextOfPort;
    if (mNextOfPort != nullptr) mNextOfPort->mPlaceOfPort = mPlaceOfPort;
    port->Release();
}

ZAV_EvRegistration* ZAV_EvRegistration::Find(ZAV_EvRegistration* newest, const ZAV_EvPort* port) {
    while (newest != nullptr && newest->port != port) newest = newest->older;
    return newest;
}

int ZAV_EvRegistration::Difference(std::uint32_t a, std::uint32_t b) {
    return static_cast<std::int32_t>(a - b) / static_cast<std::int32_t>(kOne);
}

std::uint32_t ZAV_EvRegistration::Posted() const {
    const std::uint32_t posted = mPosted.load(std::memory_order_relaxed);
    return (posted & kSettled) != 0 ? 0 : posted / kOne;
}

int ZAV_EvRegistration::Queued() const {
    const std::uint32_t taken = mTaken.load(std::memory_order_relaxed);
    const std::uint32_t posted = mPosted.load(std::memory_order_relaxed);
    return (posted & kSettled) != 0 ? 0 : Difference(posted, taken);
}

// The handler's count gets too much first and then what it should be, so that it does not come near 0: what
// is let go meanwhile is let go there.
void ZAV_EvRegistration::Settle() {
    const std::uint32_t takenBefore = mTaken.load(std::memory_order_relaxed);
    if ((mPosted.load(std::memory_order_relaxed) & kSettled) != 0) return;
    const std::uint32_t posted = mPosted.exchange(kSettled, std::memory_order_relaxed);
    port->CountPosted(posted / kOne);
    mHandler->mRefCount.fetch_add(Difference(posted, takenBefore), std::memory_order_relaxed);
    const std::uint32_t taken = mTaken.exchange(kSettled, std::memory_order_acq_rel);
    mHandler->mRefCount.fetch_sub(Difference(taken, takenBefore), std::memory_order_relaxed);
}

// In this order, so that no event is counted here when it is posted and there when it was taken.
void ZAV_EvRegistration::Unsettle() {
    if ((mPosted.load(std::memory_order_relaxed) & kSettled) == 0) return;
    mTaken.store(0, std::memory_order_relaxed);
    mPosted.store(0, std::memory_order_release);
}
