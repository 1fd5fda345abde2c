#ifndef ZAVBASE_TESTS_THREADS_LOCK_POOL_FIXTURE_H
#define ZAVBASE_TESTS_THREADS_LOCK_POOL_FIXTURE_H

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <zavbase/foundation/exception.h>
#include <zavbase/threads/lock_pool.h>

#include "tests/support/child_process.h"

typedef ZAV_ResourceLockPool Pool;

/// A pool file in a folder of its own.
class LockPool : public ::testing::Test {
protected:
    LockPool() : mFolder(::testing::TempDir() + "lock_pool_test." + FolderSuffix()) {
        std::filesystem::remove_all(mFolder);
        std::filesystem::create_directories(mFolder);
        mFile = mFolder + "/pool";
    }
    ~LockPool() override {
        Pool::SetGuard(B_FALSE);
        std::filesystem::remove_all(mFolder);
    }

    static std::string FolderSuffix() { return ::testing::UnitTest::GetInstance()->current_test_info()->name(); }

    std::string Text() const {
        std::ifstream file(mFile, std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }

    void Store(const std::string& text) const { std::ofstream(mFile, std::ios::binary) << text; }

    /// An entry of the file as another program would see it.
    ZAV_UValDict Entry(const char* name) const {
        ZAV_UValDict file(16);
        file.ReadTextFile(mFile.c_str());
        ZAV_UVal* entry = file.GetUVal(name);
        return entry ? *static_cast<ZAV_UValDict*>(entry) : ZAV_UValDict(16);
    }

    void Change(const ZAV_DictPath& path, ZAV_UValType type, const char* text) const {
        ZAV_UValDict file(16);
        file.ReadTextFile(mFile.c_str());
        file.DefineUVal(path, type)->SetStrValue(text, 0);
        file.WriteTextFile(mFile.c_str());
    }

    std::string mFolder, mFile;
};

/// Whether the call throws an exception of exactly this class.
template <class Call> bool Throws(const ZAV_RuntimeClass& type, Call call) {
    try {
        call();
    } catch (ZAV_Exception* e) {
        const bool same = e->GetRuntimeClass() == &type;
        e->Delete();
        return same;
    }
    return false;
}

#endif
