#ifndef ZAVBASE_TESTS_THREADS_LOCK_POOL_FIXTURE_H
#define ZAVBASE_TESTS_THREADS_LOCK_POOL_FIXTURE_H

#include <gtest/gtest.h>

#include <zavbase/threads/lock_pool.h>

#include "tests/support/child_process.h"
#include "tests/support/file_support.h"
#include "tests/support/thrown.h"

typedef ZAV_ResourceLockPool Pool;

/// A pool file in a folder of its own.
class LockPool : public ::testing::Test {
protected:
    ~LockPool() override { Pool::SetGuard(B_FALSE); }

    std::string Text() const { return FileText(mFile); }
    void Store(const std::string& text) const { PutFile(mFile, text); }

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

    TestFolder mFolder;
    const std::string mFile = mFolder.Path("pool");
};

/// Whether the call throws an exception of exactly this class.
template <class Call>
bool Throws(const ZAV_RuntimeClass& type, Call call) {
    const auto thrown = Thrown<ZAV_Exception>(call);
    return thrown && thrown->GetRuntimeClass() == &type;
}

#endif
