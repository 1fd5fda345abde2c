#include <zavbase/threads/thread.h>

#include <zavbase/collections/assoc.h>
#include <zavbase/collections/dictionary.h>
#include <zavbase/collections/integer.h>
#include <zavbase/collections/iterator.h>
#include <zavbase/foundation/exception_internal.h>
#include <zavbase/foundation/process_hooks_internal.h>
#include <zavbase/os/clock.h>
#include <zavbase/os/error.h>
#include <zavbase/os/thread.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

ZAV_DEFINE_CLASS(ZAV_Thread, ZAV_CltObject)

namespace {

constexpr uintptr_t kNoHandle = UINTPTR_MAX;

/// One start of a thread, owned by the new thread and listed until that ends; for everything that concerns
/// the thread while its object may be stopped, started again or destroyed. Used under threadsmutex.
struct Run {
    explicit Run(ZAV_Thread* object);
    ~Run();
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    static bool IsAwaited(const ZAV_Thread* object);
    static void StopAwaited(const ZAV_Thread* object);
    static void Cut(const ZAV_Thread* object);

    ZAV_Thread* thread;   ///< null when the object is being destroyed: the thread must not use it
    bool entered = false; ///< the new thread has come here
    bool stopped = false; ///< StopThread came before it
    Run* next;
    Run* previous = nullptr;
};

Run* runs = nullptr;
constinit thread_local Run* ownRun = nullptr;

Run::Run(ZAV_Thread* object) : thread(object), next(runs) {
    if (next) next->previous = this;
    runs = this;
}

Run::~Run() {
    if (next) next->previous = previous;
    (previous ? previous->next : runs) = next;
}

bool Run::IsAwaited(const ZAV_Thread* object) {
    for (const Run* run = runs; run; run = run->next)
        if (run->thread == object && !run->entered && !run->stopped) return true;
    return false;
}

void Run::StopAwaited(const ZAV_Thread* object) {
    for (Run* run = runs; run; run = run->next)
        if (run->thread == object && !run->entered) run->stopped = true;
}

void Run::Cut(const ZAV_Thread* object) {
    for (Run* run = runs; run; run = run->next)
        if (run->thread == object) run->thread = nullptr;
}

ZAV_Thread* FindThread(const ZAV_Dictionary& threads, uint32_t id) {
    const ZAV_Integer key(static_cast<int32_t>(id));
    ZAV_LookupKey* entry = threads.AssocAt(&key);
    return entry ? static_cast<ZAV_Thread*>(entry->Value()) : nullptr;
}

ZAV_ThreadError LastOSError() { return ZAV_ThreadError::MapOSError(static_cast<int>(zav_os::LastError())); }

} // namespace

// Threads may run on while the process tears down its static objects: these two live as long as the process.
ZAV_Dictionary& ZAV_Thread::threads() {
    static ZAV_Dictionary& dictionary = *new ZAV_Dictionary(16);
    return dictionary;
}

ZAV_Mutex& ZAV_Thread::threadsmutex() {
    static ZAV_Mutex& mutex = *new ZAV_Mutex;
    return mutex;
}

struct ZAV_LOCAL ZAV_Thread::OverFork {
    static void Lock() {
        threads();
        new (held) ZAV_Mutex::Lock(threadsmutex(), B_FALSE);
    }

    static void Unlock(bool inChild) {
        if (inChild && ownRun != nullptr && ownRun->thread != nullptr) Renumber(*ownRun->thread);
        reinterpret_cast<ZAV_Mutex::Lock*>(held)->~Lock();
    }

    static void Unload() {
        delete &threads();
        delete &threadsmutex();
    }

private:
    // The system knows the thread by another number in the child.
    static void Renumber(ZAV_Thread& thread) noexcept {
        if (FindThread(threads(), thread.mThreadId) != &thread) return;
        thread.Unregister();
        thread.mThreadId = zav_os::CurrentThreadId();
        thread.Register();
    }

    alignas(ZAV_Mutex::Lock) inline static unsigned char held[sizeof(ZAV_Mutex::Lock)];
    static ZAV_ProcessHooks hooks;
};
ZAV_ProcessHooks ZAV_Thread::OverFork::hooks(ZAV_ProcessHooks::kThreads, Lock, Unlock, Unload);

ZAV_Thread::ZAV_Thread(ZAV_ThreadFlag flag)
    : mInfoString(), mHandle(kNoHandle), mThreadId(0), mRunning(B_FALSE), mFlag(flag),
      mCleanup(ZAV_THREAD_CLEANUP_NONE), mLinkHead(nullptr) {}

ZAV_Thread::~ZAV_Thread() {
    {
        ZAV_Mutex::Lock guard(threadsmutex(), B_FALSE);
        Run::Cut(this);
    }
    FinishThread();
    {
        ZAV_Mutex::Lock guard(threadsmutex(), B_FALSE);
        Unregister();
    }
    if (mHandle != kNoHandle) zav_os::ThreadClose(mHandle);
}

