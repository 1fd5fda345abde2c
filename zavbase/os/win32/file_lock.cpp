#include <zavbase/os/file_lock.h>

#include <windows.h>

namespace zav_os {

FileLock::FileLock() : mHandle(-1) {}

FileLock::~FileLock() {
    if (mHandle == -1) return;
    const HANDLE file = reinterpret_cast<HANDLE>(mHandle);
    // Closing alone drops the lock too, but in the system's own time.
    OVERLAPPED from = {};
    UnlockFileEx(file, 0, 1, 0, &from);
    CloseHandle(file);
}

uint32_t FileLock::Take(const char* path) {
    const HANDLE file = CreateFileA(
        path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
        OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE) return GetLastError();
    mHandle = reinterpret_cast<intptr_t>(file);
    BY_HANDLE_FILE_INFORMATION info;
    if (!GetFileInformationByHandle(file, &info)) return GetLastError();
    if (info.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) return ERROR_ACCESS_DENIED;
    OVERLAPPED from = {};
    return LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &from) ? 0 : GetLastError();
}

} // namespace zav_os
