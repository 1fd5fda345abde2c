#include "lock_pool_fixture.h"

#include <cstdlib>
#include <memory>

namespace {

const ZAV_RuntimeClass& bare = ZAV_Exception::classZAV_Exception;
const ZAV_RuntimeClass& fileFailure = ZAV_FileException::classZAV_FileException;

/// Few rounds by default; all of them with ZAVBASE_STRESS set.
int Rounds(int few, int all) { return std::getenv("ZAVBASE_STRESS") ? all : few; }

std::unique_ptr<ChildProcess> Holder(const std::string& file, const char* name,
                                     const char* expected = "HAVE_LOCK") {
    std::unique_ptr<ChildProcess> child(new ChildProcess(LOCK_POOL_CHILD, {"hold", file, name}));
    EXPECT_EQ(expected, child->ReadLine());
    return child;
}

} // namespace

TEST_F(LockPool, TakesFindsAndReleases) {
    Pool pool(mFile.c_str());
    EXPECT_EQ(Pool::NOBODY_HAS_LOCK, pool.GetLockState("a"));
    EXPECT_EQ("<<\n>>", Text());
    EXPECT_EQ(Pool::NOBODY_HAS_LOCK, pool.UnLock("a"));
    EXPECT_EQ(Pool::HAVE_LOCK, pool.Lock("a"));
    EXPECT_EQ(Pool::ALREADY_HAD_LOCK, pool.Lock("a"));
    EXPECT_EQ(Pool::NOBODY_HAS_LOCK, pool.GetLockState("A"));
    Pool copy(pool);
    EXPECT_EQ(Pool::HAVE_LOCK, copy.GetLockState("a"));
    EXPECT_EQ(Pool::UNLOCKED, copy.UnLock("a"));
    EXPECT_EQ(Pool::NOBODY_HAS_LOCK, pool.UnLock("a"));
    EXPECT_STREQ("<ILLEGAL VALUE>", Pool::RetVal2String(static_cast<Pool::RetVal>(7)));
}

TEST_F(LockPool, TheEntryNamesTheOwnerInFourFields) {
    Pool(mFile.c_str()).Lock("a");
    ZAV_UValDict entry = Entry("a");
    EXPECT_TRUE(Pool::IsOwnerAlive(entry));
    for (const char* number : {"ProcessId", "CreationTimeLow", "CreationTimeHigh"})
        EXPECT_EQ(UVAL_LONG, entry.GetUValType(number)) << number;
    EXPECT_STREQ("", entry.GetValue("FileName", "?"));
    EXPECT_EQ(4u, entry.GetSize());
}

TEST_F(LockPool, OnlyWhatChangedIsWritten) {
    Store("% kept\n<< /n 5 >>");
    Pool pool(mFile.c_str());
    EXPECT_EQ(Pool::NOBODY_HAS_LOCK, pool.UnLock("a"));
    pool.ClearOwnLocks();
    pool.ClearInvalidLocks();
    EXPECT_EQ("% kept\n<< /n 5 >>", Text());
    pool.Lock("a");
    pool.ClearOwnLocks();
    EXPECT_EQ("<<\n/n 5\n>>", Text());
}

TEST_F(LockPool, AnotherProcessOwnsItWhileItLives) {
    Pool pool(mFile.c_str());
    const auto child = Holder(mFile, "a");
    EXPECT_EQ(Pool::OTHER_HAS_LOCK, pool.Lock("a"));
    EXPECT_EQ(Pool::OTHER_HAS_LOCK, pool.UnLock("a"));
    EXPECT_EQ(Pool::OTHER_HAS_LOCK, pool.GetLockState("a"));
    pool.Lock("mine");
    Holder(mFile, "mine", "OTHER_HAS_LOCK")->CloseInput();
    pool.ClearInvalidLocks();
    EXPECT_EQ(Pool::HAVE_LOCK, pool.GetLockState("mine"));
    pool.ClearOwnLocks();
    EXPECT_EQ(static_cast<long>(child->Id()), Entry("a").GetValue("ProcessId", 0L));
    EXPECT_EQ(0u, Entry("mine").GetSize());
    child->CloseInput();
    EXPECT_EQ(0, child->Wait());
    EXPECT_EQ(Pool::NOBODY_HAS_LOCK, pool.GetLockState("a"));
    EXPECT_EQ("<<\n>>", Text());
}

TEST_F(LockPool, AReusedProcessIdIsNoOwner) {
    Pool pool(mFile.c_str());
    const char* const fields[][2] = {
        {"a:CreationTimeLow", "-77"}, {"a:CreationTimeHigh", "-77"}, {"a:ProcessId", "0"}};
    for (const auto& [field, value] : fields) {
        pool.Lock("a");
        Change(field, UVAL_LONG, value);
        EXPECT_EQ(Pool::NOBODY_HAS_LOCK, pool.GetLockState("a")) << field;
        EXPECT_EQ("<<\n>>", Text()) << field;
        pool.Lock("a");
        Change(field, UVAL_LONG, value);
        EXPECT_EQ(Pool::HAVE_LOCK, pool.Lock("a")) << field;
    }
}

