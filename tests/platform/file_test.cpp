#include <zavbase/platform/file.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

TEST(File, RemovesOnceAndRefusesTheRest) {
    const char* path = "file_test.tmp";
    std::ofstream(path) << "x";
    ZAV_File file(path), copy(file), none;
    EXPECT_TRUE(copy.RemoveFile());
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_FALSE(file.RemoveFile());
    EXPECT_FALSE(none.RemoveFile());
    none = ZAV_File(".");
    EXPECT_FALSE(none.RemoveFile());
}
