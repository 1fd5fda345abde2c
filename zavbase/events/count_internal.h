#ifndef ZAVBASE_EVENTS_COUNT_INTERNAL_H
#define ZAVBASE_EVENTS_COUNT_INTERNAL_H

#include <atomic>

/// Changes one of the public counters of live objects, which are plain int for their readers.
inline void ZAV_CountLive(int& counter, int change) {
    std::atomic_ref<int>(counter).fetch_add(change, std::memory_order_relaxed);
}

#endif
