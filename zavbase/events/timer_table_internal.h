#ifndef ZAVBASE_EVENTS_TIMER_TABLE_INTERNAL_H
#define ZAVBASE_EVENTS_TIMER_TABLE_INTERNAL_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>

class ZAV_EventTimer;

/// Timers by identifier. Identifiers are given one after the other, so they are kept in pages of neighbours,
/// which is compact and writes in sequence.
class ZAV_TimerTable {
public:
    void Insert(std::int32_t id, ZAV_EventTimer* timer); ///< the identifier must not be in
    ZAV_EventTimer* Remove(std::int32_t id);             ///< null when not in
    bool Includes(std::int32_t id) const { return Entry(id) != nullptr && *Entry(id) != nullptr; }
    /// Have the processor fetch what will be removed soon: its entry, and later the timer.
    void PrefetchEntry(std::int32_t id) const { __builtin_prefetch(Entry(id), 1); }
    void PrefetchTimer(std::int32_t id) const;
    std::size_t Count() const { return mCount; }

private:
    static const int kPageBits = 6;

    struct Page {
        std::uint32_t count = 0;
        ZAV_EventTimer* timers[1 << kPageBits] = {};
    };
    typedef std::unordered_map<std::uint32_t, Page> Pages;

    static std::uint32_t PageNumber(std::int32_t id) { return static_cast<std::uint32_t>(id) >> kPageBits; }
    static std::size_t Place(std::int32_t id) {
        return static_cast<std::uint32_t>(id) & ((1u << kPageBits) - 1);
    }
    ZAV_EventTimer* const* Entry(std::int32_t id) const;

    Pages mPages;
    Pages::node_type mSpare; // a timer that comes and goes alone shall not ask the heap for a page each time
    std::size_t mCount = 0;
};

#endif
