#include <zavbase/events/timer_table_internal.h>

namespace {

const std::size_t kFirstSlots = 16;
const std::size_t kManySlots = 4096;

} // namespace

// Identifiers are given one after the other; multiplying spreads them, so that long-lived ones do not get in
// the way of every run of later ones.
std::size_t ZAV_TimerTable::Home(std::int32_t id) const
{
    return static_cast<std::size_t>(static_cast<std::uint32_t>(id) * 0x9E3779B97F4A7C15ull >> mShift);
}

std::size_t ZAV_TimerTable::Find(std::int32_t id) const
{
    const std::size_t mask = mSlots.size() - 1;
    std::size_t i = Home(id);
    while (mSlots[i].timer != nullptr && mSlots[i].id != id) i = (i + 1) & mask;
    return i;
}

void ZAV_TimerTable::Insert(std::int32_t id, ZAV_EventTimer* timer)
{
    if (4 * (mCount + 1) > 3 * mSlots.size()) Grow();
    const std::size_t mask = mSlots.size() - 1;
    std::size_t i = Home(id);
    while (mSlots[i].timer != nullptr) i = (i + 1) & mask;
    mSlots[i] = {timer, id};
    ++mCount;
}

ZAV_EventTimer* ZAV_TimerTable::Remove(std::int32_t id)
{
    if (mCount == 0) return nullptr;
    const std::size_t i = Find(id);
    ZAV_EventTimer* timer = mSlots[i].timer;
    if (timer == nullptr) return nullptr;
    CloseGap(i);
    // After a burst of timers the memory goes back.
    if (--mCount == 0 && mSlots.size() > kManySlots) std::vector<Slot>().swap(mSlots);
    return timer;
}

// Moves up whatever lies behind the gap and could not be found any more with a free slot there.
void ZAV_TimerTable::CloseGap(std::size_t gap)
{
    const std::size_t mask = mSlots.size() - 1;
    for (std::size_t i = (gap + 1) & mask; mSlots[i].timer != nullptr; i = (i + 1) & mask) {
        const std::size_t distanceFromHome = (i - Home(mSlots[i].id)) & mask;
        if (distanceFromHome < ((i - gap) & mask)) continue;
        mSlots[gap] = mSlots[i];
        gap = i;
    }
    mSlots[gap].timer = nullptr;
}

void ZAV_TimerTable::Grow()
{
    std::vector<Slot> old(mSlots.empty() ? kFirstSlots : 2 * mSlots.size(), Slot{nullptr, 0});
    mSlots.swap(old);
    mShift = 64;
    for (std::size_t n = mSlots.size(); n > 1; n /= 2) --mShift;
    mCount = 0;
    for (const Slot& slot : old)
        if (slot.timer != nullptr) Insert(slot.id, slot.timer);
}
