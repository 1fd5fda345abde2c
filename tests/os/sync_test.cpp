#include <zavbase/os/clock.h>
#include <zavbase/os/sync.h>

#include <gtest/gtest.h>

using namespace zav_os;

TEST(OsSemaphore, KeepsItsUnitsWithinThirtyOneBits) {
    Word semaphore;
    SemaphoreOpen(semaphore, 2);
    SemaphoreRelease(semaphore, 0x7FFFFFFF); // too many: without effect
    for (int unit = 0; unit < 2; ++unit) EXPECT_EQ(Wait::Done, SemaphoreWait(semaphore, 0));
    // A wait that times out lasts as long as it says; the clock of some systems moves in steps of 16 ms.
    const uint32_t start = TickCount();
    EXPECT_EQ(Wait::TimedOut, SemaphoreWait(semaphore, 30));
    const uint32_t between = TickCount();
    Sleep(30);
    EXPECT_GE(between - start, 14u);
    EXPECT_GE(TickCount() - between, 14u);
    SemaphoreRelease(semaphore, 0x7FFFFFFF);
    EXPECT_EQ(Wait::Done, SemaphoreWait(semaphore, 0));
    SemaphoreClose(semaphore);
}