void ZAV_Thread::FinishThread() {
    {
        ZAV_Mutex::Lock guard(threadsmutex(), B_FALSE);
        Run::StopAwaited(this);
    }
    if (Running()) ZAV_Thread::StopThread();
    if (mFlag != ZAV_THREAD_DETACHED) WaitForThread();
}

ZAV_ThreadError ZAV_Thread::BeginThread(ZAV_ThreadCleanup cleanup, unsigned int stackSize) {
    mCleanup = cleanup;
    uintptr_t old;
    ZAV_ThreadError result;
    {
        ZAV_Mutex::Lock guard(threadsmutex(), B_FALSE);
        if (Running() || Run::IsAwaited(this)) return ZAV_ThreadError::MapOSError(22);
        old = mHandle;
        Unregister();
        result = Start(stackSize);
    }
    // Closing may wait for the last steps of the old thread, and those may want the mutex.
    if (old != kNoHandle) zav_os::ThreadClose(old);
    return result;
}

ZAV_ThreadError ZAV_Thread::Start(unsigned int stackSize) {
    std::unique_ptr<Run> run(new Run(this));
    mThreadId = 0;
    mHandle = zav_os::ThreadStart(precreate, run.get(), stackSize, mThreadId);
    if (mHandle == kNoHandle) {
        const ZAV_ThreadError error = LastOSError();
        if (error != 0) return error;
    }
    // A start that failed with handle 0 counts as a success, as it always did; waiting for it then fails.
    if (mHandle != kNoHandle && mHandle != 0) run.release();
    Register();
    return ZAV_ThreadError::MapOSError(0);
}

// The system gives the identifiers of ended threads to new ones, so an entry may be there that belongs to an
// object which was not joined: it is taken over here, and left alone when that object is unregistered.
void ZAV_Thread::Register() {
    const ZAV_Integer key(static_cast<int32_t>(mThreadId));
    if (ZAV_LookupKey* entry = threads().AssocAt(&key))
        entry->Value(this);
    else
        threads().AddAssoc(new ZAV_Integer(key), this);
}

void ZAV_Thread::Unregister() {
    if (FindThread(threads(), mThreadId) != this) return;
    const ZAV_Integer key(static_cast<int32_t>(mThreadId));
    ZAV_LookupKey* entry = threads().RemoveKey(&key);
    delete entry->Key();
    delete entry;
}

void ZAV_Thread::precreate(void* argument) {
    struct Last {
        ~Last() {
            ZAV_Mutex::Lock guard(threadsmutex(), B_FALSE);
            delete std::exchange(ownRun, nullptr);
        }
    } const last;
    ownRun = static_cast<Run*>(argument);
    create(argument);
}

// The body may return, throw, or be unwound (pthread_exit, cancellation). Running ends once: after that the
// object may have been started anew.
void ZAV_Thread::create(void* argument) {
    Run& run = *static_cast<Run*>(argument);
    struct Body {
        ~Body() { End(); }
        ZAV_Thread* End() {
            ZAV_SetThreadLinkHead(nullptr);
            ZAV_Mutex::Lock guard(threadsmutex(), B_FALSE);
            if (!std::exchange(mRuns, false) || !mRun.thread) return nullptr;
            mRun.thread->mLinkHead = nullptr;
            mRun.thread->Running(B_FALSE);
            return mRun.thread;
        }
        Run& mRun;
        bool mRuns = true;
    };
    ZAV_Thread* thread;
    {
        // BeginThread holds the mutex until the object's fields are set.
        ZAV_Mutex::Lock guard(threadsmutex(), B_FALSE);
        run.entered = true;
        thread = run.thread;
        if (!thread) return;
        thread->mLinkHead = nullptr;
        if (!run.stopped) thread->Running(B_TRUE);
        // A detached object may go before its thread, so that uses its own place for the chain.
        ZAV_SetThreadLinkHead(thread->mFlag == ZAV_THREAD_DETACHED ? nullptr : &thread->mLinkHead);
    }
    Body body{run};
    try {
        thread->run();
    } catch (const ExitException&) {
        if ((thread = body.End())) thread->cleanup();
    }
}

ZAV_ThreadError ZAV_Thread::exit_thread() {
    {
        ZAV_Mutex::Lock guard(threadsmutex(), B_FALSE);
        // Without a run, what calls this is a destructor of the thread's, and the thread has ended already.
        if (!caller_is_self() || ownRun == nullptr) return ZAV_ThreadError::MapOSError(22);
        delete std::exchange(ownRun, nullptr);
    }
    ZAV_SetThreadLinkHead(nullptr);
    zav_os::ThreadExit();
}

// The handle and the identifier are read under the mutex, as the new thread may be quicker than BeginThread.
boolean_t ZAV_Thread::caller_is_self() const { return ZAV_Bool(zav_os::IsCurrentThread(mHandle, mThreadId)); }

