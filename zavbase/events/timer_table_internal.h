#ifndef ZAVBASE_EVENTS_TIMER_TABLE_INTERNAL_H
#define ZAVBASE_EVENTS_TIMER_TABLE_INTERNAL_H

#include <cstddef>
#include <cstdint>
#include <vector>

class ZAV_EventTimer;

/// Timers by identifier: open addressing with linear probing, without tombstones.
class ZAV_TimerTable {
public:
    void Insert(std::int32_t id, ZAV_EventTimer* timer);
    ZAV_EventTimer* Remove(std::int32_t id);  ///< null when not in
    bool Includes(std::int32_t id) const { return mCount != 0 && mSlots[Find(id)].timer != nullptr; }
    std::size_t Count() const { return mCount; }

private:
    struct Slot {
        ZAV_EventTimer* timer;  // null: free
        std::int32_t id;
    };

    std::size_t Home(std::int32_t id) const;
    std::size_t Find(std::int32_t id) const;
    void CloseGap(std::size_t gap);
    void Grow();

    std::vector<Slot> mSlots;  // a power of two of them, at most three quarters in use
    int mShift = 64;
    std::size_t mCount = 0;
};

#endif
