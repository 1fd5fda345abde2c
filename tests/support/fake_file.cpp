#include "fake_file.h"

#include <zavbase/os/file.h>

using fake_file::TheDisk;

fake_file::Disk& fake_file::TheDisk() {
    static Disk disk;
    return disk;
}

namespace zav_os {

namespace {
constexpr uint32_t FAILURE = 5;
std::string gTarget, gContents; // of the one replacement that is open
} // namespace

uint32_t CurrentFolder(char*, size_t) { return FAILURE; }
uint32_t ChangeFolder(const char*) { return FAILURE; }
uint32_t DeleteOneFile(const char*) { return FAILURE; }
bool FileExists(const char* path) { return TheDisk().mFiles.count(path) != 0; }

ReadStatus ReadWholeFile(const char* path, size_t, FileBytes* bytes) {
    *bytes = {nullptr, 0};
    if (!FileExists(path)) return READ_NOT_OPEN;
    std::string& text = TheDisk().mFiles[path];
    if (text == "unreadable") return READ_FAILED;
    *bytes = {text.data(), text.size()};
    return READ_DONE;
}

void FreeFileBytes(FileBytes*) {}

FileReplacement::FileReplacement() : mTarget(nullptr), mTemporary(nullptr), mHandle(-1) {}
FileReplacement::~FileReplacement() { Discard(); }

void FileReplacement::Discard() {
    if (mHandle != -1) --TheDisk().mOpenReplacements;
    mHandle = -1;
}

uint32_t FileReplacement::Open(const char* path, FileLinks) {
    gTarget = path;
    gContents.clear();
    mHandle = ++TheDisk().mOpenReplacements;
    return 0;
}

uint32_t FileReplacement::Write(const void* data, size_t size) {
    if (gContents.size() + size > TheDisk().mRoom) return FAILURE;
    gContents.append(static_cast<const char*>(data), size);
    return 0;
}

uint32_t FileReplacement::Commit() { return Finish(false); }
uint32_t FileReplacement::CommitNew() { return Finish(true); }

uint32_t FileReplacement::Finish(bool) {
    Discard();
    if (TheDisk().mCommitFails) return FAILURE;
    TheDisk().mFiles[gTarget] = gContents;
    return 0;
}

} // namespace zav_os
