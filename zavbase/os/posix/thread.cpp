#include <zavbase/os/thread.h>

#include <zavbase/os/lock.h>
#include <zavbase/os/posix/futex.h>
#include <zavbase/os/posix/thread_end.h>

#include <cerrno>
#include <climits>
#include <csetjmp>
#include <mutex>
#include <new>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

namespace zav_os {

namespace {

constexpr uint32_t kEnded = 1;
constexpr uint32_t kAwaited = 2; ///< not ended, and threads may sleep on the word

/// What a handle points to; owned by the handle and by the thread.
struct Thread {
    void (*entry)(void*);
    void* argument;
    pthread_t thread;
    std::atomic<uint32_t> id{0};
    std::atomic<uint32_t> state{0};
    std::atomic<bool> joined{false}; ///< one of the waiters joins; the others wait for the state
    std::atomic<int> owners{2};
    Thread *next, *previous; ///< under threadsLock
    jmp_buf end;
};

constinit Lock threadsLock;
constinit Thread* threads = nullptr;

void Enlist(Thread& thread) {
    const std::lock_guard<Lock> guard(threadsLock);
    thread.next = threads;
    thread.previous = nullptr;
    if (threads != nullptr) threads->previous = &thread;
    threads = &thread;
}

void Unlist(Thread& thread) {
    const std::lock_guard<Lock> guard(threadsLock);
    (thread.previous != nullptr ? thread.previous->next : threads) = thread.next;
    if (thread.next != nullptr) thread.next->previous = thread.previous;
}

thread_local constinit Thread* self = nullptr;

Thread* Of(uintptr_t handle) {
    return handle == 0 || handle == UINTPTR_MAX ? nullptr : reinterpret_cast<Thread*>(handle);
}

void Drop(Thread* thread) {
    if (thread->owners.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    Unlist(*thread);
    delete thread;
}

/// The end of the calling thread, when its entry has returned or was unwound: pthread_exit and cancellation
/// do that. The lock keeps the identifier from being given away while the priority is asked for or set.
struct Ending {
    ~Ending() {
        AbandonWriteLocks();
        uint32_t before;
        {
            const std::lock_guard<Lock> guard(threadsLock);
            before = self->state.exchange(kEnded, std::memory_order_acq_rel);
        }
        if (before == kAwaited) FutexWake(&self->state, INT_MAX);
        Drop(self);
    }
};

void* Main(void* argument) {
    self = static_cast<Thread*>(argument);
    self->id.store(CurrentThreadId(), std::memory_order_relaxed);
    const Ending ending;
    // Ending a thread from inside is a jump to here, which passes destructors and handlers by.
    if (_setjmp(self->end) == 0) self->entry(self->argument);
    return nullptr;
}
bool HasEnded(const Thread& thread) { return thread.state.load(std::memory_order_acquire) == kEnded; }

/// The kernel's identifier of a thread just created. It is known before the thread has run, but the only call
/// that tells it is the one for the thread's clock, whose number holds it, inverted, above three bits.
uint32_t IdOf(const Thread& thread) {
    clockid_t clock;
    const uint32_t id = thread.id.load(std::memory_order_relaxed);
    if (id != 0 || pthread_getcpuclockid(thread.thread, &clock) != 0) return id;
    return static_cast<uint32_t>(~(clock >> 3));
}

int Create(Thread& thread, unsigned stackSize) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    if (stackSize != 0) {
        const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        const size_t least = static_cast<size_t>(sysconf(_SC_THREAD_STACK_MIN));
        const size_t size = stackSize < least ? least : stackSize;
        pthread_attr_setstacksize(&attributes, (size + page - 1) / page * page);
    }
    const int error = pthread_create(&thread.thread, &attributes, Main, &thread);
    pthread_attr_destroy(&attributes);
    return error;
}

} // namespace

void ThreadsBeforeFork() noexcept { threadsLock.lock(); }

// In the child all other threads have ended, without a word: who waits for them finds that they have.
void ThreadsAfterFork(bool inChild) noexcept {
    threadsLock.unlock();
    if (!inChild) return;
    for (Thread *thread = threads, *next; thread != nullptr; thread = next) {
        next = thread->next;
        if (thread == self) {
            thread->id = CurrentThreadId();
            continue;
        }
        thread->joined = true;
        if (thread->state.exchange(kEnded) != kEnded) Drop(thread);
    }
}

uintptr_t ThreadStart(void (*entry)(void*), void* argument, unsigned stackSize, uint32_t& id) {
    Thread* thread = new (std::nothrow) Thread;
    int error = ENOMEM;
    if (thread) {
        thread->entry = entry;
        thread->argument = argument;
        Enlist(*thread);
        error = Create(*thread, stackSize);
        if (error == 0) {
            id = IdOf(*thread);
            return reinterpret_cast<uintptr_t>(thread);
        }
        Unlist(*thread);
        delete thread;
    }
    errno = error;
    return 0;
}

void ThreadExit() {
    if (self) _longjmp(self->end, 1);
    pthread_exit(nullptr);
}

Wait ThreadWait(uintptr_t handle, uint32_t milliseconds) {
    Thread* thread = Of(handle);
    if (!thread) {
        errno = EINVAL;
        return Wait::Failed;
    }
    if (milliseconds == kForever && !thread->joined.exchange(true)) {
        if (pthread_join(thread->thread, nullptr) == 0) return Wait::Done;
        thread->joined = false; // two threads wait for each other: so be it, for ever
    }
    const timespec end = milliseconds == kForever ? timespec() : Deadline(milliseconds);
    for (uint32_t state = 0; !HasEnded(*thread); state = 0) {
        thread->state.compare_exchange_strong(state, kAwaited);
        if (state == kEnded) break;
        if (!FutexWait(&thread->state, kAwaited, milliseconds == kForever ? nullptr : &end))
            return Wait::TimedOut;
    }
    return Wait::Done;
}

void ThreadClose(uintptr_t handle) {
    Thread* thread = Of(handle);
    if (!thread) return;
    // It can be joined no more when a thread closes its own handle while it runs down.
    if (!thread->joined && (!HasEnded(*thread) || pthread_join(thread->thread, nullptr) != 0))
        pthread_detach(thread->thread);
    Drop(thread);
}

int WaitForAny(const uint32_t*, unsigned) {
    errno = EINVAL; // the system has no handles to wait for
    return -1;
}

uint32_t CurrentThreadId() { return static_cast<uint32_t>(gettid()); }

bool IsCurrentThread(uintptr_t handle, uint32_t) { return self && self == Of(handle); }

uint32_t SetThreadPriority(uintptr_t handle, int priority) {
    const Thread* thread = Of(handle);
    if (!thread) return EINVAL;
    const std::lock_guard<Lock> guard(threadsLock);
    if (HasEnded(*thread)) return ESRCH; // its identifier may be another's now
    return setpriority(PRIO_PROCESS, IdOf(*thread), -priority) == 0 ? 0 : static_cast<uint32_t>(errno);
}

uint32_t GetThreadPriority(uintptr_t handle, int& priority) {
    const Thread* thread = Of(handle);
    if (!thread) return EINVAL;
    const std::lock_guard<Lock> guard(threadsLock);
    if (HasEnded(*thread)) return ESRCH;
    errno = 0;
    priority = -getpriority(PRIO_PROCESS, IdOf(*thread));
    return static_cast<uint32_t>(errno);
}

} // namespace zav_os
