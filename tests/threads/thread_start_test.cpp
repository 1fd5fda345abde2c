// Threads and times with replaced system calls: no thread is ever started.

#include <zavbase/zavbase.h>

#include <zavbase/os/clock.h>
#include <zavbase/os/error.h>
#include <zavbase/os/thread.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

/// What the system calls answer and were asked.
struct FakeOS {
    uint32_t lastError = 0;
    uintptr_t startHandle = 0;
    uint32_t startId = 0;
    uint32_t waitFails = 0; ///< the error of a wait; 0: it succeeds
    int anySlot = -1;
    uint32_t callerId = 77;
    uint32_t ticks = 0;

    unsigned stackSize = 0;
    std::vector<uint32_t> slept, anyIds;
    std::vector<uintptr_t> closed;
} os;

class Worker : public ZAV_Thread {
public:
    Worker() : ZAV_Thread(ZAV_THREAD_PLAIN) {}
    ZAV_ThreadError Begin(uintptr_t handle, uint32_t id, uint32_t lastError = 0) {
        os.startHandle = handle;
        os.startId = id;
        os.lastError = lastError;
        return BeginThread(ZAV_THREAD_CLEANUP_NONE, 4096);
    }

private:
    void run() override {}
};

std::string NameUnder(uintptr_t id) {
    char name[64];
    ZAV_Thread::GetInfoStringFromID(reinterpret_cast<void*>(id), name);
    return name;
}

} // namespace

namespace zav_os {

uint32_t LastError() { return os.lastError; }
bool ErrorText(uint32_t, char*, size_t) { return false; }

uint32_t TickCount() { return os.ticks; }
void Sleep(uint32_t milliseconds) { os.slept.push_back(milliseconds); }

uintptr_t ThreadStart(void (*)(void*), void*, unsigned stackSize, uint32_t& id) {
    os.stackSize = stackSize;
    id = os.startId;
    return os.startHandle;
}
void ThreadExit() { std::abort(); }
Wait ThreadWait(uintptr_t, uint32_t) {
    os.lastError = os.waitFails;
    return os.waitFails ? Wait::Failed : Wait::Done;
}
void ThreadClose(uintptr_t handle) { os.closed.push_back(handle); }
int WaitForAny(const uint32_t* handles, unsigned count) {
    os.anyIds.assign(handles, handles + count);
    return os.anySlot;
}
uint32_t CurrentThreadId() { return os.callerId; }
bool IsCurrentThread(uintptr_t, uint32_t id) { return id == os.callerId; }
uint32_t SetThreadPriority(uintptr_t, int) { return 5; }
uint32_t GetThreadPriority(uintptr_t, int&) { return 5; }

} // namespace zav_os

TEST(ThreadStart, OnlyAHandleOfMinusOneWithAnErrorFails) {
    os = FakeOS();
    Worker w;
    w.SetInfoString("w");
    EXPECT_EQ(8, w.Begin(UINTPTR_MAX, 11, 8));
    EXPECT_EQ(4096u, os.stackSize);
    EXPECT_EQ("", NameUnder(11));
    EXPECT_EQ(0, w.Begin(UINTPTR_MAX, 12, 0)) << "no error means success";
    EXPECT_EQ("w", NameUnder(12));
    EXPECT_EQ(0, w.Begin(0, 13, 8)) << "handle 0 means success";
    EXPECT_EQ("w", NameUnder(13));
    EXPECT_EQ("", NameUnder(12)) << "the entry of the start before";
    os.waitFails = 6;
    EXPECT_EQ(6, w.WaitForThread());
    EXPECT_EQ("", NameUnder(13)) << "a failed wait unregisters, too";
    EXPECT_EQ(0, w.Begin(40, 14));
    EXPECT_EQ(std::vector<uintptr_t>{0}, os.closed) << "the old handle is closed at the next start";
}

TEST(ThreadStart, AnIdentifierUsedAgainBelongsToTheNewThread) {
    os = FakeOS();
    Worker second;
    second.SetInfoString("second");
    {
        Worker first;
        first.Begin(40, 21);
        second.Begin(44, 21);
        first.WaitForThread();
        EXPECT_EQ("second", NameUnder(21)) << "the first one's wait took the entry away";
    }
    EXPECT_EQ("second", NameUnder(21));
    os.callerId = 21;
    EXPECT_EQ(&second, ZAV_Thread::CurrentThread());
    os.callerId = 77;
}

TEST(ThreadStart, WaitingForAnyTakesTheIdentifiersOfRunningThreads) {
    os = FakeOS();
    Worker idle, running;
    idle.Begin(40, 31);
    running.Begin(44, 32);
    running.Running(B_TRUE);
    ZAV_Thread* which = &idle;
    os.lastError = 9;
    EXPECT_EQ(9, ZAV_Thread::WaitForAnyThread(which));
    EXPECT_EQ(nullptr, which);
    EXPECT_EQ(std::vector<uint32_t>{32}, os.anyIds);
    os.anySlot = 0;
    EXPECT_EQ(0, ZAV_Thread::WaitForAnyThread(which));
    EXPECT_EQ(&running, which);
    EXPECT_FALSE(running.Running());
}

TEST(Time, SleepsAndTicksAreThirtyTwoBits) {
    os = FakeOS();
    EXPECT_EQ(0, ZAV_Sleep(4294968));
    EXPECT_EQ(0, ZAV_MilliSleep(0xFFFFFFFF));
    EXPECT_EQ((std::vector<uint32_t>{704, 0xFFFFFFFF}), os.slept);
    os.ticks = 3;
    const unsigned long rows[][3] = {
        {5, 10, 5},                              // start, now, what has elapsed
        {7, 7, 0},          {10, 5, 0xFFFFFFFA}, // one less when the count has wrapped
        {0xFFFFFFFF, 1, 1}, {2, 0, 1},           // 0 stands for the present
        {4, 0, 0xFFFFFFFE},
    };
    for (const auto& [start, now, elapsed] : rows) EXPECT_EQ(elapsed, ZAV_ElapsedTime(start, now)) << start;
}
