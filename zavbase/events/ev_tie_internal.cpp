#include <zavbase/events/ev_tie_internal.h>

#include <mutex>

#include <zavbase/events/ev_port_internal.h>

ZAV_EvTie::~ZAV_EvTie() { SetPort(nullptr); }

// Other threads may be posting to the old port: see ZAV_EvPort.
void ZAV_EvTie::SetPort(ZAV_EvPort* port) {
    if (port != nullptr) port->Hold();
    if (ZAV_EvPort* const old = mPort.exchange(port)) old->Release();
}

int ZAV_EvTie::Difference(std::uint32_t a, std::uint32_t b) {
    return static_cast<std::int32_t>(a - b) / static_cast<std::int32_t>(kOne);
}

int ZAV_EvTie::References() {
    std::lock_guard<ZAV_SpinLock> guard(mLock);
    if (mLists == 0) return mReferences;
    const std::uint32_t done = mDone.load(std::memory_order_relaxed);
    return mReferences + Difference(mPosted.load(std::memory_order_relaxed), done);
}

// In this order: an event that is counted here when posted must not be let go in the handler's own count when
// done, which may have nothing but the list's reference. The other way round does no harm: the sum is right.
void ZAV_EvTie::Listed() {
    std::lock_guard<ZAV_SpinLock> guard(mLock);
    if (mLists++ != 0) return;
    mDone.store(0, std::memory_order_relaxed);
    mPosted.store(0, std::memory_order_release);
}

void ZAV_EvTie::Unlisted() {
    std::lock_guard<ZAV_SpinLock> guard(mLock);
    if (--mLists == 0) Settle();
}

// The handler's count gets too much first: from the second exchange on, others let go there what was counted
// here, and must not bring it to 0.
void ZAV_EvTie::Settle() {
    const int plenty = 1 << 30;
    mReferences.fetch_add(plenty, std::memory_order_relaxed);
    const std::uint32_t posted = mPosted.exchange(kSettled, std::memory_order_relaxed);
    const std::uint32_t done = mDone.exchange(kSettled, std::memory_order_acq_rel);
    mReferences.fetch_sub(plenty - Difference(posted, done), std::memory_order_relaxed);
}
