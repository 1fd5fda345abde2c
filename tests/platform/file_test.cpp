#include <zavbase/platform/file.h>

#include <gtest/gtest.h>

#include "tests/support/file_support.h"

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
