#include "fake_clock.h"

#include <zavbase/os/clock.h>

std::atomic<std::uint32_t> fakeTicks{0};

uint32_t zav_os::TickCount() { return fakeTicks; }

void zav_os::Sleep(uint32_t milliseconds) { fakeTicks += milliseconds; }
