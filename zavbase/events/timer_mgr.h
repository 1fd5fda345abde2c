#ifndef ZAVBASE_EVENTS_TIMER_MGR_H
#define ZAVBASE_EVENTS_TIMER_MGR_H

#include <atomic>

#include <zavbase/collections/linked_list.h>
#include <zavbase/events/event.h>
#include <zavbase/events/listener.h>
#include <zavbase/threads/mutex.h>
#include <zavbase/threads/signaller.h>

class ZAV_EvDispatcher;
class ZAV_TimerStore;

/// The event of a timer that fell due. Made by the timer manager only. Type "Timr".
class ZAV_API ZAV_EventTimer : public ZAV_Event {
    ZAV_DECLARE_CLASS(ZAV_EventTimer)
public:
    ~ZAV_EventTimer() override;
    void PrintOn(std::ostream& os) override; ///< "Event 'Timr' = ZAV_EventTimer(mId =1, mTimeout =50)"

    long Id() const { return mId; } ///< what AddTimer returned
    unsigned long Timeout() const { return mTimeout; }

    /// Both at the tick count `now`. The tick counter wraps; a timer that runs across the wrap is due one
    /// millisecond later.
    int TimeoutElapsed(unsigned long now) const; ///< whether the timer is due
    long TimeToGo(unsigned long now) const;      ///< milliseconds, negative when overdue, as 32 bits

protected:
    friend class ZAV_TimerMgr;

    ZAV_EventTimer(long id, unsigned long start, unsigned long timeout, ZAV_EvHandlerBody* handler,
                   long priority);

    zav_ulong32 mTimeout;
    zav_ulong32 mStart;
    zav_long32 mId;
};

/// The one timer manager of the process. It keeps the pending timers in the order in which they fall due,
/// those due at the same moment in the order in which they were added, and queues each for its handler when
/// its time is up. Timers are one-shot; see ZAV_PeriodicTimer for others.
///
/// With a thread of its own it fires them on time. POLLED, AS A LISTENER OF A DISPATCHER, IT FIRES THEM ONLY
/// WHILE THAT DISPATCHER IS AWAKE: one that sleeps for want of events sleeps past its timers, unless it was
/// given a wake-up interval (ZAV_EvDispatcher::SetWakeUpInterval). With neither a thread nor a dispatcher
/// timers never fire.
///
/// Threads: all static calls are for any thread. Handlers run on their dispatchers' threads. The manager's
/// thread wakes when a timer falls due, and otherwise once in 10 seconds.
class ZAV_API ZAV_TimerMgr : public ZAV_Listener {
    ZAV_DECLARE_CLASS(ZAV_TimerMgr)
public:
    /// Creates the manager; with one there already it does nothing. With `ownThread` the dispatcher is
    /// ignored. The thread has normal priority, unless the configuration sets "ZAV"/"SYSTEM"/
    /// "SET_TIMER_PRIORITY" to other than 0: then it has the value of "TIMER_PRIORITY".
    static void InitializeListener(boolean_t ownThread, ZAV_EvDispatcher* dispatcher);
    /// Ends the manager's thread or takes it out of its dispatcher, and destroys it and all pending timers.
    /// A polled manager must be cleaned up on the dispatching thread, or when nothing dispatches. Not to be
    /// called from what the manager itself calls when a timer falls due whose handler is gone:
    /// EmergencyCleanup and the destructors of event and handler. On the manager's own thread it would end
    /// that thread half-way.
    static void CleanupListener();

    /// Has a ZAV_EventTimer queued for the handler with this priority after `ms` milliseconds, 0 to 2^32-1.
    /// The pending timer keeps the handler alive. Returns the identifier, from 1 on; -1 without a manager.
    static long AddTimer(unsigned long ms, ZAV_EvHandlerBody* handler, long priority);
    /// Destroys a pending timer; an unknown identifier, such as that of a fired timer, is ignored.
    static void RemoveTimer(long id);

    void Listen(ZAV_ListenerControl control) override;
    void Stop() override;

    static ZAV_TimerMgr* theTimerMgr; ///< null until initialised

protected:
    ZAV_TimerMgr();
    ZAV_TimerMgr(const ZAV_TimerMgr&) = delete;
    ZAV_TimerMgr& operator=(const ZAV_TimerMgr&) = delete;
    ~ZAV_TimerMgr() override;

    void Initialize(boolean_t ownThread, ZAV_EvDispatcher* dispatcher);
    void Cleanup();
    long GetNextId();
    long Protected_AddTimer(unsigned long ms, ZAV_EvHandlerBody* handler, long priority);
    ZAV_EventTimer*
    Protected_RemoveTimer(long id); ///< gives it to the caller, who deletes it; null if unknown
    void WakeUp();

    ZAV_LinkedList mTimers; ///< its one link is the store, which holds the timers by due time
    zav_long32 mLastId;
    ZAV_Mutex mTimersMutex;
    std::atomic<std::int32_t> mStopped;
    ZAV_ListenerThread* mThread;
    ZAV_EvDispatcher* mDispatcher;
    ZAV_MutexSignaller mWakeUp;

private:
    struct ZAV_LOCAL OverFork;

    ZAV_TimerStore& Store();
    bool FireOne(std::uint32_t& now);
    void QueueTimer(ZAV_EventTimer* timer);
    unsigned SeenChanges();
    void SleepUnlessChanged(unsigned seenChanges);
    void DestroyTimers();
};

#endif
