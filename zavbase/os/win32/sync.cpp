#include <zavbase/os/sync.h>

#include <windows.h>

namespace zav_os {

static_assert(sizeof(CRITICAL_SECTION) == kSectionSize);

namespace {

HANDLE Handle(const Word& word) { return reinterpret_cast<HANDLE>(word.load(std::memory_order_relaxed)); }

void Store(Word& word, HANDLE handle) {
    word.store(reinterpret_cast<uintptr_t>(handle), std::memory_order_relaxed);
}

void Close(Word& word) { CloseHandle(Handle(word)); }

DWORD TimeOut(bool tryOnly) { return tryOnly ? 0 : INFINITE; }

/// Waits for a mutex or an event; a mutex whose owner ended counts as obtained.
bool Obtain(const Word& word, bool tryOnly) {
    const DWORD result = WaitForSingleObject(Handle(word), TimeOut(tryOnly));
    return result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
}

/// The guard of a re-entrant lock's owner and count.
class Guarded {
public:
    explicit Guarded(const Word& mutex) : mMutex(Handle(mutex)) { WaitForSingleObject(mMutex, INFINITE); }
    ~Guarded() { ReleaseMutex(mMutex); }

private:
    HANDLE mMutex;
};

} // namespace

void SemaphoreOpen(Word& semaphore, int32_t units) {
    Store(semaphore, CreateSemaphoreA(nullptr, units, 0x7FFFFFFF, nullptr));
}

void SemaphoreClose(Word& semaphore) { Close(semaphore); }

Wait SemaphoreWait(Word& semaphore, uint32_t milliseconds) {
    const DWORD result = WaitForSingleObject(Handle(semaphore), milliseconds);
    return result == WAIT_OBJECT_0 ? Wait::Done : result == WAIT_TIMEOUT ? Wait::TimedOut : Wait::Failed;
}

void SemaphoreRelease(Word& semaphore, uint32_t units) {
    ReleaseSemaphore(Handle(semaphore), static_cast<LONG>(units), nullptr);
}

void ReentrantOpen(const Reentrant& lock) {
    lock.owner = 0;
    lock.count = 0;
    Store(lock.guard, CreateMutexA(nullptr, FALSE, nullptr));
    SemaphoreOpen(lock.semaphore, 1);
}

void ReentrantClose(const Reentrant& lock) {
    Close(lock.guard);
    Close(lock.semaphore);
}

bool ReentrantEnter(const Reentrant& lock, bool tryOnly) {
    {
        Guarded guard(lock.guard);
        if (lock.owner == GetCurrentThreadId()) {
            ++lock.count;
            return true;
        }
    }
    // A wait that fails otherwise than by time-out counts as success.
    if (SemaphoreWait(lock.semaphore, TimeOut(tryOnly)) == Wait::TimedOut) return false;
    Guarded guard(lock.guard);
    lock.owner = GetCurrentThreadId();
    ++lock.count;
    return true;
}

void ReentrantLeave(const Reentrant& lock) {
    Guarded guard(lock.guard);
    if (--lock.count > 0) return;
    SemaphoreRelease(lock.semaphore, 1);
    lock.owner = 0;
}

void ReadWriteOpen(const ReadWrite& lock) {
    Store(lock.writeMutex, CreateMutexA(nullptr, FALSE, nullptr));
    InitializeCriticalSection(static_cast<CRITICAL_SECTION*>(lock.section));
    lock.readers = 0;
    Store(lock.noReaders, CreateEventA(nullptr, TRUE, TRUE, nullptr));
}

void ReadWriteClose(const ReadWrite& lock) {
    Close(lock.writeMutex);
    DeleteCriticalSection(static_cast<CRITICAL_SECTION*>(lock.section));
    Close(lock.noReaders);
}

bool ReadEnter(const ReadWrite& lock, bool tryOnly) {
    if (!Obtain(lock.writeMutex, tryOnly)) return false;
    CRITICAL_SECTION* section = static_cast<CRITICAL_SECTION*>(lock.section);
    EnterCriticalSection(section);
    if (lock.readers == 0) ResetEvent(Handle(lock.noReaders));
    ++lock.readers;
    LeaveCriticalSection(section);
    ReleaseMutex(Handle(lock.writeMutex));
    return true;
}

void ReadLeave(const ReadWrite& lock) {
    CRITICAL_SECTION* section = static_cast<CRITICAL_SECTION*>(lock.section);
    EnterCriticalSection(section);
    if (--lock.readers == 0) SetEvent(Handle(lock.noReaders));
    LeaveCriticalSection(section);
}

bool WriteEnter(const ReadWrite& lock, bool tryOnly) {
    if (!Obtain(lock.writeMutex, tryOnly)) return false;
    if (Obtain(lock.noReaders, tryOnly)) return true;
    ReleaseMutex(Handle(lock.writeMutex));
    return false;
}

void WriteLeave(const ReadWrite& lock) { ReleaseMutex(Handle(lock.writeMutex)); }

} // namespace zav_os
