#ifndef ZAVBASE_OS_SYNC_H
#define ZAVBASE_OS_SYNC_H

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace zav_os {

enum class Wait { Done, TimedOut, Failed };
constexpr uint32_t kForever = 0xFFFFFFFF;

/// A kernel object's handle, or the whole state of a lock. What its states are is told in
/// threads/lock_word.h, since free locks are taken without a call.
typedef std::atomic<uintptr_t> Word;

/// A counting semaphore of at most 2^31 - 1 units; releasing more than that has no effect.
void SemaphoreOpen(Word& semaphore, int32_t units);
void SemaphoreClose(Word& semaphore);
Wait SemaphoreWait(Word& semaphore, uint32_t milliseconds);
void SemaphoreRelease(Word& semaphore, uint32_t units);

/// A lock that its thread may take again. Where locks are words, the owner and the count are the caller's: it
/// enters only if it is not the owner, and sets them then; it leaves for the last time only, after clearing
/// the owner; `guard` is not used.
struct Reentrant {
    std::atomic<uintptr_t>& owner;
    std::atomic<uint32_t>& count;
    Word& guard;
    Word& semaphore;
};
void ReentrantOpen(const Reentrant& lock);
void ReentrantClose(const Reentrant& lock);
bool ReentrantEnter(const Reentrant& lock, bool tryOnly);
void ReentrantLeave(const Reentrant& lock);

/// A lock of readers and writers; threads/read_write_lock.h tells its rules. `section` is room for 4 pointers
/// and 2 numbers of 32 bits. Where locks are words, `readers` and `noReaders` are not used.
struct ReadWrite {
    Word& writeMutex;
    void* section;
    uint32_t& readers;
    Word& noReaders;
};
constexpr size_t kSectionSize = 4 * sizeof(void*) + 8;
void ReadWriteOpen(const ReadWrite& lock);
void ReadWriteClose(const ReadWrite& lock);
bool ReadEnter(const ReadWrite& lock, bool tryOnly);
void ReadLeave(const ReadWrite& lock); ///< whether the caller entered or not
bool WriteEnter(const ReadWrite& lock, bool tryOnly);
void WriteLeave(const ReadWrite& lock); ///< no effect unless the calling thread owns the write side

} // namespace zav_os

#endif
