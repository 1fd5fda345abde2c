#include <zavbase/threads/signaller.h>

#include <zavbase/os/sync.h>

ZAV_MutexSignaller::ZAV_MutexSignaller() : mWaiters(0) { zav_os::SemaphoreOpen(mSemaphore, 0); }
ZAV_MutexSignaller::~ZAV_MutexSignaller() { zav_os::SemaphoreClose(mSemaphore); }

void ZAV_MutexSignaller::Signal() { Release(false); }
void ZAV_MutexSignaller::Broadcast() { Release(true); }

void ZAV_MutexSignaller::Release(bool all) {
    ZAV_Mutex::Lock guard(mWaitersMutex, B_FALSE);
    const uint32_t units = all || mWaiters == 0 ? mWaiters : 1;
    if (units == 0) return;
    zav_os::SemaphoreRelease(mSemaphore, units);
    mWaiters -= units;
}

ZAV_MutexSignaller::Lock::Lock(ZAV_MutexSignaller& signaller)
    : mSignaller(&signaller), mHeld(new ZAV_Mutex::Lock(signaller.mMutex, B_FALSE)) {}

ZAV_MutexSignaller::Lock::~Lock() { delete mHeld; }

void ZAV_MutexSignaller::Lock::Wait() { WaitFor(zav_os::kForever); }

ZAV_ThreadError ZAV_MutexSignaller::Lock::TimedWait(int microseconds) {
    // Negative milliseconds become huge unsigned ones; -1 is the wait without limit.
    return ZAV_ThreadError(WaitFor(static_cast<uint32_t>(microseconds / 1000)));
}

int ZAV_MutexSignaller::Lock::WaitFor(uint32_t milliseconds) {
    {
        ZAV_Mutex::Lock guard(mSignaller->mWaitersMutex, B_FALSE);
        ++mSignaller->mWaiters;
    }
    delete mHeld;
    mHeld = nullptr;
    const zav_os::Wait result = zav_os::SemaphoreWait(mSignaller->mSemaphore, milliseconds);
    mHeld = new ZAV_Mutex::Lock(mSignaller->mMutex, B_FALSE);
    return result == zav_os::Wait::TimedOut ? 62 : 0;
}
