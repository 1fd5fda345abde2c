#ifndef ZAVBASE_TESTS_EVENTS_FAKE_CLOCK_H
#define ZAVBASE_TESTS_EVENTS_FAKE_CLOCK_H

#include <atomic>
#include <cstdint>

/// The tick count that the library sees in this program; it stands still until set.
extern std::atomic<std::uint32_t> fakeTicks;

#endif
