#include <zavbase/foundation/exception_context.h>
#include <zavbase/platform/file.h>

#include <gtest/gtest.h>

#include "tests/support/file_support.h"
#include "tests/support/thrown.h"

TEST(File, RemovesOnceAndRefusesTheRest) {
    const TestFolder folder;
    PutFile(folder.Path("f"), "x");
    ZAV_File file(folder.Path("f").c_str()), copy(file), none;
    EXPECT_TRUE(copy.RemoveFile());
    EXPECT_EQ(0, folder.FileCount());
    EXPECT_FALSE(file.RemoveFile() || none.RemoveFile());
    none = ZAV_File(".");
    EXPECT_FALSE(none.RemoveFile());
}

TEST(File, IsReplacedWholeOrNotAtAll) {
    const TestFolder folder;
    const std::string path = folder.Path("f"), nowhere = folder.Path("no/f");
    PutFile(path, "longer than the new one");
    ZAV_ReplaceFile(path.c_str(), "a\0b", 3);
    EXPECT_EQ(std::string("a\0b", 3), FileText(path));
    const auto e = Thrown<ZAV_FileException>([&] { ZAV_ReplaceFile(nowhere.c_str(), "x", 1); });
    ASSERT_TRUE(e && e->mCode == 4 && e->mOsError != 0);
    EXPECT_EQ(nowhere, ZAV_GetExceptionContext(e.get()).mPath);
    EXPECT_EQ(1, folder.FileCount());
}
