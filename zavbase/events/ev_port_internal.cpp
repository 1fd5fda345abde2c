#include <zavbase/events/ev_port_internal.h>

#include <mutex>
#include <utility>

#include <zavbase/events/event.h>
#include <zavbase/foundation/process_hooks_internal.h>
#include <zavbase/foundation/spin_lock_internal.h>

namespace {

constinit ZAV_SpinLock theFreeLock;
ZAV_SpinLock& FreeLock() { return theFreeLock; }
ZAV_LockOverFork<FreeLock> overFork(ZAV_ProcessHooks::kTables, ZAV_EvPort::FreeUnused);
constinit ZAV_EvPort* theFree = nullptr;
thread_local constinit const ZAV_EvPort* tDispatched = nullptr; // by the innermost scope

} // namespace

ZAV_EvPort::Dispatching::Dispatching(const ZAV_EvPort& port) : mOuter(tDispatched) { tDispatched = &port; }

ZAV_EvPort::Dispatching::~Dispatching() { tDispatched = mOuter; }

ZAV_EvPort* ZAV_EvPort::Open(ZAV_EvPortOwner* owner) {
    ZAV_EvPort* port;
    {
        std::lock_guard<ZAV_SpinLock> guard(theFreeLock);
        ZAV_EvPort** place = &theFree;
        while (*place != nullptr && !(*place)->IsQuiet()) place = &(*place)->mNextFree;
        port = *place;
        if (port != nullptr) *place = port->mNextFree;
    }
    if (port == nullptr) port = new ZAV_EvPort;
    port->mUsers = 1;
    port->mUrgent = INT32_MIN;
    port->mHighWater = 0;
    {
        ZAV_Mutex::Lock lock(port->mOwnerLock, B_FALSE);
        port->mOwner = owner;
    }
    port->mNewest = kNone;
    port->mClosed = false;
    return port;
}

// All events were taken when the dispatcher let go of the port. So any difference is a post that entered: it
// may have found its handler still referring to this port, and may be about to put an event in.
bool ZAV_EvPort::IsQuiet() const { return mPosted.load() == mTaken.load(); }

void ZAV_EvPort::FreeUnused() {
    while (theFree != nullptr) delete std::exchange(theFree, theFree->mNextFree);
}

void ZAV_EvPort::Hold() { mUsers.fetch_add(1, std::memory_order_relaxed); }

void ZAV_EvPort::Release() {
    if (mUsers.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    std::lock_guard<ZAV_SpinLock> guard(theFreeLock);
    mNextFree = theFree;
    theFree = this;
}

// On the dispatching thread nobody else changes the owner.
bool ZAV_EvPort::Post(ZAV_Event* event) {
    const std::int32_t priority = event->mPriority;
    if (tDispatched == this && mOwner != nullptr && mOwner->TakeIn(event)) {
        RaiseUrgent(priority);
        NoteLength(Length());
        return true;
    }
    if (Push(event)) return true;
    Leave();
    return false;
}

// The event is not touched any more once it can be seen. The priority is told after that: the dispatching
// thread lowers the mark first and looks for events then, so one of the two sees the other. From here on the
// port may belong to another dispatcher, which then looks for events, or wakes, once for nothing.
bool ZAV_EvPort::Push(ZAV_Event* event) {
    const std::int32_t priority = event->mPriority;
    std::uintptr_t newest = mNewest.load(std::memory_order_relaxed);
    do {
        if (newest == kClosed) return false;
        event->mNext = newest == kAsleep ? nullptr : reinterpret_cast<ZAV_Event*>(newest);
    } while (!mNewest.compare_exchange_weak(newest, reinterpret_cast<std::uintptr_t>(event)));
    RaiseUrgent(priority);
    if (newest == kAsleep) WakeOwner();
    return true;
}

void ZAV_EvPort::RaiseUrgent(std::int32_t priority) {
    std::int32_t urgent = mUrgent.load();
    while (urgent < priority && !mUrgent.compare_exchange_weak(urgent, priority)) {
    }
}

// Under the lock the owner cannot go away; that it has stopped sleeping meanwhile does no harm.
void ZAV_EvPort::WakeOwner() {
    ZAV_Mutex::Lock lock(mOwnerLock, B_FALSE);
    if (mOwner != nullptr) mOwner->Wake();
}

// What was taken is read last, so that the result is never more than there were.
std::uint32_t ZAV_EvPort::Length() const {
    const std::uint32_t posted = mPosted.load(std::memory_order_acquire);
    const std::uint32_t length = posted - mTaken.load(std::memory_order_relaxed);
    return static_cast<std::int32_t>(length) > 0 ? length : 0;
}

std::uint32_t ZAV_EvPort::HighWater() {
    NoteLength(Length());
    return mHighWater.load(std::memory_order_relaxed);
}

void ZAV_EvPort::NoteLength(std::uint32_t length) {
    std::uint32_t most = mHighWater.load(std::memory_order_relaxed);
    while (most < length && !mHighWater.compare_exchange_weak(most, length, std::memory_order_relaxed)) {
    }
}

ZAV_Event* ZAV_EvPort::TakePosted() {
    if (mNewest.load(std::memory_order_relaxed) <= kClosed) return nullptr;
    return reinterpret_cast<ZAV_Event*>(mNewest.exchange(kNone));
}

// Only the dispatching thread takes, so this needs no atomic addition.
void ZAV_EvPort::CountTaken() { mTaken.store(Taken() + 1, std::memory_order_release); }

bool ZAV_EvPort::BeginSleep() {
    std::uintptr_t none = kNone;
    return mNewest.compare_exchange_strong(none, kAsleep);
}

void ZAV_EvPort::EndSleep() {
    std::uintptr_t asleep = kAsleep;
    mNewest.compare_exchange_strong(asleep, kNone);
}

ZAV_Event* ZAV_EvPort::Close() {
    {
        ZAV_Mutex::Lock lock(mOwnerLock, B_FALSE);
        mOwner = nullptr;
    }
    mClosed.store(true, std::memory_order_release);
    const std::uintptr_t newest = mNewest.exchange(kClosed);
    return newest > kClosed ? reinterpret_cast<ZAV_Event*>(newest) : nullptr;
}
