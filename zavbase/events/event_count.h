#ifndef ZAVBASE_EVENTS_EVENT_COUNT_H
#define ZAVBASE_EVENTS_EVENT_COUNT_H

#include <atomic>

#include <zavbase/foundation/export.h>

/// The number of live events, to be read as an int. Events are made on some threads and destroyed on others,
/// a million a second; so each thread counts its own changes, and reading adds them up. Exact when no other
/// thread is just making or destroying events.
class ZAV_API ZAV_EventCount {
public:
    constexpr ZAV_EventCount() : mOfEnded(0) {}
    ZAV_EventCount(const ZAV_EventCount&) = delete;
    ZAV_EventCount& operator=(const ZAV_EventCount&) = delete;

    operator int() const;

private:
    friend class ZAV_Event;

    void Add(int change);
    void AddSlowly(int change);

    std::atomic<int> mOfEnded; ///< what threads that have ended, or are about to, counted
};

#endif
