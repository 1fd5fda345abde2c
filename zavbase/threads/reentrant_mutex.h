#ifndef ZAVBASE_THREADS_REENTRANT_MUTEX_H
#define ZAVBASE_THREADS_REENTRANT_MUTEX_H

#include <zavbase/threads/lock_word.h>

/// A lock that the thread holding it may take again, any number of times; others get it when the last of
/// these guards is destroyed. A guard may be destroyed on another thread, but not while the owner takes or
/// gives back a guard of its own. A thread that ends while holding it leaves it locked.
class ZAV_API ZAV_ReentrantMutex {
public:
    ZAV_ReentrantMutex();
    ~ZAV_ReentrantMutex();
    ZAV_ReentrantMutex(const ZAV_ReentrantMutex&) = delete;
    ZAV_ReentrantMutex& operator=(const ZAV_ReentrantMutex&) = delete;

    class ZAV_API Lock {
    public:
        /// B_FALSE waits without limit; B_TRUE tries once and does not wait. The owner always succeeds.
        Lock(ZAV_ReentrantMutex& mutex, boolean_t tryOnly) : mMutex(&mutex), mAcquired(B_TRUE) {
            if (!mutex.EnterUnwaited()) mAcquired = mutex.Enter(tryOnly);
        }
        ~Lock() {
            if (mAcquired && !mMutex->LeaveUnwaited()) mMutex->Leave();
        }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

        boolean_t LockAcquired() const { return mAcquired; }

    private:
        ZAV_ReentrantMutex* mMutex;
        boolean_t mAcquired;
    };

private:
    inline bool EnterUnwaited();
    inline bool LeaveUnwaited();
    boolean_t Enter(boolean_t tryOnly);
    void Leave(); ///< where locks are words, the owner and the count are settled already

    std::atomic<uintptr_t> mOwner; ///< the owning thread's mark or identifier, 0 = none
    std::atomic<uint32_t> mCount;  ///< guards alive
    zav_lock::Word mGuard;         ///< guards the two above where locks are kernel objects
    zav_lock::Word mSemaphore;     ///< the lock itself
};

// The owner is compared without a lock: a thread finds its own mark there only if it put it there itself. The
// count means nothing while there is no owner.
inline bool ZAV_ReentrantMutex::EnterUnwaited() {
    const uintptr_t self = zav_lock::ThreadMark();
    if (self == 0) return false;
    if (mOwner.load(std::memory_order_relaxed) == self) {
        mCount.store(mCount.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
        return true;
    }
    if (!zav_lock::Take(mSemaphore)) return false;
    mOwner.store(self, std::memory_order_relaxed);
    mCount.store(1, std::memory_order_relaxed);
    return true;
}

inline bool ZAV_ReentrantMutex::LeaveUnwaited() {
    if (!ZAV_LOCKS_ARE_WORDS) return false;
    const uint32_t left = mCount.load(std::memory_order_relaxed) - 1;
    if (left != 0) {
        mCount.store(left, std::memory_order_relaxed);
        return true;
    }
    mOwner.store(0, std::memory_order_relaxed);
    return zav_lock::Give(mSemaphore);
}

#endif
