#include <zavbase/foundation/tracer.h>

#include <zavbase/collections/clt_string.h>
#include <zavbase/collections/collection.h>
#include <zavbase/collections/iterator.h>
#include <zavbase/foundation/process_hooks_internal.h>
#include <zavbase/foundation/trace_stream.h>
#include <zavbase/os/clock.h>
#include <zavbase/os/lock.h>
#include <zavbase/values/assoc_uval.h>
#include <zavbase/values/value_dict.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <iterator>
#include <memory>
#include <mutex>
#include <sstream>

namespace {

constexpr int kSlots = 30;
constexpr size_t kNameLength = 10;

// Built by the compiler and never destroyed: tracing works before the first and after the last static object.
union Table {
    constexpr Table() : slots{} {}
    ~Table() {}
    ZAV_Tracer slots[kSlots];
};
constinit Table theTable;

constinit zav_os::Lock theTableLock;
zav_os::Lock& TableLock() { return theTableLock; }
ZAV_LockOverFork<TableLock> tableOverFork(ZAV_ProcessHooks::kTables);

constinit zav_os::Lock theLineLock;
constinit thread_local unsigned tLines = 0;        // that this thread is writing, one inside the other
constinit std::atomic<bool> theForkIsFirst{false}; // before those who would write the next line

// Lines are written and streams are set under this lock. It is taken again by a thread whose sink writes
// trace lines or sets streams itself.
class LineLock {
public:
    LineLock() {
        if (tLines++ != 0) return;
        while (theForkIsFirst) zav_os::Sleep(1);
        theLineLock.lock();
    }
    ~LineLock() {
        if (--tLines == 0) theLineLock.unlock();
    }
    LineLock(const LineLock&) = delete;
    LineLock& operator=(const LineLock&) = delete;
};

const int kLongestForkDelay = 1000; // milliseconds
constinit bool theForkHasLines = false;

// A sink is the host's and may wait for what the forking thread holds, so that does not wait for ever. A
// child made in the middle of a line finds the lock free all the same.
void TakeLines() {
    theForkIsFirst = true;
    for (int ms = 0; tLines == 0 && ms < kLongestForkDelay && !theForkHasLines; ++ms) {
        theForkHasLines = theLineLock.try_lock();
        if (!theForkHasLines) zav_os::Sleep(1);
    }
}

void LeaveLines(bool inChild) {
    if (theForkHasLines)
        theLineLock.unlock();
    else if (inChild && tLines == 0)
        theLineLock.Forget();
    theForkHasLines = theForkIsFirst = false;
}

ZAV_ProcessHooks linesOverFork(ZAV_ProcessHooks::kTraceLines, TakeLines, LeaveLines, nullptr);

template <class T>
std::atomic_ref<T> Shared(T& field) {
    return std::atomic_ref<T>(field);
}

// Under the line lock: whether a tracer still has this stream. The host may have taken it away, and ended
// it, since the trace statement looked.
bool IsInUse(const std::ostream* stream) {
    return std::any_of(std::begin(theTable.slots), std::end(theTable.slots),
                       [stream](ZAV_Tracer& slot) { return Shared(slot.mStreamP).load() == stream; });
}

void SetStream(ZAV_Tracer& tracer, std::ostream* stream) {
    const LineLock lock;
    Shared(tracer.mStreamP) = stream;
}

ZAV_Tracer* Claim(ZAV_Tracer* slot, const char* name) {
    if (slot) std::strncpy(slot->mName, name, kNameLength);
    return slot;
}

} // namespace

constinit ZAV_Tracer* tr_base = nullptr;
constinit const char* const tr_base_name = "BASE";

ZAV_Tracer::~ZAV_Tracer() {
    mName[0] = 0;
    mStreamP = nullptr;
    mMask = 0;
}

