#include <zavbase/events/timer_table_internal.h>

#include <utility>

#include <zavbase/events/timer_mgr.h>

namespace {

const std::size_t kFirstSlots = 16;
const std::size_t kManySlots = 4096;
const std::size_t kTimerEnd = sizeof(ZAV_EventTimer) - 1;

} // namespace

// Multiplying spreads the pages, so that long-lived ones do not get in the way of every run of later ones.
std::size_t ZAV_TimerTable::Home(std::uint32_t number) const {
    return static_cast<std::size_t>(number * 0x9E3779B97F4A7C15ull >> mShift);
}

// Where the page is, or the free slot where it would be.
std::size_t ZAV_TimerTable::Find(std::uint32_t number) const {
    const std::size_t mask = mSlots.size() - 1;
    std::size_t i = Home(number);
    while (mSlots[i].page != nullptr && mSlots[i].number != number) i = (i + 1) & mask;
    return i;
}

void ZAV_TimerTable::Insert(std::int32_t id, ZAV_EventTimer* timer) {
    Page* page = PageFor(PageNumber(id));
    page->timers[Place(id)] = timer;
    ++page->count;
    ++mCount;
}

ZAV_EventTimer* ZAV_TimerTable::Remove(std::int32_t id) {
    if (mCount == 0) return nullptr;
    const std::size_t i = Find(PageNumber(id));
    Page* page = mSlots[i].page.get();
    if (page == nullptr) return nullptr;
    ZAV_EventTimer* timer = page->timers[Place(id)];
    if (timer == nullptr) return nullptr;
    page->timers[Place(id)] = nullptr;
    if (--page->count == 0) RemovePage(i);
    // After a burst of timers the memory goes back.
    if (--mCount == 0 && mSlots.size() > kManySlots) std::vector<Slot>().swap(mSlots);
    return timer;
}

// Null when not even the page is there.
ZAV_EventTimer* const* ZAV_TimerTable::Entry(std::int32_t id) const {
    if (mCount == 0) return nullptr;
    const Page* page = mSlots[Find(PageNumber(id))].page.get();
    return page != nullptr ? &page->timers[Place(id)] : nullptr;
}

void ZAV_TimerTable::PrefetchEntry(std::int32_t id) const { __builtin_prefetch(Entry(id), 1); }

void ZAV_TimerTable::PrefetchTimer(std::int32_t id) const {
    ZAV_EventTimer* const* entry = Entry(id);
    if (entry == nullptr) return;
    // It may lie across two cache lines.
    __builtin_prefetch(*entry, 1);
    __builtin_prefetch(reinterpret_cast<const char*>(*entry) + kTimerEnd, 1);
}

ZAV_TimerTable::Page* ZAV_TimerTable::PageFor(std::uint32_t number) {
    if (2 * (mPages + 1) > mSlots.size()) Grow();
    Slot& slot = mSlots[Find(number)];
    if (slot.page == nullptr) {
        slot.page = mSparePage != nullptr ? std::move(mSparePage) : std::make_unique<Page>();
        slot.number = number;
        ++mPages;
    }
    return slot.page.get();
}

// Moves up whatever lies behind the gap and could not be found any more with a free slot there. One empty
// page is kept: a timer that comes and goes alone shall not ask the heap for a page each time.
void ZAV_TimerTable::RemovePage(std::size_t gap) {
    mSparePage = std::move(mSlots[gap].page);
    const std::size_t mask = mSlots.size() - 1;
    for (std::size_t i = (gap + 1) & mask; mSlots[i].page != nullptr; i = (i + 1) & mask) {
        const std::size_t distanceFromHome = (i - Home(mSlots[i].number)) & mask;
        if (distanceFromHome < ((i - gap) & mask)) continue;
        mSlots[gap] = std::move(mSlots[i]);
        gap = i;
    }
    --mPages;
}

void ZAV_TimerTable::Grow() {
    std::vector<Slot> old(mSlots.empty() ? kFirstSlots : 2 * mSlots.size());
    mSlots.swap(old);
    mShift = 64;
    for (std::size_t n = mSlots.size(); n > 1; n /= 2) --mShift;
    for (Slot& slot : old)
        if (slot.page != nullptr) mSlots[Find(slot.number)] = std::move(slot);
}
