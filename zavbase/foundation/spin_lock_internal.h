#ifndef ZAVBASE_FOUNDATION_SPIN_LOCK_INTERNAL_H
#define ZAVBASE_FOUNDATION_SPIN_LOCK_INTERNAL_H

#include <atomic>

/// A lock for sections of a few instructions, taken a million times a second: free, it costs one atomic
/// exchange and no call on any system. Who finds it held looks again, then lets other threads run, then
/// sleeps. A static one is built by the compiler and never destroyed.
class ZAV_SpinLock {
public:
    void lock() {
        if (mHeld.exchange(true, std::memory_order_acquire)) LockHeld();
    }
    bool try_lock() {
        return !mHeld.load(std::memory_order_relaxed) && !mHeld.exchange(true, std::memory_order_acquire);
    }
    /// What a waiting thread does after so many looks.
    static void Pause(int looks);
    void unlock() { mHeld.store(false, std::memory_order_release); }

private:
    void LockHeld();

    std::atomic<bool> mHeld{false};
};

#endif
