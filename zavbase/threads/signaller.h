#ifndef ZAVBASE_THREADS_SIGNALLER_H
#define ZAVBASE_THREADS_SIGNALLER_H

#include <zavbase/threads/mutex.h>
#include <zavbase/threads/thread_error.h>

/// A mutex with a condition: a thread that holds the lock may wait for a signal, giving up the lock
/// meanwhile.
///
/// A signal is kept for as many waiters as were counted when it was given; with none it is lost. It may be
/// consumed by a thread that began to wait later, even by the one that gave it, so a waiter tests its
/// condition again. A waiter that timed out stays counted: the next signal leaves a unit behind, which makes
/// one later wait return at once.
///
/// Therefore one signaller serves one direction. Where two threads pass a turn to each other under the same
/// one, who gave the turn may take his own signal, find that it is not his turn, and sleep on; the other was
/// not woken, and both sleep for ever. With one for each direction they do not:
///
///     struct Turn {
///         ZAV_MutexSignaller signaller;
///         bool given = false;
///     } toFirst, toSecond;
///     void Give(Turn& turn) {
///         ZAV_MutexSignaller::Lock lock(turn.signaller);
///         turn.given = true;
///         turn.signaller.Signal();
///     }
///     void Await(Turn& turn) {
///         ZAV_MutexSignaller::Lock lock(turn.signaller);
///         while (!turn.given) lock.Wait();
///         turn.given = false;
///     }
class ZAV_API ZAV_MutexSignaller {
public:
    ZAV_MutexSignaller();
    ~ZAV_MutexSignaller();
    ZAV_MutexSignaller(const ZAV_MutexSignaller&) = delete;
    ZAV_MutexSignaller& operator=(const ZAV_MutexSignaller&) = delete;

    void Signal();    ///< wakes one waiter; need not hold the lock
    void Broadcast(); ///< wakes every waiter counted now

    class ZAV_API Lock {
    public:
        explicit Lock(ZAV_MutexSignaller& signaller); ///< waits without limit
        ~Lock();
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

        /// Gives up the lock, waits for a signal and takes the lock again.
        void Wait();
        /// The same for at most `microseconds`, rounded towards zero to whole milliseconds: 999 does not
        /// wait, -1000 waits without limit. Returns 62 when the time ran out, 0 otherwise; the lock is held
        /// again in both cases.
        ZAV_ThreadError TimedWait(int microseconds);

    private:
        int WaitFor(uint32_t milliseconds);

        ZAV_MutexSignaller* mSignaller;
        ZAV_Mutex::Lock* mHeld; ///< null only while waiting
    };

private:
    void Release(bool all);

    ZAV_Mutex mMutex; ///< what users hold
    zav_lock::Word mSemaphore;
    uint32_t mWaiters;
    ZAV_Mutex mWaitersMutex;
};

#endif
