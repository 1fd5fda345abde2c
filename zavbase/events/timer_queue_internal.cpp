#include <zavbase/events/timer_queue_internal.h>

#include <algorithm>
#include <bit>
#include <iterator>

namespace {

const std::size_t kFewPlaces = 1024;
const std::size_t kNear = 3, kFar = 6;
// A clock reading that is overtaken by another thread's must not look like a wrap of the ticks.
const std::uint32_t kLeap = 0xFFFF0000;

} // namespace

bool ZAV_TimerQueue::Insert(ZAV_EventTimer* timer, std::int32_t id, std::uint32_t now,
                            std::uint32_t timeout) {
    Reach(now);
    const bool wraps = now + timeout < now;
    const Time due = mNow + timeout + (wraps ? 1 : 0);
    const int bucket = FirstBucket();
    const bool first = bucket < 0 || due < FirstDue(bucket);
    mTable.Insert(id, timer);
    try {
        Put({due, id, wraps});
    } catch (...) {
        mTable.Remove(id);
        throw;
    }
    return first;
}

ZAV_EventTimer* ZAV_TimerQueue::Cancel(std::int32_t id) {
    ZAV_EventTimer* timer = mTable.Remove(id);
    if (timer != nullptr && mPlaceCount > kFewPlaces && mPlaceCount > 2 * mTable.Count()) SweepCancelled();
    return timer;
}

ZAV_EventTimer* ZAV_TimerQueue::TakeDue(std::uint32_t now) {
    Reach(now);
    for (int bucket = FirstBucket(); bucket >= 0; bucket = FirstBucket()) {
        if (FirstDue(bucket) > mNow) return nullptr;
        if (bucket != 0) {
            Spread(bucket);
            continue;
        }
        if (ZAV_EventTimer* timer = TakeFront()) return timer;
    }
    return nullptr;
}

ZAV_EventTimer* ZAV_TimerQueue::TakeAny() {
    for (int bucket = FirstBucket(); bucket >= 0; bucket = FirstBucket()) {
        std::vector<Place>& places = mPlaces[bucket];
        ZAV_EventTimer* timer = mTable.Remove(places.back().id);
        places.pop_back();
        --mPlaceCount;
        if (places.size() <= (bucket == 0 ? mFront : 0)) {
            places.clear();
            if (bucket == 0) mFront = 0;
            mUsed &= ~(std::uint64_t{1} << bucket);
        }
        if (timer != nullptr) return timer;
    }
    return nullptr;
}

std::uint32_t ZAV_TimerQueue::TicksToGo(std::uint32_t now, std::uint32_t limit) {
    Reach(now);
    const int bucket = FirstBucket();
    if (bucket < 0) return limit;
    const Time due = FirstDue(bucket);
    if (due <= mNow) return 0;
    return due - mNow < limit ? static_cast<std::uint32_t>(due - mNow) : limit;
}

void ZAV_TimerQueue::Reach(std::uint32_t now) {
    if (mTable.Count() == 0) return Restart(now);
    const std::uint32_t passed = now - static_cast<std::uint32_t>(mNow);
    if (passed < kLeap) mNow += passed;
}

// Without timers there is no order to keep. And nobody may have told the time for longer than the ticks take
// to wrap: what passed since would look like less.
void ZAV_TimerQueue::Restart(std::uint32_t now) {
    mNow = mReached = now;
    if (mPlaceCount == 0) return;
    for (std::vector<Place>& places : mPlaces) places.clear();
    mUsed = 0;
    mFront = 0;
    mPlaceCount = 0;
}

int ZAV_TimerQueue::BucketOf(Time due) const { return static_cast<int>(std::bit_width(due ^ mReached)); }

int ZAV_TimerQueue::FirstBucket() const { return mUsed != 0 ? std::countr_zero(mUsed) : -1; }

void ZAV_TimerQueue::Put(const Place& place) {
    const int bucket = BucketOf(place.due);
    mPlaces[bucket].push_back(place);
    const std::uint64_t bit = std::uint64_t{1} << bucket;
    if ((mUsed & bit) == 0 || place.due < mEarliest[bucket]) mEarliest[bucket] = place.due;
    mUsed |= bit;
    ++mPlaceCount;
}

bool ZAV_TimerQueue::EarlierThan(const Place& a, const Place& b) { return a.due < b.due; }

// Goes on to the earliest time of a bucket, the first that is not empty: its places move to lower buckets, in
// the order they have. Room is made first, so that nothing is lost when memory runs out.
void ZAV_TimerQueue::Spread(int bucket) {
    const Time reached = mEarliest[bucket];
    std::size_t counts[kBuckets] = {};
    for (const Place& place : mPlaces[bucket]) ++counts[std::bit_width(place.due ^ reached)];
    for (int lower = 0; lower < bucket; ++lower) mPlaces[lower].reserve(counts[lower]);

    std::vector<Place> places;
    places.swap(mPlaces[bucket]);
    mUsed &= ~(std::uint64_t{1} << bucket);
    mPlaceCount -= places.size();
    mReached = reached;
    for (const Place& place : places) Put(place);

    // Those that run across the wrap come first, the last of them before the others.
    std::vector<Place>& due = mPlaces[0];
    const auto wraps = [](const Place& p) { return p.wraps; };
    if (due.size() > 1 && std::any_of(due.begin(), due.end(), wraps)) {
        places.clear(); // has the room
        std::copy_if(due.rbegin(), due.rend(), std::back_inserter(places), wraps);
        std::remove_copy_if(due.begin(), due.end(), std::back_inserter(places), wraps);
        std::copy(places.begin(), places.end(), due.begin());
    }

    if (places.capacity() <= kFewPlaces) {
        places.clear();
        places.swap(mPlaces[bucket]);
    }
}

// The next of bucket 0; null when that was a cancelled one.
ZAV_EventTimer* ZAV_TimerQueue::TakeFront() {
    std::vector<Place>& places = mPlaces[0];
    PrefetchBehind(mFront);
    ZAV_EventTimer* timer = mTable.Remove(places[mFront].id);
    ++mFront;
    --mPlaceCount;
    if (mFront == places.size()) {
        places.clear();
        mFront = 0;
        mUsed &= ~std::uint64_t{1};
    }
    return timer;
}

// Many timers that fall due at once have long left the processor's cache.
void ZAV_TimerQueue::PrefetchBehind(std::size_t place) const {
    const std::vector<Place>& places = mPlaces[0];
    if (place + kFar < places.size()) mTable.PrefetchEntry(places[place + kFar].id);
    if (place + kNear < places.size()) mTable.PrefetchTimer(places[place + kNear].id);
}

void ZAV_TimerQueue::SweepCancelled() {
    std::vector<Place>& front = mPlaces[0];
    front.erase(front.begin(), front.begin() + static_cast<std::ptrdiff_t>(mFront));
    mFront = 0;
    mUsed = 0;
    mPlaceCount = 0;
    for (int bucket = 0; bucket < kBuckets; ++bucket) {
        std::vector<Place>& places = mPlaces[bucket];
        std::erase_if(places, [this](const Place& p) { return !mTable.Includes(p.id); });
        if (places.empty()) continue;
        mUsed |= std::uint64_t{1} << bucket;
        mPlaceCount += places.size();
        mEarliest[bucket] = std::min_element(places.begin(), places.end(), EarlierThan)->due;
    }
}
