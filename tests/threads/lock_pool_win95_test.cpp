// The lock pool on a system that tells no creation times of processes: Windows 95, as the platform record
// says. The record comes from the fake of the system's version query below.

#include "lock_pool_fixture.h"

#include <zavbase/foundation/startup.h>
#include <zavbase/os/version.h>

bool zav_os::QueryVersion(VersionRecord& record) {
    record = VersionRecord{148, 4, 0, 0x040003B6, 1, ""};
    return true;
}

TEST_F(LockPool, OnWindows95TheImageNameStandsForTheTime) {
    SetRuntimeOSVersion();
    ASSERT_TRUE(ZAV_Win95());
    Pool pool(mFile.c_str());
    ASSERT_EQ(Pool::HAVE_LOCK, pool.Lock("a"));
    EXPECT_EQ(Pool::ALREADY_HAD_LOCK, pool.Lock("a"));
    ZAV_UValDict entry = Entry("a");
    EXPECT_NE(std::string::npos, std::string(entry.GetValue("FileName", "")).find("lock_pool_win95_test"));
    EXPECT_EQ(0, entry.GetValue("CreationTimeLow", 5));
    EXPECT_EQ(0, entry.GetValue("CreationTimeHigh", 5));

    Change("a:FileName", UVAL_STRING, "LOCK_POOL_WIN95_TEST");
    EXPECT_EQ(Pool::NOBODY_HAS_LOCK, pool.GetLockState("a"));

    ChildProcess child(LOCK_POOL_CHILD, {"hold", mFile, "b"});
    ASSERT_EQ("HAVE_LOCK", child.ReadLine());
    // The child, on this machine's own system, left the name empty: so it is no owner here.
    EXPECT_EQ(Pool::HAVE_LOCK, pool.Lock("b"));
    Change("b:ProcessId", UVAL_LONG, std::to_string(child.Id()).c_str());
    EXPECT_EQ(Pool::NOBODY_HAS_LOCK, pool.UnLock("b"));
    EXPECT_EQ("<<\n>>", Text());
}
