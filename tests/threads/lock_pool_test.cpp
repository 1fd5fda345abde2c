#include <algorithm>
#include <cstdlib>

#include <gtest/gtest.h>

#include <zavbase/os/version.h>
#include <zavbase/zavbase.h>

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

    /// An entry as another program would see it; an empty one if there is none.
    ZAV_UValDict Entry(const char* name) const {
        ZAV_UValDict file;
        file.ReadTextFile(mFile.c_str());
        ZAV_UVal* entry = file.GetUVal(name);
        return entry ? *static_cast<ZAV_UValDict*>(entry) : ZAV_UValDict();
    }

    std::unique_ptr<ChildProcess> Child(const char* role, int count = 0) const {
        return std::make_unique<ChildProcess>(
            LOCK_POOL_CHILD, std::vector<std::string>{role, mFile, "a", std::to_string(count)});
    }
    std::unique_ptr<ChildProcess> Holder(const char* name, const char* answer = "HAVE_LOCK") const {
        const std::vector<std::string> arguments = {"--guard", mFile, "lock", name};
        auto child = std::make_unique<ChildProcess>(ZAVLOCK, arguments);
        EXPECT_EQ(answer, child->ReadLine());
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
    // The columns: nobody, the caller, another process, one that has ended, an entry that is damaged.
    const std::string owners = "-codx";
    const struct {
        Pool::RetVal (Pool::*one)(const char* name);
        void (Pool::*all)();
        const char *answers, *left; // first letters of the results, or an exception; the owners afterwards
    } operations[] = {
        {&Pool::Lock, nullptr, "HAOH!", "ccocx"},
        {&Pool::UnLock, nullptr, "NUON!", "--o-x"},
        {&Pool::GetLockState, nullptr, "NHON!", "-co-x"},
        {nullptr, &Pool::ClearInvalidLocks, "     ", "-co-x"},
        {nullptr, &Pool::ClearOwnLocks, "    !", "--o-x"},
    };
    Pool pool(mFile.c_str());
    pool.Lock("mine");
    const auto child = Holder("theirs");
    Holder("mine", "OTHER_HAS_LOCK");
    std::vector<std::pair<char, ZAV_UValDict>> entries = {
        {'-', ZAV_UValDict()}, {'c', Entry("mine")}, {'o', Entry("theirs")}};
    // A process that has ended is no owner, nor is a later one with its identifier.
    for (const char* field : {"ProcessId", "CreationTimeLow", "CreationTimeHigh"})
        entries.emplace_back('d', Entry("mine")).second.SetValue(field, -77);
    for (const char* field : {"ProcessId", "FileName", "CreationTimeLow", "CreationTimeHigh"})
        entries.emplace_back('x', Entry("mine")).second.DefineUVal(field, UVAL_DOUBLE);
    const auto ownerOf = [&](ZAV_UValDict entry) {
        boolean_t alive = B_FALSE;
        if (entry.GetSize() == 0) return '-';
        if (Throws(bare, [&] { alive = Pool::IsOwnerAlive(entry); })) return 'x';
        if (!alive) return 'd';
        return entry.GetValue("ProcessId", 0UL) == child->Id() ? 'o' : 'c';
    };
    const auto check = [&](const auto& operation, const auto& a, const auto& b) {
        SCOPED_TRACE(testing::Message() << &operation - operations << a.first << b.first);
        ZAV_UValDict file;
        file.DefineUVal("number", UVAL_LONG);
        if (a.first != '-') *file.DefineUValDict("a") = a.second;
        if (b.first != '-') *file.DefineUValDict("b") = b.second;
        file.WriteTextFile(mFile.c_str());
        PutFile(mFile, "% is lost when the file is written\n" + Text());
        char answer = ' ';
        const bool thrown = Throws(bare, [&] {
            if (operation.one)
                answer = *Pool::RetVal2String((pool.*operation.one)("a"));
            else
                (pool.*operation.all)();
        });
        const size_t wasA = owners.find(a.first), wasB = owners.find(b.first);
        EXPECT_EQ(operation.answers[operation.all ? std::max(wasA, wasB) : wasA], thrown ? '!' : answer);
        // What an operation that throws has removed before is not written.
        const char leftA = thrown ? a.first : operation.left[wasA];
        const char leftB = thrown || operation.one ? b.first : operation.left[wasB];
        EXPECT_EQ(leftA, ownerOf(Entry("a")));
        EXPECT_EQ(leftB, ownerOf(Entry("b")));
        EXPECT_EQ(leftA == a.first && leftB == b.first, Text()[0] == '%');
        EXPECT_NE(std::string::npos, Text().find("/number"));
    };
    for (const auto& a : entries)
        for (const auto& b : entries)
            for (const auto& operation : operations) check(operation, a, b);
}

