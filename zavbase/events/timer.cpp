#include <zavbase/events/timer.h>

#include <optional>

#include <zavbase/events/ticks_internal.h>
#include <zavbase/events/timer_mgr.h>
#include <zavbase/threads/time.h>

ZAV_DEFINE_CLASS(ZAV_TimerBody, ZAV_SyncObjBody)
ZAV_DEFINE_CLASS(ZAV_TimerRef, ZAV_SyncObjRef)

namespace {

const unsigned long kLongestPeriod = 0x7FFFFFFF;

} // namespace

ZAV_TimerBody::ZAV_TimerBody() : mStart(0), mTimeout(0) {}

ZAV_TimerBody::~ZAV_TimerBody() {}

void ZAV_TimerBody::SetTimeout(unsigned long ms) {
    ZAV_ReentrantMutex::Lock lock(mSyncLock, B_FALSE);
    mTimeout = static_cast<zav_ulong32>(ms);
}

void ZAV_TimerBody::Restart() {
    ZAV_ReentrantMutex::Lock lock(mSyncLock, B_FALSE);
    mStart = static_cast<zav_ulong32>(ZAV_CurrentTime());
    Set(1);
}

// The events of the notification may hold and drop the last other reference to this object.
void ZAV_TimerBody::CheckTime(unsigned long now) {
    std::optional<ZAV_SyncObjRef> self;
    if (mRefCount > 0) self.emplace(this);
    ZAV_ReentrantMutex::Lock lock(mSyncLock, B_FALSE);
    if (mFlag >= 1 && ZAV_TicksBetween(mStart, static_cast<std::uint32_t>(now)) >= mTimeout) Decrement();
}

ZAV_TimerRef::ZAV_TimerRef() : ZAV_SyncObjRef(new ZAV_TimerBody) {}

ZAV_TimerRef::ZAV_TimerRef(ZAV_TimerBody* body) : ZAV_SyncObjRef(body) {}

ZAV_TimerRef::ZAV_TimerRef(const ZAV_TimerRef& other) : ZAV_SyncObjRef(other) {}

ZAV_TimerRef::~ZAV_TimerRef() {}

ZAV_TimerRef& ZAV_TimerRef::operator=(const ZAV_TimerRef& other) {
    ZAV_SyncObjRef::operator=(other);
    return *this;
}

ZAV_TimerRef& ZAV_TimerRef::operator=(ZAV_TimerBody* body) {
    ZAV_SyncObjRef::operator=(body);
    return *this;
}

ZAV_PeriodicTimer::ZAV_PeriodicTimer(unsigned long periodMs)
    : mHandler(nullptr), mPeriod(static_cast<zav_ulong32>(periodMs < 1                ? 1
                                                          : periodMs > kLongestPeriod ? kLongestPeriod
                                                                                      : periodMs)),
      mDue(0), mMissed(0), mId(-1), mPriority(0) {}

ZAV_PeriodicTimer::~ZAV_PeriodicTimer() { Stop(); }

boolean_t ZAV_PeriodicTimer::Start(ZAV_EvHandlerBody* handler, long priority) {
    Stop();
    mHandler = handler;
    mPriority = priority;
    mMissed = 0;
    mDue = static_cast<zav_ulong32>(ZAV_CurrentTime());
    return Arm();
}

void ZAV_PeriodicTimer::Stop() {
    if (mId != -1) ZAV_TimerMgr::RemoveTimer(mId);
    mId = -1;
}

boolean_t ZAV_PeriodicTimer::CheckEvent(const ZAV_Event* event) {
    if (mId == -1 || event == nullptr || !event->IsKindOf(&ZAV_EventTimer::classZAV_EventTimer))
        return B_FALSE;
    if (static_cast<const ZAV_EventTimer*>(event)->Id() != mId) return B_FALSE;
    Arm();
    return B_TRUE;
}

boolean_t ZAV_PeriodicTimer::Arm() {
    mId = ZAV_TimerMgr::AddTimer(Advance(ZAV_CurrentTime()), mHandler, mPriority);
    return ZAV_Bool(mId != -1);
}

// All in 32 bits, so that it goes on through the wrap of the tick counter.
unsigned long ZAV_PeriodicTimer::Advance(unsigned long now) {
    mDue += mPeriod;
    const zav_ulong32 late = static_cast<zav_ulong32>(now) - mDue;
    if (late != 0 && late <= kLongestPeriod) {
        const zav_ulong32 skipped = (late + mPeriod - 1) / mPeriod;
        mMissed += skipped;
        mDue += skipped * mPeriod;
    }
    return static_cast<zav_ulong32>(mDue - static_cast<zav_ulong32>(now));
}
