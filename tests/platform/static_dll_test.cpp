#include <zavbase/platform/shared_lib.h>

#include <zavbase/values/value_dict.h>

#include <gtest/gtest.h>

#include "tests/support/thrown.h"

namespace {

ZAV_Object* Create(unsigned short) { return new ZAV_SystemString("made here"); }
void Free(ZAV_Object* o) { delete o; }
void Definitions(ZAV_Object* dict, boolean_t, boolean_t) {
    static_cast<ZAV_UValDict*>(dict)->DefineUValDict("defined");
}

} // namespace

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

TEST(StaticDll, UnknownAndIncompleteOnesAreInvalidFiles) {
    ZAV_StaticDll noCreate("c_static_dll", nullptr, Free, Definitions);
    ZAV_StaticDll noFree("f_static_dll", Create, nullptr, Definitions);
    ZAV_StaticDll noDefinitions("d_static_dll", Create, Free, nullptr);
    for (const char* name : {"unknown_static_dll", "c_static_dll", "f_static_dll", "d_static_dll"}) {
        ZAV_SharedLib lib(name, "");
        const auto e = Thrown<ZAV_FileException>([&] { lib.Load(); });
        EXPECT_TRUE(e && e->mCode == 2 && e->mOsError == 0 && !lib.IsLoaded()) << name;
    }
}