TEST_F(LockPool, OnWindows95TheImageNameStandsForTheTime) {
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
    entry.SetValue("FileName", "LOCK_POOL_TEST");
    EXPECT_FALSE(Pool::IsOwnerAlive(entry));
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
    EXPECT_TRUE(Throws(bare, [&] { pool.GetLockState("g"); })) << "a group has no owner";
    EXPECT_TRUE(Throws(bare, [&] { pool.ClearOwnLocks(); }));
    EXPECT_EQ(Pool::UNLOCKED, pool.UnLock("g:b"));
    PutFile(mFile, "<< /n 5 >>");
    for (const char* name : {"", "n", "n:a"}) EXPECT_TRUE(Throws(bare, [&] { pool.Lock(name); })) << name;
}

TEST_F(LockPool, AFileThatCannotBeIsAFileException) {
    PutFile(mFile, "<< /a");
    const std::string guarded = mFolder.Path("guarded");
    std::filesystem::create_directory(guarded + ".guard");
    for (const boolean_t guard : {B_FALSE, B_TRUE}) {
        Pool::SetGuard(guard);
        for (const std::string& name : {mFile, mFolder.Path("no/pool"), mFolder.Path()})
            EXPECT_TRUE(Throws(fileFailure, [&] { Pool(name.c_str()).Lock("a"); })) << name;
    }
    EXPECT_TRUE(Throws(fileFailure, [&] { Pool(guarded.c_str()).Lock("a"); }));
    EXPECT_EQ("<< /a", Text());
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
    EXPECT_EQ("<< >>", FileText(victim));

    std::filesystem::create_symlink(victim, mFile + ".guard");
    Pool::SetGuard(B_TRUE);
    EXPECT_TRUE(Throws(fileFailure, [&] { pool.UnLock("a"); }));
}

TEST_F(LockPool, WithTheGuardThereAreNeverTwoOwners) {
    std::vector<std::unique_ptr<ChildProcess>> workers;
    for (int i = 0; i < 8; ++i) workers.push_back(Child("work", Rounds(15, 1000)));
    for (const auto& worker : workers) EXPECT_EQ(0, worker->Wait());
    EXPECT_EQ("<<\n>>", Text());
}

TEST_F(LockPool, AKilledOwnerBlocksNobody) {
    Pool pool(mFile.c_str());
    Pool::SetGuard(B_TRUE);
    for (int i = Rounds(10, 200); i > 0; --i) {
        // Not yet waited for when the lock is asked for, and gone afterwards.
        const auto child = Holder("a");
        child->Kill();
        if (i % 2) child->Wait();
        while (pool.GetLockState("a") == Pool::OTHER_HAS_LOCK) {
        }
        ASSERT_EQ(Pool::HAVE_LOCK, pool.Lock("a"));
        ASSERT_EQ(Pool::UNLOCKED, pool.UnLock("a"));
    }
}

TEST_F(LockPool, AKilledWriterLeavesTheOldOrTheNewContent) {
    Pool pool(mFile.c_str());
    pool.Lock("mine");
    for (int i = Rounds(20, 1000); i > 0; --i) {
        const auto writer = Child("write");
        ASSERT_EQ("writing", writer->ReadLine());
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
