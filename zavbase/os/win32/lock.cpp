#include <zavbase/os/lock.h>

#include <windows.h>

namespace zav_os {

static_assert(sizeof(SRWLOCK) == sizeof(Word), "the word is the system's lock, which is free when zero");

static SRWLOCK* Of(Word& word) { return reinterpret_cast<SRWLOCK*>(&word); }

void Lock::lock() noexcept { AcquireSRWLockExclusive(Of(mWord)); }

bool Lock::try_lock() noexcept { return TryAcquireSRWLockExclusive(Of(mWord)) != 0; }

void Lock::unlock() noexcept { ReleaseSRWLockExclusive(Of(mWord)); }

} // namespace zav_os
