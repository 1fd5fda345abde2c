#include <zavbase/values/dict_help_internal.h>

#include <new>

#include <zavbase/collections/set_access_internal.h>

ZAV_DictHelp* ZAV_DictHelp::IfAny(const ZAV_Set& table) {
    return static_cast<ZAV_DictHelp*>(ZAV_SetAccess::Helper(table).load(std::memory_order_acquire));
}

// Threads that read the dictionary at once may get here at once.
ZAV_DictHelp* ZAV_DictHelp::Of(const ZAV_Set& table) {
    if (ZAV_DictHelp* there = IfAny(table)) return there;
    std::unique_ptr<ZAV_DictHelp> help(new (std::nothrow) ZAV_DictHelp);
    void* there = nullptr;
    if (help && ZAV_SetAccess::Helper(table).compare_exchange_strong(there, help.get()))
        return help.release();
    return static_cast<ZAV_DictHelp*>(there);
}

void ZAV_DictHelp::Drop(const ZAV_Set& table) {
    delete IfAny(table);
    ZAV_SetAccess::Helper(table).store(nullptr, std::memory_order_relaxed);
}

void ZAV_DictHelp::Clear() {
    mFold.Clear();
    mOrder.Clear();
}

const ZAV_AssocUVal* ZAV_KeyOrder::At(const ZAV_UValDict& dict, uint32_t i) {
    std::lock_guard<std::mutex> guard(mLock);
    try {
        if (mEntries.capacity() <= i) mEntries.reserve(dict.GetSize());
        while (mEntries.size() <= i) {
            mEntries.push_back(dict.GetNextAssoc(mEntries.empty() ? nullptr : mEntries.back()));
            ++mSteps;
        }
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    mLast = i;
    return mEntries[i];
}

void ZAV_KeyOrder::Remove(const ZAV_AssocUVal& entry, int index) {
    const size_t at = index >= 0 ? static_cast<size_t>(index) : mLast;
    if (at < mEntries.size())
        mEntries.resize(mEntries[at] == &entry ? at : 0);
    else if (index < 0)
        mEntries.clear();
}
