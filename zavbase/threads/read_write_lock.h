#ifndef ZAVBASE_THREADS_READ_WRITE_LOCK_H
#define ZAVBASE_THREADS_READ_WRITE_LOCK_H

#include <zavbase/threads/lock_word.h>

/// A lock for many readers or one writer, inside one process. A writer that waits goes before readers that
/// come after it.
///
/// - The thread that holds a write guard may take read guards and further write guards. A thread that holds a
///   read guard and asks for a write guard waits for ever.
/// - Write guards belong to their thread. When it ends without destroying them, the lock becomes free. A
///   write guard destroyed on another thread has no effect. The lock must outlive the thread or its write
///   guards.
/// - DESTROYING A GUARD RELEASES, WHETHER IT ACQUIRED OR NOT. A failed try for reading, destroyed, takes one
///   reader off the count: with no reader left the next reader is not seen by writers. A failed try for
///   writing does no harm on a thread that holds no write guard; on one that does, its destruction gives that
///   up.
class ZAV_API ZAV_ReadWriteLock {
public:
    ZAV_ReadWriteLock();
    virtual ~ZAV_ReadWriteLock();
    ZAV_ReadWriteLock(const ZAV_ReadWriteLock&) = delete;
    ZAV_ReadWriteLock& operator=(const ZAV_ReadWriteLock&) = delete;

    class ZAV_API ReadLock {
    public:
        /// B_FALSE waits without limit; B_TRUE tries once and does not wait.
        ReadLock(ZAV_ReadWriteLock& lock, boolean_t tryOnly);
        ~ReadLock();
        ReadLock(const ReadLock&) = delete;
        ReadLock& operator=(const ReadLock&) = delete;

        boolean_t LockAcquired() const { return mAcquired; }

    private:
        ZAV_ReadWriteLock* mLock;
        boolean_t mAcquired;
    };

    class ZAV_API WriteLock {
    public:
        /// B_FALSE waits without limit; B_TRUE tries once and does not wait.
        WriteLock(ZAV_ReadWriteLock& lock, boolean_t tryOnly);
        ~WriteLock();
        WriteLock(const WriteLock&) = delete;
        WriteLock& operator=(const WriteLock&) = delete;

        boolean_t LockAcquired() const { return mAcquired; }

    private:
        ZAV_ReadWriteLock* mLock;
        boolean_t mAcquired;
    };

private:
    // Where locks are words the first word is the whole lock, the section notes its owner, and the other two
    // stay unused.
    zav_lock::Word mWriteMutex;      ///< held by a writer, and by a reader for an instant
    zav_lock::Section mCountSection; ///< guards the count
    uint32_t mReaders;
    zav_lock::Word mNoReaders; ///< an event, set when the count falls to 0 and reset when it leaves 0
};

#endif