TEST_F(LockPool, ANameIsAPath) {
    Pool pool(mFile.c_str());
    EXPECT_EQ(Pool::HAVE_LOCK, pool.Lock("g:b"));
    EXPECT_EQ(Pool::ALREADY_HAD_LOCK, pool.Lock("g:b:"));
    pool.Lock("first");
    EXPECT_TRUE(Throws(bare, [&] { pool.GetLockState("g"); }));
    // The group has no owner: the walk ends there, and what it removed before is not written.
    EXPECT_TRUE(Throws(bare, [&] { pool.ClearOwnLocks(); }));
    EXPECT_EQ(Pool::HAVE_LOCK, pool.GetLockState("first"));
    pool.ClearInvalidLocks();
    EXPECT_EQ(Pool::UNLOCKED, pool.UnLock("g:b"));
    EXPECT_TRUE(Throws(bare, [&] { pool.Lock(""); }));
    Store("<< /n 5 >>");
    EXPECT_TRUE(Throws(bare, [&] { pool.Lock("n"); }));
    EXPECT_TRUE(Throws(bare, [&] { pool.Lock("n:a"); }));
}

TEST_F(LockPool, ADamagedEntryIsReportedAndLeft) {
    Pool pool(mFile.c_str());
    for (const char* field : {"ProcessId", "FileName", "CreationTimeLow", "CreationTimeHigh"}) {
        std::filesystem::remove(mFile);
        pool.Lock("a");
        Change(ZAV_DictPath("a") + field, UVAL_DOUBLE, "1");
        EXPECT_TRUE(Throws(bare, [&] { pool.Lock("a"); })) << field;
        EXPECT_TRUE(Throws(bare, [&] { pool.UnLock("a"); })) << field;
        const std::string before = Text();
        pool.ClearInvalidLocks();
        EXPECT_EQ(before, Text());
        EXPECT_EQ(Pool::HAVE_LOCK, pool.Lock("b")) << field;
    }
}

TEST_F(LockPool, AFileThatCannotBeIsAFileException) {
    Pool nowhere(mFolder.Path("no/pool").c_str()), folder(mFolder.Path().c_str()), pool(mFile.c_str());
    EXPECT_TRUE(Throws(fileFailure, [&] { nowhere.Lock("a"); }));
    EXPECT_TRUE(Throws(fileFailure, [&] { folder.Lock("a"); }));
    Store("<< /a");
    EXPECT_TRUE(Throws(fileFailure, [&] { pool.Lock("a"); }));
    EXPECT_EQ("<< /a", Text());
    Pool::SetGuard(B_TRUE);
    EXPECT_TRUE(Throws(fileFailure, [&] { nowhere.Lock("a"); }));
    std::filesystem::remove(mFile);
    std::filesystem::create_directory(mFile + ".guard");
    EXPECT_TRUE(Throws(fileFailure, [&] { pool.Lock("a"); }));
}

TEST_F(LockPool, NothingIsWrittenThroughALink) {
    const std::string victim = mFolder.Path("victim");
    std::error_code refused;
    std::filesystem::create_symlink(victim, mFile, refused);
    if (refused) GTEST_SKIP() << "no links here";
    Pool pool(mFile.c_str());
    EXPECT_TRUE(Throws(fileFailure, [&] { pool.Lock("a"); }));
    EXPECT_FALSE(std::filesystem::exists(victim));

    PutFile(victim, "<< >>");
    EXPECT_EQ(Pool::HAVE_LOCK, pool.Lock("a"));
    EXPECT_EQ(5u, std::filesystem::file_size(victim));
    EXPECT_FALSE(std::filesystem::is_symlink(mFile));

    std::filesystem::create_symlink(victim, mFile + ".guard");
    Pool::SetGuard(B_TRUE);
    EXPECT_TRUE(Throws(fileFailure, [&] { pool.UnLock("a"); }));
}

TEST_F(LockPool, WithTheGuardThereAreNeverTwoOwners) {
    const std::string count = std::to_string(Rounds(15, 1000));
    std::vector<std::unique_ptr<ChildProcess>> workers;
    for (int i = 0; i < 8; ++i)
        workers.emplace_back(new ChildProcess(LOCK_POOL_CHILD, {"work", mFile, "a", count}));
    for (const auto& worker : workers) EXPECT_EQ(0, worker->Wait());
    EXPECT_EQ("<<\n>>", Text());
}

TEST_F(LockPool, AKilledOwnerBlocksNobody) {
    Pool pool(mFile.c_str());
    Pool::SetGuard(B_TRUE);
    for (int i = Rounds(10, 200); i > 0; --i) {
        // Not yet waited for when the lock is asked for, and gone afterwards.
        const auto child = Holder(mFile, "a");
        child->Kill();
        if (i % 2) child->Wait();
        while (pool.GetLockState("a") == Pool::OTHER_HAS_LOCK) {
        }
        ASSERT_EQ(Pool::HAVE_LOCK, pool.Lock("a"));
        ASSERT_NE(static_cast<long>(child->Id()), Entry("a").GetValue("ProcessId", 0L));
        ASSERT_EQ(Pool::UNLOCKED, pool.UnLock("a"));
    }
}

TEST_F(LockPool, AKilledWriterLeavesTheOldOrTheNewContent) {
    Pool pool(mFile.c_str());
    pool.Lock("mine");
    for (int i = Rounds(20, 1000); i > 0; --i) {
        ChildProcess writer(LOCK_POOL_CHILD, {"write", mFile, "w"});
        ASSERT_EQ("writing", writer.ReadLine());
        // Reads beside the writer, a different number of times each round, so that the kill falls anywhere.
        for (int reads = i % 7; reads >= 0; --reads) ASSERT_EQ(4u, Entry("mine").GetSize());
        writer.Kill();
        writer.Wait();
        ASSERT_EQ(4u, Entry("mine").GetSize());
    }
    pool.ClearInvalidLocks();
    EXPECT_EQ(Pool::UNLOCKED, pool.UnLock("mine"));
    EXPECT_EQ("<<\n>>", Text());
}
