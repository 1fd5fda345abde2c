#include "text_support.h"

#include <gtest/gtest.h>

#include "../support/fake_file.h"
#include <zavbase/strings/system_string.h>

namespace {

TEST(ValueDictFile, AFullDiskLeavesTheOldFile) {
    fake_file::Disk& disk = fake_file::TheDisk();
    const std::string large(60000, 'x');
    const auto dict = DictOf("<< /b [ 1 2 ] /s [ (" + large + ") (" + large + ") (" + large + ") ] >>");
    for (auto write : {&ZAV_UValDict::WriteTextFile, &ZAV_UValDict::WriteBinFile}) {
        disk = fake_file::Disk();
        (*dict.*write)("whole");
        const size_t size = disk.mFiles["whole"].size();
        for (size_t room : {size_t{0}, size_t{1}, size_t{32768}, size_t{65536}, size - 1, size}) {
            disk.mFiles["f"] = "old";
            disk.mRoom = room;
            disk.mCommitFails = room == size;
            EXPECT_EQ(FileCodeOf([&] { (*dict.*write)("f"); }), 7) << room;
            EXPECT_EQ(disk.mFiles["f"], "old");
            EXPECT_EQ(disk.mOpenReplacements, 0);
        }
        disk.mCommitFails = false;
        EXPECT_EQ(FileCodeOf([&] { (*dict.*write)("f"); }), 0);
        EXPECT_EQ(disk.mFiles["f"], disk.mFiles["whole"]);
    }
}

TEST(ValueDictFile, ReadingTellsWhatFailed) {
    fake_file::TheDisk().mFiles["f"] = "unreadable";
    ZAV_UValDict dict(16);
    EXPECT_EQ(FileCodeOf([&] { dict.ReadFile("f"); }), 6);
    EXPECT_EQ(FileCodeOf([&] { dict.ReadFile("missing"); }), 3);
}

} // namespace
