// A disk in memory, which can be full and can fail, stands in for that of the operating system.
#include "text_support.h"

#include <gtest/gtest.h>

#include <zavbase/os/file.h>

namespace {

constexpr uint32_t FAILURE = 5;

std::map<std::string, std::string> gFiles;
size_t gRoom = static_cast<size_t>(-1); // bytes that one new file can take
bool gCommitFails = false;
int gOpenReplacements = 0;      // neither committed nor given up
std::string gTarget, gContents; // of the one replacement that is open

} // namespace

namespace zav_os {

uint32_t DeleteOneFile(const char*) { return FAILURE; }
bool FileExists(const char* path) { return gFiles.count(path) != 0; }

ReadStatus ReadWholeFile(const char* path, size_t, FileBytes* bytes) {
    *bytes = {nullptr, 0};
    if (!FileExists(path)) return READ_NOT_OPEN;
    if (gFiles[path] == "unreadable") return READ_FAILED;
    *bytes = {gFiles[path].data(), gFiles[path].size()};
    return READ_DONE;
}

void FreeFileBytes(FileBytes*) {}

FileReplacement::FileReplacement() : mTarget(nullptr), mTemporary(nullptr), mHandle(-1) {}
FileReplacement::~FileReplacement() { Discard(); }

void FileReplacement::Discard() {
    if (mHandle != -1) --gOpenReplacements;
    mHandle = -1;
}

uint32_t FileReplacement::Open(const char* path, FileLinks) {
    gTarget = path;
    gContents.clear();
    mHandle = ++gOpenReplacements;
    return 0;
}

uint32_t FileReplacement::Write(const void* data, size_t size) {
    if (gContents.size() + size > gRoom) return FAILURE;
    gContents.append(static_cast<const char*>(data), size);
    return 0;
}

uint32_t FileReplacement::Commit() { return Finish(false); }
uint32_t FileReplacement::CommitNew() { return Finish(true); }

uint32_t FileReplacement::Finish(bool) {
    Discard();
    if (gCommitFails) return FAILURE;
    gFiles[gTarget] = gContents;
    return 0;
}

} // namespace zav_os

TEST(ValueDictFile, AFullDiskLeavesTheOldFile) {
    const std::string large(60000, 'x');
    const auto dict = DictOf("<< /b [ 1 2 ] /s [ (" + large + ") (" + large + ") (" + large + ") ] >>");
    for (auto write : {&ZAV_UValDict::WriteTextFile, &ZAV_UValDict::WriteBinFile}) {
        const auto codeOf = [&](const char* path) { return FileCodeOf([&] { (*dict.*write)(path); }); };
        EXPECT_EQ(codeOf("whole"), 0);
        const size_t size = gFiles["whole"].size();
        for (size_t room : {size_t{0}, size_t{1}, size_t{32768}, size_t{65536}, size - 1, size}) {
            gFiles["f"] = "old";
            gRoom = room;
            gCommitFails = room == size;
            EXPECT_EQ(codeOf("f"), 7) << room;
            EXPECT_EQ(gFiles["f"], "old");
            EXPECT_EQ(gOpenReplacements, 0);
        }
        gCommitFails = false;
        EXPECT_EQ(codeOf("f"), 0);
        EXPECT_EQ(gFiles["f"], gFiles["whole"]);
        gRoom = static_cast<size_t>(-1);
    }
}

TEST(ValueDictFile, ReadingTellsWhatFailed) {
    gFiles["f"] = "unreadable";
    ZAV_UValDict dict(16);
    EXPECT_EQ(FileCodeOf([&] { dict.ReadFile("f"); }), 6);
    EXPECT_EQ(FileCodeOf([&] { dict.ReadFile("missing"); }), 3);
}
