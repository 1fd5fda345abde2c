#include <zavbase/threads/read_write_lock.h>

#include <zavbase/os/sync.h>

static_assert(sizeof(zav_lock::Section) == zav_os::kSectionSize);

ZAV_ReadWriteLock::ZAV_ReadWriteLock() {
    zav_os::ReadWriteOpen({mWriteMutex, &mCountSection, mReaders, mNoReaders});
}

ZAV_ReadWriteLock::~ZAV_ReadWriteLock() {
    zav_os::ReadWriteClose({mWriteMutex, &mCountSection, mReaders, mNoReaders});
}

ZAV_ReadWriteLock::ReadLock::ReadLock(ZAV_ReadWriteLock& lock, boolean_t tryOnly)
    : mLock(&lock), mAcquired(ZAV_Bool(zav_os::ReadEnter(
                        {lock.mWriteMutex, &lock.mCountSection, lock.mReaders, lock.mNoReaders}, tryOnly))) {}

// Neither destructor looks at mAcquired: programs count on a failed try being released all the same.
ZAV_ReadWriteLock::ReadLock::~ReadLock() {
    zav_os::ReadLeave({mLock->mWriteMutex, &mLock->mCountSection, mLock->mReaders, mLock->mNoReaders});
}

ZAV_ReadWriteLock::WriteLock::WriteLock(ZAV_ReadWriteLock& lock, boolean_t tryOnly)
    : mLock(&lock), mAcquired(ZAV_Bool(zav_os::WriteEnter(
                        {lock.mWriteMutex, &lock.mCountSection, lock.mReaders, lock.mNoReaders}, tryOnly))) {}

ZAV_ReadWriteLock::WriteLock::~WriteLock() {
    zav_os::WriteLeave({mLock->mWriteMutex, &mLock->mCountSection, mLock->mReaders, mLock->mNoReaders});
}
