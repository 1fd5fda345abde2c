#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include <stdexcept>

#include <zavbase/foundation/exception_context.h>

#include "tests/support/file_support.h"
#include "tests/support/printed.h"
#include "tests/support/thrown.h"

#if __has_include(<sys/fsuid.h>)
#include <sys/fsuid.h>
#else
static void setfsuid(unsigned) {}
#endif

namespace {

namespace fs = std::filesystem;

/// Each test leaves the current directory as it found it, also when it means to change it.
class SharedLib : public ::testing::Test {
protected:
    ~SharedLib() override { fs::current_path(mHome); }

    const fs::path mHome = fs::current_path();
    const std::string mPlugins = fs::absolute(PLUGIN_FOLDER).string();
    const TestFolder mFolder;
};

ZAV_Object* Create(unsigned short) { return new ZAV_SystemString("made here"); }
void Free(ZAV_Object* o) { delete o; }
void Definitions(ZAV_Object* dict, boolean_t, boolean_t) {
    static_cast<ZAV_UValDict*>(dict)->DefineUValDict("defined");
}

bool IsInProcess(const std::string& name) {
    return ZAV_StaticDll::GetStaticDll((name + " is loaded").c_str()) != nullptr;
}

/// "code/number" of the exception that loading ends with, "loaded" without one.
/// The line for a user names the module.
std::string Outcome(ZAV_SharedLib& lib, bool strict = false) {
    const auto e = Thrown<ZAV_FileException>([&] { strict ? lib.LoadStrict() : lib.Load(); });
    const std::string line = e ? ZAV_ExceptionLine(e.get()).Ptr() : "";
    EXPECT_TRUE(!e || line.find(std::string(lib.GetFullPath().GetSystemString().Ptr()) + ": ") == 0) << line;
    EXPECT_EQ(!e, lib.IsLoaded() == B_TRUE);
    return e ? std::to_string(e->mCode) + "/" + std::to_string(e->mOsError) : "loaded";
}

} // namespace

TEST_F(SharedLib, LivesFromLoadToReleaseAThousandTimes) {
    ZAV_SharedLib lib;
    for (int i = 0; i < 1000; ++i) {
        lib.Load("plugin_whole", mPlugins.c_str());
        ASSERT_TRUE(lib.IsLoaded() && IsInProcess("plugin_whole"));
        lib.FreeObjectInstance(lib.CreateObjectInstance(1));
        ZAV_Object* object = lib.CreateObjectInstance(1);
        lib.Load("elsewhere", "nowhere"); // since it is loaded, nothing happens
        ASSERT_EQ("plugin_whole with 1", Printed(object));
        lib.FreeObjectInstance(object);
        // What a module throws reaches its host.
        const auto e = Thrown<ZAV_FileException>([&] { lib.CreateObjectInstance(2); });
        ASSERT_TRUE(e && e->IsKindOf(&ZAV_FileException::classZAV_FileException) && e->mCode == 6);
        EXPECT_THROW(lib.CreateObjectInstance(3), std::runtime_error);
        lib.Release();
        ASSERT_FALSE(lib.IsLoaded() || IsInProcess("plugin_whole"));
    }
    lib.Release();
}

