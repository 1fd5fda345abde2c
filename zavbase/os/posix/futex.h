#ifndef ZAVBASE_OS_POSIX_FUTEX_H
#define ZAVBASE_OS_POSIX_FUTEX_H

#include <zavbase/os/sync.h>

#include <ctime>

namespace zav_os {

/// The end of a wait that begins now and lasts so many milliseconds.
timespec Deadline(uint32_t milliseconds);

/// Sleeps while `*word` is `value`, until woken; `deadline` may be null. False when the time ran out. May
/// return true for no reason.
bool FutexWait(const void* word, uint32_t value, const timespec* deadline);
void FutexWake(const void* word, uint32_t threads);

} // namespace zav_os

#endif
