#ifndef ZAVBASE_OS_CLOCK_H
#define ZAVBASE_OS_CLOCK_H

#include <cstdint>

namespace zav_os {

/// A count of milliseconds that never goes back and wraps at 2^32.
uint32_t TickCount();

/// Sleeps at least `milliseconds`; 0 lets other threads run, 0xFFFFFFFF does not return.
void Sleep(uint32_t milliseconds);

} // namespace zav_os

#endif
