#include <zavbase/foundation/exception_context.h>

#include <cstdlib>
#include <cstring>
#include <new>

#include <zavbase/foundation/exception_internal.h>
#include <zavbase/foundation/process_hooks_internal.h>
#include <zavbase/foundation/side_table_internal.h>

namespace {

struct Record : ZAV_SideEntry {
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
    return new (block) Record{{owner}, context};
}

constinit ZAV_SideTable theRecords;

ZAV_SpinLock& RecordsLock() { return theRecords.Lock(); }
ZAV_LockOverFork<RecordsLock> overFork(ZAV_ProcessHooks::kTables);

const Record* Find(const ZAV_Exception* e) { return static_cast<Record*>(theRecords.Find(e)); }

const char* First(const char* known, const char* more) { return *known || !more ? known : more; }

} // namespace

void ZAV_DropExceptionContext(const ZAV_Exception* e) noexcept {
    std::free(static_cast<Record*>(theRecords.Take(e)));
}

void ZAV_CopyExceptionContext(const ZAV_Exception* to, const ZAV_Exception* from) noexcept {
    if (to == from) return;
    ZAV_DropExceptionContext(to);
    if (const Record* record = Find(from))
        if (Record* copy = NewRecord(to, record->mContext)) theRecords.Put(copy);
}

const ZAV_ExceptionContext& ZAV_GetExceptionContext(const ZAV_Exception* e) {
    static constexpr ZAV_ExceptionContext nothing;
    const Record* record = Find(e);
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
