#include <zavbase/events/event_queue_internal.h>

#include <algorithm>

#include <zavbase/events/event.h>

namespace {

const std::size_t kFirstSlots = 16;
const std::size_t kFewBuckets = 1024;

std::size_t Hash(std::int32_t priority) {
    return static_cast<std::size_t>(static_cast<std::uint32_t>(priority) * 0x9E3779B97F4A7C15ull >> 32);
}

} // namespace

ZAV_Event* ZAV_EventQueue::Chain::TakeFirst() {
    ZAV_Event* event = first;
    if (event == nullptr) return nullptr;
    first = static_cast<ZAV_Event*>(event->mNext);
    event->mNext = nullptr;
    --count;
    if (first != nullptr) {
        // Long queues do not stay in the processor's cache: have what comes next, and after it, fetched
        // meanwhile.
        __builtin_prefetch(first->mDestination);
        __builtin_prefetch(first->mNext);
    }
    return event;
}

void ZAV_EventQueue::Push(ZAV_Event* event) {
    Chain& bucket = Bucket(event->mPriority);
    if (bucket.first == nullptr)
        bucket.first = event;
    else
        bucket.last->mNext = event;
    event->mNext = nullptr;
    bucket.last = event;
    ++bucket.count;
    ++mLength;
}

ZAV_EventQueue::Chain ZAV_EventQueue::TakeHighest() {
    if (mHeap.empty()) return Chain();
    Chain& bucket = mBuckets[mHeap.front().bucket];
    const Chain taken = bucket;
    bucket.first = nullptr;
    bucket.count = 0;
    mLength -= taken.count;
    std::pop_heap(mHeap.begin(), mHeap.end());
    mHeap.pop_back();
    return taken;
}

void ZAV_EventQueue::PutBack(Chain& chain) {
    if (chain.first == nullptr) return;
    Chain& bucket = Bucket(chain.priority);
    if (bucket.first == nullptr)
        bucket.last = chain.last;
    else
        chain.last->mNext = bucket.first;
    bucket.first = chain.first;
    bucket.count += chain.count;
    mLength += chain.count;
    chain = Chain();
}

// The bucket, which is in the heap and about to get an event.
ZAV_EventQueue::Chain& ZAV_EventQueue::Bucket(std::int32_t priority) {
    const std::uint32_t number = BucketNumber(priority);
    if (mBuckets[number].first == nullptr) {
        mHeap.push_back({priority, number});
        std::push_heap(mHeap.begin(), mHeap.end());
    }
    return mBuckets[number];
}

std::uint32_t ZAV_EventQueue::BucketNumber(std::int32_t priority) {
    if (mLastUsed < mBuckets.size() && mBuckets[mLastUsed].priority == priority) return mLastUsed;
    // At most half of the slots are in use, so every probe ends.
    if (mSlots.size() < 2 * (mBuckets.size() + 1)) {
        // Priorities that are never used again must not stay for ever.
        if (mBuckets.size() > kFewBuckets && mBuckets.size() > 4 * mHeap.size()) ForgetEmptyBuckets();
        if (mSlots.size() < 2 * (mBuckets.size() + 1)) Rehash((std::max)(kFirstSlots, 2 * mSlots.size()));
    }
    std::uint32_t* slot = Slot(priority);
    if (*slot == 0) {
        mBuckets.emplace_back().priority = priority;
        *slot = static_cast<std::uint32_t>(mBuckets.size());
    }
    return mLastUsed = *slot - 1;
}

std::uint32_t* ZAV_EventQueue::Slot(std::int32_t priority) {
    const std::size_t mask = mSlots.size() - 1;
    std::size_t i = Hash(priority) & mask;
    while (mSlots[i] != 0 && mBuckets[mSlots[i] - 1].priority != priority) i = (i + 1) & mask;
    return &mSlots[i];
}

void ZAV_EventQueue::Rehash(std::size_t slots) {
    std::vector<std::uint32_t> fresh(slots, 0);
    mSlots.swap(fresh);
    FillSlots();
}

void ZAV_EventQueue::FillSlots() {
    for (std::size_t b = 0; b < mBuckets.size(); ++b)
        *Slot(mBuckets[b].priority) = static_cast<std::uint32_t>(b + 1);
}

// Keeps the buckets that hold events, in the heap's order: a heap stays a heap when its entries are
// renumbered. What can fail comes first.
void ZAV_EventQueue::ForgetEmptyBuckets() {
    std::vector<Chain> kept;
    kept.reserve(mHeap.size() + 1);
    for (HeapEntry& entry : mHeap) {
        kept.push_back(mBuckets[entry.bucket]);
        entry.bucket = static_cast<std::uint32_t>(kept.size() - 1);
    }
    mBuckets.swap(kept);
    std::fill(mSlots.begin(), mSlots.end(), 0);
    FillSlots();
}
