#include <zavbase/os/posix/futex.h>
#include <zavbase/os/posix/thread_end.h>

#include <bit>
#include <cerrno>
#include <climits>
#include <linux/futex.h>
#include <new>
#include <sys/syscall.h>
#include <unistd.h>

namespace zav_os {

static_assert(sizeof(Word) == 8 && std::endian::native == std::endian::little,
              "threads sleep on the lower 32 bits of a lock's word, which must come first in memory");

timespec Deadline(uint32_t milliseconds) {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    t.tv_sec += static_cast<time_t>(milliseconds / 1000);
    t.tv_nsec += static_cast<long>(milliseconds % 1000) * 1000000;
    if (t.tv_nsec >= 1000000000) {
        t.tv_nsec -= 1000000000;
        ++t.tv_sec;
    }
    return t;
}

bool FutexWait(const void* word, uint32_t value, const timespec* deadline) {
    const int saved = errno;
    const bool inTime = syscall(SYS_futex, word, FUTEX_WAIT_BITSET | FUTEX_PRIVATE_FLAG, value, deadline,
                                nullptr, FUTEX_BITSET_MATCH_ANY) == 0 ||
                        errno != ETIMEDOUT;
    errno = saved;
    return inTime;
}

void FutexWake(const void* word, uint32_t threads) {
    const int saved = errno;
    syscall(SYS_futex, word, FUTEX_WAKE | FUTEX_PRIVATE_FLAG, threads < INT_MAX ? threads : INT_MAX);
    errno = saved;
}

// A semaphore's word: twice its units, plus this when threads may be asleep, which they only are at no units.
// A release clears the mark and wakes as many as it gives units; a thread that has slept and takes the last
// unit sets it again, as others may sleep on, and one that leaves units wakes the next. So a mutex given back
// while the thread it woke is still on its way costs no further call of the system.
namespace {

constexpr uintptr_t kSleepers = 1;
constexpr uintptr_t kUnit = 2;
constexpr uintptr_t kMaxUnits = 0x7FFFFFFF;

bool TakeUnit(Word& semaphore, uintptr_t& state, bool slept) {
    while (state >= kUnit) {
        uintptr_t taken = state - kUnit;
        if (slept && taken < kUnit) taken |= kSleepers;
        if (!semaphore.compare_exchange_weak(state, taken, std::memory_order_acquire,
                                             std::memory_order_relaxed))
            continue;
        if (slept && taken >= kUnit) FutexWake(&semaphore, 1);
        return true;
    }
    return false;
}

} // namespace

void SemaphoreOpen(Word& semaphore, int32_t units) {
    semaphore.store(static_cast<uintptr_t>(units) * kUnit, std::memory_order_relaxed);
}

void SemaphoreClose(Word&) {}

Wait SemaphoreWait(Word& semaphore, uint32_t milliseconds) {
    uintptr_t state = semaphore.load(std::memory_order_relaxed);
    if (TakeUnit(semaphore, state, false)) return Wait::Done;
    if (milliseconds == 0) return Wait::TimedOut;
    const timespec end = milliseconds == kForever ? timespec() : Deadline(milliseconds);
    bool inTime = true;
    for (bool slept = false; !TakeUnit(semaphore, state, slept);) {
        if (!inTime) return Wait::TimedOut;
        if (state == kSleepers ||
            semaphore.compare_exchange_weak(state, kSleepers, std::memory_order_relaxed)) {
            inTime = FutexWait(&semaphore, kSleepers, milliseconds == kForever ? nullptr : &end);
            slept = true;
            state = semaphore.load(std::memory_order_relaxed);
        }
    }
    return Wait::Done;
}

void SemaphoreRelease(Word& semaphore, uint32_t units) {
    uintptr_t state = semaphore.load(std::memory_order_relaxed);
    do {
        if (state / kUnit + units > kMaxUnits) return;
    } while (!semaphore.compare_exchange_weak(state, (state & ~kSleepers) + units * kUnit,
                                              std::memory_order_release, std::memory_order_relaxed));
    if (state & kSleepers) FutexWake(&semaphore, units);
}

void ReentrantOpen(const Reentrant& lock) {
    lock.owner.store(0, std::memory_order_relaxed);
    lock.count.store(0, std::memory_order_relaxed);
    SemaphoreOpen(lock.semaphore, 1);
}

void ReentrantClose(const Reentrant&) {}

bool ReentrantEnter(const Reentrant& lock, bool tryOnly) {
    return SemaphoreWait(lock.semaphore, tryOnly ? 0 : kForever) == Wait::Done;
}

void ReentrantLeave(const Reentrant& lock) { SemaphoreRelease(lock.semaphore, 1); }

// A read-write lock's word: flags in the lower half, the count of readers in the upper. The write mutex is
// the first flag; a reader's instant in it is the one exchange that counts the reader. kOccupied is the event
// "no readers", inverted: it follows the count only when that leaves or reaches 0.
namespace {

constexpr uintptr_t kWriter = 1;
constexpr uintptr_t kOccupied = 2;
constexpr uintptr_t kWaiting = 4; ///< threads may be asleep until one of the two above is cleared
constexpr uintptr_t kReader = uintptr_t(1) << 32;

/// What a read-write lock notes about its writer; the section is the room for it. Only the writer writes it.
struct Writer {
    std::atomic<void*> thread;
    Writer* next;
    Writer* previous;
    Word* word;
    uint32_t depth;
};
static_assert(sizeof(Writer) <= kSectionSize);

Writer& WriterOf(const ReadWrite& lock) { return *static_cast<Writer*>(lock.section); }

// The write locks that this thread holds, a ring with no end element.
thread_local constinit Writer* heldWriters = nullptr;

// A thread's address may be the next one's when it has ended, but then it holds no write lock any more.
void* ThisThread() { return __builtin_thread_pointer(); }

bool IsOwner(const Writer& writer) { return writer.thread.load(std::memory_order_relaxed) == ThisThread(); }

void Note(Writer& writer) {
    ArmThreadEnd(); // other threads than the library's call nothing at their end
    writer.thread.store(ThisThread(), std::memory_order_relaxed);
    writer.depth = 1;
    writer.previous = nullptr;
    writer.next = heldWriters;
    if (heldWriters) heldWriters->previous = &writer;
    heldWriters = &writer;
}

void Forget(Writer& writer) {
    writer.thread.store(nullptr, std::memory_order_relaxed);
    (writer.previous ? writer.previous->next : heldWriters) = writer.next;
    if (writer.next) writer.next->previous = writer.previous;
}

/// Sleeps until the state that keeps the caller out may have changed, and reads it again.
void Sleep(Word& word, uintptr_t& state) {
    if (!(state & kWaiting) &&
        !word.compare_exchange_weak(state, state | kWaiting, std::memory_order_relaxed))
        return;
    FutexWait(&word, static_cast<uint32_t>(state | kWaiting), nullptr);
    state = word.load(std::memory_order_relaxed);
}

void FreeWriteSide(Writer& writer) {
    Word& word = *writer.word;
    Forget(writer);
    if (word.fetch_and(~(kWriter | kWaiting), std::memory_order_release) & kWaiting)
        FutexWake(&word, INT_MAX);
}

bool TakeWriteSide(const ReadWrite& lock, bool tryOnly) {
    Writer& writer = WriterOf(lock);
    if (IsOwner(writer)) {
        ++writer.depth;
        return true;
    }
    uintptr_t state = lock.writeMutex.load(std::memory_order_relaxed);
    while ((state & kWriter) ||
           !lock.writeMutex.compare_exchange_weak(state, state | kWriter, std::memory_order_acquire,
                                                  std::memory_order_relaxed)) {
        if (!(state & kWriter)) continue;
        if (tryOnly) return false;
        Sleep(lock.writeMutex, state);
    }
    Note(writer);
    return true;
}

} // namespace

// At the end of every thread.
void AbandonWriteLocks() {
    while (heldWriters) FreeWriteSide(*heldWriters);
}

void ReadWriteOpen(const ReadWrite& lock) {
    lock.writeMutex.store(0, std::memory_order_relaxed);
    lock.readers = 0;
    lock.noReaders.store(0, std::memory_order_relaxed);
    new (lock.section) Writer{{nullptr}, nullptr, nullptr, &lock.writeMutex, 0};
}

void ReadWriteClose(const ReadWrite& lock) {
    if (IsOwner(WriterOf(lock))) Forget(WriterOf(lock));
}

bool ReadEnter(const ReadWrite& lock, bool tryOnly) {
    const bool owner = IsOwner(WriterOf(lock));
    uintptr_t state = lock.writeMutex.load(std::memory_order_relaxed);
    for (;;) {
        if (!(state & kWriter) || owner) {
            const uintptr_t counted = (state + kReader) | (state < kReader ? kOccupied : 0);
            if (lock.writeMutex.compare_exchange_weak(state, counted, std::memory_order_acquire,
                                                      std::memory_order_relaxed))
                return true;
        } else {
            if (tryOnly) return false;
            Sleep(lock.writeMutex, state);
        }
    }
}

void ReadLeave(const ReadWrite& lock) {
    uintptr_t state = lock.writeMutex.load(std::memory_order_relaxed);
    uintptr_t left;
    do {
        left = state - kReader;
        if (left < kReader) left &= ~(kOccupied | kWaiting);
    } while (!lock.writeMutex.compare_exchange_weak(state, left, std::memory_order_release,
                                                    std::memory_order_relaxed));
    if (left < kReader && (state & kWaiting)) FutexWake(&lock.writeMutex, INT_MAX);
}

bool WriteEnter(const ReadWrite& lock, bool tryOnly) {
    if (!TakeWriteSide(lock, tryOnly)) return false;
    uintptr_t state = lock.writeMutex.load(std::memory_order_acquire);
    while (state & kOccupied) {
        if (tryOnly) {
            WriteLeave(lock);
            return false;
        }
        Sleep(lock.writeMutex, state);
        state = lock.writeMutex.load(std::memory_order_acquire);
    }
    return true;
}

void WriteLeave(const ReadWrite& lock) {
    Writer& writer = WriterOf(lock);
    if (IsOwner(writer) && --writer.depth == 0) FreeWriteSide(writer);
}

} // namespace zav_os
