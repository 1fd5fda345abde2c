#include <tests/support/on_threads.h>
#include <tests/threads/platform.h>

#include <zavbase/threads/thread.h>

#include <zavbase/foundation/exception.h>
#include <zavbase/threads/semaphore.h>
#include <zavbase/threads/time.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace {

class Worker : public ZAV_Thread {
public:
    explicit Worker(std::function<void(Worker&)> body, ZAV_ThreadFlag flag = ZAV_THREAD_PLAIN)
        : ZAV_Thread(flag), mBody(std::move(body)) {}
    ~Worker() override { FinishThread(); }

    using ZAV_Thread::exit_thread;
    ZAV_ThreadError Begin() { return BeginThread(ZAV_THREAD_CLEANUP_NONE, 0); }
    void AwaitRunning() {
        while (!Running()) std::this_thread::yield();
    }

    std::atomic<int> mCleanups{0};

private:
    void run() override { mBody(*this); }
    void cleanup() override { ++mCleanups; }

    std::function<void(Worker&)> mBody;
};

void UntilStopped(Worker& w) {
    while (w.Running()) std::this_thread::yield();
}

struct Flagged {
    explicit Flagged(bool& flag) : flag(flag) {}
    ~Flagged() { flag = true; }
    bool& flag;
};

} // namespace

TEST(Thread, RunsUntilAskedToStop) {
    ZAV_Thread* seen = nullptr;
    Worker w([&](Worker& self) {
        seen = ZAV_Thread::CurrentThread();
        UntilStopped(self);
    });
    EXPECT_EQ(UINTPTR_MAX, w.ThreadId());
    EXPECT_EQ(0, w.WaitForThread()) << "a thread that was not started is not waited for";
    EXPECT_EQ(0, w.Begin());
    EXPECT_EQ(22, w.Begin()) << "also before it has come to its body";
    w.AwaitRunning();
    EXPECT_EQ(22, w.Begin());
    EXPECT_EQ(62, w.WaitForThread(0));
    EXPECT_EQ(22, w.exit_thread()) << "the caller is another thread";
    EXPECT_EQ(0, w.StopThread());
    EXPECT_EQ(0, w.WaitForThread());
    EXPECT_EQ(0, w.WaitForThread()) << "waiting again";
    EXPECT_FALSE(w.Running());
    EXPECT_EQ(&w, seen);
    EXPECT_EQ(nullptr, ZAV_Thread::CurrentThread());
}

TEST(Thread, AStopBeforeTheBodyIsNotLost) {
    for (int i = 0; i < 200; ++i) {
        Worker w(UntilStopped);
        w.Begin();
        w.StopThread();
        EXPECT_EQ(0, w.WaitForThread());
    }
    for (int i = 0; i < 200; ++i) Worker(UntilStopped).Begin(); // the destructor stops it
}

TEST(Thread, AnyNumberMayWaitForIt) {
    Worker w(UntilStopped);
    w.Begin();
    w.AwaitRunning();
    OnThreads(4, [&](int t) {
        if (t == 3) w.StopThread();
        EXPECT_EQ(0, t % 2 ? w.WaitForThread(600000) : w.WaitForThread());
    });
}

TEST(Thread, WaitingForItselfFailsButUnregisters) {
    long result = 0;
    ZAV_Thread* registered = nullptr;
    Worker w([&](Worker& self) {
        result = self.WaitForThread();
        registered = ZAV_Thread::CurrentThread();
    });
    w.Begin();
    EXPECT_EQ(0, w.WaitForThread());
    EXPECT_EQ(36, result);
    EXPECT_EQ(nullptr, registered);
}

TEST(Thread, StoppedFromInsideEndsAtOnceAndIsRunningForEver) {
    bool destroyed = false, passed = false;
    ZAV_ReadWriteLock lock;
    Worker w([&](Worker& self) {
        Flagged flagged(destroyed);
        ZAV_ReadWriteLock::WriteLock held(lock, B_FALSE);
        ZAV_EXCEPTION_LINK scope;
        try {
            self.StopThread();
        } catch (...) {
        }
        passed = true;
    });
    w.Begin();
    EXPECT_EQ(0, w.WaitForThread());
    EXPECT_FALSE(destroyed);
    EXPECT_FALSE(passed);
    EXPECT_TRUE(ZAV_ReadWriteLock::WriteLock(lock, B_TRUE).LockAcquired()) << "its write lock was not freed";
    EXPECT_TRUE(w.Running());
    EXPECT_EQ(22, w.Begin());
    w.StopThread();
    EXPECT_EQ(0, w.Begin()) << "its links do not bother the next start";
    EXPECT_EQ(0, w.WaitForThread());
}

TEST(Thread, AnExitExceptionEndsItInOrder) {
    bool destroyed = false;
    Worker w([&](Worker&) {
        Flagged flagged(destroyed);
        throw ZAV_Thread::ExitException();
    });
    for (int round = 1; round < 3; ++round) {
        EXPECT_EQ(0, w.Begin()) << "it can be started again";
        EXPECT_EQ(0, w.WaitForThread());
        EXPECT_TRUE(destroyed);
        EXPECT_FALSE(w.Running());
        EXPECT_EQ(round, w.mCleanups);
    }
}

