#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include <zavbase/events/ev_dispatcher.h>
#include <zavbase/events/listener.h>
#include <zavbase/events/timer_mgr.h>
#include <zavbase/foundation/exception.h>
#include <zavbase/foundation/new_handler.h>
#include <zavbase/threads/semaphore.h>

#include "tests/support/on_threads.h"
#include "tests/support/trace_capture.h"

namespace {

// Signals each event that it gets; ends with a stop event.
class Signalling : public ZAV_EvHandlerBody {
public:
    ZAV_Semaphore mSeen;
    std::atomic<long> mLastTimer{0};

protected:
    int HandleEvent(ZAV_Event* event) override {
        if (event->IsKindOf(&ZAV_EventTimer::classZAV_EventTimer))
            mLastTimer = static_cast<ZAV_EventTimer*>(event)->Id();
        mSeen.Signal();
        return event->IsKindOf(&ZAV_EventStop::classZAV_EventStop) ? 2 : 0;
    }
};

// A dispatcher on a thread of its own, with one handler.
struct Running {
    explicit Running(Signalling* h = new Signalling) : handler(h), ref(h) {
        dispatcher.AddEvHandler(ref);
        EXPECT_EQ(thread.BeginThread(ZAV_THREAD_CLEANUP_NONE, 0), 0);
    }
    void End() {
        EXPECT_EQ(thread.StopThread(), 0);
        handler->QueueEvent(new ZAV_EventStop, 0);
        EXPECT_EQ(thread.WaitForThread(), 0);
        EXPECT_FALSE(handler->IsActive());
    }
    Signalling* handler;
    const ZAV_EvHandlerRef ref;
    ZAV_EvDispatcher dispatcher;
    ZAV_EvDispatcherThread thread{dispatcher};
};

TEST(DispatcherThread, SleepsWakesAndStops) {
    Running run;
    for (int i = 0; i < 1000; ++i) {
        run.handler->QueueEvent(new ZAV_EventStart, 0);
        run.handler->mSeen.Wait();
    }
    run.End();
}

// Stop and the removal of the last handler come at every point of the way to sleep.
TEST(DispatcherThread, NeverSleepsOverItsEnd) {
    for (int round = 0; round < 300; ++round) {
        Running run;
        if (round % 3 == 0) run.ref->QueueEvent(new ZAV_EventStart, 0);
        run.thread.StopThread();
        if (round % 2 == 0) std::this_thread::yield();
        run.dispatcher.RemoveEvHandler(run.ref);
    }
}

TEST(DispatcherThread, WakesAtItsIntervalToPoll) {
    class Counting : public ZAV_Listener {
    public:
        explicit Counting(ZAV_EvDispatcher& dispatcher) : mDispatcher(dispatcher) {}
        void Listen(ZAV_ListenerControl) override {
            if (++mPolls == 5) mDispatcher.Stop();
        }
        ZAV_EvDispatcher& mDispatcher;
        int mPolls = 0;
    };
    ZAV_EvDispatcher dispatcher;
    Counting listener(dispatcher);
    dispatcher.AddListener(&listener);
    dispatcher.SetWakeUpInterval(1);
    dispatcher.Dispatch(DISPATCH_UNTIL_STOPPED); // without the interval it would never come back
    EXPECT_EQ(listener.mPolls, 5);
    dispatcher.SetWakeUpInterval(0xFFFFFFFFu);
    EXPECT_EQ(dispatcher.WakeUpInterval(), 2147483u);
}

TEST(DispatcherThread, EndsWhenMemoryRunsOut) {
    class Failing : public Signalling {
        int HandleEvent(ZAV_Event*) override { throw dummyalloc(); }
    };
    TraceCapture trace(0x0081);
    {
        Running run(new Failing);
        run.ref->QueueEvent(new ZAV_EventStart, 0);
        run.thread.WaitForThread();
    }
    EXPECT_EQ(trace.Text(), "ZAV_EvDispatcherThread : unexpected badalloc exception during Dispatch() :\n"
                            "ZAV_EvDispatcherThread exited\n");
}

TEST(ListenerThread, EndsByAnExceptionAndBeginsAgain) {
    class Throwing : public ZAV_Listener {
    public:
        void Listen(ZAV_ListenerControl control) override {
            EXPECT_EQ(control, LISTEN_BLOCK);
            if (++mRuns == 1) ZAV_ThrowFileException(1, 2);
            if (mRuns == 2) throw dummyalloc();
            mReleased.Wait(); // ignores Stop
        }
        int mRuns = 0;
        ZAV_Semaphore mReleased;
    };
    TraceCapture trace(0x0001);
    Throwing listener;
    ZAV_ListenerThread thread(std::string(80, 'x').c_str(), listener);
    EXPECT_EQ(std::string(thread.GetInfoString()), std::string(63, 'x'));
    for (int run = 0; run < 3; ++run) {
        ASSERT_EQ(thread.BeginThread(ZAV_THREAD_CLEANUP_NONE, 0), 0);
        EXPECT_EQ(thread.StopThread(), 0);
        listener.mReleased.Signal();
        EXPECT_EQ(thread.WaitForThread(), 0);
    }
    EXPECT_EQ(listener.mRuns, 3);
    EXPECT_EQ(trace.Text(), "ZAV_ListenerThread : unexpected exception during Listen() :\n"
                            "File exception: FileNotFound\n"
                            "ZAV_ListenerThread : unexpected badalloc exception during Listen() :\n");
}

TEST(TimerThread, FiresWithoutAnyPolling) {
    ZAV_TimerMgr::InitializeListener(B_TRUE, nullptr);
    Running run;
    const long far = run.handler->RegisterTimer(3600000);
    for (const unsigned long ms : {0, 1, 20, 3}) { // each before what the thread sleeps for
        const long id = run.handler->RegisterTimer(ms);
        run.handler->mSeen.Wait();
        EXPECT_EQ(run.handler->mLastTimer, id);
    }
    run.handler->UnRegisterTimer(far);
    run.handler->RegisterTimer(3600000);
    run.End();
    ZAV_TimerMgr::CleanupListener();
}

// Cleaning up beside calls on other threads, and right when the thread is going to sleep.
TEST(TimerThread, ComesAndGoesWhileTimersAreAdded) {
    const int events = ZAV_Event::instance_counter;
    {
        const ZAV_EvHandlerRef ref(new Signalling);
        std::atomic<bool> done{false};
        OnThreads(3, [&](int t) {
            for (unsigned long i = 0; t > 0 && !done; ++i)
                ref->UnRegisterTimer(ref->RegisterTimer(i % 4 * 50000) - 1);
            for (int round = 0; t == 0 && round < 100; ++round) {
                ZAV_TimerMgr::InitializeListener(B_TRUE, nullptr);
                if (round % 2 == 0) std::this_thread::yield();
                ZAV_TimerMgr::CleanupListener();
            }
            done = true;
        });
    }
    EXPECT_EQ(ZAV_Event::instance_counter, events);
}

} // namespace