TEST_F(SharedLib, IsSoughtInThreeStepsAndStrictlyByItsAbsolutePath) {
    const std::string whole = mPlugins + "/plugin_whole", empty = mFolder.Path();
    PutFile(mFolder.Path("text" PLUGIN_EXTENSION), "This is no module.\n");
    fs::create_directory(mFolder.Path("folder" PLUGIN_EXTENSION));
    fs::copy_file(whole + PLUGIN_EXTENSION, mFolder.Path("plugin.v2" PLUGIN_EXTENSION));
    const std::string home = mHome.string(), relative = fs::relative(mPlugins).string();
    const char* const absent = "1/2 1/126"; // the numbers of the two loaders
    const char* const invalid = "1/2 1/5 1/8 1/126 1/193";
    ZAV_StaticDll noCreate("c_static_dll", nullptr, Free, Definitions);
    ZAV_StaticDll noFree("f_static_dll", Create, nullptr, Definitions);
    ZAV_StaticDll noDefinitions("d_static_dll", Create, Free, nullptr);
    struct {
        std::string mCurrent, mName, mFolder;
        const char *mOutcome, *mStrict;
    } const rows[] = {
        {empty, whole, "", "loaded", "loaded"},
        {home, "plugin_whole", relative, "loaded", "1/2"},
        {empty, "plugin_whole", "no_such_folder", absent, "1/2"},
        {empty, "plugin_whole", empty, absent, absent},
        {empty, "", "", absent, "1/2"},
        {mPlugins, "plugin_whole", "no_such_folder", "loaded", "1/2"},
        {mPlugins, "plugin_whole", "", "loaded", "1/2"},
        {mPlugins, "plugin_whole", ".", "loaded", "1/2"},
        {mPlugins, "plugin_whole", mPlugins, "loaded", "loaded"},
        // A bare name with a "." in it gets no extension, so only the full path finds this one.
        {mPlugins, "plugin.v2", empty, "loaded", "loaded"},
        {mPlugins, "text", empty, "1/8 1/126", invalid},
        {mPlugins, "folder", empty, "1/8 1/126", invalid},
        {home, "unknown_static_dll", "", "2/0", "2/0"},
        {home, "c_static_dll", "", "2/0", "2/0"},
        {home, "f_static_dll", "", "2/0", "2/0"},
        {home, "d_static_dll", "", "2/0", "2/0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mName + " in " + row.mFolder + " from " + row.mCurrent);
        fs::current_path(row.mCurrent);
        const fs::path current = fs::current_path();
        for (const bool strict : {false, true}) {
            ZAV_SharedLib lib(row.mName.c_str(), row.mFolder.c_str());
            const std::string outcome = Outcome(lib, strict), expected = strict ? row.mStrict : row.mOutcome;
            EXPECT_TRUE((expected + " ").find(outcome + " ") != std::string::npos) << outcome;
            EXPECT_EQ(current, fs::current_path());
            const char* path = lib.GetFullPath().GetSystemString();
            EXPECT_EQ(fs::path(row.mFolder) / (row.mName + PLUGIN_EXTENSION), fs::path(path));
        }
    }
}

TEST_F(SharedLib, AMissingEntryPointLeavesTheModuleHeld) {
    for (const std::string name : {"plugin_no_create", "plugin_no_free", "plugin_no_definitions"}) {
        SCOPED_TRACE(name);
        ZAV_SharedLib lib(name.c_str(), mPlugins.c_str());
        for (const bool strict : {false, true}) {
            const std::string outcome = Outcome(lib, strict);
            EXPECT_TRUE(outcome == "2/22" || outcome == "2/127") << outcome;
            EXPECT_TRUE(IsInProcess(name));
        }
        lib.Load("plugin_whole", mPlugins.c_str());
        EXPECT_TRUE(lib.IsLoaded());
        EXPECT_FALSE(IsInProcess(name));
    }
}

TEST_F(SharedLib, CopiesShareTheModuleUntilTheLastLetsGo) {
    ZAV_SharedLib assigned("plugin_no_free", mPlugins.c_str());
    Outcome(assigned);
    {
        ZAV_SharedLib first("plugin_whole", mPlugins.c_str());
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

TEST_F(SharedLib, IsHeldAlsoWithoutAName) {
    // A folder that no code page of Windows can name, and elsewhere a file that is gone.
    const fs::path folder = fs::path(mFolder.Path()) / u8"\u0416\u6587";
    const fs::path file = folder / "plugin_whole" PLUGIN_EXTENSION;
    fs::create_directory(folder);
    fs::copy_file(mPlugins + "/plugin_whole" PLUGIN_EXTENSION, file);
    fs::current_path(folder);
    ZAV_SharedLib lib("plugin_whole", "");
    ASSERT_EQ("loaded", Outcome(lib));
    std::error_code inUse;
    fs::remove(file, inUse);
    ZAV_SharedLib copy(lib);
    lib.Release();
    EXPECT_TRUE(copy.IsLoaded() && IsInProcess("plugin_whole"));
    fs::current_path(mHome);
}

TEST_F(SharedLib, StaysWhereTheWayBackIsClosed) {
    // Closed by its name on Windows, by its mode elsewhere, once the process is not the administrator's.
    const fs::path home = fs::path(mFolder.Path()) / u8"\u0416\u6587";
    fs::create_directory(home);
    fs::current_path(home);
    fs::permissions(home, fs::perms::none);
    const fs::path here = fs::current_path();
    setfsuid(65534);
    ZAV_SharedLib lib("plugin_whole", mPlugins.c_str());
    Outcome(lib);
    EXPECT_EQ(here, fs::current_path());
    setfsuid(0);
    fs::permissions(home, fs::perms::owner_all);
    fs::current_path(mHome);
}

TEST(StaticDll, TheRegistryComesAndGoesWithItsModules) {
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(nullptr, ZAV_StaticDll::theDLLRegistry);
        ZAV_StaticDll a("a_static_dll", Create, Free, Definitions);
        {
            ZAV_StaticDll again("a_static_dll", nullptr, nullptr, nullptr);
            ZAV_StaticDll b("b_static_dll", Create, Free, nullptr);
            EXPECT_EQ(&a, ZAV_StaticDll::GetStaticDll("a_static_dll"));
            EXPECT_EQ(&b, ZAV_StaticDll::GetStaticDll("b_static_dll"));
            EXPECT_EQ(nullptr, ZAV_StaticDll::GetStaticDll("A_static_dll"));
            // Neither a copy nor an assignment disturbs who is listed.
            ZAV_StaticDll copy(b);
            again = a;
            EXPECT_EQ(3u, ZAV_StaticDll::theDLLRegistry->Size());
        }
        EXPECT_EQ(1u, ZAV_StaticDll::theDLLRegistry->Size());
    }
}

TEST(StaticDll, IsUsedLikeAnyModule) {
    ZAV_StaticDll module("my_static_dll_module", Create, Free, Definitions);
    ZAV_SharedLib lib("my_static_dll_module", "ignored"), strict(lib);
    lib.Load();
    strict.LoadStrict();
    ZAV_SharedLib copy(lib);
    lib.Release();
    ASSERT_TRUE(!lib.IsLoaded() && copy.IsLoaded() && strict.IsLoaded());
    ZAV_Object* object = copy.CreateObjectInstance(1);
    EXPECT_STREQ("ZAV_SystemString", object->ClassName());
    copy.FreeObjectInstance(object);
    ZAV_UValDict dict(16);
    lib.GetI18nDefs(&dict, B_TRUE, B_TRUE); // which Release leaves
    EXPECT_NE(nullptr, dict.GetUVal("defined"));
}
