#include <zavbase/foundation/exception_context.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

#include <zavbase/foundation/exception_internal.h>
#include <zavbase/foundation/spin_lock_internal.h>

namespace {

struct Record {
    Record* mNext;
    const ZAV_Exception* mOwner;
    ZAV_ExceptionContext mContext; // its texts follow in the same block
};

size_t SizeOf(const char* text) { return std::strlen(text) + 1; }

const char* PutText(char*& to, const char* text) {
    char* start = to;
    to += SizeOf(text);
    std::strcpy(start, text);
    return start;
}

// From malloc, since a failure must not run the process's new-handler: who has no room for the reason still
// wants to hear of the failure.
Record* NewRecord(const ZAV_Exception* owner, ZAV_ExceptionContext context) {
    size_t texts = SizeOf(context.mPath) + SizeOf(context.mReason) + SizeOf(context.mFound);
    void* block = std::malloc(sizeof(Record) + texts);
    if (!block) return nullptr;
    char* to = static_cast<char*>(block) + sizeof(Record);
    context.mPath = PutText(to, context.mPath);
    context.mReason = PutText(to, context.mReason);
    context.mFound = PutText(to, context.mFound);
    return new (block) Record{nullptr, owner, context};
}

// The records by the address of their exception, in chains. Built by the compiler and never destroyed:
// exceptions are thrown and deleted to the very end. Grown only when a host keeps many of them; when it has
// deleted them all, nothing of the growth is left.
class Records {
public:
    Record* Find(const ZAV_Exception* owner) {
        if (IsEmpty()) return nullptr;
        std::lock_guard<ZAV_SpinLock> lock(mLock);
        return *Link(owner);
    }

    void Put(Record* record) {
        std::lock_guard<ZAV_SpinLock> lock(mLock);
        if (mCount.load(std::memory_order_relaxed) >= mChainCount) Resize(mChainCount * 4);
        Insert(record);
        ++mCount;
    }

    Record* Take(const ZAV_Exception* owner) {
        if (IsEmpty()) return nullptr;
        std::lock_guard<ZAV_SpinLock> lock(mLock);
        Record** link = Link(owner);
        Record* record = *link;
        if (!record) return nullptr;
        *link = record->mNext;
        if (--mCount == 0) Resize(kFirst);
        return record;
    }

private:
    static constexpr size_t kFirst = 64;

    // What is asked about an exception on this thread was told of it before, on this thread or on one that
    // handed it over: a count of 0 can be trusted without the lock.
    bool IsEmpty() const { return mCount.load(std::memory_order_relaxed) == 0; }

    Record** Chain(const ZAV_Exception* owner) {
        uint64_t mixed = reinterpret_cast<uintptr_t>(owner) * UINT64_C(0x9E3779B97F4A7C15);
        return &mChains[static_cast<size_t>(mixed >> 32) & (mChainCount - 1)];
    }

    Record** Link(const ZAV_Exception* owner) {
        Record** link = Chain(owner);
        while (*link && (*link)->mOwner != owner) link = &(*link)->mNext;
        return link;
    }

    void Insert(Record* record) {
        Record** chain = Chain(record->mOwner);
        record->mNext = *chain;
        *chain = record;
    }

    // Without memory the chains stay as they are, and grow longer.
    void Resize(size_t count) {
        if (count == mChainCount) return;
        void* block = count == kFirst ? mFirst : std::calloc(count, sizeof(Record*));
        if (!block) return;
        Record** before = mChains;
        size_t countBefore = mChainCount;
        mChains = static_cast<Record**>(block);
        mChainCount = count;
        for (size_t i = 0; i < countBefore; ++i) {
            while (Record* record = before[i]) {
                before[i] = record->mNext;
                Insert(record);
            }
        }
        if (before != mFirst) std::free(before);
    }

    ZAV_SpinLock mLock;
    std::atomic<size_t> mCount{0};
    Record* mFirst[kFirst] = {};
    Record** mChains = mFirst;
    size_t mChainCount = kFirst;
};

constinit Records theRecords;

const char* First(const char* known, const char* more) { return *known || !more ? known : more; }

} // namespace

void ZAV_DropExceptionContext(const ZAV_Exception* e) noexcept { std::free(theRecords.Take(e)); }

void ZAV_CopyExceptionContext(const ZAV_Exception* to, const ZAV_Exception* from) noexcept {
    if (to == from) return;
    ZAV_DropExceptionContext(to);
    if (Record* record = theRecords.Find(from))
        if (Record* copy = NewRecord(to, record->mContext)) theRecords.Put(copy);
}

const ZAV_ExceptionContext& ZAV_GetExceptionContext(const ZAV_Exception* e) {
    static constexpr ZAV_ExceptionContext nothing;
    Record* record = theRecords.Find(e);
    return record ? record->mContext : nothing;
}

void ZAV_AddExceptionContext(const ZAV_Exception* e, const ZAV_ExceptionContext& known) noexcept {
    // The one memory exception may be thrown by several threads at once, and never ends.
    if (!e || e == ZAV_StaticMemoryException()) return;
    ZAV_ExceptionContext all = ZAV_GetExceptionContext(e);
    all.mPath = First(all.mPath, known.mPath);
    all.mReason = First(all.mReason, known.mReason);
    all.mFound = First(all.mFound, known.mFound);
    if (all.mLine == 0) {
        all.mLine = known.mLine;
        all.mColumn = known.mColumn;
    }
    if (all.mOffset < 0) all.mOffset = known.mOffset;
    if (all.mOsError == 0) all.mOsError = known.mOsError;
    Record* record = NewRecord(e, all);
    if (!record) return;
    ZAV_DropExceptionContext(e);
    theRecords.Put(record);
}
