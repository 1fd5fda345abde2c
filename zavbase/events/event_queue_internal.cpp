#include <zavbase/events/event_queue_internal.h>

#include <algorithm>
#include <utility>

#include <zavbase/events/event.h>

namespace {

const std::size_t kFirstSlots = 16;
const std::size_t kFewBuckets = 1024;
const std::uint32_t kHintDistance = 8; // events
const std::ptrdiff_t kHintUnit = 8;    // bytes; a hint that does not fit is of no use but does no harm

std::size_t Hash(std::int32_t priority) {
    return static_cast<std::size_t>(static_cast<std::uint32_t>(priority) * 0x9E3779B97F4A7C15ull >> 32);
}

} // namespace

ZAV_Event* ZAV_EventQueue::Chain::TakeFirst() {
    ZAV_Event* event = first;
    if (event == nullptr) return nullptr;
    first = static_cast<ZAV_Event*>(event->mNext);
    event->mNext = nullptr;
    const char* const later =
        reinterpret_cast<const char*>(event) + std::ptrdiff_t{event->mPriority} * kHintUnit;
    __builtin_prefetch(later); // it may lie across two cache lines
    __builtin_prefetch(later + sizeof(ZAV_Event) - 1);
    if (first != nullptr) __builtin_prefetch(first->mDestination);
    event->mPriority = priority;
    --count;
    return event;
}

void ZAV_EventQueue::Chain::Append(ZAV_Event* event) {
    if (first == nullptr)
        first = unhinted = event;
    else
        last->mNext = event;
    event->mNext = nullptr;
    event->mPriority = 0;
    last = event;
    if (++count > kHintDistance && unhinted != nullptr) {
        const std::ptrdiff_t distance =
            reinterpret_cast<const char*>(event) - reinterpret_cast<const char*>(unhinted);
        unhinted->mPriority = static_cast<zav_long32>(distance / kHintUnit);
        unhinted = static_cast<ZAV_Event*>(unhinted->mNext);
    }
}

// Who gets the next hint is not known any more: it may have been taken already.
void ZAV_EventQueue::Chain::Prepend(Chain& other) {
    if (other.first == nullptr) return;
    if (first == nullptr)
        last = other.last;
    else
        other.last->mNext = first;
    first = other.first;
    count += other.count;
    unhinted = nullptr;
    other.first = nullptr;
    other.count = 0;
}

void ZAV_EventQueue::Push(ZAV_Event* event) {
    BucketFor(event->mPriority).events.Append(event);
    ++mLength;
}

void ZAV_EventQueue::PushOlder(ZAV_Event* event) {
    Bucket& bucket = BucketFor(event->mPriority);
    Chain& joining = bucket.joining;
    if (joining.first == nullptr) {
        joining.last = event;
        joining.unhinted = nullptr;
        bucket.nextToJoin = std::exchange(mFirstToJoin, mLastUsed);
    }
    event->mNext = joining.first;
    event->mPriority = 0;
    joining.first = event;
    ++joining.count;
    ++mLength;
}

void ZAV_EventQueue::JoinOlder() {
    while (mFirstToJoin != kNoBucket) {
        Bucket& bucket = mBuckets[mFirstToJoin];
        bucket.joining.Prepend(bucket.events);
        std::swap(bucket.joining, bucket.events);
        mFirstToJoin = bucket.nextToJoin;
    }
}

ZAV_EventQueue::Chain ZAV_EventQueue::TakeHighest() {
    if (mHeap.empty()) return Chain();
    Chain& events = mBuckets[mHeap.front().bucket].events;
    const Chain taken = events;
    events.first = nullptr;
    events.count = 0;
    mLength -= taken.count;
    std::pop_heap(mHeap.begin(), mHeap.end());
    mHeap.pop_back();
    return taken;
}

void ZAV_EventQueue::PutBack(Chain& chain) {
    if (chain.first == nullptr) return;
    const std::uint32_t count = chain.count;
    BucketFor(chain.priority).events.Prepend(chain);
    mLength += count;
    chain = Chain();
}

// The bucket, which is in the heap, is the last used, and is about to get an event.
ZAV_EventQueue::Bucket& ZAV_EventQueue::BucketFor(std::int32_t priority) {
    const std::uint32_t number = BucketNumber(priority);
    if (mBuckets[number].IsEmpty()) {
        mHeap.push_back({priority, number});
        std::push_heap(mHeap.begin(), mHeap.end());
    }
    return mBuckets[number];
}

std::uint32_t ZAV_EventQueue::BucketNumber(std::int32_t priority) {
    if (mLastUsed < mBuckets.size() && mBuckets[mLastUsed].events.priority == priority) return mLastUsed;
    // At most half of the slots are in use, so every probe ends.
    if (mSlots.size() < 2 * (mBuckets.size() + 1)) {
        // Priorities that are never used again must not stay for ever.
        if (mBuckets.size() > kFewBuckets && mBuckets.size() > 4 * mHeap.size()) ForgetEmptyBuckets();
        if (mSlots.size() < 2 * (mBuckets.size() + 1)) Rehash((std::max)(kFirstSlots, 2 * mSlots.size()));
    }
    std::uint32_t* slot = Slot(priority);
    if (*slot == 0) {
        Bucket& bucket = mBuckets.emplace_back();
        bucket.events.priority = bucket.joining.priority = priority;
        *slot = static_cast<std::uint32_t>(mBuckets.size());
    }
    return mLastUsed = *slot - 1;
}

std::uint32_t* ZAV_EventQueue::Slot(std::int32_t priority) {
    const std::size_t mask = mSlots.size() - 1;
    std::size_t i = Hash(priority) & mask;
    while (mSlots[i] != 0 && mBuckets[mSlots[i] - 1].events.priority != priority) i = (i + 1) & mask;
    return &mSlots[i];
}

void ZAV_EventQueue::Rehash(std::size_t slots) {
    std::vector<std::uint32_t> fresh(slots, 0);
    mSlots.swap(fresh);
    FillSlots();
}

void ZAV_EventQueue::FillSlots() {
    for (std::size_t b = 0; b < mBuckets.size(); ++b)
        *Slot(mBuckets[b].events.priority) = static_cast<std::uint32_t>(b + 1);
}

// Keeps the buckets that hold events, in the heap's order: a heap stays a heap when its entries are
// renumbered. What can fail comes first.
void ZAV_EventQueue::ForgetEmptyBuckets() {
    std::vector<Bucket> kept;
    kept.reserve(mHeap.size() + 1);
    mFirstToJoin = kNoBucket;
    for (HeapEntry& entry : mHeap) {
        kept.push_back(mBuckets[entry.bucket]);
        entry.bucket = static_cast<std::uint32_t>(kept.size() - 1);
        if (kept.back().joining.first != nullptr)
            kept.back().nextToJoin = std::exchange(mFirstToJoin, entry.bucket);
    }
    mBuckets.swap(kept);
    std::fill(mSlots.begin(), mSlots.end(), 0);
    FillSlots();
}
