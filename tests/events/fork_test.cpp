// A threaded process forks, again and again, and each child uses what the library locks for the whole
// process.

#include <zavbase/zavbase.h>

#include <atomic>
#include <functional>
#include <iostream>
#include <memory>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

namespace {

struct Idle : ZAV_Thread {
    Idle() : ZAV_Thread(ZAV_THREAD_JOINED) {}
    ~Idle() override { FinishThread(); }
    void run() override {
        while (Running()) ZAV_MilliSleep(1);
    }
};

struct Handler : ZAV_EvHandlerBody {
    int HandleEvent(ZAV_Event*) override { return 0; }
};

struct Listener : ZAV_Listener {};

// A sink that a line stays in for a while.
struct SlowSink : std::stringbuf {
    int sync() override {
        std::this_thread::yield();
        str("");
        return 0;
    }
};

ZAV_Tracer* traceCache = nullptr;

struct Work {
    const char* name;
    std::function<void()> doSome;
};

class Fork : public ::testing::Test {
protected:
    Fork() : mSink(&mBuffer), mHandler(new Handler) {
        ZAV_Tracer::SetStreamP("FORK", &mSink);
        ZAV_Tracer::SetMask("FORK", 1);
        ZAV_TimerMgr::InitializeListener(B_FALSE, &mDispatcher);
        mDispatcher.AddEvHandler(mHandler);
    }
    ~Fork() override {
        ZAV_TimerMgr::CleanupListener();
        mDispatcher.RemoveEvHandler(mHandler);
        ZAV_Tracer::SetStreamP("FORK", nullptr);
    }

    const std::vector<Work> kWork = {
        {"values",
         [] {
             std::vector<std::unique_ptr<ZAV_UValLong>> more(300); // than a thread has at hand
             for (auto& value : more) value = std::make_unique<ZAV_UValLong>();
         }},
        {"trace", [] { ZAV_TRACE(traceCache, "FORK", 1, "a line of " << 3 << " parts"); }},
        {"tracer table", [] { ZAV_Tracer::SetMask("FORK", 1); }},
        {"current thread", [] { ZAV_Thread::CurrentThread(); }},
        {"queue length", [this] { mDispatcher.QueueLength(); }},
        {"listeners",
         [] {
             ZAV_EvDispatcher dispatcher;
             Listener listener;
             dispatcher.AddListener(&listener);
         }},
        {"timers",
         [this] { ZAV_TimerMgr::RemoveTimer(ZAV_TimerMgr::AddTimer(100000, mHandler.GetBody(), 0)); }},
        {"timer manager", [this] { ZAV_TimerMgr::InitializeListener(B_FALSE, &mDispatcher); }},
        {"exceptions",
         [] {
             ZAV_FileException exception(6, 0);
             ZAV_AddExceptionContext(&exception, {.mPath = "a path"});
         }},
        {"stream buffers",
         [] {
             ZAV_FuncStrmbuf buffer(nullptr, nullptr);
             buffer.sputc('x');
         }},
        {"system strings", [] { ZAV_SystemString(ZAV_UTFString("x")); }},
    };

    SlowSink mBuffer;
    std::ostream mSink;
    ZAV_EvDispatcher mDispatcher;
    ZAV_EvHandlerRef mHandler;
};

// What a child was at when its time was up; 0 when it came to its end.
int Stage(const std::function<void(std::function<void(int)>)>& child) {
    int pipes[2];
    EXPECT_EQ(pipe(pipes), 0);
    const pid_t id = fork();
    if (id == 0) {
        alarm(30); // a hang ends there
        child([&](int stage) {
            const char byte = static_cast<char>(stage);
            if (write(pipes[1], &byte, 1) != 1) _exit(1);
        });
        _exit(0);
    }
    close(pipes[1]);
    int status = -1;
    waitpid(id, &status, 0);
    char last = 0;
    while (read(pipes[0], &last, 1) == 1) {
    }
    close(pipes[0]);
    return status == 0 ? 0 : last + 1;
}

TEST_F(Fork, AChildUsesTheLibrary) {
    std::atomic<bool> stop{false};
    std::vector<std::jthread> busy;
    for (const Work& work : kWork) {
        busy.emplace_back([&] {
            while (!stop) work.doSome();
        });
    }
    busy.emplace_back([&] {
        while (!stop) Idle().BeginThread(ZAV_THREAD_CLEANUP_NONE, 0);
    });
    for (int i = 0; i < 60 && !HasFailure(); ++i) {
        const int stage = Stage([&](auto reached) {
            for (size_t w = 0; w < kWork.size(); ++w) {
                reached(static_cast<int>(w));
                kWork[w].doSome();
            }
        });
        EXPECT_EQ(stage, 0) << "in fork " << i << " at " << kWork[static_cast<size_t>(stage - 1)].name;
    }
    stop = true;
}

// The forking thread is in the child under another number; the others have ended there.
struct Forking : Idle {
    Forking(Idle& other) : mOther(other) {}
    ~Forking() override { FinishThread(); }
    void run() override {
        mStage = Stage([this](auto reached) {
            reached(1);
            if (CurrentThread() != this) _exit(1);
            reached(2);
            int own = 0;
            if (SetPriority(-3) || GetPriority(&own) || own != -3) _exit(1);
            reached(3);
            if (!mOther.SetPriority(-5) || mOther.WaitForThread() != 0) _exit(1);
            reached(4);
        });
        GetPriority(&mPriority);
    }
    Idle& mOther;
    int mStage = -1, mPriority = -1;
};

TEST_F(Fork, AThreadStaysItselfAndTheOthersEnd) {
    Idle other;
    other.BeginThread(ZAV_THREAD_CLEANUP_NONE, 0);
    Forking forking(other);
    forking.BeginThread(ZAV_THREAD_CLEANUP_NONE, 0);
    forking.WaitForThread();
    EXPECT_EQ(forking.mStage, 0);
    EXPECT_EQ(forking.mPriority, 0);
}

// A fork does not wait for ever for a line whose sink waits for the forking thread.
TEST_F(Fork, InTheMiddleOfALine) {
    struct : std::stringbuf {
        int sync() override {
            inside = true;
            inside.notify_all();
            goOn.wait(false);
            return 0;
        }
        std::atomic<bool> inside{false}, goOn{false};
    } sink;
    std::ostream stream(&sink);
    ZAV_Tracer::SetStreamP("FORK", &stream);
    std::jthread writer([] { ZAV_TRACE(traceCache, "FORK", 1, "begun"); });
    sink.inside.wait(false);
    std::ostringstream other;
    EXPECT_EQ(Stage([&](auto reached) {
                  reached(1);
                  ZAV_Tracer::SetStreamP("FORK2", &other);
                  ZAV_Tracer::SetMask("FORK2", 1);
                  ZAV_Tracer* cache = nullptr;
                  ZAV_TRACE(cache, "FORK2", 1, "a line");
                  if (other.str() != "a line\n") _exit(1);
              }),
              0);
    sink.goOn = true;
    sink.goOn.notify_all();
}

} // namespace
