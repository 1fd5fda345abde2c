#include <atomic>
#include <thread>

#include <zavbase/events/timer_mgr.h>
#include <zavbase/foundation/exception.h>
#include <zavbase/foundation/new_handler.h>
#include <zavbase/threads/semaphore.h>

#include "scripted.h"
#include "tests/support/on_threads.h"
#include "tests/support/trace_capture.h"

namespace {

// A dispatcher on a thread of its own, with one handler that signals each event; ends with a stop event.
struct Running {
    explicit Running(Scripted::Then then = [](ZAV_Event*) { return 0; })
        : handler(new Scripted([this, then](ZAV_Event* event) {
              const int result = then(event);
              seen.Signal();
              return event->IsKindOf(&ZAV_EventStop::classZAV_EventStop) ? 2 : result;
          })) {
        dispatcher.AddEvHandler(handler);
        EXPECT_EQ(thread.BeginThread(ZAV_THREAD_CLEANUP_NONE, 0), 0);
    }
    void End() {
        EXPECT_EQ(thread.StopThread(), 0);
        handler->QueueEvent(new ZAV_EventStop, 0);
        EXPECT_EQ(thread.WaitForThread(), 0);
        EXPECT_FALSE(handler->IsActive());
    }
    ZAV_Semaphore seen;
    const ZAV_EvHandlerRef handler;
    ZAV_EvDispatcher dispatcher;
    ZAV_EvDispatcherThread thread{dispatcher};
};

class DispatcherThread : public EventsTest {};
class TimerThread : public EventsTest {};

TEST_F(DispatcherThread, SleepsWakesAndStops) {
    Running run;
    for (int i = 0; i < 1000; ++i) {
        run.handler->QueueEvent(new ZAV_EventStart, 0);
        run.seen.Wait();
    }
    run.End();
}

// Stop and the removal of the last handler come at every point of the way to sleep.
TEST_F(DispatcherThread, NeverSleepsOverItsEnd) {
    for (int round = 0; round < 300; ++round) {
        Running run;
        if (round % 3 == 0) run.handler->QueueEvent(new ZAV_EventStart, 0);
        run.thread.StopThread();
        if (round % 2 == 0) std::this_thread::yield();
        run.dispatcher.RemoveEvHandler(run.handler);
    }
}

TEST_F(DispatcherThread, WakesAtItsIntervalToPoll) {
    ZAV_EvDispatcher dispatcher;
    ScriptListener listener([&] {
        if (listener.mCalls == 5) dispatcher.Stop();
    });
    dispatcher.AddListener(&listener);
    dispatcher.SetWakeUpInterval(1);
    dispatcher.Dispatch(DISPATCH_UNTIL_STOPPED); // without the interval it would never come back
    EXPECT_EQ(listener.mCalls, 5);
    dispatcher.SetWakeUpInterval(0xFFFFFFFFu);
    EXPECT_EQ(dispatcher.WakeUpInterval(), 2147483u);
}

TEST_F(DispatcherThread, EndsWhenMemoryRunsOut) {
    TraceCapture trace(0x0081);
    {
        Running run([](ZAV_Event*) -> int { throw dummyalloc(); });
        run.handler->QueueEvent(new ZAV_EventStart, 0);
        run.thread.WaitForThread();
    }
    EXPECT_EQ(trace.Text(), "ZAV_EvDispatcherThread : unexpected badalloc exception during Dispatch() :\n"
                            "ZAV_EvDispatcherThread exited\n");
}

TEST(ListenerThread, EndsByAnExceptionAndBeginsAgain) {
    ZAV_Semaphore released;
    ScriptListener listener([&] {
        if (listener.mCalls == 1) ZAV_ThrowFileException(1, 2);
        if (listener.mCalls == 2) throw dummyalloc();
        released.Wait(); // ignores Stop
    });
    TraceCapture trace(0x0001);
    ZAV_ListenerThread thread("", listener);
    for (int run = 0; run < 3; ++run) {
        ASSERT_EQ(thread.BeginThread(ZAV_THREAD_CLEANUP_NONE, 0), 0);
        EXPECT_EQ(thread.StopThread(), 0);
        released.Signal();
        EXPECT_EQ(thread.WaitForThread(), 0);
    }
    EXPECT_EQ(listener.mCalls, 3);
    EXPECT_EQ(trace.Text(), "ZAV_ListenerThread : unexpected exception during Listen() :\n"
                            "File exception: FileNotFound\n"
                            "ZAV_ListenerThread : unexpected badalloc exception during Listen() :\n");
}

TEST_F(TimerThread, FiresWithoutAnyPolling) {
    ZAV_TimerMgr::InitializeListener(B_TRUE, nullptr);
    long fired = 0;
    Running run([&](ZAV_Event* event) {
        if (event->IsKindOf(&ZAV_EventTimer::classZAV_EventTimer))
            fired = static_cast<ZAV_EventTimer*>(event)->Id();
        return 0;
    });
    const long far = run.handler->RegisterTimer(3600000);
    for (const unsigned long ms : {0, 1, 20, 3}) { // each before what the thread sleeps for
        const long id = run.handler->RegisterTimer(ms);
        run.seen.Wait();
        EXPECT_EQ(fired, id);
    }
    run.handler->UnRegisterTimer(far);
    run.handler->RegisterTimer(3600000);
    run.End();
    ZAV_TimerMgr::CleanupListener();
}

// Cleaning up beside calls on other threads, and right when the thread is going to sleep.
TEST_F(TimerThread, ComesAndGoesWhileTimersAreAdded) {
    const ZAV_EvHandlerRef ref(new Scripted);
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

} // namespace