ZAV_Tracer* ZAV_Tracer::FindOrCreate(const char* name) {
    if (!name) name = "";
    const std::lock_guard<zav_os::Lock> lock(theTableLock);
    ZAV_Tracer* free = nullptr;
    for (ZAV_Tracer& slot : theTable.slots) {
        if (slot.mName[0]) {
            if (std::strncmp(slot.mName, name, kNameLength) == 0) return &slot;
        } else if (!free) {
            free = &slot;
        }
    }
    return Claim(free, name);
}

int ZAV_Tracer::SetStreamP(const char* name, std::ostream* stream) {
    ZAV_Tracer* tracer = FindOrCreate(name);
    if (!tracer) return -1;
    SetStream(*tracer, stream);
    return 0;
}

int ZAV_Tracer::SetMask(const char* name, long mask) {
    ZAV_Tracer* tracer = FindOrCreate(name);
    if (!tracer) return -1;
    Shared(tracer->mMask) = static_cast<zav_long32>(mask);
    return 0;
}

int ZAV_Tracer::GetStreamP(const char* name, std::ostream** stream) {
    ZAV_Tracer* tracer = FindOrCreate(name);
    *stream = tracer ? Shared(tracer->mStreamP).load() : nullptr;
    return tracer ? 0 : -1;
}

int ZAV_Tracer::GetMask(const char* name, long* mask) {
    ZAV_Tracer* tracer = FindOrCreate(name);
    *mask = tracer ? Shared(tracer->mMask).load() : 0;
    return tracer ? 0 : -1;
}

void ZAV_Tracer::Initialize(ZAV_UValDict& dict) {
    ZAV_Iterator it(dict.GetValuePtr());
    while (ZAV_CltObject* object = ++it) {
        ZAV_AssocUVal* entry = static_cast<ZAV_AssocUVal*>(object);
        if (!entry->Key() || !entry->Value()) continue;
        ZAV_Tracer* tracer = FindOrCreate(entry->Key());
        if (!tracer) continue;
        Shared(tracer->mMask) = static_cast<zav_long32>(entry->Value()->GetLongValue(0));
        SetStream(*tracer, &dout);
    }
}

void ZAV_Tracer::GetNameList(ZAV_Collection* collection) {
    int named = 0;
    {
        const std::lock_guard<zav_os::Lock> lock(theTableLock);
        for (const ZAV_Tracer& slot : theTable.slots) named += slot.mName[0] != 0;
    }
    while (named-- > 0) collection->Add(new (std::nothrow) ZAV_CltString(""));
}

std::ostream* ZAV_TraceLine::Sink(ZAV_Tracer*& cache, const char* name, long level) {
    ZAV_Tracer* tracer = Shared(cache).load(std::memory_order_acquire);
    if (!tracer) {
        tracer = ZAV_Tracer::FindOrCreate(name);
        if (!tracer) return nullptr;
        Shared(cache).store(tracer, std::memory_order_release);
    }
    std::ostream* stream = Shared(tracer->mStreamP).load();
    return (Shared(tracer->mMask).load() & level) ? stream : nullptr;
}

// The parts are formatted as the sink itself would format them. They flush nothing that the sink is tied to:
// the sink does that when it gets the line.
ZAV_TraceLine::ZAV_TraceLine(std::ostream& sink) : mSink(sink), mParts(nullptr) {
    std::unique_ptr<std::ostringstream> parts(new std::ostringstream);
    const LineLock lock;
    if (IsInUse(&sink)) parts->copyfmt(sink);
    parts->exceptions(std::ios_base::goodbit);
    parts->tie(nullptr);
    mParts = parts.release();
}

ZAV_TraceLine::~ZAV_TraceLine() { delete mParts; }

std::ostream& ZAV_TraceLine::Parts() { return *mParts; }

void ZAV_TraceLine::End() {
    *mParts << '\n';
    std::string line = static_cast<std::ostringstream*>(mParts)->str();
    const LineLock lock;
    if (!IsInUse(&mSink)) return;
    mSink.write(line.data(), static_cast<std::streamsize>(line.size()));
    mSink.flush();
}
