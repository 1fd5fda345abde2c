#include <tests/threads/platform.h>

#include <windows.h>

size_t SystemObjects() {
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
}

const std::vector<void (*)()> kUnwindings;

const int kEffort = 1; // a contended lock is a call of the kernel, and slow where that is emulated
