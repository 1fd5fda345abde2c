#ifndef ZAVBASE_EVENTS_EVENT_COUNT_H
#define ZAVBASE_EVENTS_EVENT_COUNT_H

#include <zavbase/foundation/export.h>

/// The number of live events, to be read as an int. Events are made on some threads and destroyed on others,
/// a million a second; so threads count at different places, and reading adds them up. Exact when no other
/// thread is just making or destroying events. There is one such count in a process.
class ZAV_API ZAV_EventCount {
public:
    constexpr ZAV_EventCount() : mReserved(0) {}
    ZAV_EventCount(const ZAV_EventCount&) = delete;
    ZAV_EventCount& operator=(const ZAV_EventCount&) = delete;

    operator int() const;

private:
    friend class ZAV_Event;

    static void Add(int change);

    int mReserved; ///< the size of an int, as readers expect
};

#endif
