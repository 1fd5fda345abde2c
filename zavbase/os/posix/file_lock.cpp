#include <zavbase/os/file_lock.h>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zav_os {

namespace {

uint32_t Failure() { return static_cast<uint32_t>(errno); }

/// Opens what is there before creating: in folders that everybody may write to, the system refuses to
/// "create" the existing file of another user.
int OpenOrCreate(const char* path) {
    const int flags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    int file;
    do {
        file = open(path, flags);
        if (file < 0 && errno == ENOENT) file = open(path, flags | O_CREAT | O_EXCL, 0666);
    } while (file < 0 && errno == EEXIST);
    return file;
}

} // namespace

FileLock::FileLock() : mHandle(-1) {}

// A child that was made meanwhile has a copy of the descriptor, so closing this one is not enough.
FileLock::~FileLock() {
    if (mHandle < 0) return;
    flock(static_cast<int>(mHandle), LOCK_UN);
    close(static_cast<int>(mHandle));
}

uint32_t FileLock::Take(const char* path) {
    const int file = OpenOrCreate(path);
    if (file < 0) return Failure();
    mHandle = file;
    struct stat info;
    if (fstat(file, &info) != 0) return Failure();
    if (!S_ISREG(info.st_mode)) return EINVAL;
    int result;
    do result = flock(file, LOCK_EX);
    while (result != 0 && errno == EINTR);
    return result == 0 ? 0 : Failure();
}

} // namespace zav_os
