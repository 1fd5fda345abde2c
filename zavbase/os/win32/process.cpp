#include <zavbase/os/process.h>

#include <cstring>
#include <windows.h>

#include <tlhelp32.h>

namespace zav_os {

namespace {

#if !defined(_WIN64)
static_assert(sizeof(PROCESSENTRY32) == 296, "the size that the snapshot functions of Windows 95 know");
#endif

typedef HANDLE(WINAPI* SnapshotFn)(DWORD flags, DWORD process);
typedef BOOL(WINAPI* EntryFn)(HANDLE snapshot, PROCESSENTRY32* entry);

template <class Fn>
Fn KernelFunction(const char* name) {
    const HMODULE kernel = GetModuleHandleA("KERNEL32.DLL");
    return kernel ? reinterpret_cast<Fn>(reinterpret_cast<void*>(GetProcAddress(kernel, name))) : nullptr;
}

} // namespace

uint32_t OwnProcessId() { return GetCurrentProcessId(); }

bool ProcessIdentity(uint32_t id, uint32_t& low, uint32_t& high) {
    const HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, id);
    if (!process) return false;
    FILETIME created, exited, kernel, user;
    DWORD code = 0;
    // A process that has ended can be opened as long as anybody holds a handle of it.
    const bool alive = GetExitCodeProcess(process, &code) && code == STILL_ACTIVE &&
                       GetProcessTimes(process, &created, &exited, &kernel, &user);
    CloseHandle(process);
    if (!alive) return false;
    low = created.dwLowDateTime;
    high = created.dwHighDateTime;
    return true;
}

bool ProcessImageName(uint32_t id, char* name, size_t size) {
    // Not every Windows has these, so they are looked up when needed.
    const auto create = KernelFunction<SnapshotFn>("CreateToolhelp32Snapshot");
    const auto first = KernelFunction<EntryFn>("Process32First");
    const auto next = KernelFunction<EntryFn>("Process32Next");
    if (!create || !first || !next) return false;
    const HANDLE snapshot = create(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE) return false;
    PROCESSENTRY32 entry;
    entry.dwSize = sizeof entry;
    BOOL more = first(snapshot, &entry);
    while (more && entry.th32ProcessID != id) more = next(snapshot, &entry);
    CloseHandle(snapshot);
    if (!more || std::strlen(entry.szExeFile) >= size) return false;
    std::strcpy(name, entry.szExeFile);
    return true;
}

} // namespace zav_os
