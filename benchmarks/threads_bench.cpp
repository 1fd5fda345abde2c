#include <zavbase/threads/mutex.h>
#include <zavbase/threads/read_write_lock.h>
#include <zavbase/threads/reentrant_mutex.h>
#include <zavbase/threads/thread.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <mutex>
#include <shared_mutex>
#include <thread>

// The C library takes its mutexes without atomic instructions as long as a process has had one thread only.
// Built with ONE_THREAD this measures that and no more; otherwise all comes after a second thread was
// started. Locks are reached through pointers that the compiler cannot see through, as in most programs.

namespace {

template <class Lock>
struct Zav : Lock {
    template <class Lockable>
    explicit Zav(Lockable& lock) : Lock(lock, B_FALSE) {}
};
using Mutex = Zav<ZAV_Mutex::Lock>;
using Reentrant = Zav<ZAV_ReentrantMutex::Lock>;
using Read = Zav<ZAV_ReadWriteLock::ReadLock>;
using Write = Zav<ZAV_ReadWriteLock::WriteLock>;
using StdMutex = std::lock_guard<std::mutex>;
using StdRecursive = std::lock_guard<std::recursive_mutex>;
using StdRead = std::shared_lock<std::shared_mutex>;
using StdWrite = std::unique_lock<std::shared_mutex>;

template <class Lockable>
std::unique_ptr<Lockable> Opaque() {
    Lockable* lock = new Lockable;
    benchmark::DoNotOptimize(lock);
    return std::unique_ptr<Lockable>(lock);
}

template <class Guard, class Lockable>
void Uncontended(benchmark::State& state) {
    const std::unique_ptr<Lockable> lock = Opaque<Lockable>();
    for (auto _ : state) {
        Guard guard(*lock);
        benchmark::ClobberMemory();
    }
}

template <class Guard, class Lockable>
void Nested(benchmark::State& state) {
    const std::unique_ptr<Lockable> lock = Opaque<Lockable>();
    Guard outer(*lock);
    for (auto _ : state) {
        Guard guard(*lock);
        benchmark::ClobberMemory();
    }
}

#ifndef ONE_THREAD

template <class Guard, class Lockable>
void Contended(benchmark::State& state) {
    static Lockable lock;
    static long shared = 0;
    for (auto _ : state) {
        Guard guard(lock);
        benchmark::DoNotOptimize(++shared);
    }
}

class Idle : public ZAV_Thread {
public:
    Idle() : ZAV_Thread(ZAV_THREAD_PLAIN) {}

private:
    void run() override {}
};

void BeginAndJoin(benchmark::State& state) {
    for (auto _ : state) {
        Idle thread;
        thread.BeginThread(ZAV_THREAD_CLEANUP_NONE, 0);
        thread.WaitForThread();
    }
}

void BeginAndJoinStd(benchmark::State& state) {
    for (auto _ : state) std::thread([] {}).join();
}

#endif

#ifdef ONE_THREAD
#define FAMILY "OneThread"
#else
#define FAMILY "Lock"
const bool theSecondThread = (std::thread([] {}).join(), true);
#endif

BENCHMARK(Uncontended<Mutex, ZAV_Mutex>)->Name(FAMILY "/zav/mutex");
BENCHMARK(Uncontended<StdMutex, std::mutex>)->Name(FAMILY "/std/mutex");
BENCHMARK(Uncontended<Reentrant, ZAV_ReentrantMutex>)->Name(FAMILY "/zav/reentrant");
BENCHMARK(Uncontended<StdRecursive, std::recursive_mutex>)->Name(FAMILY "/std/reentrant");
BENCHMARK(Nested<Reentrant, ZAV_ReentrantMutex>)->Name(FAMILY "/zav/reentrant_nested");
BENCHMARK(Nested<StdRecursive, std::recursive_mutex>)->Name(FAMILY "/std/reentrant_nested");
BENCHMARK(Uncontended<Read, ZAV_ReadWriteLock>)->Name(FAMILY "/zav/read");
BENCHMARK(Uncontended<StdRead, std::shared_mutex>)->Name(FAMILY "/std/read");
BENCHMARK(Uncontended<Write, ZAV_ReadWriteLock>)->Name(FAMILY "/zav/write");
BENCHMARK(Uncontended<StdWrite, std::shared_mutex>)->Name(FAMILY "/std/write");
#ifndef ONE_THREAD
BENCHMARK(Contended<Mutex, ZAV_Mutex>)->Threads(2)->UseRealTime()->Name("Lock/zav/contended");
BENCHMARK(Contended<StdMutex, std::mutex>)->Threads(2)->UseRealTime()->Name("Lock/std/contended");
BENCHMARK(BeginAndJoin)->UseRealTime()->Name("Thread/zav/begin_join");
BENCHMARK(BeginAndJoinStd)->UseRealTime()->Name("Thread/std/begin_join");
#endif

} // namespace
