#include <random>

#include "scripted.h"
#include "tests/support/on_threads.h"
#include "tests/support/trace_capture.h"

namespace {

const int kProducers = 8;
const int kEventsEach = 100000;
const int kLowest = -5, kHighest = 5;

class Counted : public ZAV_Event {
public:
    Counted(std::atomic<int>& cleanedUp, int producer, int number, int priority)
        : ZAV_Event(0x436E7464), mCleanedUp(cleanedUp), mProducer(producer), mNumber(number),
          mRank(priority - kLowest) {}
    void EmergencyCleanup() override { ++mCleanedUp; }

    std::atomic<int>& mCleanedUp;
    const int mProducer, mNumber, mRank;
};

class DispatcherStress : public EventsTest {
protected:
    void Post(const ZAV_EvHandlerRef& handler, int producer, int number, int priority) {
        auto event = std::make_unique<Counted>(mCleanedUp, producer, number, priority);
        if (handler->QueueEvent(event.get(), priority) == 0)
            event.release();
        else
            ++mRefused;
    }

    std::atomic<int> mHandled{0}, mCleanedUp{0}, mRefused{0};
};

// Handlers that leave at random; the producers post at random and bring back those that have gone.
TEST_F(DispatcherStress, AccountsForEveryEvent) {
    int last[kProducers][kHighest - kLowest + 1] = {}; // the number last handled; the dispatching thread's
    int outOfOrder = 0;
    std::minstd_rand leaving(1);
    const Scripted::Then then = [&](ZAV_Event* event) {
        const Counted& counted = *static_cast<Counted*>(event);
        int& before = last[counted.mProducer][counted.mRank];
        outOfOrder += counted.mNumber <= before;
        before = counted.mNumber;
        ++mHandled;
        return leaving() % 5000 == 0 ? 2 : 0;
    };
    std::vector<ZAV_EvHandlerRef> handlers;
    ZAV_EvDispatcher dispatcher;
    for (int h = 0; h < 4; ++h) dispatcher.AddEvHandler(handlers.emplace_back(new Scripted(then)));
    auto thread = std::make_unique<ZAV_EvDispatcherThread>(dispatcher);
    thread->BeginThread(ZAV_THREAD_CLEANUP_NONE, 0);
    std::atomic<int> posted{0};
    std::atomic<bool> stopped{false};
    OnThreads(kProducers + 1, [&](int producer) {
        std::minstd_rand random(static_cast<unsigned>(producer + 100));
        for (int i = 1; producer < kProducers && i <= kEventsEach; ++i) {
            const ZAV_EvHandlerRef& handler = handlers[random() % 4];
            Post(handler, producer, i, kLowest + static_cast<int>(random() % (kHighest - kLowest + 1)));
            if (i % 64 == 0 && !stopped && !handler->IsActive()) dispatcher.AddEvHandler(handler);
            ++posted;
        }
        if (producer < kProducers) return;
        // Stops in the middle; the producers go on.
        while (posted < kProducers * kEventsEach / 2 || mHandled < 1000) std::this_thread::yield();
        stopped = true;
        thread->StopThread();
        // A handler may be brought back once more, or twice.
        for (; thread->Running(); std::this_thread::yield())
            for (const ZAV_EvHandlerRef& handler : handlers) dispatcher.RemoveEvHandler(handler);
        thread.reset();
    });
    dispatcher.Cleanup();
    EXPECT_EQ(mHandled + mCleanedUp + mRefused, kProducers * kEventsEach);
    EXPECT_EQ(outOfOrder, 0);
}

// Threads that come late share the places where events are counted, each 32nd the same one.
TEST_F(DispatcherStress, LiveObjectsAreCountedOnManyThreads) {
    std::atomic<int> turn{0};
    OnThreads(97, [&](int t) {
        while (turn != t) std::this_thread::yield();
        std::make_unique<ZAV_EventStart>();
        ++turn;
        while (turn != 97) std::this_thread::yield();
        for (int i = 0; t % 32 == 0 && i < 200000; ++i) {
            const ZAV_EventStart event;
            const ZAV_EvHandlerBody handler;
            if (i % 8 == 0) ZAV_EvDispatcher();
        }
    });
}

// Producers and the destructor of their dispatcher, with nothing in between; and none of their events may get
// into the next dispatcher.
TEST_F(DispatcherStress, ADispatcherMayGoWhileOthersPost) {
    int made = 0;
    for (int round = 0; round < 60; ++round) {
        auto dispatcher = std::make_unique<ZAV_EvDispatcher>();
        const ZAV_EvHandlerRef handler(new ZAV_EvHandlerBody);
        dispatcher->AddEvHandler(handler);
        std::atomic<int> posted{0};
        std::thread producer([&] {
            for (; mRefused == round; ++posted) Post(handler, 0, posted, round % 3);
        });
        while (posted < round % 7) std::this_thread::yield();
        dispatcher.reset();
        const ZAV_EvDispatcher next;
        producer.join();
        EXPECT_EQ(next.QueueLength(), 0u);
        made += posted;
    }
    EXPECT_EQ(mCleanedUp + mRefused, made);
}

// Who takes a handler out lets go of it at once; the events that are still queued, or just being handled,
// keep it.
TEST_F(DispatcherStress, AHandlerGoesWithItsLastEvent) {
    ZAV_EvDispatcher dispatcher;
    ZAV_EvDispatcherThread thread(dispatcher);
    thread.BeginThread(ZAV_THREAD_CLEANUP_NONE, 0);
    const int rounds = 2000;
    OnThreads(2, [&](int producer) {
        for (int round = 0; round < rounds; ++round) {
            const ZAV_EvHandlerRef handler(new Scripted([this](ZAV_Event*) {
                ++mHandled;
                return 0;
            }));
            dispatcher.AddEvHandler(handler);
            if (round % 3 == 0) dispatcher.AddEvHandler(handler);
            for (int i = 0; i < round % 5; ++i) Post(handler, producer, i, 0);
            dispatcher.RemoveEvHandler(handler);
            if (round % 3 == 0) dispatcher.RemoveEvHandler(handler);
        }
    });
    thread.StopThread();
    thread.WaitForThread();
    EXPECT_EQ(mHandled + mCleanedUp, 2 * 2 * rounds);
    EXPECT_EQ(NewHandlers(), 0);
}

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

typedef EventsTest DispatcherThread, TimerThread;

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
        if (round % 3 != 0) {
            run.handler->QueueEvent(new ZAV_EventStart, 0);
            run.seen.Wait();
        }
        run.thread.StopThread();
        for (int pause = round % 10; pause > 0; --pause) std::this_thread::yield();
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

// The frames of its thread are not left by returning; the dispatcher is free for others all the same.
TEST_F(DispatcherThread, AListenerMayEndItsThread) {
    struct Host : ZAV_Thread {
        explicit Host(ZAV_EvDispatcher& dispatcher)
            : ZAV_Thread(ZAV_THREAD_JOINED), mDispatcher(dispatcher) {}
        ~Host() override { FinishThread(); }
        void run() override { mDispatcher.Dispatch(DISPATCH_UNTIL_STOPPED); }
        ZAV_EvDispatcher& mDispatcher;
    };
    ZAV_EvDispatcher dispatcher;
    Host host(dispatcher);
    ScriptListener listener([&] { host.StopThread(); });
    dispatcher.AddListener(&listener);
    host.BeginThread(ZAV_THREAD_CLEANUP_NONE, 0);
    host.WaitForThread();
    EXPECT_EQ(listener.mCalls, 1);
    dispatcher.RemoveListener(&listener);
    dispatcher.Dispatch(DISPATCH_ONCE);
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
    for (const unsigned long ms : {0ul, 1ul, 20ul, 3ul}) { // each before what the thread sleeps for
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
