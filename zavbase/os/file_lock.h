#ifndef ZAVBASE_OS_FILE_LOCK_H
#define ZAVBASE_OS_FILE_LOCK_H

#include <cstdint>

namespace zav_os {

/// An exclusive lock on a file, between processes and between the objects of one process. The system drops it
/// when its process ends, however that happens. (A child made by fork without exec shares it.)
class FileLock {
public:
    FileLock();
    ~FileLock(); ///< drops the lock; the file stays
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// Waits for the lock without limit. Creates the file if there is none; a link in its place is refused.
    /// 0 or the system's error number. Called once.
    uint32_t Take(const char* path);

private:
    intptr_t mHandle; // -1 when closed
};

} // namespace zav_os

#endif
