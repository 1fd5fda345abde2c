#include <zavbase/events/ev_intake_internal.h>

#include <zavbase/events/event.h>
#include <zavbase/foundation/exception.h>

class ZAV_EvIntake::Sorting {
public:
    explicit Sorting(bool& flag) : mFlag(flag), mBefore(flag) { mFlag = true; }
    ~Sorting() { mFlag = mBefore; }
    Sorting(const Sorting&) = delete;
    Sorting& operator=(const Sorting&) = delete;

private:
    bool& mFlag;
    const bool mBefore;
};

bool ZAV_EvIntake::Push(ZAV_Event* event) {
    if (mSorting || mPort.IsClosed()) return false;
    const Sorting sorting(mSorting);
    try {
        Collect();
        mQueue.Push(event);
        return true;
    } catch (ZAV_Exception* e) {
        if (e != nullptr) e->Delete();
    } catch (...) {
    }
    return false;
}

std::uint32_t ZAV_EvIntake::Collect() {
    const Sorting sorting(mSorting);
    SortIn(mUnsorted);
    SortIn(mPort.TakePosted());
    mPort.NoteLength(AtHand());
    return AtHand();
}

// What is not yet sorted in stays known while the queue may throw.
void ZAV_EvIntake::SortIn(ZAV_Event* newest) {
    for (mUnsorted = newest; mUnsorted != nullptr;) {
        ZAV_Event* older = static_cast<ZAV_Event*>(mUnsorted->mNext);
        mQueue.PushOlder(mUnsorted);
        mUnsorted = older;
    }
    mQueue.JoinOlder();
}

ZAV_Event* ZAV_EvIntake::Take() {
    if (mCurrent.first == nullptr || mPort.Urgent() > mCurrent.priority)
        Refill();
    else if (mPort.Taken() % kLook == 0)
        Collect();
    return Counted(mCurrent.TakeFirst());
}

// The mark is lowered first and the port looked at then: a post puts its event in first and raises the mark
// then. So when the port is found empty, a post of a higher priority is yet to raise the mark.
void ZAV_EvIntake::Refill() {
    const Sorting sorting(mSorting);
    do {
        Collect();
        mQueue.PutBack(mCurrent);
        mCurrent = mQueue.TakeHighest();
        if (mCurrent.first == nullptr || mPort.Urgent() <= mCurrent.priority) return;
        mPort.Lower(mCurrent.priority);
    } while (mPort.HasPosted());
}

ZAV_Event* ZAV_EvIntake::Counted(ZAV_Event* event) {
    if (event != nullptr) mPort.CountTaken();
    return event;
}

bool ZAV_EvIntake::DiscardNext() {
    ZAV_Event* event;
    try {
        event = Take();
    } catch (ZAV_Exception* e) {
        if (e != nullptr) e->Delete();
        event = TakeUnordered();
    } catch (...) {
        event = TakeUnordered();
    }
    if (event != nullptr) ZAV_Event::DiscardQueued(event);
    return event != nullptr;
}

// What made Take throw: something is unsorted, or the current events could not be put back.
ZAV_Event* ZAV_EvIntake::TakeUnordered() {
    ZAV_Event* const event = mUnsorted;
    if (event == nullptr) return Counted(mCurrent.TakeFirst());
    mUnsorted = static_cast<ZAV_Event*>(event->mNext);
    event->mNext = nullptr;
    return Counted(event);
}

void ZAV_EvIntake::Close() {
    ZAV_Event* posted = mPort.Close();
    while (mUnsorted != nullptr) { // older than those posted, but all are about to be destroyed
        ZAV_Event* const next = static_cast<ZAV_Event*>(mUnsorted->mNext);
        mUnsorted->mNext = posted;
        posted = mUnsorted;
        mUnsorted = next;
    }
    mUnsorted = posted;
}
