#ifndef ZAVBASE_EVENTS_TIMER_H
#define ZAVBASE_EVENTS_TIMER_H

#include <zavbase/events/sync_obj.h>

/// A synchronization object with a time-out: once its time is up it goes to zero, and so notifies its
/// handlers. It does not watch the clock: its owner calls CheckTime now and then.
class ZAV_API ZAV_TimerBody : public ZAV_SyncObjBody {
    ZAV_DECLARE_CLASS(ZAV_TimerBody)
public:
    ZAV_TimerBody(); ///< with a time-out of 0
    ~ZAV_TimerBody() override;

    void SetTimeout(unsigned long ms);
    void Restart();                    ///< sets the value to 1 and counts the time from now
    void CheckTime(unsigned long now); ///< at the tick count `now`; does nothing at a value below 1

protected:
    zav_ulong32 mStart;
    zav_ulong32 mTimeout;
};

class ZAV_API ZAV_TimerRef : public ZAV_SyncObjRef {
    ZAV_DECLARE_CLASS(ZAV_TimerRef)
public:
    ZAV_TimerRef(); ///< a new timer
    ZAV_TimerRef(ZAV_TimerBody* body);
    ZAV_TimerRef(const ZAV_TimerRef& other);
    ~ZAV_TimerRef() override;
    ZAV_TimerRef& operator=(const ZAV_TimerRef& other);
    ZAV_TimerRef& operator=(ZAV_TimerBody* body);

    ZAV_TimerBody* GetBody() const { return static_cast<ZAV_TimerBody*>(mBody); }
    ZAV_TimerBody* operator->() const { return GetBody(); }
};

/// Has a handler called every so many milliseconds. Each time is counted from the one before as it was due,
/// not as it was handled, so delays do not add up; times that have gone by entirely are skipped and counted.
///
/// Made to be a member of the handler, and used on its dispatcher's thread:
///
///     int HandleEvent(ZAV_Event* event) override {
///         if (mTick.CheckEvent(event)) { DoTheWork(); return 0; }
///         ...
///     }
///
/// While it runs, its pending timer keeps the handler alive: Stop it, or unregister the handler, to let go.
class ZAV_API ZAV_PeriodicTimer {
public:
    explicit ZAV_PeriodicTimer(unsigned long periodMs); ///< 1 to 2147483647
    ZAV_PeriodicTimer(const ZAV_PeriodicTimer&) = delete;
    ZAV_PeriodicTimer& operator=(const ZAV_PeriodicTimer&) = delete;
    ~ZAV_PeriodicTimer();

    /// Begins, or begins anew, with the first event after one period. False without a timer manager.
    boolean_t Start(ZAV_EvHandlerBody* handler, long priority = 0);
    void Stop();

    /// Whether the event is this timer's; if so, the next one has been set.
    boolean_t CheckEvent(const ZAV_Event* event);

    unsigned long Missed() const { return mMissed; } ///< times skipped since Start

    /// The calculation alone: moves the due time on by one period and by what has gone by at `now`, and
    /// returns the milliseconds from `now` to it.
    unsigned long Advance(unsigned long now);

private:
    boolean_t Arm();

    ZAV_EvHandlerBody* mHandler;
    zav_ulong32 mPeriod;
    zav_ulong32 mDue;
    zav_ulong32 mMissed;
    long mId;
    long mPriority;
};

#endif
