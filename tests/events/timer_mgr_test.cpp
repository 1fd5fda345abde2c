#include <functional>
#include <vector>

#include <gtest/gtest.h>

#include <zavbase/events/ev_dispatcher.h>
#include <zavbase/events/timer.h>
#include <zavbase/events/timer_mgr.h>

#include "fake_clock.h"
#include "tests/support/printed.h"

namespace {

// Notes the identifiers of the timers that reach it.
class TimerHandler : public ZAV_EvHandlerBody {
public:
    std::vector<long> mFired;
    std::function<void(ZAV_Event*)> mThen;

protected:
    int HandleEvent(ZAV_Event* event) override {
        if (event->IsKindOf(&ZAV_EventTimer::classZAV_EventTimer))
            mFired.push_back(static_cast<ZAV_EventTimer*>(event)->Id());
        if (mThen) mThen(event);
        return 0;
    }
};

// A manager that is polled by a dispatcher, on the manual clock.
class TimerMgr : public testing::Test {
protected:
    void SetUp() override {
        fakeTicks = 100;
        ASSERT_EQ(ZAV_TimerMgr::AddTimer(0, mHandler, 0), -1);
        mDispatcher.AddEvHandler(mRef);
        ZAV_TimerMgr::InitializeListener(B_FALSE, &mDispatcher);
    }
    void TearDown() override { ZAV_TimerMgr::CleanupListener(); }

    // Lets time pass and polls once; gives what fired.
    std::vector<long> After(std::uint32_t ms) {
        fakeTicks += ms;
        mHandler->mFired.clear();
        mDispatcher.Dispatch(DISPATCH_ONCE);
        mDispatcher.Dispatch(DISPATCH_ONCE);
        return mHandler->mFired;
    }

    TimerHandler* mHandler = new TimerHandler;
    ZAV_EvHandlerRef mRef{mHandler};
    ZAV_EvDispatcher mDispatcher;
};

typedef std::vector<long> Ids;

TEST_F(TimerMgr, FiresInTheOrderOfDueTimesThenOfAdding) {
    const long first = mHandler->RegisterTimer(100);
    const long second = mHandler->RegisterTimer(100);
    const long early = mHandler->RegisterTimer(50);
    const long removed = mHandler->RegisterTimer(60);
    const long now = mHandler->RegisterTimer(0);
    EXPECT_EQ(After(0), Ids{now});
    mHandler->UnRegisterTimer(removed);
    mHandler->UnRegisterTimer(now);  // fired already
    mHandler->UnRegisterTimer(4711); // never was
    EXPECT_EQ(After(49), Ids{});
    EXPECT_EQ(After(51), (Ids{early, first, second}));
    const long low = ZAV_TimerMgr::AddTimer(10, mHandler, -1);
    const long high = ZAV_TimerMgr::AddTimer(20, mHandler, 3);
    EXPECT_EQ(After(20), (Ids{high, low}));
    const int events = ZAV_Event::instance_counter;
    mHandler->RegisterTimer(10);
    mDispatcher.RemoveEvHandler(mRef);
    EXPECT_EQ(After(10), Ids{});
    EXPECT_EQ(ZAV_Event::instance_counter, events) << "nobody to fire for";
}

// A handler of which the pending timer holds the last reference, and whose destructor calls the manager.
TEST_F(TimerMgr, RemovingATimerMayDestroyItsHandler) {
    class Leaving : public TimerHandler {
    public:
        ~Leaving() override { UnRegisterTimer(mOther); }
        long mOther = 0;
    };
    const int handlers = ZAV_EvHandlerBody::instance_counter;
    const auto lastTimer = [this] {
        Leaving* leaving = new Leaving;
        leaving->mOther = mHandler->RegisterTimer(5);
        return leaving->RegisterTimer(10);
    };
    ZAV_TimerMgr::RemoveTimer(lastTimer());
    EXPECT_EQ(ZAV_EvHandlerBody::instance_counter, handlers);
    EXPECT_EQ(After(10), Ids{});
    lastTimer();
    ZAV_TimerMgr::CleanupListener();
    EXPECT_EQ(ZAV_EvHandlerBody::instance_counter, handlers);
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
    mHandler->mThen = [](ZAV_Event* event) {
        ZAV_EventTimer* timer = static_cast<ZAV_EventTimer*>(event);
        EXPECT_EQ(timer->TimeToGo(0xFFFFFFF8u), 0x18);
        EXPECT_EQ(timer->TimeToGo(0x10), 1);
        EXPECT_EQ(timer->TimeToGo(0x20), -15);
        EXPECT_FALSE(timer->TimeoutElapsed(0x10));
        EXPECT_TRUE(timer->TimeoutElapsed(0x11));
        EXPECT_EQ(Printed(*event), "Event 'Timr' = ZAV_EventTimer(mId =1, mTimeout =32)");
    };
    EXPECT_EQ(After(0x20), Ids{});
    EXPECT_EQ(After(1), Ids{id});
}

TEST_F(TimerMgr, APeriodicTimerDoesNotDrift) {
    ZAV_PeriodicTimer tick(100);
    std::vector<std::uint32_t> at;
    mHandler->mThen = [&](ZAV_Event* event) {
        if (tick.CheckEvent(event)) at.push_back(fakeTicks);
    };
    fakeTicks = 0xFFFFFF00u; // wraps after 256 ms
    ASSERT_TRUE(tick.Start(mHandler));
    for (const std::uint32_t late : {7u, 0u, 30u, 99u}) {
        const std::size_t before = at.size();
        while (at.size() == before) After(1);
        fakeTicks += late;
    }
    EXPECT_EQ(at, (std::vector<std::uint32_t>{0xFFFFFF64u, 0xFFFFFFC8u, 45, 144}));
    EXPECT_EQ(tick.Missed(), 0u);
    After(1000); // 999 late: the nine times that went by are skipped
    EXPECT_EQ(tick.Missed(), 9u);
    tick.Stop();
    at.clear();
    After(1000);
    EXPECT_TRUE(at.empty());
}

TEST_F(TimerMgr, ATimerBodyNotifiesOnceItsTimeIsUp) {
    ZAV_TimerRef timer;
    timer->SetTimeout(50);
    timer->Register(mHandler);
    int synced = 0;
    mHandler->mThen = [&](ZAV_Event*) { ++synced; };
    timer->Restart();
    timer->CheckTime(fakeTicks + 49);
    EXPECT_EQ(mDispatcher.QueueLength(), 0u);
    timer->CheckTime(fakeTicks + 50);
    timer->CheckTime(fakeTicks + 51); // at zero already
    After(0);
    EXPECT_EQ(synced, 1);
    timer->Restart();
    timer->CheckTime(fakeTicks - 1); // before the start: the counter has gone all the way round
    After(0);
    EXPECT_EQ(synced, 2);
}

} // namespace
