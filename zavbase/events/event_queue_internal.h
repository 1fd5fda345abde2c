#ifndef ZAVBASE_EVENTS_EVENT_QUEUE_INTERNAL_H
#define ZAVBASE_EVENTS_EVENT_QUEUE_INTERNAL_H

#include <cstddef>
#include <cstdint>
#include <vector>

class ZAV_Event;

/// Events by priority: highest first, first in first out among equals. What comes out is what one list would
/// give in which each event is put behind the last one of at least its priority; the cost is another: a bucket
/// per priority, found by hashing, is a list with a tail pointer, and a heap orders the buckets in use. So an
/// event costs the same however many are pending, and only a priority that comes into or goes out of use costs
/// the logarithm of the number of priorities in use.
///
/// Does not own the events, and is used by one thread at a time.
class ZAV_EventQueue {
public:
    ZAV_EventQueue() = default;
    ZAV_EventQueue(const ZAV_EventQueue&) = delete;
    ZAV_EventQueue& operator=(const ZAV_EventQueue&) = delete;

    /// Puts the event in by its own priority. When memory runs out it throws and the event is not in.
    void Push(ZAV_Event* event);
    /// Takes the first event out; null when empty.
    ZAV_Event* Pop();

    std::size_t Length() const { return mLength; }

private:
    struct Bucket {
        std::int32_t priority;
        ZAV_Event* first;  // null: not in the heap
        ZAV_Event* last;
    };
    struct HeapEntry {
        std::int32_t priority;
        std::uint32_t bucket;
        bool operator<(const HeapEntry& other) const { return priority < other.priority; }
    };

    std::uint32_t BucketFor(std::int32_t priority);
    std::uint32_t* Slot(std::int32_t priority);
    void Rehash(std::size_t slots);
    void FillSlots();
    void ForgetEmptyBuckets();
    void ForgetBuckets();

    std::vector<Bucket> mBuckets;
    std::vector<std::uint32_t> mSlots;  // open addressing; bucket number + 1, or 0
    std::vector<HeapEntry> mHeap;       // the buckets that hold events, highest priority on top
    std::uint32_t mLastUsed = 0;
    std::size_t mLength = 0;
};

#endif
