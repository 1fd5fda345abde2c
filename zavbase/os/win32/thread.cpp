#include <zavbase/os/thread.h>

#include <windows.h>

#include <new>
#include <process.h>

namespace zav_os {

namespace {

struct Start {
    void (*entry)(void*);
    void* argument;
};

unsigned __stdcall Main(void* argument) noexcept {
    const Start start = *static_cast<Start*>(argument);
    delete static_cast<Start*>(argument);
    start.entry(start.argument);
    _endthreadex(0);
    return 0;
}

HANDLE Of(uintptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

} // namespace

uintptr_t ThreadStart(void (*entry)(void*), void* argument, unsigned stackSize, uint32_t& id) {
    Start* start = new (std::nothrow) Start{entry, argument};
    if (!start) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    unsigned newId = 0;
    const uintptr_t handle = _beginthreadex(nullptr, stackSize, Main, start, 0, &newId);
    if (handle == 0) delete start;
    id = newId;
    return handle;
}

void ThreadExit() {
    _endthreadex(0);
    for (;;) { // not reached; the function is not declared so
    }
}

Wait ThreadWait(uintptr_t handle, uint32_t milliseconds) {
    const DWORD result = WaitForSingleObject(Of(handle), milliseconds);
    return result == WAIT_OBJECT_0 ? Wait::Done : result == WAIT_TIMEOUT ? Wait::TimedOut : Wait::Failed;
}

void ThreadClose(uintptr_t handle) { CloseHandle(Of(handle)); }

int WaitForAny(const uint32_t* handles, unsigned count) {
    HANDLE wide[MAXIMUM_WAIT_OBJECTS] = {};
    for (unsigned i = 0; i < count && i < MAXIMUM_WAIT_OBJECTS; ++i) wide[i] = Of(handles[i]);
    const DWORD result = WaitForMultipleObjects(count, wide, FALSE, INFINITE);
    return result < count ? static_cast<int>(result) : -1;
}

uint32_t CurrentThreadId() { return GetCurrentThreadId(); }

bool IsCurrentThread(uintptr_t, uint32_t id) { return id == GetCurrentThreadId(); }

uint32_t SetThreadPriority(uintptr_t handle, int priority) {
    return ::SetThreadPriority(Of(handle), priority) ? 0 : GetLastError();
}

uint32_t GetThreadPriority(uintptr_t handle, int& priority) {
    const int value = ::GetThreadPriority(Of(handle));
    if (value == THREAD_PRIORITY_ERROR_RETURN) return GetLastError();
    priority = value;
    return 0;
}

} // namespace zav_os
