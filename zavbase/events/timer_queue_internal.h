#ifndef ZAVBASE_EVENTS_TIMER_QUEUE_INTERNAL_H
#define ZAVBASE_EVENTS_TIMER_QUEUE_INTERNAL_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include <zavbase/events/timer_table_internal.h>

/// The pending timers by due time. It is told the time, as 32-bit ticks that never go back but wrap, and owns
/// nothing; one thread at a time uses it.
///
/// What comes out is what one list would give, walked from its front for each new timer past those that will
/// have elapsed when the new one is due: earliest first, and first in first out among equals. A timer that
/// runs across the wrap of the ticks is due one tick later, and comes before those that fall due with it.
///
/// It is a radix heap: time only goes on, so a timer is kept in a bucket by the highest bit in which its due
/// time differs from the time reached, and moves to a lower bucket when that time is reached. Adding is one
/// append, a timer moves at most 32 times and nearly always in sequence, and a cancelled one just loses its
/// table entry; its place is swept out when such places are the majority.
class ZAV_TimerQueue {
public:
    ZAV_TimerQueue() = default;
    ZAV_TimerQueue(const ZAV_TimerQueue&) = delete;
    ZAV_TimerQueue& operator=(const ZAV_TimerQueue&) = delete;

    /// Adds a timer set at `now` for `timeout` ticks later. Whether it is now the first to fall due. Throws,
    /// and nothing is added, when memory runs out.
    bool Insert(ZAV_EventTimer* timer, std::int32_t id, std::uint32_t now, std::uint32_t timeout);
    /// Takes the timer of that identifier out; null when there is none.
    ZAV_EventTimer* Cancel(std::int32_t id);
    /// Takes the first timer out if it is due at `now`; else null.
    ZAV_EventTimer* TakeDue(std::uint32_t now);
    /// Takes any timer out; null when empty.
    ZAV_EventTimer* TakeAny();

    std::size_t Count() const { return mTable.Count(); }
    /// Ticks from `now` until something may be due, at most `limit`. A cancelled timer may make it early,
    /// once.
    std::uint32_t TicksToGo(std::uint32_t now, std::uint32_t limit);

private:
    typedef std::uint64_t Time; // the ticks, carried on beyond 32 bits
    struct Place {
        Time due;
        std::int32_t id;
        bool wraps;
    };
    static const int kBuckets = 64;

    void Reach(std::uint32_t now);
    void Restart(std::uint32_t now);
    int BucketOf(Time due) const;
    int FirstBucket() const;
    Time FirstDue(int bucket) const { return bucket == 0 ? mReached : mEarliest[bucket]; }
    void Put(const Place& place);
    static bool EarlierThan(const Place& a, const Place& b);
    void Spread(int bucket);
    ZAV_EventTimer* TakeFront();
    void PrefetchBehind(std::size_t place) const;
    void SweepCancelled();

    ZAV_TimerTable mTable;
    Time mNow = 0;
    Time mReached = 0; // due time of bucket 0; not after mNow
    std::vector<Place> mPlaces[kBuckets];
    Time mEarliest[kBuckets] = {};
    std::uint64_t mUsed = 0;     // a bit for each bucket that is not empty
    std::size_t mFront = 0;      // what of bucket 0 was taken already
    std::size_t mPlaceCount = 0; // timers and cancelled ones
};

#endif
