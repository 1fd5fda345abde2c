#include <tests/os/process_memory.h>

#include <windows.h>

#include <psapi.h>

size_t ProcessMemory() {
    PROCESS_MEMORY_COUNTERS counters = {};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters.PagefileUsage;
}
