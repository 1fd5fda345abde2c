#ifndef ZAVBASE_EVENTS_TIMER_TABLE_INTERNAL_H
#define ZAVBASE_EVENTS_TIMER_TABLE_INTERNAL_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

class ZAV_EventTimer;

/// Timers by identifier. Identifiers are given one after the other, so they are kept in pages of neighbours,
/// which is compact and writes in sequence; the pages are found by open addressing with linear probing.
class ZAV_TimerTable {
public:
    void Insert(std::int32_t id, ZAV_EventTimer* timer); ///< the identifier must not be in
    ZAV_EventTimer* Remove(std::int32_t id);             ///< null when not in
    bool Includes(std::int32_t id) const { return Entry(id) != nullptr && *Entry(id) != nullptr; }
    /// Have the processor fetch what will be removed soon: its entry, and later the timer.
    void PrefetchEntry(std::int32_t id) const;
    void PrefetchTimer(std::int32_t id) const;
    std::size_t Count() const { return mCount; }

private:
    static const int kPageBits = 6;

    struct Page {
        std::uint32_t count;
        ZAV_EventTimer* timers[1 << kPageBits];
    };
    struct Slot {
        std::unique_ptr<Page> page; // null: free
        std::uint32_t number;
    };

    static std::uint32_t PageNumber(std::int32_t id) { return static_cast<std::uint32_t>(id) >> kPageBits; }
    static std::size_t Place(std::int32_t id) {
        return static_cast<std::uint32_t>(id) & ((1u << kPageBits) - 1);
    }
    std::size_t Home(std::uint32_t number) const;
    std::size_t Find(std::uint32_t number) const;
    ZAV_EventTimer* const* Entry(std::int32_t id) const;
    Page* PageFor(std::uint32_t number);
    void RemovePage(std::size_t gap);
    void Grow();

    std::vector<Slot> mSlots; // a power of two of them, at most half in use
    int mShift = 64;
    std::size_t mPages = 0;
    std::size_t mCount = 0;
    std::unique_ptr<Page> mSparePage;
};

#endif
