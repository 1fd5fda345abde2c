#include <zavbase/events/ev_port_internal.h>

#include <memory>

#include <zavbase/events/ev_dispatcher.h>
#include <zavbase/events/event.h>

ZAV_EvPort::ZAV_EvPort(ZAV_EvDispatcher* owner) : mOwner(owner)
{
    static_assert(alignof(ZAV_Event) > kClosed, "the marks of the inbox must not look like events");
}

ZAV_EvPort::~ZAV_EvPort() {}

void ZAV_EvPort::Hold()
{
    mUsers.fetch_add(1, std::memory_order_relaxed);
}

void ZAV_EvPort::Release()
{
    if (mUsers.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

void ZAV_EvPort::Send(ZAV_EvHandlerBody* handler, ZAV_Event* event, long priority)
{
    event->SetDestination(handler, priority);
    if (!Post(event)) Discard(event);
}

void ZAV_EvPort::Discard(ZAV_Event* event)
{
    std::unique_ptr<ZAV_Event> owned(event);
    owned->EmergencyCleanup();
}

bool ZAV_EvPort::Post(ZAV_Event* event)
{
    mPosted.fetch_add(1, std::memory_order_relaxed);
    Head head = mInbox.load(std::memory_order_relaxed);
    do {
        if (head == kClosed) {
            event->mNext = nullptr;
            mPosted.fetch_sub(1, std::memory_order_relaxed);
            return false;
        }
        event->mNext = head == kSleeping ? nullptr : reinterpret_cast<ZAV_Event*>(head);
    } while (!mInbox.compare_exchange_weak(head, reinterpret_cast<Head>(event), std::memory_order_release,
                                           std::memory_order_relaxed));
    if (head == kSleeping) WakeOwner();
    return true;
}

// Under the lock the owner cannot go away; that it has stopped sleeping meanwhile does no harm.
void ZAV_EvPort::WakeOwner()
{
    ZAV_Mutex::Lock lock(mOwnerLock, B_FALSE);
    if (mOwner != nullptr) mOwner->Wake();
}

std::uint32_t ZAV_EvPort::Length() const
{
    return mPosted.load(std::memory_order_relaxed) - mTaken.load(std::memory_order_relaxed);
}

std::uint32_t ZAV_EvPort::HighWater() const
{
    const std::uint32_t length = Length();
    const std::uint32_t highest = mHighWater.load(std::memory_order_relaxed);
    return length > highest ? length : highest;
}

// Between two takes the length only grows, so looking at it before each take sees every peak.
void ZAV_EvPort::NoteLength()
{
    const std::uint32_t length = Length();
    if (length > mHighWater.load(std::memory_order_relaxed)) mHighWater.store(length, std::memory_order_relaxed);
}

std::size_t ZAV_EvPort::Drain()
{
    const Head head = mInbox.load(std::memory_order_relaxed);
    if (head > kClosed) FetchInbox(kEmpty);
    while (mArrived != nullptr) {
        ZAV_Event* next = static_cast<ZAV_Event*>(mArrived->mNext);
        mQueue.Push(mArrived);
        mArrived = next;
    }
    return mQueue.Length();
}

// The inbox, which gets the given mark, has the last event first. Something is left over from the time before
// only when memory ran out while it was sorted in.
void ZAV_EvPort::FetchInbox(Head mark)
{
    NoteLength();
    const Head head = mInbox.exchange(mark, std::memory_order_acq_rel);
    ZAV_Event* event = head > kClosed ? reinterpret_cast<ZAV_Event*>(head) : nullptr;
    ZAV_Event* inOrder = nullptr;
    while (event != nullptr) {
        ZAV_Event* before = static_cast<ZAV_Event*>(event->mNext);
        event->mNext = inOrder;
        inOrder = event;
        event = before;
    }
    ZAV_Event* leftOver = mArrived;
    if (leftOver == nullptr) {
        mArrived = inOrder;
        return;
    }
    while (leftOver->mNext != nullptr) leftOver = static_cast<ZAV_Event*>(leftOver->mNext);
    leftOver->mNext = inOrder;
}

ZAV_Event* ZAV_EvPort::Take()
{
    ZAV_Event* event = mQueue.Pop();
    if (event != nullptr) mTaken.store(mTaken.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    return event;
}

bool ZAV_EvPort::BeginSleep()
{
    if (mArrived != nullptr || mQueue.Length() != 0) return false;
    Head expected = kEmpty;
    return mInbox.compare_exchange_strong(expected, kSleeping, std::memory_order_relaxed);
}

void ZAV_EvPort::EndSleep()
{
    Head expected = kSleeping;
    mInbox.compare_exchange_strong(expected, kEmpty, std::memory_order_relaxed);
}

void ZAV_EvPort::Close()
{
    {
        ZAV_Mutex::Lock lock(mOwnerLock, B_FALSE);
        mOwner = nullptr;
    }
    FetchInbox(kClosed);
}
