#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zavbase/foundation/startup.h>
#include <zavbase/os/version.h>
#include <zavbase/threads/lock_pool.h>

#include "tests/support/child_process.h"
#include "tests/support/file_support.h"
#include "tests/support/thrown.h"

typedef ZAV_ResourceLockPool Pool;

namespace {

const ZAV_RuntimeClass& bare = ZAV_Exception::classZAV_Exception;
const ZAV_RuntimeClass& fileFailure = ZAV_FileException::classZAV_FileException;

zav_os::VersionRecord theSystem = {148, 5, 0, 0, 2, ""};

/// A pool file in a folder of its own.
class LockPool : public testing::Test {
protected:
    ~LockPool() override { Pool::SetGuard(B_FALSE); }

    std::string Text() const { return FileText(mFile); }
    void Store(const std::string& text) const { PutFile(mFile, text); }

    /// The file as another program would see it.
    ZAV_UValDict Read() const {
        ZAV_UValDict file;
        file.ReadTextFile(mFile.c_str());
        return file;
    }
    ZAV_UValDict Entry(const char* name) const {
        const ZAV_UValDict file = Read();
        ZAV_UVal* entry = file.GetUVal(name);
        return entry ? *static_cast<ZAV_UValDict*>(entry) : ZAV_UValDict();
    }
    void Change(const ZAV_DictPath& path, ZAV_UValType type, const char* text) const {
        ZAV_UValDict file = Read();
        file.DefineUVal(path, type)->SetStrValue(text, 0);
        file.WriteTextFile(mFile.c_str());
    }

    std::unique_ptr<ChildProcess> Child(const char* role, const char* name, const char* says,
                                        int count = 0) const {
        std::unique_ptr<ChildProcess> child(
            new ChildProcess(LOCK_POOL_CHILD, {role, mFile, name, std::to_string(count)}));
        if (*says) {
            EXPECT_EQ(says, child->ReadLine());
        }
        return child;
    }

    TestFolder mFolder;
    const std::string mFile = mFolder.Path("pool");
};

/// Whether the call throws an exception of exactly this class.
template <class Call>
bool Throws(const ZAV_RuntimeClass& type, Call call) {
    const auto thrown = Thrown<ZAV_Exception>(call);
    return thrown && thrown->GetRuntimeClass() == &type;
}

/// Few rounds by default; all of them with ZAVBASE_STRESS set.
int Rounds(int few, int all) { return std::getenv("ZAVBASE_STRESS") ? all : few; }

} // namespace

bool zav_os::QueryVersion(VersionRecord& record) {
    record = theSystem;
    return true;
}

TEST_F(LockPool, EveryOperationDoesItsOwnWithEveryOwner) {
    using enum Pool::RetVal;
    // By the owner of a: nobody, the caller, another process, one that has ended.
    const std::string owners = "-cod";
    const struct {
        int (*call)(Pool& pool);
        int answers[4];
        std::string left; // the owners afterwards, of b too if the operation is for all
        bool forAll = false;
    } operations[] = {
        {[](Pool& pool) { return int(pool.Lock("a")); },
         {HAVE_LOCK, ALREADY_HAD_LOCK, OTHER_HAS_LOCK, HAVE_LOCK},
         "ccoc"},
        {[](Pool& pool) { return int(pool.UnLock("a")); },
         {NOBODY_HAS_LOCK, UNLOCKED, OTHER_HAS_LOCK, NOBODY_HAS_LOCK},
         "--o-"},
        {[](Pool& pool) { return int(pool.GetLockState("a")); },
         {NOBODY_HAS_LOCK, HAVE_LOCK, OTHER_HAS_LOCK, NOBODY_HAS_LOCK},
         "-co-"},
        {[](Pool& pool) { return pool.ClearOwnLocks(), 0; }, {}, "--o-", true},
        {[](Pool& pool) { return pool.ClearInvalidLocks(), 0; }, {}, "-co-", true},
    };
    Pool pool(mFile.c_str());
    pool.Lock("mine");
    const auto child = Child("hold", "theirs", "HAVE_LOCK");
    Child("hold", "mine", "OTHER_HAS_LOCK");
    // A process that has ended is no owner, nor is a later one with its identifier.
    std::vector<ZAV_UValDict> entries = {ZAV_UValDict(), Entry("mine"), Entry("theirs")};
    for (const char* field : {"ProcessId", "CreationTimeLow", "CreationTimeHigh"})
        entries.emplace_back(Entry("mine")).SetValue(field, 0);
    const auto ownerOf = [&](ZAV_UValDict entry) {
        if (entry.GetSize() == 0) return '-';
        if (!Pool::IsOwnerAlive(entry)) return 'd';
        return entry.GetValue("ProcessId", 0UL) == child->Id() ? 'o' : 'c';
    };
    for (const ZAV_UValDict& a : entries)
        for (const ZAV_UValDict& b : entries)
            for (const auto& operation : operations) {
                SCOPED_TRACE(testing::Message() << &operation - operations << ownerOf(a) << ownerOf(b));
                ZAV_UValDict file;
                file.DefineUVal("number", UVAL_LONG);
                if (a.GetSize() != 0) *file.DefineUValDict("a") = a;
                if (b.GetSize() != 0) *file.DefineUValDict("b") = b;
                file.WriteTextFile(mFile.c_str());
                Store("% is lost when the file is written\n" + Text());
                const size_t wasA = owners.find(ownerOf(a)), wasB = owners.find(ownerOf(b));
                const char leftB = operation.forAll ? operation.left[wasB] : owners[wasB];
                EXPECT_EQ(operation.answers[wasA], operation.call(pool));
                EXPECT_EQ(operation.left[wasA], ownerOf(Entry("a")));
                EXPECT_EQ(leftB, ownerOf(Entry("b")));
                EXPECT_EQ(owners[wasA] == operation.left[wasA] && owners[wasB] == leftB, Text()[0] == '%');
                EXPECT_EQ(UVAL_LONG, Read().GetUValType("number"));
            }
}

