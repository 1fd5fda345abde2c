#ifndef ZAVBASE_FOUNDATION_SIDE_TABLE_INTERNAL_H
#define ZAVBASE_FOUNDATION_SIDE_TABLE_INTERNAL_H

#include <atomic>
#include <cstddef>

#include <zavbase/foundation/spin_lock_internal.h>

/// What belongs to objects whose own layout is fixed, by the address of the object. Entries are made by the
/// caller and derive from ZAV_SideEntry; an object has at most one here. The object's destructor takes its
/// entry out.
struct ZAV_SideEntry {
    const void* mOwner;
    ZAV_SideEntry* mNext = nullptr;
};

/// Any thread. A static one is built by the compiler and never destroyed: objects come and go to the very
/// end. It grows only when there are many entries; when the last has gone, nothing of the growth is left.
class ZAV_SideTable {
public:
    constexpr ZAV_SideTable() {}
    ZAV_SideEntry* Find(const void* owner); ///< null when there is none
    void Put(ZAV_SideEntry* entry);         ///< for an object that has none
    ZAV_SideEntry* Take(const void* owner); ///< out of the table, to be freed by the caller; or null
    ZAV_SpinLock& Lock() { return mLock; }  ///< what a fork must hold

private:
    static constexpr size_t kFirst = 64;

    /// What is asked about an object was put in before, on this thread or on one that handed the object over:
    /// a count of 0 can be trusted without the lock.
    bool IsEmpty() const { return mCount.load(std::memory_order_relaxed) == 0; }
    ZAV_SideEntry** Chain(const void* owner) const;
    ZAV_SideEntry** Link(const void* owner) const;
    void Insert(ZAV_SideEntry* entry);
    void Resize(size_t count);

    ZAV_SpinLock mLock;
    std::atomic<size_t> mCount{0};
    ZAV_SideEntry* mFirst[kFirst] = {};
    ZAV_SideEntry** mChains = mFirst;
    size_t mChainCount = kFirst;
};

#endif
