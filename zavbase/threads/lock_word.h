#ifndef ZAVBASE_THREADS_LOCK_WORD_H
#define ZAVBASE_THREADS_LOCK_WORD_H

#include <atomic>
#include <cstdint>

#include <zavbase/foundation/types.h>

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

/// What the lock classes are made of. Programs use the classes, not this.
///
/// A word holds a kernel object's handle where locks are kernel objects. Elsewhere it is a counting semaphore
/// by itself: twice the number of units, plus 1 when threads may be asleep waiting for one. A mutex is a
/// semaphore with one unit. Free and held below are its states with nobody waiting; only these two are
/// handled in the caller's code, everything else in the library.
namespace zav_lock {

typedef std::atomic<uintptr_t> Word;

/// Room for the system's critical section; where locks are words, for what a lock notes about its owner.
struct Section {
    void* mPointers[4];
    int32_t mNumbers[2];
};

constexpr uintptr_t kFree = 2;
constexpr uintptr_t kHeld = 0;

/// Whether no other thread can be running, so that a plain store does for an atomic exchange.
inline bool SingleThreaded() {
#if __has_include(<sys/single_threaded.h>)
    return __libc_single_threaded != 0;
#else
    return false;
#endif
}

#if ZAV_LOCKS_ARE_WORDS
/// A number that no other thread has or had, for owners; 0 until the library gave the thread one.
extern ZAV_API __thread uintptr_t theThreadMark __attribute__((tls_model("initial-exec")));
inline uintptr_t ThreadMark() { return theThreadMark; }
#else
inline uintptr_t ThreadMark() { return 0; }
#endif

inline bool Exchange(Word& word, uintptr_t from, uintptr_t to, std::memory_order order) {
    if (SingleThreaded()) {
        if (word.load(std::memory_order_relaxed) != from) return false;
        word.store(to, std::memory_order_relaxed);
        return true;
    }
    return word.compare_exchange_strong(from, to, order, std::memory_order_relaxed);
}

/// Takes a free mutex; false when it is not free or not a word.
inline bool Take(Word& word) {
    return ZAV_LOCKS_ARE_WORDS && Exchange(word, kFree, kHeld, std::memory_order_acquire);
}
/// Gives back a mutex that nobody waits for; false when somebody may, or when it is not a word.
inline bool Give(Word& word) {
    return ZAV_LOCKS_ARE_WORDS && Exchange(word, kHeld, kFree, std::memory_order_release);
}

} // namespace zav_lock

#endif