TEST_F(LockPool, OnWindows95TheImageNameStandsForTheTime) {
    const auto child = Child("hold", "b", "HAVE_LOCK");
    const zav_os::VersionRecord before = theSystem;
    theSystem = {148, 4, 0, 0x040003B6, 1, ""};
    SetRuntimeOSVersion();
    Pool pool(mFile.c_str());
    EXPECT_EQ(Pool::HAVE_LOCK, pool.Lock("a"));
    EXPECT_EQ(Pool::ALREADY_HAD_LOCK, pool.Lock("a"));
    ZAV_UValDict entry = Entry("a");
    EXPECT_NE(std::string::npos, std::string(entry.GetValue("FileName", "")).find("lock_pool_test"));
    EXPECT_EQ(0, entry.GetValue("CreationTimeLow", 5));
    EXPECT_EQ(0, entry.GetValue("CreationTimeHigh", 5));
    Change("a:FileName", UVAL_STRING, "LOCK_POOL_TEST");
    EXPECT_EQ(Pool::NOBODY_HAS_LOCK, pool.GetLockState("a"));
    // The child, on this machine's own system, left the name empty: so it is no owner here.
    EXPECT_EQ(Pool::NOBODY_HAS_LOCK, pool.UnLock("b"));
    EXPECT_EQ("<<\n>>", Text());
    theSystem = before;
    SetRuntimeOSVersion();
}

TEST_F(LockPool, ANameIsAPath) {
    Pool original(mFile.c_str()), pool(original);
    EXPECT_EQ(Pool::NOBODY_HAS_LOCK, pool.GetLockState("g:b"));
    EXPECT_EQ("<<\n>>", Text());
    EXPECT_EQ(Pool::HAVE_LOCK, pool.Lock("g:b"));
    EXPECT_EQ(Pool::ALREADY_HAD_LOCK, original.Lock("g:b:"));
    EXPECT_EQ(Pool::NOBODY_HAS_LOCK, pool.GetLockState("g:B"));
    pool.Lock("first");
    EXPECT_TRUE(Throws(bare, [&] { pool.GetLockState("g"); }));
    // The group has no owner: the walk ends there, and what it removed before is not written.
    EXPECT_TRUE(Throws(bare, [&] { pool.ClearOwnLocks(); }));
    EXPECT_EQ(Pool::HAVE_LOCK, pool.GetLockState("first"));
    pool.ClearInvalidLocks();
    EXPECT_EQ(Pool::UNLOCKED, pool.UnLock("g:b"));
    Store("<< /n 5 >>");
    for (const char* name : {"", "n", "n:a"}) EXPECT_TRUE(Throws(bare, [&] { pool.Lock(name); })) << name;
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
    std::vector<std::unique_ptr<ChildProcess>> workers;
    for (int i = 0; i < 8; ++i) workers.push_back(Child("work", "a", "", Rounds(15, 1000)));
    for (const auto& worker : workers) EXPECT_EQ(0, worker->Wait());
    EXPECT_EQ("<<\n>>", Text());
}

TEST_F(LockPool, AKilledOwnerBlocksNobody) {
    Pool pool(mFile.c_str());
    Pool::SetGuard(B_TRUE);
    for (int i = Rounds(10, 200); i > 0; --i) {
        // Not yet waited for when the lock is asked for, and gone afterwards.
        const auto child = Child("hold", "a", "HAVE_LOCK");
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
        const auto writer = Child("write", "w", "writing");
        // Reads beside the writer, a different number of times each round, so that the kill falls anywhere.
        for (int reads = i % 7; reads >= 0; --reads) ASSERT_EQ(4u, Entry("mine").GetSize());
        writer->Kill();
        writer->Wait();
        ASSERT_EQ(4u, Entry("mine").GetSize());
    }
    pool.ClearInvalidLocks();
    EXPECT_EQ(Pool::UNLOCKED, pool.UnLock("mine"));
    EXPECT_EQ("<<\n>>", Text());
}
