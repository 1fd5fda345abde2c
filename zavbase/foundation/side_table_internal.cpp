#include <zavbase/foundation/side_table_internal.h>

#include <cstdint>
#include <cstdlib>
#include <mutex>

ZAV_SideEntry* ZAV_SideTable::Find(const void* owner) {
    if (IsEmpty()) return nullptr;
    std::lock_guard<ZAV_SpinLock> lock(mLock);
    return *Link(owner);
}

void ZAV_SideTable::Put(ZAV_SideEntry* entry) {
    std::lock_guard<ZAV_SpinLock> lock(mLock);
    if (mCount.load(std::memory_order_relaxed) >= mChainCount) Resize(mChainCount * 4);
    Insert(entry);
    ++mCount;
}

ZAV_SideEntry* ZAV_SideTable::Take(const void* owner) {
    if (IsEmpty()) return nullptr;
    std::lock_guard<ZAV_SpinLock> lock(mLock);
    ZAV_SideEntry** link = Link(owner);
    ZAV_SideEntry* entry = *link;
    if (!entry) return nullptr;
    *link = entry->mNext;
    if (--mCount == 0) Resize(kFirst);
    return entry;
}

ZAV_SideEntry** ZAV_SideTable::Chain(const void* owner) const {
    uint64_t mixed = reinterpret_cast<uintptr_t>(owner) * UINT64_C(0x9E3779B97F4A7C15);
    return &mChains[static_cast<size_t>(mixed >> 32) & (mChainCount - 1)];
}

ZAV_SideEntry** ZAV_SideTable::Link(const void* owner) const {
    ZAV_SideEntry** link = Chain(owner);
    while (*link && (*link)->mOwner != owner) link = &(*link)->mNext;
    return link;
}

void ZAV_SideTable::Insert(ZAV_SideEntry* entry) {
    ZAV_SideEntry** chain = Chain(entry->mOwner);
    entry->mNext = *chain;
    *chain = entry;
}

// Without memory the chains stay as they are, and grow longer.
void ZAV_SideTable::Resize(size_t count) {
    if (count == mChainCount) return;
    void* block = count == kFirst ? mFirst : std::calloc(count, sizeof(ZAV_SideEntry*));
    if (!block) return;
    ZAV_SideEntry** before = mChains;
    size_t countBefore = mChainCount;
    mChains = static_cast<ZAV_SideEntry**>(block);
    mChainCount = count;
    for (size_t i = 0; i < countBefore; ++i) {
        while (ZAV_SideEntry* entry = before[i]) {
            before[i] = entry->mNext;
            Insert(entry);
        }
    }
    if (before != mFirst) std::free(before);
}
