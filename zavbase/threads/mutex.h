#ifndef ZAVBASE_THREADS_MUTEX_H
#define ZAVBASE_THREADS_MUTEX_H

#include <zavbase/threads/lock_word.h>

/// A lock for one thread at a time, inside one process. It belongs to nobody: it is not re-entrant (a second
/// Lock on the same thread waits for ever, or fails when trying), any thread may destroy the guard, and a
/// thread that ends while holding it leaves it locked.
class ZAV_API ZAV_Mutex {
public:
    ZAV_Mutex();
    ~ZAV_Mutex();
    ZAV_Mutex(const ZAV_Mutex&) = delete;
    ZAV_Mutex& operator=(const ZAV_Mutex&) = delete;

    /// Holds the mutex from construction to destruction, unless it was only tried and not free.
    class ZAV_API Lock {
    public:
        /// B_FALSE waits without limit; B_TRUE tries once and does not wait.
        Lock(ZAV_Mutex& mutex, boolean_t tryOnly) : mMutex(&mutex), mAcquired(B_TRUE) {
            if (!zav_lock::Take(mutex.mSemaphore)) mAcquired = mutex.Wait(tryOnly);
        }
        ~Lock() {
            if (mAcquired && !zav_lock::Give(mMutex->mSemaphore)) mMutex->Release();
        }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

        boolean_t LockAcquired() const { return mAcquired; }

    private:
        ZAV_Mutex* mMutex;
        boolean_t mAcquired;
    };

private:
    boolean_t Wait(boolean_t tryOnly);
    void Release();

    zav_lock::Word mSemaphore;
};

#endif
