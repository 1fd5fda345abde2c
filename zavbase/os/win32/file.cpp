#include <zavbase/os/file.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <windows.h>

namespace zav_os {

namespace {

// 0 would say that all went well.
uint32_t Failure() {
    DWORD code = GetLastError();
    return code ? static_cast<uint32_t>(code) : static_cast<uint32_t>(ERROR_GEN_FAILURE);
}

uint32_t Result(BOOL done) { return done ? 0 : Failure(); }

HANDLE Handle(intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

bool IsOrdinary(HANDLE file) { return GetFileType(file) == FILE_TYPE_DISK; }

ReadStatus ReadAll(HANDLE file, size_t size, FileBytes* bytes) {
    bytes->mData = static_cast<char*>(std::malloc(size + 1));
    if (!bytes->mData) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return READ_TOO_LARGE;
    }
    while (bytes->mSize < size) {
        size_t left = size - bytes->mSize;
        DWORD got = 0;
        DWORD step = left < 0x1000000 ? static_cast<DWORD>(left) : 0x1000000;
        if (!ReadFile(file, bytes->mData + bytes->mSize, step, &got, nullptr)) return READ_FAILED;
        if (got == 0) break;
        bytes->mSize += got;
    }
    bytes->mData[bytes->mSize] = '\0';
    return READ_DONE;
}

char* Concat(const char* a, const char* b) {
    size_t length = std::strlen(a);
    char* text = static_cast<char*>(std::malloc(length + std::strlen(b) + 1));
    if (text) {
        std::memcpy(text, a, length);
        std::strcpy(text + length, b);
    }
    return text;
}

HANDLE CreateForWriting(const char* path, DWORD disposition) {
    return CreateFileA(path, GENERIC_WRITE, FILE_SHARE_READ, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
}

HANDLE CreateBeside(const char* target, char** name) {
    for (unsigned attempt = 0; attempt < 1000; ++attempt) {
        char suffix[48];
        std::snprintf(suffix, sizeof suffix, ".%lu-%u.tmp", GetCurrentProcessId(), attempt);
        *name = Concat(target, suffix);
        if (!*name) break;
        HANDLE file = CreateForWriting(*name, CREATE_NEW);
        if (file != INVALID_HANDLE_VALUE) return file;
        std::free(*name);
        *name = nullptr;
        if (GetLastError() != ERROR_FILE_EXISTS && GetLastError() != ERROR_ALREADY_EXISTS) break;
    }
    return INVALID_HANDLE_VALUE;
}

// Whether the file that stands there may be written; a file that does not exist may. Opening and closing it
// changes nothing.
uint32_t CheckWritable(const char* path, bool* isDevice) {
    HANDLE file = CreateFileA(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                              nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_FILE_NOT_FOUND ? 0 : Failure();
    *isDevice = !IsOrdinary(file);
    CloseHandle(file);
    return 0;
}

} // namespace

bool FileExists(const char* path) { return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES; }

uint32_t DeleteOneFile(const char* path) { return Result(DeleteFileA(path)); }

ReadStatus ReadWholeFile(const char* path, size_t most, FileBytes* bytes) {
    *bytes = {nullptr, 0, 0};
    HANDLE file = CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                              nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    LARGE_INTEGER size;
    ReadStatus status = READ_NOT_OPEN;
    if (file != INVALID_HANDLE_VALUE) SetLastError(ERROR_BAD_FILE_TYPE);
    if (file != INVALID_HANDLE_VALUE && IsOrdinary(file) && GetFileSizeEx(file, &size)) {
        SetLastError(ERROR_FILE_TOO_LARGE);
        bool large = static_cast<uint64_t>(size.QuadPart) > most;
        status = large ? READ_TOO_LARGE : ReadAll(file, static_cast<size_t>(size.QuadPart), bytes);
    }
    if (status != READ_DONE) {
        bytes->mError = Failure();
        FreeFileBytes(bytes);
    }
    if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
    return status;
}

void FreeFileBytes(FileBytes* bytes) {
    std::free(bytes->mData);
    bytes->mData = nullptr;
    bytes->mSize = 0;
}

FileReplacement::FileReplacement() : mTarget(nullptr), mTemporary(nullptr), mHandle(-1) {}

FileReplacement::~FileReplacement() { Discard(); }

void FileReplacement::Discard() {
    if (mHandle != -1) CloseHandle(Handle(mHandle));
    mHandle = -1;
    if (mTemporary) DeleteFileA(mTemporary);
    std::free(mTemporary);
    std::free(mTarget);
    mTemporary = mTarget = nullptr;
}

// Moving the temporary replaces a link and never what it leads to.
uint32_t FileReplacement::Open(const char* path, FileLinks) {
    bool isDevice = false;
    if (uint32_t error = CheckWritable(path, &isDevice)) return error;
    HANDLE file;
    if (isDevice) {
        file = CreateForWriting(path, OPEN_EXISTING);
    } else {
        mTarget = Concat(path, "");
        if (!mTarget) return static_cast<uint32_t>(ERROR_NOT_ENOUGH_MEMORY);
        file = CreateBeside(mTarget, &mTemporary);
    }
    if (file == INVALID_HANDLE_VALUE) return Failure();
    mHandle = reinterpret_cast<intptr_t>(file);
    return 0;
}

uint32_t FileReplacement::Write(const void* data, size_t size) {
    const char* from = static_cast<const char*>(data);
    while (size > 0) {
        DWORD step = size < 0x1000000 ? static_cast<DWORD>(size) : 0x1000000;
        DWORD done = 0;
        if (!WriteFile(Handle(mHandle), from, step, &done, nullptr)) return Failure();
        if (done == 0) return static_cast<uint32_t>(ERROR_DISK_FULL);
        from += done;
        size -= done;
    }
    return 0;
}

uint32_t FileReplacement::Commit() { return Finish(false); }

uint32_t FileReplacement::CommitNew() { return Finish(true); }

uint32_t FileReplacement::Finish(bool mustBeNew) {
    HANDLE file = Handle(mHandle);
    mHandle = -1;
    // Only a file has something to flush; consoles and pipes refuse.
    uint32_t error = mTemporary ? Result(FlushFileBuffers(file)) : 0;
    if (!CloseHandle(file) && !error) error = Failure();
    const DWORD replace = mustBeNew ? 0 : MOVEFILE_REPLACE_EXISTING;
    if (!error && mTemporary)
        error = Result(MoveFileExA(mTemporary, mTarget, replace | MOVEFILE_WRITE_THROUGH));
    if (!error) {
        std::free(mTemporary);
        mTemporary = nullptr;
    }
    Discard();
    return error;
}

} // namespace zav_os
