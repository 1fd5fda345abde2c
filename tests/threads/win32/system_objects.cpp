#include <cstddef>

#include <windows.h>

size_t SystemObjects() {
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
}