ZAV_ThreadError ZAV_Thread::StopThread() {
    bool self;
    {
        ZAV_Mutex::Lock guard(threadsmutex(), B_FALSE);
        self = caller_is_self();
        if (!self) Run::StopAwaited(this);
    }
    if (self) return exit_thread();
    Running(B_FALSE);
    return ZAV_ThreadError(0);
}

ZAV_ThreadError ZAV_Thread::WaitForThread() { return WaitForThread(zav_os::kForever); }

ZAV_ThreadError ZAV_Thread::WaitForThread(unsigned long milliseconds) {
    ZAV_ThreadError result(0);
    uintptr_t handle;
    bool self;
    {
        ZAV_Mutex::Lock guard(threadsmutex(), B_FALSE);
        handle = mHandle;
        self = caller_is_self();
    }
    if (self) {
        result = ZAV_ThreadError::MapOSError(36);
    } else if (handle != kNoHandle) {
        const zav_os::Wait wait = zav_os::ThreadWait(handle, static_cast<uint32_t>(milliseconds));
        if (wait == zav_os::Wait::TimedOut) return ZAV_ThreadError::MapOSError(62);
        if (wait == zav_os::Wait::Failed) result = LastOSError();
    }
    ZAV_Mutex::Lock guard(threadsmutex(), B_FALSE);
    Unregister();
    return result;
}

ZAV_ThreadError ZAV_Thread::WaitForAnyThread(ZAV_Thread*& which) {
    which = nullptr;
    std::unique_ptr<uint32_t[]> ids;
    unsigned count = 0;
    {
        ZAV_Mutex::Lock guard(threadsmutex(), B_FALSE);
        ids.reset(new uint32_t[threads().Size()]);
        ZAV_Iterator entries(&threads());
        while (ZAV_CltObject* element = ++entries) {
            ZAV_LookupKey* entry = static_cast<ZAV_LookupKey*>(element);
            if (static_cast<ZAV_Thread*>(entry->Value())->Running())
                ids[count++] = static_cast<uint32_t>(static_cast<ZAV_Integer*>(entry->Key())->Value());
        }
    }
    const int slot = zav_os::WaitForAny(ids.get(), count);
    if (slot < 0) return LastOSError();
    ZAV_Mutex::Lock guard(threadsmutex(), B_FALSE);
    which = FindThread(threads(), ids[static_cast<unsigned>(slot)]);
    if (!which) return ZAV_ThreadError::MapOSError(3);
    which->Running(B_FALSE);
    return ZAV_ThreadError::MapOSError(0);
}

boolean_t ZAV_Thread::Running() {
    ZAV_ReadWriteLock::ReadLock guard(mRunningLock, B_FALSE);
    return mRunning;
}

void ZAV_Thread::Running(boolean_t running) {
    ZAV_ReadWriteLock::WriteLock guard(mRunningLock, B_FALSE);
    mRunning = running;
}

ZAV_ThreadError ZAV_Thread::SetPriority(int priority) {
    const uint32_t error = zav_os::SetThreadPriority(mHandle, (std::clamp)(priority, -15, 15));
    return ZAV_ThreadError::MapOSError(static_cast<int>(error));
}

ZAV_ThreadError ZAV_Thread::GetPriority(int* priority) {
    const uint32_t error = zav_os::GetThreadPriority(mHandle, *priority);
    if (error != 0) *priority = 0;
    return ZAV_ThreadError::MapOSError(static_cast<int>(error));
}

void ZAV_Thread::MySignalHandler(int) {}

void ZAV_Thread::cleanup() {}

char* ZAV_Thread::GetInfoString() { return mInfoString; }

void ZAV_Thread::SetInfoString(char* text) {
    const size_t length = (std::min)(std::strlen(text), sizeof mInfoString - 1);
    std::memmove(mInfoString, text, length);
    mInfoString[length] = 0;
}

void ZAV_Thread::GetInfoStringFromID(void* id, char* out) {
    *out = 0;
    uint32_t number = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(id));
    if (number == 0) number = zav_os::CurrentThreadId();
    ZAV_Mutex::Lock guard(threadsmutex(), B_FALSE);
    if (const ZAV_Thread* thread = FindThread(threads(), number)) std::strcpy(out, thread->mInfoString);
}

unsigned long ZAV_Thread::OSThreadId() { return zav_os::CurrentThreadId(); }

ZAV_Thread* ZAV_Thread::CurrentThread() { return get_thread_object(nullptr); }

ZAV_Thread* ZAV_Thread::get_thread_object(void* id) {
    uint32_t number = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(id));
    if (number == 0) number = zav_os::CurrentThreadId();
    ZAV_Mutex::Lock guard(threadsmutex(), B_FALSE);
    ZAV_Thread* thread = FindThread(threads(), number);
    // The caller may have the identifier of an ended thread that nobody joined.
    return thread && !id && !thread->caller_is_self() ? nullptr : thread;
}

void ZAV_Thread::yield(const ZAV_Thread*) { zav_os::Sleep(0); }
