#include <zavbase/events/event_count.h>

#include <atomic>

#include <zavbase/events/event.h>

namespace {

// A thread keeps to one place, which it has to itself as long as there are not more threads than places.
const unsigned kPlaces = 32;
struct alignas(64) Place {
    std::atomic<int> changes;
};

constinit Place thePlaces[kPlaces] = {};
constinit std::atomic<unsigned> theThreads{0};
thread_local constinit Place* tPlace = nullptr;

} // namespace

void ZAV_EventCount::Add(int change) {
    Place*& place = tPlace;
    if (place == nullptr) place = &thePlaces[theThreads.fetch_add(1, std::memory_order_relaxed) % kPlaces];
    place->changes.fetch_add(change, std::memory_order_relaxed);
}

ZAV_EventCount::operator int() const {
    int sum = 0;
    for (const Place& place : thePlaces) sum += place.changes.load(std::memory_order_relaxed);
    return sum;
}
