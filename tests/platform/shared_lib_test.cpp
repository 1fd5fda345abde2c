#include <zavbase/platform/shared_lib.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "tests/support/printed.h"
#include "tests/support/thrown.h"

namespace {

namespace fs = std::filesystem;

std::string Folder() { return fs::absolute(PLUGIN_FOLDER).string(); }

/// Each test leaves the current directory as it found it, also when it means to change it.
class SharedLib : public ::testing::Test {
protected:
    SharedLib() : mHome(fs::current_path()), mEmpty(mHome / "shared_lib_test_empty") {
        fs::create_directory(mEmpty);
    }
    ~SharedLib() override {
        fs::current_path(mHome);
        fs::remove_all(mEmpty);
    }

    fs::path mHome, mEmpty;
};

bool IsInProcess(const std::string& name) {
    return ZAV_StaticDll::GetStaticDll((name + " is loaded").c_str()) != nullptr;
}

/// "code/number" of the exception that loading ends with, "loaded" without one.
std::string Outcome(ZAV_SharedLib& lib, bool strict = false) {
    const auto e = Thrown<ZAV_FileException>([&] { strict ? lib.LoadStrict() : lib.Load(); });
    return e ? std::to_string(e->mCode) + "/" + std::to_string(e->mOsError) : "loaded";
}

std::string Outcome(const std::string& name, const std::string& folder, bool strict = false) {
    ZAV_SharedLib lib(name.c_str(), folder.c_str());
    const std::string outcome = Outcome(lib, strict);
    EXPECT_EQ(outcome == "loaded", lib.IsLoaded() == B_TRUE) << name;
    return outcome;
}

/// The numbers of the two loaders for one failure.
::testing::AssertionResult IsOneOf(const std::string& outcome, const std::string& a, const std::string& b) {
    if (outcome == a || outcome == b) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << outcome;
}

} // namespace

TEST_F(SharedLib, LivesFromLoadToRelease) {
    ZAV_SharedLib lib;
    lib.Load("plugin_whole", Folder().c_str());
    EXPECT_TRUE(lib.IsLoaded() && IsInProcess("plugin_whole"));
    EXPECT_EQ(mHome, fs::current_path());
    EXPECT_EQ(fs::path(Folder()) / "plugin_whole" PLUGIN_EXTENSION,
              fs::path(static_cast<const char*>(lib.GetFullPath().GetSystemString())));

    ZAV_Object* object = lib.CreateObjectInstance(1);
    lib.Load("elsewhere", "nowhere");
    EXPECT_EQ("plugin_whole with 1", Printed(object));
    lib.FreeObjectInstance(object);
    EXPECT_EQ(nullptr, lib.CreateObjectInstance(9));

    lib.Release();
    EXPECT_FALSE(lib.IsLoaded() || IsInProcess("plugin_whole"));
    lib.Release();
}

TEST_F(SharedLib, IsSoughtInThreeSteps) {
    fs::current_path(mEmpty);
    EXPECT_EQ("loaded", Outcome(Folder() + "/plugin_whole", ""));
    EXPECT_EQ("loaded", Outcome("plugin_whole", fs::relative(Folder()).string()));
    EXPECT_TRUE(IsOneOf(Outcome("plugin_whole", "no_such_folder"), "1/2", "1/126"));
    EXPECT_TRUE(IsOneOf(Outcome("", ""), "1/2", "1/126"));
    fs::current_path(Folder());
    EXPECT_EQ("loaded", Outcome("plugin_whole", "no_such_folder"));
    EXPECT_EQ("loaded", Outcome("plugin_whole", ""));
    // A bare name with a "." in it gets no extension, so only the full path finds this one.
    fs::copy_file("plugin_whole" PLUGIN_EXTENSION, mEmpty / "plugin.v2" PLUGIN_EXTENSION);
    fs::current_path(mHome);
    EXPECT_EQ("loaded", Outcome("plugin.v2", mEmpty.string()));
}

