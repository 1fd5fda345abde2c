#include <zavbase/events/timer_mgr.h>

#include <memory>
#include <mutex>
#include <ostream>

#include <zavbase/events/held_handler_internal.h>
#include <zavbase/events/listener_internal.h>
#include <zavbase/events/ticks_internal.h>
#include <zavbase/events/timer_queue_internal.h>
#include <zavbase/events/trace_internal.h>
#include <zavbase/foundation/process_hooks_internal.h>
#include <zavbase/foundation/spin_lock_internal.h>
#include <zavbase/threads/time.h>
#include <zavbase/values/config.h>

ZAV_DEFINE_CLASS(ZAV_EventTimer, ZAV_Event)
ZAV_DEFINE_CLASS(ZAV_TimerMgr, ZAV_Listener)

/// What the manager's list of timers holds in place of the timers.
class ZAV_TimerStore : public ZAV_Link {
public:
    ZAV_TimerQueue mQueue;                // under mTimersMutex
    std::atomic<std::size_t> mPending{0}; // its count, for those who only want to know if there are any
    unsigned mChanges = 0;                // what the manager's thread would have to look at; under mWakeUp
};

namespace {

const long kTypeTimer = 0x54696D72;
const std::uint32_t kLongestSleep = 10000; // milliseconds

// Never destroyed, and not constinit: not every platform builds a std::mutex at compile time.
std::mutex& TheCreationLock() {
    static std::mutex* const lock = new std::mutex;
    return *lock;
}
constinit std::atomic<int> theUsers{0};

std::atomic_ref<ZAV_TimerMgr*> TheManager() {
    return std::atomic_ref<ZAV_TimerMgr*>(ZAV_TimerMgr::theTimerMgr);
}

// Keeps the manager from being destroyed during a call. Who destroys it takes the pointer away first and then
// waits for the users to go.
class ManagerUse {
public:
    ManagerUse() {
        theUsers.fetch_add(1);
        mManager = TheManager().load();
    }
    ~ManagerUse() { theUsers.fetch_sub(1); }
    ManagerUse(const ManagerUse&) = delete;
    ManagerUse& operator=(const ManagerUse&) = delete;

    ZAV_TimerMgr* mManager;
};

ZAV_LockOverFork<TheCreationLock> creationOverFork(ZAV_ProcessHooks::kTimerManager);

} // namespace

// The manager's own locks, which are as wide as the process. Who else used it is not in the child.
struct ZAV_LOCAL ZAV_TimerMgr::OverFork {
    struct Held {
        explicit Held(ZAV_TimerMgr& manager)
            : timers(manager.mTimersMutex, B_FALSE), wakeUp(manager.mWakeUp) {}
        ZAV_Mutex::Lock timers;
        ZAV_MutexSignaller::Lock wakeUp;
    };

    static void Lock() {
        theUsers.fetch_add(1);
        ZAV_TimerMgr* const manager = TheManager().load();
        held = manager != nullptr ? new (place) Held(*manager) : nullptr;
    }

    static void Unlock(bool inChild) {
        if (held != nullptr) held->~Held();
        if (inChild)
            theUsers = 0;
        else
            theUsers.fetch_sub(1);
    }

    alignas(Held) inline static unsigned char place[sizeof(Held)];
    inline static Held* held;
    static ZAV_ProcessHooks hooks;
};
ZAV_ProcessHooks ZAV_TimerMgr::OverFork::hooks(ZAV_ProcessHooks::kTimers, Lock, Unlock, nullptr);

ZAV_EventTimer::ZAV_EventTimer(long id, unsigned long start, unsigned long timeout,
                               ZAV_EvHandlerBody* handler, long priority)
    : ZAV_Event(kTypeTimer), mTimeout(static_cast<zav_ulong32>(timeout)),
      mStart(static_cast<zav_ulong32>(start)), mId(static_cast<zav_long32>(id)) {
    SetDestination(handler, priority);
}

ZAV_EventTimer::~ZAV_EventTimer() {}

void ZAV_EventTimer::PrintOn(std::ostream& os) {
    ZAV_Event::PrintOn(os);
    os << " = ZAV_EventTimer(mId =" << mId << ", mTimeout =" << mTimeout << ")";
}

int ZAV_EventTimer::TimeoutElapsed(unsigned long now) const {
    return ZAV_TicksBetween(static_cast<std::uint32_t>(mStart), static_cast<std::uint32_t>(now)) >= mTimeout;
}

