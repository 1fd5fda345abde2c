#include <zavbase/events/ev_port_internal.h>

#include <memory>
#include <mutex>

#include <zavbase/events/ev_dispatcher.h>
#include <zavbase/events/ev_registration_internal.h>
#include <zavbase/events/event.h>
#include <zavbase/foundation/exception.h>
#include <zavbase/threads/thread.h>

namespace {

thread_local constinit ZAV_EvPort::Dispatching* tDispatching = nullptr; // the innermost

} // namespace

ZAV_EvPort::Dispatching::Dispatching(ZAV_EvPort& port)
    : mPort(port), mOuter(tDispatching), mAgain(IsDispatchedBy(mOuter)) {
    tDispatching = this;
    if (mAgain) return;
    mPort.mDispatched.exchange(true);
    // Waits for who is just posting. The lock is not kept: a handler may end its thread without returning.
    mPort.mQueueLock.lock();
    mPort.mQueueLock.unlock();
}

ZAV_EvPort::Dispatching::~Dispatching() {
    tDispatching = mOuter;
    if (!mAgain) mPort.mDispatched.store(false);
}

ZAV_EvPort::Dispatching* ZAV_EvPort::Dispatching::Innermost() { return tDispatching; }

bool ZAV_EvPort::Dispatching::IsDispatchedBy(const Dispatching* scope) const {
    while (scope != nullptr && &scope->mPort != &mPort) scope = scope->mOuter;
    return scope != nullptr;
}

ZAV_EvPort::ZAV_EvPort(ZAV_EvDispatcher* owner) : mOwner(owner) {}

ZAV_EvPort::~ZAV_EvPort() {}

void ZAV_EvPort::Hold() { mUsers.fetch_add(1, std::memory_order_relaxed); }

