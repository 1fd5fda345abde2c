#include <zavbase/os/file.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zav_os {

namespace {

uint32_t Failure() { return static_cast<uint32_t>(errno ? errno : EIO); }

uint32_t Result(int returned) { return returned == 0 ? 0 : Failure(); }

// Opens an ordinary file only; O_NONBLOCK, because opening a pipe would wait for its writer.
int OpenOrdinary(const char* path, struct stat* info) {
    int fd = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd < 0 || (fstat(fd, info) == 0 && S_ISREG(info->st_mode))) return fd;
    close(fd);
    errno = S_ISDIR(info->st_mode) ? EISDIR : EINVAL;
    return -1;
}

ssize_t ReadSome(int fd, char* to, size_t room) {
    ssize_t got;
    do got = read(fd, to, room);
    while (got < 0 && errno == EINTR);
    return got;
}

// Reads to the end of the file, which may have changed its size meanwhile (or, under /proc, has none).
ReadStatus ReadAll(int fd, size_t expected, size_t most, FileBytes* bytes) {
    size_t room = expected + 1;
    bytes->mData = static_cast<char*>(std::malloc(room));
    while (bytes->mData) {
        size_t free = room - bytes->mSize;
        ssize_t got = ReadSome(fd, bytes->mData + bytes->mSize, free);
        if (got < 0) return READ_FAILED;
        bytes->mSize += static_cast<size_t>(got);
        if (bytes->mSize > most) {
            errno = EFBIG;
            break;
        }
        if (got == 0) {
            bytes->mData[bytes->mSize] = '\0';
            return READ_DONE;
        }
        if (bytes->mSize == room) {
            room += room / 2 + 4096;
            char* larger = static_cast<char*>(std::realloc(bytes->mData, room));
            if (!larger) break;
            bytes->mData = larger;
        }
    }
    return READ_TOO_LARGE;
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

// A new file beside `target` that nobody else has; its name is returned in `name`.
int CreateBeside(const char* target, char** name) {
    for (unsigned attempt = 0; attempt < 1000; ++attempt) {
        char suffix[48];
        std::snprintf(suffix, sizeof suffix, ".%ld-%u.tmp", static_cast<long>(getpid()), attempt);
        *name = Concat(target, suffix);
        if (!*name) {
            errno = ENOMEM;
            return -1;
        }
        int fd = open(*name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
        if (fd >= 0) return fd;
        std::free(*name);
        *name = nullptr;
        if (errno != EEXIST) return -1;
    }
    return -1;
}

int OpenDirectly(const char* path) {
    int fd = open(path, O_WRONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd >= 0) fcntl(fd, F_SETFL, 0);
    return fd;
}

} // namespace

bool FileExists(const char* path) {
    struct stat info;
    return stat(path, &info) == 0;
}

uint32_t DeleteOneFile(const char* path) { return Result(unlink(path)); }

ReadStatus ReadWholeFile(const char* path, size_t most, FileBytes* bytes) {
    *bytes = {nullptr, 0, 0};
    struct stat info = {};
    int fd = OpenOrdinary(path, &info);
    ReadStatus status = READ_NOT_OPEN;
    if (fd >= 0) {
        errno = EFBIG;
        bool large = static_cast<uint64_t>(info.st_size) > most;
        status = large ? READ_TOO_LARGE : ReadAll(fd, static_cast<size_t>(info.st_size), most, bytes);
    }
    if (status != READ_DONE) {
        bytes->mError = Failure();
        FreeFileBytes(bytes);
    }
    if (fd >= 0) close(fd);
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
    if (mHandle >= 0) close(static_cast<int>(mHandle));
    mHandle = -1;
    if (mTemporary) unlink(mTemporary);
    std::free(mTemporary);
    std::free(mTarget);
    mTemporary = mTarget = nullptr;
}

uint32_t FileReplacement::Open(const char* path, FileLinks links) {
    struct stat info;
    bool exists = stat(path, &info) == 0;
    struct stat own;
    if (links == NOT_THROUGH_LINKS && lstat(path, &own) == 0 && S_ISLNK(own.st_mode)) exists = false;
    if (exists && !S_ISREG(info.st_mode)) {
        mHandle = OpenDirectly(path);
        return mHandle < 0 ? Failure() : 0;
    }
    // Renaming would replace a file that may not be written; the caller's rights to the old file decide.
    if (exists && access(path, W_OK) != 0) return Failure();
    mTarget = exists ? realpath(path, nullptr) : Concat(path, "");
    if (!mTarget) return Failure();
    int fd = CreateBeside(mTarget, &mTemporary);
    mHandle = fd;
    if (fd < 0) return Failure();
    if (exists) {
        // The owner is kept where the system lets us; without the right to it the file becomes ours.
        if (fchown(fd, info.st_uid, info.st_gid) != 0) errno = 0;
        if (fchmod(fd, info.st_mode & 07777) != 0) return Failure();
    }
    return 0;
}

uint32_t FileReplacement::Write(const void* data, size_t size) {
    const char* from = static_cast<const char*>(data);
    while (size > 0) {
        ssize_t done = write(static_cast<int>(mHandle), from, size);
        if (done < 0 && errno == EINTR) continue;
        if (done <= 0) return done == 0 ? ENOSPC : Failure();
        from += done;
        size -= static_cast<size_t>(done);
    }
    return 0;
}

uint32_t FileReplacement::Commit() { return Finish(false); }

uint32_t FileReplacement::CommitNew() { return Finish(true); }

uint32_t FileReplacement::Finish(bool mustBeNew) {
    int fd = static_cast<int>(mHandle);
    mHandle = -1;
    // A device that cannot be flushed (EINVAL) has nothing to flush.
    uint32_t error = fsync(fd) == 0 || errno == EINVAL ? 0 : Failure();
    if (close(fd) != 0 && !error) error = Failure();
    if (!error && mustBeNew) {
        // A second name for the file, which the system gives only if it is free; Discard takes the first one.
        error = mTemporary ? Result(link(mTemporary, mTarget)) : EEXIST;
        Discard();
        return error;
    }
    if (!error && mTemporary) error = Result(rename(mTemporary, mTarget));
    if (!error) {
        std::free(mTemporary);
        mTemporary = nullptr;
    }
    Discard();
    return error;
}

} // namespace zav_os