long ZAV_EventTimer::TimeToGo(unsigned long now) const {
    const std::uint32_t elapsed =
        ZAV_TicksBetween(static_cast<std::uint32_t>(mStart), static_cast<std::uint32_t>(now));
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(mTimeout) - elapsed);
}

// Defined here: the handler knows nothing of timers.
long ZAV_EvHandlerBody::RegisterTimer(unsigned long ms) { return ZAV_TimerMgr::AddTimer(ms, this, 0); }

void ZAV_EvHandlerBody::UnRegisterTimer(long id) { ZAV_TimerMgr::RemoveTimer(id); }

ZAV_TimerMgr* ZAV_TimerMgr::theTimerMgr = nullptr;

void ZAV_TimerMgr::InitializeListener(boolean_t ownThread, ZAV_EvDispatcher* dispatcher) {
    std::lock_guard<std::mutex> guard(TheCreationLock());
    if (TheManager().load() != nullptr) return;
    ZAV_TimerMgr* manager = new ZAV_TimerMgr;
    std::unique_ptr<ZAV_Link> owned(manager);
    manager->Initialize(ownThread, dispatcher);
    owned.release();
    TheManager().store(manager);
}

// No lock is held while it is destroyed: destructors of handlers may call back.
void ZAV_TimerMgr::CleanupListener() {
    ZAV_TimerMgr* manager = TheManager().exchange(nullptr);
    for (int looks = 0; theUsers.load() != 0; ++looks) ZAV_SpinLock::Pause(looks);
    delete manager;
}

long ZAV_TimerMgr::AddTimer(unsigned long ms, ZAV_EvHandlerBody* handler, long priority) {
    ManagerUse use;
    if (use.mManager == nullptr || handler == nullptr) return -1;
    return use.mManager->Protected_AddTimer(ms, handler, priority);
}

// The timer is destroyed when no use is counted any more, since it may take its handler along.
void ZAV_TimerMgr::RemoveTimer(long id) {
    std::unique_ptr<ZAV_EventTimer> timer;
    ManagerUse use;
    if (use.mManager != nullptr) timer.reset(use.mManager->Protected_RemoveTimer(id));
}

ZAV_TimerMgr::ZAV_TimerMgr() : mLastId(0), mStopped(0), mThread(nullptr), mDispatcher(nullptr) {
    mTimers.Add(new ZAV_TimerStore);
}

ZAV_TimerMgr::~ZAV_TimerMgr() {
    Cleanup();
    delete mTimers.RemoveFirst();
}

void ZAV_TimerMgr::Initialize(boolean_t ownThread, ZAV_EvDispatcher* dispatcher) {
    if (!ownThread) {
        mDispatcher = dispatcher;
        if (dispatcher != nullptr) zav_listeners::Enter(dispatcher, this);
        return;
    }
    mThread = new ZAV_ListenerThread("ZAV_TimerMgr", *this);
    mThread->BeginThread(ZAV_THREAD_CLEANUP_NONE, 0);
    if (ZAV_ConfigGet("ZAV", "SYSTEM", "SET_TIMER_PRIORITY", 0L) != 0)
        mThread->SetPriority(static_cast<int>(ZAV_ConfigGet("ZAV", "SYSTEM", "TIMER_PRIORITY", 0L)));
}

// The dispatcher may be gone.
void ZAV_TimerMgr::Cleanup() {
    if (mStopped == 0) Stop();
    if (mDispatcher != nullptr) zav_listeners::Leave(this);
    mDispatcher = nullptr;
    if (mThread != nullptr) {
        mThread->WaitForThread();
        delete mThread;
        mThread = nullptr;
    }
    DestroyTimers();
}

void ZAV_TimerMgr::DestroyTimers() {
    for (;;) {
        std::unique_ptr<ZAV_EventTimer> timer;
        ZAV_Mutex::Lock lock(mTimersMutex, B_FALSE);
        timer.reset(Store().mQueue.TakeAny());
        Store().mPending = Store().mQueue.Count();
        if (timer == nullptr) return;
    }
}

ZAV_TimerStore& ZAV_TimerMgr::Store() { return *static_cast<ZAV_TimerStore*>(mTimers.First()); }

long ZAV_TimerMgr::GetNextId() {
    mLastId = static_cast<zav_long32>(static_cast<std::uint32_t>(mLastId) + 1);
    return mLastId;
}

