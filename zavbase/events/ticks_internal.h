#ifndef ZAVBASE_EVENTS_TICKS_INTERNAL_H
#define ZAVBASE_EVENTS_TICKS_INTERNAL_H

#include <cstdint>

/// Milliseconds from one tick count to another; one less when the counter wrapped in between.
inline std::uint32_t ZAV_TicksBetween(std::uint32_t start, std::uint32_t now) {
    return now - start - (now < start ? 1u : 0u);
}

#endif