TEST_F(SharedLib, StrictLoadTakesTheAbsolutePathOnly) {
    EXPECT_EQ("loaded", Outcome("plugin_whole", Folder(), true));
    fs::current_path(Folder());
    EXPECT_EQ("1/2", Outcome("plugin_whole", "", true));
    EXPECT_EQ("1/2", Outcome("plugin_whole", ".", true));
    EXPECT_TRUE(IsOneOf(Outcome("plugin_whole", mEmpty.string(), true), "1/2", "1/126"));
}

TEST_F(SharedLib, WhatIsNoModuleIsReported) {
    std::ofstream(mEmpty / "text" PLUGIN_EXTENSION) << "This is no module.\n";
    fs::create_directory(mEmpty / "folder" PLUGIN_EXTENSION);
    for (const char* name : {"text", "folder"}) {
        EXPECT_TRUE(IsOneOf(Outcome(name, mEmpty.string()), "1/8", "1/126")) << name;
        EXPECT_EQ('1', Outcome(name, mEmpty.string(), true)[0]) << name;
    }
    EXPECT_EQ(mHome, fs::current_path());
}

TEST_F(SharedLib, AMissingEntryPointLeavesTheModuleHeld) {
    for (const std::string name : {"plugin_no_create", "plugin_no_free", "plugin_no_definitions"}) {
        ZAV_SharedLib lib(name.c_str(), Folder().c_str());
        EXPECT_TRUE(IsOneOf(Outcome(lib), "2/22", "2/127")) << name;
        EXPECT_TRUE(!lib.IsLoaded() && IsInProcess(name)) << name;
        EXPECT_TRUE(IsOneOf(Outcome(lib, true), "2/22", "2/127")) << name;
        lib.Release();
        EXPECT_FALSE(IsInProcess(name)) << name;
    }
    ZAV_SharedLib lib("plugin_no_free", Folder().c_str());
    Outcome(lib);
    lib.Load("plugin_whole", Folder().c_str());
    EXPECT_FALSE(IsInProcess("plugin_no_free"));
    EXPECT_TRUE(lib.IsLoaded());
}

TEST_F(SharedLib, CopiesShareTheModuleUntilTheLastLetsGo) {
    ZAV_SharedLib assigned("plugin_no_free", Folder().c_str());
    Outcome(assigned);
    {
        ZAV_SharedLib first("plugin_whole", Folder().c_str());
        first.Load();
        ZAV_SharedLib copy(first);
        assigned = copy;
        assigned = assigned;
        EXPECT_FALSE(IsInProcess("plugin_no_free"));
        first.Release();
        EXPECT_TRUE(copy.IsLoaded());
    }
    ZAV_Object* object = assigned.CreateObjectInstance(1);
    EXPECT_EQ("plugin_whole with 1", Printed(object));
    assigned.FreeObjectInstance(object);
    assigned = ZAV_SharedLib();
    EXPECT_FALSE(IsInProcess("plugin_whole") || assigned.IsLoaded());
}

TEST_F(SharedLib, ExceptionsOfAModuleReachTheHost) {
    ZAV_SharedLib lib("plugin_whole", Folder().c_str());
    lib.Load();
    for (int i = 0; i < 100; ++i) {
        const auto e = Thrown<ZAV_FileException>([&] { lib.CreateObjectInstance(2); });
        ASSERT_TRUE(e && e->IsKindOf(&ZAV_FileException::classZAV_FileException));
        EXPECT_EQ("File exception: ReadError", Printed(e.get()));
        EXPECT_THROW(lib.CreateObjectInstance(3), std::runtime_error);
    }
}

TEST_F(SharedLib, LoadsAndReleasesAThousandTimes) {
    ZAV_SharedLib lib("plugin_whole", Folder().c_str());
    for (int i = 0; i < 1000; ++i) {
        lib.Load();
        lib.FreeObjectInstance(lib.CreateObjectInstance(1));
        lib.Release();
        ASSERT_FALSE(IsInProcess("plugin_whole"));
    }
}
