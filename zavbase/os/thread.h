#ifndef ZAVBASE_OS_THREAD_H
#define ZAVBASE_OS_THREAD_H

#include <zavbase/os/sync.h>

namespace zav_os {

/// Starts a thread that calls `entry(argument)`; a stack size of 0 is the default. Stores the new thread's
/// identifier. Returns a handle, to be closed by ThreadClose, or 0 on failure, with the last error set. An
/// exception that leaves `entry` ends the process.
uintptr_t ThreadStart(void (*entry)(void*), void* argument, unsigned stackSize, uint32_t& id);

/// Ends the calling thread, which ThreadStart made, at once: nothing on its stack is destroyed.
[[noreturn]] void ThreadExit();

/// Waits for the end of the thread, from any number of threads and any number of times. Failed leaves the
/// last error set; the handle may be 0.
Wait ThreadWait(uintptr_t handle, uint32_t milliseconds);

/// Closes the handle, whether the thread has ended or runs on.
void ThreadClose(uintptr_t handle);

/// Waits until one of the objects with these handles is signalled and returns its place, or -1 with the last
/// error set.
int WaitForAny(const uint32_t* handles, unsigned count);

uint32_t CurrentThreadId();
/// Whether the calling thread is the one that ThreadStart gave this handle and identifier for.
bool IsCurrentThread(uintptr_t handle, uint32_t id);

/// -15 to 15. Both return 0 or the system's error number.
uint32_t SetThreadPriority(uintptr_t handle, int priority);
uint32_t GetThreadPriority(uintptr_t handle, int& priority);

} // namespace zav_os

#endif
