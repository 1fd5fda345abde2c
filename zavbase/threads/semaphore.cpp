#include <zavbase/threads/semaphore.h>

#include <zavbase/os/sync.h>

ZAV_Semaphore::ZAV_Semaphore() : ZAV_Semaphore(0, 0) {}
ZAV_Semaphore::ZAV_Semaphore(unsigned int, int initial) { zav_os::SemaphoreOpen(mSemaphore, initial); }
ZAV_Semaphore::~ZAV_Semaphore() { zav_os::SemaphoreClose(mSemaphore); }

void ZAV_Semaphore::Wait() { zav_os::SemaphoreWait(mSemaphore, zav_os::kForever); }
void ZAV_Semaphore::Signal() { zav_os::SemaphoreRelease(mSemaphore, 1); }

int ZAV_Semaphore::TryWait() {
    switch (zav_os::SemaphoreWait(mSemaphore, 0)) {
    case zav_os::Wait::Done:
        return 0;
    case zav_os::Wait::TimedOut:
        return 16;
    default:
        return 22;
    }
}