TEST(Thread, ADetachedObjectMayGoBeforeItsThread) {
    ZAV_Semaphore entered, proceed, leaving;
    Worker* w = new Worker(
        [&](Worker&) {
            // The body is a member of the object: nothing of it may be used after the wait.
            ZAV_Semaphore &mayProceed = proceed, &isLeaving = leaving;
            ZAV_EXCEPTION_LINK scope;
            entered.Signal();
            mayProceed.Wait();
            isLeaving.Signal();
        },
        ZAV_THREAD_DETACHED);
    w->Begin();
    entered.Wait();
    delete w;
    proceed.Signal();
    leaving.Wait();
}

TEST(Thread, HandlerScopesOfThreadsAreApart) {
    ZAV_EXCEPTION_LINK here;
    ZAV_EXCEPTION_LINK* outer = &here;
    Worker w([&](Worker&) {
        ZAV_EXCEPTION_LINK there;
        outer = there.mNext;
    });
    w.Begin();
    w.WaitForThread();
    EXPECT_EQ(nullptr, outer);
}

TEST(Thread, PriorityIsCutToTheRange) {
    Worker w(UntilStopped);
    int priority = 7;
    EXPECT_NE(0, w.GetPriority(&priority)) << "not started";
    EXPECT_EQ(0, priority);
    w.Begin();
    EXPECT_EQ(0, w.GetPriority(&priority));
    EXPECT_EQ(0, priority);
    EXPECT_EQ(0, w.SetPriority(-100));
    EXPECT_EQ(0, w.GetPriority(&priority));
    EXPECT_EQ(-15, priority);
    if (w.SetPriority(100) == 0) { // raising it may be refused
        w.GetPriority(&priority);
        EXPECT_EQ(15, priority);
    }
    w.StopThread();
}

TEST(Thread, NamesAreCutTo63) {
    const std::string longName(100, 'n');
    char byId[64] = "x";
    ZAV_Thread::GetInfoStringFromID(nullptr, byId);
    EXPECT_STREQ("", byId) << "this thread is not registered";
    Worker w([&](Worker& self) {
        ZAV_Thread::GetInfoStringFromID(
            reinterpret_cast<void*>(static_cast<uintptr_t>(ZAV_Thread::OSThreadId())), byId);
        UntilStopped(self);
    });
    w.SetInfoString(longName.c_str());
    w.Begin();
    w.AwaitRunning();
    w.StopThread();
    w.WaitForThread();
    EXPECT_EQ(std::string(63, 'n'), byId);
    EXPECT_STREQ(byId, w.GetInfoString());
}

TEST(Thread, WaitingForAnyOfNoneFails) {
    Worker idle(UntilStopped);
    ZAV_Thread* which = &idle;
    EXPECT_NE(0, ZAV_Thread::WaitForAnyThread(which));
    EXPECT_EQ(nullptr, which);
}

TEST(Thread, ManyBeginningsAndEndsLeaveNothingBehind) {
    const auto cycle = [](int i) {
        Worker w(UntilStopped);
        w.Begin();
        if (i % 2) w.AwaitRunning();
        w.StopThread();
        w.WaitForThread();
    };
    for (int i = 0; i < 10; ++i) cycle(i); // what is made once
    const size_t before = SystemObjects();
    for (int i = 0; i < 1000 * kEffort; ++i) cycle(i);
    EXPECT_EQ(before, SystemObjects());
}

TEST(ThreadError, TextsAreLookedUpAsUnsignedNumbers) {
    ZAV_ThreadErrorStrEntry table[] = {{0, "A"}, {22, "B"}, {40, nullptr}, {0x7FFFFFFF, "C"}, {-1, "D"}};
    EXPECT_STREQ("", ZAV_ThreadError(5).String());
    EXPECT_EQ(nullptr, ZAV_ThreadError::SetStringTable(table));
    EXPECT_STREQ("A", ZAV_ThreadError(0).String());
    EXPECT_STREQ("B", ZAV_ThreadError(5).String());
    EXPECT_STREQ("", ZAV_ThreadError(23).String());
    EXPECT_EQ(nullptr, ZAV_ThreadError::SetNoString("none"));
    EXPECT_STREQ("none", ZAV_ThreadError(40).String());
    EXPECT_STREQ("C", ZAV_ThreadError(0x7FFFFFFF).String());
    EXPECT_STREQ("D", ZAV_ThreadError().String()) << "no result yet is the highest code";
    EXPECT_EQ(table, ZAV_ThreadError::SetStringTable(nullptr));
    EXPECT_STREQ("none", ZAV_ThreadError::SetNoString(nullptr));
}

TEST(Time, ElapsedTimeLosesOneMillisecondInTheWrap) {
    EXPECT_EQ(5u, ZAV_ElapsedTime(5, 10));
    EXPECT_EQ(0xFFFFFFFAu, ZAV_ElapsedTime(10, 5));
    EXPECT_EQ(0u, ZAV_ElapsedTime(7, 7));
    EXPECT_EQ(1u, ZAV_ElapsedTime(0xFFFFFFFF, 1));
}
