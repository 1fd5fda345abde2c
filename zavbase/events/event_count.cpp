#include <zavbase/events/event_count.h>

#include <atomic>
#include <cstdint>

namespace {

// A thread keeps to one place. The first threads, which are those that stay, have theirs to themselves and
// need no atomic addition; the others share what is left.
const unsigned kOwnPlaces = 32, kSharedPlaces = 32;
const unsigned kPlaces = kOwnPlaces + kSharedPlaces;
struct alignas(64) Place {
    std::atomic<int> changes;
};

constinit Place thePlaces[kPlaces] = {};
constinit std::atomic<std::uint64_t> theThreads{0};
thread_local constinit Place* tPlace = nullptr;

Place& PlaceOfThread() {
    const std::uint64_t number = theThreads.fetch_add(1, std::memory_order_relaxed);
    return thePlaces[number < kOwnPlaces ? number : kOwnPlaces + number % kSharedPlaces];
}

} // namespace

void ZAV_EventCount::Add(int change) {
    Place*& place = tPlace;
    if (place == nullptr) place = &PlaceOfThread();
    std::atomic<int>& changes = place->changes;
    if (place < thePlaces + kOwnPlaces)
        changes.store(changes.load(std::memory_order_relaxed) + change, std::memory_order_relaxed);
    else
        changes.fetch_add(change, std::memory_order_relaxed);
}

ZAV_EventCount::operator int() const {
    int sum = 0;
    for (const Place& place : thePlaces) sum += place.changes.load(std::memory_order_relaxed);
    return sum;
}
