#include <tests/threads/fake_os.h>

#include <zavbase/os/clock.h>
#include <zavbase/os/error.h>
#include <zavbase/os/thread.h>

#include <cstdlib>

FakeOS theOS;

namespace zav_os {

uint32_t LastError() { return theOS.lastError; }
bool ErrorText(uint32_t, char*, size_t) { return false; }

uint32_t TickCount() { return theOS.ticks; }
void Sleep(uint32_t milliseconds) { theOS.slept.push_back(milliseconds); }

uintptr_t ThreadStart(void (*)(void*), void*, unsigned stackSize, uint32_t& id) {
    theOS.stackSize = stackSize;
    id = theOS.startId;
    return theOS.startHandle;
}
void ThreadExit() { std::abort(); }
Wait ThreadWait(uintptr_t, uint32_t) {
    theOS.lastError = theOS.waitFails;
    return theOS.waitFails ? Wait::Failed : Wait::Done;
}
void ThreadClose(uintptr_t handle) { theOS.closed.push_back(handle); }
int WaitForAny(const uint32_t* handles, unsigned count) {
    theOS.anyIds.assign(handles, handles + count);
    return theOS.anySlot;
}
uint32_t CurrentThreadId() { return theOS.callerId; }
bool IsCurrentThread(uintptr_t, uint32_t id) { return id == theOS.callerId; }
uint32_t SetThreadPriority(uintptr_t, int) { return 5; }
uint32_t GetThreadPriority(uintptr_t, int&) { return 5; }

} // namespace zav_os
