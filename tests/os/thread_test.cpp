#include <zavbase/os/clock.h>
#include <zavbase/os/error.h>
#include <zavbase/os/sync.h>
#include <zavbase/os/thread.h>

#include <gtest/gtest.h>

namespace {

struct Flags {
    zav_os::Word go, entered;
    uint32_t id = 0;
    bool passed = false;

    Flags() {
        zav_os::SemaphoreOpen(go, 0);
        zav_os::SemaphoreOpen(entered, 0);
    }
    ~Flags() {
        zav_os::SemaphoreClose(go);
        zav_os::SemaphoreClose(entered);
    }
};

void ExitWhenTold(void* argument) {
    Flags& flags = *static_cast<Flags*>(argument);
    flags.id = zav_os::CurrentThreadId();
    zav_os::SemaphoreRelease(flags.entered, 1);
    zav_os::SemaphoreWait(flags.go, zav_os::kForever);
    zav_os::ThreadExit();
    flags.passed = true;
}

} // namespace

TEST(OsThread, IsStartedWaitedForAndClosed) {
    // The least stack is the system's, however little is asked for.
    for (unsigned stackSize : {0u, 1u, 1000000u}) {
        Flags flags;
        uint32_t id = 0;
        const uintptr_t handle = zav_os::ThreadStart(ExitWhenTold, &flags, stackSize, id);
        ASSERT_NE(0u, handle);
        EXPECT_EQ(zav_os::Wait::TimedOut, zav_os::ThreadWait(handle, 0));
        EXPECT_FALSE(zav_os::IsCurrentThread(handle, id));
        zav_os::SemaphoreRelease(flags.go, 1);
        EXPECT_EQ(zav_os::Wait::Done, zav_os::ThreadWait(handle, zav_os::kForever));
        EXPECT_EQ(zav_os::Wait::Done, zav_os::ThreadWait(handle, 0)) << "it may be asked again";
        EXPECT_EQ(id, flags.id) << "the identifier is known before the thread has run";
        EXPECT_FALSE(flags.passed);
        zav_os::ThreadClose(handle);
    }
}

TEST(OsThread, NoHandleIsAnErrorOfTheSystem) {
    int priority = 0;
    EXPECT_EQ(zav_os::Wait::Failed, zav_os::ThreadWait(0, 0));
    EXPECT_NE(0u, zav_os::LastError());
    EXPECT_NE(0u, zav_os::SetThreadPriority(0, 1));
    EXPECT_NE(0u, zav_os::GetThreadPriority(0, priority));
    EXPECT_EQ(-1, zav_os::WaitForAny(nullptr, 0));
    EXPECT_NE(0u, zav_os::LastError());
}

TEST(OsSemaphore, KeepsItsUnitsWithinThirtyOneBits) {
    zav_os::Word semaphore;
    zav_os::SemaphoreOpen(semaphore, 2);
    zav_os::SemaphoreRelease(semaphore, 0x7FFFFFFF); // too many: without effect
    EXPECT_EQ(zav_os::Wait::Done, zav_os::SemaphoreWait(semaphore, 0));
    EXPECT_EQ(zav_os::Wait::Done, zav_os::SemaphoreWait(semaphore, 0));
    EXPECT_EQ(zav_os::Wait::TimedOut, zav_os::SemaphoreWait(semaphore, 0));
    zav_os::SemaphoreRelease(semaphore, 0x7FFFFFFF);
    EXPECT_EQ(zav_os::Wait::Done, zav_os::SemaphoreWait(semaphore, 0));
    zav_os::SemaphoreClose(semaphore);
}

TEST(OsClock, AWaitThatTimesOutLastsAsLongAsItSays) {
    zav_os::Word semaphore;
    zav_os::SemaphoreOpen(semaphore, 0);
    const uint32_t start = zav_os::TickCount();
    EXPECT_EQ(zav_os::Wait::TimedOut, zav_os::SemaphoreWait(semaphore, 30));
    const uint32_t between = zav_os::TickCount();
    zav_os::Sleep(30);
    // The clock of some systems moves in steps of 16 ms.
    EXPECT_GE(between - start, 14u);
    EXPECT_GE(zav_os::TickCount() - between, 14u);
    zav_os::SemaphoreClose(semaphore);
}
