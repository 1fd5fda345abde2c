#ifndef ZAVBASE_EVENTS_EVENT_QUEUE_INTERNAL_H
#define ZAVBASE_EVENTS_EVENT_QUEUE_INTERNAL_H

#include <cstddef>
#include <cstdint>
#include <vector>

class ZAV_Event;

/// Events by priority: highest first, first in first out among equals. What comes out is what one list would
/// give in which each event is put behind the last one of at least its priority; the cost is another: a
/// bucket per priority, found by hashing, is a list with a tail pointer, and a heap orders the buckets in
/// use. So an event costs the same however many are pending, and only a priority that comes into or goes out
/// of use costs the logarithm of the number of priorities in use.
///
/// Events come out a bucket at a time; what is left of one can be put back. Does not own the events, and is
/// used by one thread at a time. Push and PutBack throw, and change nothing, when memory runs out.
class ZAV_EventQueue {
public:
    /// Events of one priority, linked in their order. As they all have the chain's, the place of an event's
    /// own priority is used meanwhile for a hint where the event is that comes some places later: long queues
    /// do not stay in the processor's cache, and a list alone tells only the next.
    struct Chain {
        ZAV_Event* first = nullptr;
        ZAV_Event* last = nullptr;
        ZAV_Event* unhinted = nullptr; // the next to get its hint; null when there will be none
        std::uint32_t count = 0;
        std::int32_t priority = 0;

        void Append(ZAV_Event* event);
        void Prepend(Chain& other); ///< of the same priority; empties it
        ZAV_Event* TakeFirst();     ///< null when empty
    };

    ZAV_EventQueue() = default;
    ZAV_EventQueue(const ZAV_EventQueue&) = delete;
    ZAV_EventQueue& operator=(const ZAV_EventQueue&) = delete;

    void Push(ZAV_Event* event); ///< by its own priority
    /// The same for a list that is walked from its newest event to its oldest. What was pushed so counts, but
    /// comes out only after JoinOlder, behind all that was pushed before the walk.
    void PushOlder(ZAV_Event* event);
    void JoinOlder();
    Chain TakeHighest();        ///< the whole bucket of the highest priority; an empty chain if there is none
    void PutBack(Chain& chain); ///< before all others of its priority; leaves an empty chain

    std::uint32_t Length() const { return mLength; }

private:
    struct HeapEntry {
        std::int32_t priority;
        std::uint32_t bucket;
        bool operator<(const HeapEntry& other) const { return priority < other.priority; }
    };

    static const std::uint32_t kNoBucket = UINT32_MAX;

    struct Bucket {
        Chain events;
        Chain joining;            // pushed by PushOlder
        std::uint32_t nextToJoin; // number of a bucket; when joining is not empty

        bool IsEmpty() const { return events.first == nullptr && joining.first == nullptr; }
    };

    Bucket& BucketFor(std::int32_t priority);
    std::uint32_t BucketNumber(std::int32_t priority);
    std::uint32_t* Slot(std::int32_t priority);
    void Rehash(std::size_t slots);
    void FillSlots();
    void ForgetEmptyBuckets();

    std::vector<Bucket> mBuckets;      // those that hold events and some that did
    std::vector<std::uint32_t> mSlots; // open addressing; bucket number + 1, or 0
    std::vector<HeapEntry> mHeap;      // the buckets that hold events, highest priority on top
    std::uint32_t mFirstToJoin = kNoBucket;
    std::uint32_t mLastUsed = 0;
    std::uint32_t mLength = 0;
};

#endif
