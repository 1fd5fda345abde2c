#include <algorithm>
#include <random>

#include <zavbase/events/ticks_internal.h>
#include <zavbase/events/timer_queue_internal.h>
#include <zavbase/os/clock.h>

#include "scripted.h"

namespace {

typedef std::uint32_t Ticks;
typedef std::vector<long> Ids;

// The tick count that the library sees; it stands still until set.
std::atomic<Ticks> fakeTicks{0};

thread_local std::function<void()> inTickCount;
std::atomic<bool> entered{false}, slept{false};

// The queue only hands the pointers out again, so they may be numbers; 0 is none.
ZAV_EventTimer* TimerNumber(int id) {
    return reinterpret_cast<ZAV_EventTimer*>(static_cast<std::uintptr_t>(id));
}

int NumberOf(ZAV_EventTimer* timer) { return static_cast<int>(reinterpret_cast<std::uintptr_t>(timer)); }

// The one list that the queue stands for, in 32-bit ticks.
struct PlainTimer {
    int id;
    Ticks start, timeout;
    bool ElapsedAt(Ticks now) const { return ZAV_TicksBetween(start, now) >= timeout; }
};
struct PlainTimers : std::vector<PlainTimer> {
    void Insert(int id, Ticks now, Ticks timeout) {
        const auto isLater = [due = now + timeout](const PlainTimer& t) { return !t.ElapsedAt(due); };
        insert(std::find_if(begin(), end(), isLater), {id, now, timeout});
    }
    bool Cancel(int id) {
        return std::erase_if(*this, [id](const PlainTimer& t) { return t.id == id; }) != 0;
    }
    int TakeDue(Ticks now) {
        const int id = !empty() && front().ElapsedAt(now) ? front().id : 0;
        Cancel(id);
        return id;
    }
};

void CompareRandomly(Ticks begin, Ticks longest, Ticks longestStep) {
    SCOPED_TRACE(testing::Message() << "from " << begin << ", up to " << longest);
    std::mt19937 random(1);
    ZAV_TimerQueue queue;
    PlainTimers plain;
    Ticks now = begin;
    int lastId = 0;
    for (int step = 0; step < 20000; ++step) {
        const unsigned what = random() % 16;
        if (what < 8) {
            const Ticks timeout = static_cast<Ticks>(random()) % (longest + 1);
            ++lastId;
            queue.Insert(TimerNumber(lastId), lastId, now, timeout);
            plain.Insert(lastId, now, timeout);
        } else if (what < 12) {
            const int id = 1 + static_cast<int>(random() % static_cast<unsigned>(lastId + 1));
            ASSERT_EQ(queue.Cancel(id) != nullptr, plain.Cancel(id)) << "step " << step;
        } else if (what < 13) {
            now += static_cast<Ticks>(random()) % (longestStep + 1);
        }
        const int expected = plain.TakeDue(now);
        ASSERT_EQ(NumberOf(queue.TakeDue(now)), expected) << "step " << step << " at " << now;
        ASSERT_EQ(queue.Count(), plain.size());
    }
    // Some may stand in the middle of those that are due at once.
    while (const int id = NumberOf(queue.TakeAny())) EXPECT_TRUE(plain.Cancel(id)) << id;
    EXPECT_TRUE(plain.empty());
    EXPECT_EQ(NumberOf(queue.TakeDue(now + longest)), 0);
}

TEST(TimerQueue, GivesWhatOneSortedListWouldGive) {
    CompareRandomly(5, 50, 20);
    CompareRandomly(0, 100000, 3000);
    CompareRandomly(0xFFFFFFF0u, 12, 3); // equal due times on both sides of the wrap
    CompareRandomly(0xFFFFF000u, 2000, 50);
    CompareRandomly(0xFFF00000u, 3000000, 20000);
    CompareRandomly(0xC0000000u, 0x3FFFFFFF, 0x100000);
}

TEST(TimerQueue, SweepsManyCancelledOnesWhileSomeAreTaken) {
    ZAV_TimerQueue queue;
    for (int id = 1; id <= 3000; ++id) queue.Insert(TimerNumber(id), id, 0, static_cast<Ticks>(id / 2900));
    for (int id = 1; id <= 500; ++id) ASSERT_EQ(NumberOf(queue.TakeDue(0)), id);
    for (int id = 1200; id < 3000; ++id) ASSERT_EQ(NumberOf(queue.Cancel(id)), id);
    for (int id = 501; id < 1200; ++id) ASSERT_EQ(NumberOf(queue.TakeDue(0)), id);
    EXPECT_EQ(NumberOf(queue.TakeDue(1)), 3000);
}

// Where 32-bit arithmetic on signed times would fire at once, or wait for nothing over and over.
TEST(TimerQueue, WaitsForTimesBeyondTwoToThe31) {
    for (const Ticks timeout : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        ZAV_TimerQueue queue;
        const Ticks start = 1000, wrapped = start + timeout < start ? 1 : 0;
        queue.Insert(TimerNumber(1), 1, start, timeout);
        EXPECT_EQ(queue.TicksToGo(start, 10000), 10000u);
        for (Ticks passed = 0; passed < timeout - 0x40000000; passed += 0x20000000)
            ASSERT_EQ(NumberOf(queue.TakeDue(start + passed)), 0) << timeout << " at " << passed;
        EXPECT_EQ(queue.TicksToGo(start + timeout - 3, 10000), 3 + wrapped);
        EXPECT_EQ(NumberOf(queue.TakeDue(start + timeout - 1 + wrapped)), 0);
        EXPECT_EQ(queue.TicksToGo(start + timeout + wrapped, 10000), 0u);
        EXPECT_EQ(NumberOf(queue.TakeDue(start + timeout + wrapped)), 1);
    }
}

// A dispatcher without timers does not tell the time, perhaps for nearly as long as the ticks take to wrap.
TEST(TimerQueue, StandingEmptyForDaysDelaysNothing) {
    ZAV_TimerQueue queue;
    Ticks now = 5000;
    for (const bool cancelled : {false, true}) {
        queue.Insert(TimerNumber(1), 1, now, 10);
        EXPECT_EQ(NumberOf(cancelled ? queue.Cancel(1) : queue.TakeDue(now + 10)), 1);
        now -= 30000;
        queue.Insert(TimerNumber(2), 2, now, 10);
        EXPECT_EQ(NumberOf(queue.TakeDue(now + 9)), 0);
        EXPECT_EQ(NumberOf(queue.TakeDue(now + 10)), 2);
    }
}

TEST(TimerQueue, ToleratesAReadingThatWasOvertaken) {
    ZAV_TimerQueue queue;
    queue.Insert(TimerNumber(1), 1, 5000, 1000);
    EXPECT_EQ(NumberOf(queue.TakeDue(4990)), 0);
    EXPECT_FALSE(queue.Insert(TimerNumber(2), 2, 4999, 1100));
    EXPECT_TRUE(queue.Insert(TimerNumber(3), 3, 5001, 10));
    EXPECT_EQ(queue.TicksToGo(5001, 10000), 10u);
    EXPECT_EQ(NumberOf(queue.TakeDue(5011)), 3);
    EXPECT_EQ(NumberOf(queue.TakeDue(5999)), 0);
}

// A manager that is polled by a dispatcher, on the manual clock.
class TimerMgr : public EventsTest {
protected:
    TimerMgr() {
        fakeTicks = 100;
        mDispatcher.AddEvHandler(mRef);
        ZAV_TimerMgr::InitializeListener(B_FALSE, &mDispatcher);
    }
    ~TimerMgr() override { ZAV_TimerMgr::CleanupListener(); }

