#include <zavbase/os/lock.h>

#include <zavbase/os/posix/futex.h>

namespace zav_os {

namespace {

constexpr uintptr_t kFree = 0;
constexpr uintptr_t kHeld = 1;
constexpr uintptr_t kAwaited = 2; ///< held, and threads may be asleep until it is given back

} // namespace

bool Lock::try_lock() noexcept {
    uintptr_t state = kFree;
    return mWord.compare_exchange_strong(state, kHeld, std::memory_order_acquire, std::memory_order_relaxed);
}

// Who has slept cannot know that it was the only one, and says that others may wait.
void Lock::lock() noexcept {
    if (try_lock()) return;
    while (mWord.exchange(kAwaited, std::memory_order_acquire) != kFree)
        FutexWait(&mWord, static_cast<uint32_t>(kAwaited), nullptr);
}

void Lock::unlock() noexcept {
    if (mWord.exchange(kFree, std::memory_order_release) == kAwaited) FutexWake(&mWord, 1);
}

} // namespace zav_os
