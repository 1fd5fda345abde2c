#include <zavbase/threads/mutex.h>

#include <zavbase/os/sync.h>

ZAV_Mutex::ZAV_Mutex() { zav_os::SemaphoreOpen(mSemaphore, 1); }
ZAV_Mutex::~ZAV_Mutex() { zav_os::SemaphoreClose(mSemaphore); }

boolean_t ZAV_Mutex::Wait(boolean_t tryOnly) {
    return ZAV_Bool(zav_os::SemaphoreWait(mSemaphore, tryOnly ? 0 : zav_os::kForever) == zav_os::Wait::Done);
}

void ZAV_Mutex::Release() { zav_os::SemaphoreRelease(mSemaphore, 1); }
