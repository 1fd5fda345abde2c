#include "fake_file.h"

#include <cstdlib>
#include <cstring>

#include <zavbase/os/file.h>

namespace fake_file {

Disk& TheDisk() {
    static Disk disk;
    return disk;
}

} // namespace fake_file

using fake_file::TheDisk;

namespace zav_os {

namespace {
constexpr uint32_t FAILURE = 5;
std::string gContents; // of the one replacement that is open
} // namespace

uint32_t CurrentFolder(char*, size_t) { return FAILURE; }
uint32_t ChangeFolder(const char*) { return FAILURE; }
uint32_t DeleteOneFile(const char* path) { return TheDisk().mFiles.erase(path) ? 0 : FAILURE; }
bool FileExists(const char* path) { return TheDisk().mFiles.count(path) != 0; }

ReadStatus ReadWholeFile(const char* path, size_t most, FileBytes* bytes) {
    *bytes = {nullptr, 0};
    if (!FileExists(path)) return READ_NOT_OPEN;
    const std::string& text = TheDisk().mFiles[path];
    if (text.size() > most) return READ_TOO_LARGE;
    if (text == "unreadable") return READ_FAILED;
    *bytes = {static_cast<char*>(std::malloc(text.size() + 1)), text.size()};
    std::memcpy(bytes->mData, text.c_str(), text.size() + 1);
    return READ_DONE;
}

void FreeFileBytes(FileBytes* bytes) { std::free(bytes->mData); }

FileReplacement::FileReplacement() : mTarget(nullptr), mTemporary(nullptr), mHandle(-1) {}
FileReplacement::~FileReplacement() { Discard(); }

void FileReplacement::Discard() {
    if (mHandle != -1) --TheDisk().mOpenReplacements;
    mHandle = -1;
    std::free(mTarget);
    mTarget = nullptr;
}

uint32_t FileReplacement::Open(const char* path, FileLinks) {
    mTarget = static_cast<char*>(std::malloc(std::strlen(path) + 1));
    std::strcpy(mTarget, path);
    mHandle = ++TheDisk().mOpenReplacements;
    gContents.clear();
    return 0;
}

uint32_t FileReplacement::Write(const void* data, size_t size) {
    if (gContents.size() + size > TheDisk().mRoom) return FAILURE;
    gContents.append(static_cast<const char*>(data), size);
    return 0;
}

uint32_t FileReplacement::Commit() { return Finish(false); }
uint32_t FileReplacement::CommitNew() { return Finish(true); }

uint32_t FileReplacement::Finish(bool mustBeNew) {
    bool fails = TheDisk().mCommitFails || (mustBeNew && FileExists(mTarget));
    if (!fails) TheDisk().mFiles[mTarget] = gContents;
    Discard();
    return fails ? FAILURE : 0;
}

} // namespace zav_os
