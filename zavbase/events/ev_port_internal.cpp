#include <zavbase/events/ev_port_internal.h>

#include <memory>
#include <mutex>

#include <zavbase/events/ev_dispatcher.h>
#include <zavbase/events/event.h>

ZAV_EvPort::ZAV_EvPort(ZAV_EvDispatcher* owner) : mOwner(owner) {}

ZAV_EvPort::~ZAV_EvPort() {}

void ZAV_EvPort::Hold() { mUsers.fetch_add(1, std::memory_order_relaxed); }

void ZAV_EvPort::Release() {
    if (mUsers.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

void ZAV_EvPort::Send(ZAV_EvHandlerBody* handler, ZAV_Event* event, long priority) {
    event->SetDestination(handler, priority);
    bool posted;
    try {
        posted = Post(event);
    } catch (...) {
        event->TakeDestination()->LetGo();
        throw;
    }
    if (!posted) Discard(event);
}

void ZAV_EvPort::Discard(ZAV_Event* event) {
    std::unique_ptr<ZAV_Event> owned(event);
    owned->EmergencyCleanup();
}

bool ZAV_EvPort::Post(ZAV_Event* event) {
    bool sleeping;
    {
        std::lock_guard<ZAV_SpinLock> lock(mLock);
        if (IsClosed()) return false;
        mQueue.Push(event);
        NotePosted();
        sleeping = mSleeping;
        mSleeping = false;
        const std::uint32_t length = Length();
        if (length > HighWater()) mHighWater.store(length, std::memory_order_relaxed);
    }
    if (sleeping) WakeOwner();
    return true;
}

// Under the lock, for those who read without it: who sees the number sees a priority to take them by.
void ZAV_EvPort::NotePosted() {
    const std::int64_t highest = mQueue.IsEmpty() ? kNothing : mQueue.HighestPriority();
    if (highest != mHighest.load(std::memory_order_relaxed))
        mHighest.store(highest, std::memory_order_release);
    mPosted.store(mQueue.Length(), std::memory_order_release);
}

// Under the lock the owner cannot go away; that it has stopped sleeping meanwhile does no harm.
void ZAV_EvPort::WakeOwner() {
    ZAV_Mutex::Lock lock(mOwnerLock, B_FALSE);
    if (mOwner != nullptr) mOwner->Wake();
}

ZAV_Event* ZAV_EvPort::Take() {
    const std::int64_t highest = mHighest.load(std::memory_order_acquire);
    if (highest != kNothing && (mCurrent.first == nullptr || highest > mCurrent.priority)) Fetch();
    ZAV_Event* event = mCurrent.TakeFirst();
    mAtHand.store(mCurrent.count, std::memory_order_relaxed);
    return event;
}

void ZAV_EvPort::Fetch() {
    std::lock_guard<ZAV_SpinLock> lock(mLock);
    mQueue.PutBack(mCurrent);
    mCurrent = mQueue.TakeHighest();
    mAtHand.store(mCurrent.count, std::memory_order_relaxed);
    NotePosted();
}

bool ZAV_EvPort::BeginSleep() {
    if (AtHand() != 0) return false;
    std::lock_guard<ZAV_SpinLock> lock(mLock);
    mSleeping = mQueue.IsEmpty();
    return mSleeping;
}

void ZAV_EvPort::EndSleep() {
    std::lock_guard<ZAV_SpinLock> lock(mLock);
    mSleeping = false;
}

void ZAV_EvPort::Close() {
    {
        ZAV_Mutex::Lock lock(mOwnerLock, B_FALSE);
        mOwner = nullptr;
    }
    std::lock_guard<ZAV_SpinLock> lock(mLock);
    mClosed.store(true, std::memory_order_release);
}
