#include <tests/support/on_threads.h>
#include <tests/threads/platform.h>

#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

namespace {

class Worker : public ZAV_Thread {
public:
    typedef std::function<void(Worker&)> Body;
    explicit Worker(Body body, ZAV_ThreadFlag flag = ZAV_THREAD_PLAIN)
        : ZAV_Thread(flag), mBody(std::move(body)) {}
    ~Worker() override { FinishThread(); }

    using ZAV_Thread::exit_thread;
    ZAV_ThreadError Begin(unsigned stackSize = 0) { return BeginThread(ZAV_THREAD_CLEANUP_NONE, stackSize); }
    void AwaitRunning() {
        while (!Running()) std::this_thread::yield();
    }
    /// Begins and waits for the end.
    void BeginAndEnd() {
        EXPECT_EQ(0, Begin());
        EXPECT_EQ(0, WaitForThread());
    }

    std::atomic<int> mCleanups{0};

private:
    void run() override { mBody(*this); }
    void cleanup() override { ++mCleanups; }

    Body mBody;
};

void UntilStopped(Worker& w) {
    while (w.Running()) std::this_thread::yield();
}

struct Flagged {
    ~Flagged() { flag = true; }
    bool& flag;
};

} // namespace

TEST(Thread, RunsUntilAskedToStop) {
    ZAV_Thread* seen = nullptr;
    ZAV_EXCEPTION_LINK here;
    ZAV_EXCEPTION_LINK* outer = &here;
    Worker w([&](Worker& self) {
        seen = ZAV_Thread::CurrentThread();
        ZAV_EXCEPTION_LINK there; // handler scopes of threads are apart
        outer = there.mNext;
        UntilStopped(self);
    });
    Worker neverStarted(UntilStopped);
    EXPECT_EQ(0, neverStarted.WaitForThread());
    EXPECT_EQ(0, w.Begin());
    EXPECT_EQ(22, w.Begin()) << "also before it has come to its body";
    w.AwaitRunning();
    EXPECT_EQ(22, w.Begin());
    EXPECT_EQ(62, w.WaitForThread(0));
    EXPECT_EQ(22, w.exit_thread()) << "the caller is another thread";
    OnThreads(4, [&](int t) { // any number may wait for it
        if (t == 3) w.StopThread();
        EXPECT_EQ(0, t % 2 ? w.WaitForThread(600000) : w.WaitForThread());
    });
    EXPECT_EQ(0, w.WaitForThread()) << "waiting again";
    EXPECT_EQ(&w, seen);
    EXPECT_EQ(nullptr, outer);
    EXPECT_EQ(nullptr, ZAV_Thread::CurrentThread());
}

TEST(Thread, StoppedFromInsideEndsAtOnceAndIsRunningForEver) {
    bool destroyed = false;
    ZAV_ReadWriteLock lock;
    Worker w([&](Worker& self) {
        Flagged flagged{destroyed};
        ZAV_ReadWriteLock::WriteLock held(lock, B_FALSE);
        ZAV_EXCEPTION_LINK scope;
        try {
            self.StopThread();
        } catch (...) {
        }
        destroyed = true; // is not reached
    });
    w.BeginAndEnd();
    EXPECT_FALSE(destroyed);
    EXPECT_TRUE(ZAV_ReadWriteLock::WriteLock(lock, B_TRUE).LockAcquired()) << "its write lock was not freed";
    EXPECT_TRUE(w.Running());
    EXPECT_EQ(22, w.Begin());
    w.StopThread();
    w.BeginAndEnd(); // its links do not bother the next start
}

TEST(Thread, AnExitExceptionEndsItInOrder) {
    bool destroyed = false;
    Worker w([&](Worker&) {
        Flagged flagged{destroyed};
        throw ZAV_Thread::ExitException();
    });
    w.BeginAndEnd();
    EXPECT_TRUE(destroyed);
    EXPECT_FALSE(w.Running());
    w.BeginAndEnd(); // it can be started again
    EXPECT_EQ(2, w.mCleanups);
}

TEST(Thread, UnwoundByTheSystemEndsInOrder) {
    for (const auto unwind : kUnwindings) {
        int destroyed = 0;
        Worker w([&](Worker&) {
            const std::shared_ptr<void> flag(nullptr, [&](void*) { ++destroyed; });
            unwind();
        });
        for (int run = 1; run < 3; ++run) {
            w.BeginAndEnd();
            EXPECT_EQ(run, destroyed);
            EXPECT_FALSE(w.Running());
        }
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

TEST(Thread, PriorityIsCutToTheRange) {
    Worker w(UntilStopped);
    int priority = 7;
    EXPECT_NE(0, w.GetPriority(&priority)) << "not started";
    EXPECT_EQ(0, priority);
    w.Begin();
    EXPECT_EQ(0, w.SetPriority(-105)); // raising it may be refused
    EXPECT_EQ(0, w.GetPriority(&priority));
    EXPECT_EQ(-15, priority);
    w.StopThread();
}

TEST(Thread, IsKnownByANameOf63UntilItIsWaitedFor) {
    char byId[64] = "x";
    ZAV_Thread::GetInfoStringFromID(nullptr, byId);
    EXPECT_STREQ("", byId) << "this thread is not registered";
    Worker w([&](Worker& self) {
        const uintptr_t id = ZAV_Thread::OSThreadId();
        ZAV_Thread::GetInfoStringFromID(reinterpret_cast<void*>(id), byId);
        EXPECT_EQ(36, self.WaitForThread()) << "waiting for itself fails, but unregisters";
        EXPECT_EQ(nullptr, ZAV_Thread::CurrentThread());
    });
    w.SetInfoString(std::string(100, 'n').c_str());
    w.BeginAndEnd();
    EXPECT_EQ(std::string(63, 'n'), byId);
    EXPECT_STREQ(byId, w.GetInfoString());
}

// Stops come before and after the thread has entered its body, by hand and by the destructor.
TEST(Thread, ManyBeginningsAndEndsLeaveNothingBehind) {
    size_t before = 0;
    for (int i = -10; i < 1000 * kEffort; ++i) {
        if (i == 0) before = SystemObjects(); // what is made once has been made
        Worker w(UntilStopped);
        w.Begin(i % 2 ? 1000001 : 1); // the least stack is the system's, however little is asked for
        if (i % 2) w.AwaitRunning();
        if (i % 3 == 0) continue;
        w.StopThread();
        EXPECT_EQ(0, w.WaitForThread());
    }
    EXPECT_EQ(before, SystemObjects());
}

TEST(ThreadError, TextsAreLookedUpAsUnsignedNumbers) {
    ZAV_ThreadErrorStrEntry table[] = {{0, "A"}, {22, "B"}, {-1, "D"}};
    ZAV_ThreadError::SetStringTable(table);
    EXPECT_STREQ("B", ZAV_ThreadError(5).String()) << "the next code that has a text";
    EXPECT_STREQ("D", ZAV_ThreadError().String()) << "no result yet is the highest code";
    EXPECT_EQ(table, ZAV_ThreadError::SetStringTable(nullptr));
}
