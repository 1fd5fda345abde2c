#include <zavbase/events/timer_table_internal.h>

#include <utility>

#include <zavbase/events/timer_mgr.h>

void ZAV_TimerTable::Insert(std::int32_t id, ZAV_EventTimer* timer) {
    const std::uint32_t number = PageNumber(id);
    auto page = mPages.find(number);
    if (page == mPages.end()) {
        if (mSpare.empty()) {
            page = mPages.try_emplace(number).first;
        } else {
            mSpare.key() = number;
            page = mPages.insert(std::move(mSpare)).position;
        }
    }
    page->second.timers[Place(id)] = timer;
    ++page->second.count;
    ++mCount;
}

ZAV_EventTimer* ZAV_TimerTable::Remove(std::int32_t id) {
    const auto page = mPages.find(PageNumber(id));
    if (page == mPages.end()) return nullptr;
    ZAV_EventTimer* const timer = std::exchange(page->second.timers[Place(id)], nullptr);
    if (timer == nullptr) return nullptr;
    --mCount;
    if (--page->second.count == 0) mSpare = mPages.extract(page);
    return timer;
}

// Null when not even the page is there.
ZAV_EventTimer* const* ZAV_TimerTable::Entry(std::int32_t id) const {
    const auto page = mPages.find(PageNumber(id));
    return page != mPages.end() ? &page->second.timers[Place(id)] : nullptr;
}

void ZAV_TimerTable::PrefetchTimer(std::int32_t id) const {
    ZAV_EventTimer* const* entry = Entry(id);
    if (entry == nullptr) return;
    // It may lie across two cache lines.
    __builtin_prefetch(*entry, 1);
    __builtin_prefetch(reinterpret_cast<const char*>(*entry) + sizeof(ZAV_EventTimer) - 1, 1);
}