void ZAV_EvPort::Release() {
    if (mUsers.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

// The handler is counted anew before the event's old hold on it, if there was one, ends.
void ZAV_EvPort::Send(ZAV_EvRegistration* tie, ZAV_EvHandlerBody* handler, ZAV_Event* event, long priority) {
    if (tie == nullptr || !tie->CountPosted()) {
        handler->Hold();
        CountPosted(1);
    }
    ZAV_EvHandlerBody* const old = event->mDestination;
    event->mDestination = handler;
    event->mPriority = static_cast<zav_long32>(priority);
    if (old != nullptr) old->LetGo();
    if (!Post(event, event->mPriority))
        DiscardTaken(event);
    else if (tie != nullptr && tie->IsFarBehind() && tDispatching == nullptr)
        ZAV_Thread::yield(nullptr); // the dispatching thread above all
}

void ZAV_EvPort::Discard(ZAV_Event* event) {
    std::unique_ptr<ZAV_Event> owned(event);
    owned->EmergencyCleanup();
}

// The event is not touched any more once it can be seen. The priority is told after that: the dispatching
// thread lowers the mark first and looks for events then, so one of the two sees the other.
bool ZAV_EvPort::Post(ZAV_Event* event, std::int32_t priority) {
    if (PushAtOnce(event)) return true;
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
    std::lock_guard<std::mutex> guard(ZAV_EvRegistration::Lock());
    std::uint32_t length = mPostedApart.load(std::memory_order_acquire);
    for (const ZAV_EvRegistration* tie = mTies; tie != nullptr; tie = tie->NextOfPort())
        length += tie->Posted();
    length = (length - mTaken.load(std::memory_order_relaxed)) % kCountsEnd;
    return length < kCountsEnd / 2 ? length : 0;
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

bool ZAV_EvPort::PushAtOnce(ZAV_Event* event) {
    if (tDispatching != nullptr && &tDispatching->mPort == this) return PushHere(event);
    if (mDispatched.load(std::memory_order_relaxed) || !mQueueLock.try_lock()) return false;
    std::lock_guard<ZAV_SpinLock> lock(mQueueLock, std::adopt_lock);
    return !mDispatched.load() && PushHere(event);
}

// Says that the queue is being changed: a new-handler may be called then, and may post.
class ZAV_EvPort::Sorting {
public:
    explicit Sorting(bool& flag) : mFlag(flag), mBefore(flag) { mFlag = true; }
    ~Sorting() { mFlag = mBefore; }
    Sorting(const Sorting&) = delete;
    Sorting& operator=(const Sorting&) = delete;

private:
    bool& mFlag;
    const bool mBefore;
};

// Behind what others posted before. False when closed, and without memory.
bool ZAV_EvPort::PushHere(ZAV_Event* event) {
    if (IsClosed() || mSorting) return false;
    const Sorting sorting(mSorting);
    const std::int32_t priority = event->mPriority;
    try {
        Collect();
        mQueue.Push(event);
    } catch (ZAV_Exception* e) {
        if (e != nullptr) e->Delete();
        return false;
    } catch (...) {
        return false;
    }
    RaiseUrgent(priority);
    NoteLength(AtHand());
    return true;
}

std::uint32_t ZAV_EvPort::Collect() {
    const Sorting sorting(mSorting);
    const bool posted = mNewest.load(std::memory_order_relaxed) > kClosed;
    SortIn(mUnsorted);
    if (posted) SortIn(reinterpret_cast<ZAV_Event*>(mNewest.exchange(kNone)));
    return AtHand();
}

void ZAV_EvPort::SortIn(ZAV_Event* newest) {
    for (mUnsorted = newest; mUnsorted != nullptr;) {
        ZAV_Event* older = static_cast<ZAV_Event*>(mUnsorted->mNext);
        mQueue.PushOlder(mUnsorted);
        mUnsorted = older;
    }
    mQueue.JoinOlder();
    NoteLength(AtHand());
}

ZAV_Event* ZAV_EvPort::Take() {
    if (mCurrent.first == nullptr || mUrgent.load(std::memory_order_acquire) > mCurrent.priority)
        Refill();
    else if (mTaken.load(std::memory_order_relaxed) % kLook == 0)
        Collect();
    return CountTaken(mCurrent.TakeFirst());
}

// Until no post of a higher priority can have escaped: see Post.
void ZAV_EvPort::Refill() {
    const Sorting sorting(mSorting);
    do {
        Collect();
        mQueue.PutBack(mCurrent);
        mCurrent = mQueue.TakeHighest();
        if (mCurrent.first == nullptr || mUrgent.load() <= mCurrent.priority) return;
        mUrgent.store(mCurrent.priority);
    } while (mNewest.load() > kClosed);
}

ZAV_Event* ZAV_EvPort::CountTaken(ZAV_Event* event) {
    if (event == nullptr) return nullptr;
    mTaken.store(mTaken.load(std::memory_order_relaxed) + 1, std::memory_order_release);
    return event;
}

bool ZAV_EvPort::DiscardNext() {
    ZAV_Event* event;
    try {
        event = Take();
    } catch (ZAV_Exception* e) {
        if (e != nullptr) e->Delete();
        event = TakeUnordered();
    } catch (...) {
        event = TakeUnordered();
    }
    if (event != nullptr) DiscardTaken(event);
    return event != nullptr;
}

ZAV_Event* ZAV_EvPort::TakeUnordered() {
    return CountTaken(mUnsorted != nullptr ? TakeUnsorted() : mCurrent.TakeFirst());
}

void ZAV_EvPort::DiscardTaken(ZAV_Event* event) {
    HoldByEvent(event);
    Discard(event);
}

ZAV_Event* ZAV_EvPort::TakeUnsorted() {
    ZAV_Event* event = mUnsorted;
    mUnsorted = static_cast<ZAV_Event*>(event->mNext);
    event->mNext = nullptr;
    return event;
}

// Has the event hold its handler like one that is not queued.
void ZAV_EvPort::HoldByEvent(ZAV_Event* event) {
    event->mDestination->Hold();
    event->mDestination->LetGoQueued(event->mDestination->TieTo(this));
}

bool ZAV_EvPort::BeginSleep() {
    std::uintptr_t none = kNone;
    return AtHand() == 0 && mNewest.compare_exchange_strong(none, kAsleep);
}

void ZAV_EvPort::EndSleep() {
    std::uintptr_t asleep = kAsleep;
    mNewest.compare_exchange_strong(asleep, kNone);
}

void ZAV_EvPort::Close() {
    {
        ZAV_Mutex::Lock lock(mOwnerLock, B_FALSE);
        mOwner = nullptr;
    }
    const Dispatching here(*this);
    mClosed.store(true, std::memory_order_release);
    const std::uintptr_t newest = mNewest.exchange(kClosed);
    ZAV_Event* rest = newest > kClosed ? reinterpret_cast<ZAV_Event*>(newest) : nullptr;
    while (mUnsorted != nullptr) {
        ZAV_Event* event = TakeUnsorted();
        event->mNext = rest;
        rest = event;
    }
    mUnsorted = rest;
}