// The thread is woken only for a timer that falls due before all others; for any later one it wakes in time.
long ZAV_TimerMgr::Protected_AddTimer(unsigned long ms, ZAV_EvHandlerBody* handler, long priority) {
    long id;
    bool first;
    {
        ZAV_Mutex::Lock lock(mTimersMutex, B_FALSE);
        ZAV_TimerStore& store = Store();
        const std::uint32_t now = static_cast<std::uint32_t>(ZAV_CurrentTime());
        id = GetNextId();
        std::unique_ptr<ZAV_EventTimer> timer(new ZAV_EventTimer(id, now, ms, handler, priority));
        first = store.mQueue.Insert(timer.get(), static_cast<std::int32_t>(id), now,
                                    static_cast<std::uint32_t>(ms));
        timer.release();
        store.mPending.store(store.mQueue.Count(), std::memory_order_relaxed);
    }
    if (first) WakeUp();
    return id;
}

// Nobody is woken: a thread that sleeps for the removed timer finds nothing due, once.
ZAV_EventTimer* ZAV_TimerMgr::Protected_RemoveTimer(long id) {
    ZAV_Mutex::Lock lock(mTimersMutex, B_FALSE);
    ZAV_TimerStore& store = Store();
    ZAV_EventTimer* timer = store.mQueue.Cancel(static_cast<std::int32_t>(id));
    store.mPending.store(store.mQueue.Count(), std::memory_order_relaxed);
    return timer;
}

// The change is counted, so that a thread that is just going to sleep does not miss it.
void ZAV_TimerMgr::WakeUp() {
    if (mThread == nullptr) return;
    ZAV_MutexSignaller::Lock lock(mWakeUp);
    ++Store().mChanges;
    mWakeUp.Signal();
}

void ZAV_TimerMgr::Stop() {
    mStopped = 1;
    WakeUp();
}

void ZAV_TimerMgr::Listen(ZAV_ListenerControl control) {
    if (control == LISTEN_POLL && Store().mPending.load(std::memory_order_relaxed) == 0) return;
    ZAV_EXCEPTION_LINK link;
    do {
        const unsigned seenChanges = control == LISTEN_BLOCK ? SeenChanges() : 0;
        std::uint32_t now = static_cast<std::uint32_t>(ZAV_CurrentTime());
        while (FireOne(now) && mStopped == 0) {
        }
        if (control != LISTEN_BLOCK || mStopped != 0) return;
        SleepUnlessChanged(seenChanges);
    } while (mStopped == 0);
}

// Takes under the lock, queues outside: that may destroy the event, its handler, and call the host.
// The clock is read again only when nothing is due any more at the time it told last.
bool ZAV_TimerMgr::FireOne(std::uint32_t& now) {
    ZAV_EventTimer* timer;
    {
        ZAV_Mutex::Lock lock(mTimersMutex, B_FALSE);
        ZAV_TimerStore& store = Store();
        timer = store.mQueue.TakeDue(now);
        if (timer == nullptr)
            timer = store.mQueue.TakeDue(now = static_cast<std::uint32_t>(ZAV_CurrentTime()));
        store.mPending.store(store.mQueue.Count(), std::memory_order_relaxed);
    }
    if (timer != nullptr) QueueTimer(timer);
    return timer != nullptr;
}

// What the timer held keeps the handler for the call. The handler scope of Listen serves all timers; only one
// that has caught something needs to end.
void ZAV_TimerMgr::QueueTimer(ZAV_EventTimer* timer) {
    std::unique_ptr<ZAV_EventTimer> owned(timer);
    const long priority = timer->mPriority;
    const ZAV_HeldHandler handler(timer->TakeDestination(), ZAV_HeldHandler::kOwn);
    try {
        const bool taken = handler->QueueEvent(timer, priority) >= 0;
        owned.release();
        if (!taken) ZAV_Event::Discard(timer);
    } catch (ZAV_Exception* e) {
        ZAV_EXCEPTION_LINK link;
        link.mException = e;
        ZAV_TraceCaught("ZAV_TimerMgr caught exception :", e);
    }
}

unsigned ZAV_TimerMgr::SeenChanges() {
    ZAV_MutexSignaller::Lock lock(mWakeUp);
    return Store().mChanges;
}

void ZAV_TimerMgr::SleepUnlessChanged(unsigned seenChanges) {
    std::uint32_t ms;
    {
        ZAV_Mutex::Lock lock(mTimersMutex, B_FALSE);
        ms = Store().mQueue.TicksToGo(static_cast<std::uint32_t>(ZAV_CurrentTime()), kLongestSleep);
    }
    if (ms == 0) return;
    ZAV_MutexSignaller::Lock lock(mWakeUp);
    if (Store().mChanges == seenChanges) lock.TimedWait(static_cast<int>(ms * 1000));
}