    // Lets time pass and polls; gives what fired.
    Ids After(Ticks ms) {
        fakeTicks += ms;
        mFired.clear();
        mDispatcher.Dispatch(DISPATCH_ONCE);
        mDispatcher.Dispatch(DISPATCH_ONCE);
        return mFired;
    }

    Ids mFired;
    std::function<void(ZAV_Event*)> mThen = [](ZAV_Event*) {};
    Scripted* mHandler = new Scripted([this](ZAV_Event* event) {
        if (event->IsKindOf(&ZAV_EventTimer::classZAV_EventTimer))
            mFired.push_back(static_cast<ZAV_EventTimer*>(event)->Id());
        mThen(event);
        return 0;
    });
    ZAV_EvHandlerRef mRef{mHandler};
    ZAV_EvDispatcher mDispatcher;
};

TEST_F(TimerMgr, FiresByPriorityForActiveHandlers) {
    const long low = ZAV_TimerMgr::AddTimer(10, mHandler, -1), removed = mHandler->RegisterTimer(15);
    const long high = ZAV_TimerMgr::AddTimer(20, mHandler, 3);
    for (const long id : {removed, 4711L}) mHandler->UnRegisterTimer(id);
    EXPECT_EQ(After(9), Ids{});
    EXPECT_EQ(After(11), (Ids{high, low}));
    mHandler->UnRegisterTimer(low); // fired already
    const int events = NewEvents();
    mHandler->RegisterTimer(10);
    mDispatcher.RemoveEvHandler(mRef);
    EXPECT_EQ(After(10), Ids{});
    EXPECT_EQ(NewEvents(), events) << "nobody to fire for";
}

// A handler of which the pending timer holds the last reference, and whose destructor calls the manager.
TEST_F(TimerMgr, RemovingATimerMayDestroyItsHandler) {
    struct Leaving : ZAV_EvHandlerBody {
        ~Leaving() override { UnRegisterTimer(mOther); }
        long mOther = 0;
    };
    const auto lastTimer = [this] {
        Leaving* leaving = new Leaving;
        leaving->mOther = mHandler->RegisterTimer(5);
        return leaving->RegisterTimer(10);
    };
    ZAV_TimerMgr::RemoveTimer(lastTimer());
    EXPECT_EQ(NewHandlers(), 1);
    EXPECT_EQ(After(10), Ids{});
    lastTimer();
    ZAV_TimerMgr::CleanupListener();
    EXPECT_EQ(NewHandlers(), 1);
    EXPECT_EQ(mHandler->RegisterTimer(1), -1);
}

TEST_F(TimerMgr, AStoppedManagerFiresOneTimerAPoll) {
    const long first = mHandler->RegisterTimer(1);
    const long second = mHandler->RegisterTimer(1);
    ZAV_TimerMgr::theTimerMgr->Stop();
    fakeTicks += 1;
    ZAV_TimerMgr::theTimerMgr->Listen(LISTEN_POLL);
    EXPECT_EQ(mDispatcher.QueueLength(), 1u);
    EXPECT_EQ(After(0), (Ids{first, second}));
}

// A thread is kept inside the manager until the one that cleans up sleeps: looking and yielding alone would
// starve a thread of lower priority.
TEST_F(TimerMgr, CleaningUpSleepsWhileTheManagerIsUsed) {
    std::thread user([this] {
        inTickCount = [] {
            entered = true;
            while (!slept) std::this_thread::yield();
        };
        mHandler->RegisterTimer(1);
    });
    while (!entered) std::this_thread::yield();
    ZAV_TimerMgr::CleanupListener();
    user.join();
}

TEST_F(TimerMgr, OutlivesItsDispatcher) {
    ZAV_TimerMgr::CleanupListener();
    {
        ZAV_EvDispatcher gone;
        ZAV_TimerMgr::InitializeListener(B_FALSE, &gone);
        ZAV_TimerMgr::InitializeListener(B_FALSE, &mDispatcher); // ignored
    }
    mHandler->RegisterTimer(0);
    EXPECT_EQ(After(1), Ids{});
}

TEST_F(TimerMgr, AnEventShowsItsTimesThroughTheWrap) {
    fakeTicks = 0xFFFFFFF0u;
    const long id = mHandler->RegisterTimer(0x20);
    mThen = [](ZAV_Event* event) {
        const ZAV_EventTimer& timer = *static_cast<ZAV_EventTimer*>(event);
        const struct {
            Ticks now;
            long toGo;
        } rows[] = {{0xFFFFFFF8u, 0x18}, {0x10, 1}, {0x11, 0}, {0x20, -15}};
        for (const auto& [now, toGo] : rows) {
            EXPECT_EQ(timer.TimeToGo(now), toGo);
            EXPECT_EQ(timer.TimeoutElapsed(now) != 0, toGo <= 0);
        }
    };
    EXPECT_EQ(After(0x20), Ids{});
    EXPECT_EQ(After(1), Ids{id});
}

TEST_F(TimerMgr, APeriodicTimerDoesNotDrift) {
    ZAV_PeriodicTimer tick(100);
    std::vector<Ticks> at;
    mThen = [&](ZAV_Event* event) {
        if (tick.CheckEvent(event)) at.push_back(fakeTicks);
    };
    fakeTicks = 0xFFFFFF00u; // wraps after 256 ms
    ASSERT_TRUE(tick.Start(mHandler));
    for (const Ticks late : {7u, 0u, 30u, 99u}) {
        for (const std::size_t before = at.size(); at.size() == before;) After(1);
        fakeTicks += late;
    }
    EXPECT_EQ(at, (std::vector<Ticks>{0xFFFFFF64u, 0xFFFFFFC8u, 45, 144}));
    EXPECT_EQ(tick.Missed(), 0u);
    After(1000); // 999 late: the nine times that went by are skipped
    EXPECT_EQ(tick.Missed(), 9u);
    tick.Stop();
    EXPECT_EQ(After(1000), Ids{});
}

TEST_F(TimerMgr, ATimerBodyNotifiesOnceItsTimeIsUp) {
    ZAV_TimerRef timer;
    timer->SetTimeout(50);
    timer->Register(mHandler);
    timer->Restart();
    timer->CheckTime(fakeTicks + 49);
    EXPECT_EQ(mDispatcher.QueueLength(), 0u);
    timer->CheckTime(fakeTicks + 50);
    timer->CheckTime(fakeTicks + 51); // at zero already
    EXPECT_EQ(mDispatcher.QueueLength(), 1u);
    timer->Restart();
    timer->CheckTime(fakeTicks - 1); // before the start: the counter has gone all the way round
    EXPECT_EQ(mDispatcher.QueueLength(), 2u);
}

} // namespace

uint32_t zav_os::TickCount() {
    if (inTickCount) inTickCount();
    return fakeTicks;
}

void zav_os::Sleep(uint32_t milliseconds) {
    fakeTicks += milliseconds;
    if (milliseconds != 0) slept = true;
}
