#ifndef ZAVBASE_OS_LOCK_H
#define ZAVBASE_OS_LOCK_H

#include <zavbase/os/sync.h>

namespace zav_os {

/// A lock for one thread at a time, not re-entrant, for what the library keeps for the whole process: built
/// by the compiler, so that it is there before the first static object, and nothing is left of it when the
/// library is unloaded. A thread may give back in a child process what it took before the fork.
class Lock {
public:
    constexpr Lock() = default;
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    void lock() noexcept;
    bool try_lock() noexcept;
    void unlock() noexcept;

    /// In the child of a fork, where the thread that holds the lock is not: makes it free.
    void Forget() noexcept { mWord.store(0, std::memory_order_relaxed); }

private:
    Word mWord{0};
};

} // namespace zav_os

#endif
