#include <tests/threads/fake_os.h>

#include <zavbase/threads/thread.h>
#include <zavbase/threads/time.h>

#include <gtest/gtest.h>

namespace {

class Worker : public ZAV_Thread {
public:
    Worker() : ZAV_Thread(ZAV_THREAD_PLAIN) {}
    ZAV_ThreadError Begin(uintptr_t handle, uint32_t id, uint32_t lastError = 0) {
        theOS.startHandle = handle;
        theOS.startId = id;
        theOS.lastError = lastError;
        return BeginThread(ZAV_THREAD_CLEANUP_NONE, 4096);
    }

private:
    void run() override {}
};

std::string NameUnder(uint32_t id) {
    char name[64];
    ZAV_Thread::GetInfoStringFromID(reinterpret_cast<void*>(static_cast<uintptr_t>(id)), name);
    return name;
}

class ThreadStart : public testing::Test {
protected:
    ThreadStart() { theOS = FakeOS(); }
};

} // namespace

TEST_F(ThreadStart, OnlyAHandleOfMinusOneWithAnErrorFails) {
    Worker w;
    w.SetInfoString("w");
    EXPECT_EQ(8, w.Begin(UINTPTR_MAX, 11, 8));
    EXPECT_EQ(4096u, theOS.stackSize);
    EXPECT_EQ("", NameUnder(11));
    EXPECT_EQ(0, w.Begin(UINTPTR_MAX, 12, 0));
    EXPECT_EQ("w", NameUnder(12)) << "no error means success";
    EXPECT_EQ(0, w.Begin(0, 13, 8));
    EXPECT_EQ("w", NameUnder(13)) << "handle 0 means success";
    EXPECT_EQ("", NameUnder(12)) << "the entry of the start before";
    EXPECT_EQ(0u, w.ThreadId());
    theOS.waitFails = 6;
    EXPECT_EQ(6, w.WaitForThread());
    EXPECT_EQ("", NameUnder(13)) << "a failed wait unregisters, too";
    EXPECT_EQ(0, w.Begin(40, 14));
    EXPECT_EQ(std::vector<uintptr_t>{0}, theOS.closed) << "the old handle is closed at the next start";
    theOS.waitFails = 0;
}

TEST_F(ThreadStart, AnIdentifierUsedAgainBelongsToTheNewThread) {
    Worker second;
    {
        Worker first;
        first.SetInfoString("first");
        second.SetInfoString("second");
        first.Begin(40, 21);
        second.Begin(44, 21);
        EXPECT_EQ("second", NameUnder(21));
        first.WaitForThread();
        EXPECT_EQ("second", NameUnder(21)) << "the first one's end took the entry away";
    }
    EXPECT_EQ("second", NameUnder(21));
    theOS.callerId = 21;
    EXPECT_EQ(&second, ZAV_Thread::CurrentThread());
    theOS.callerId = 77;
}

TEST_F(ThreadStart, WaitingForAnyTakesTheIdentifiersOfRunningThreads) {
    Worker idle, running;
    idle.Begin(40, 31);
    running.Begin(44, 32);
    running.Running(B_TRUE);
    ZAV_Thread* which = &idle;
    theOS.lastError = 9;
    EXPECT_EQ(9, ZAV_Thread::WaitForAnyThread(which));
    EXPECT_EQ(nullptr, which);
    EXPECT_EQ(std::vector<uint32_t>{32}, theOS.anyIds);
    theOS.anySlot = 0;
    EXPECT_EQ(0, ZAV_Thread::WaitForAnyThread(which));
    EXPECT_EQ(&running, which);
    EXPECT_FALSE(running.Running());
}

TEST_F(ThreadStart, SleepsAndTicksAreThirtyTwoBits) {
    EXPECT_EQ(0, ZAV_Sleep(4294968));
    EXPECT_EQ(0, ZAV_Sleep(0));
    EXPECT_EQ(0, ZAV_MilliSleep(0xFFFFFFFF));
    EXPECT_EQ((std::vector<uint32_t>{704, 0, 0xFFFFFFFF}), theOS.slept);
    theOS.ticks = 3;
    EXPECT_EQ(3u, ZAV_CurrentTime());
    EXPECT_EQ(1u, ZAV_ElapsedTime(2, 0)) << "0 stands for the present";
    EXPECT_EQ(0xFFFFFFFEu, ZAV_ElapsedTime(4, 0));
}
