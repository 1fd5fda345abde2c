#include <tests/support/on_threads.h>
#include <tests/threads/platform.h>

#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include <random>

namespace {

using RW = ZAV_ReadWriteLock;

/// Whether a try succeeds; a failed one is not released, as its destruction might do.
template <class Guard, class Lock>
bool Gets(Lock& lock) {
    alignas(Guard) unsigned char room[sizeof(Guard)];
    Guard* guard = new (room) Guard(lock, B_TRUE);
    const bool acquired = guard->LockAcquired();
    if (acquired) guard->~Guard();
    return acquired;
}

/// Takes a lock without ever giving it back.
template <class Guard, class Lock>
void LeaveBehind(Lock& lock) {
    alignas(Guard) unsigned char room[sizeof(Guard)];
    new (room) Guard(lock, B_FALSE);
}

/// `enter` lets one thread in, `look` as many as do not change anything.
template <class Lock, class Enter, class Look>
void LetsOneThreadInAtATime(Enter enter, Look look) {
    Lock lock;
    const int kThreads = 4, kRounds = 500 * kEffort;
    int begun = 0, done = 0;
    OnThreads(kThreads, [&](int t) {
        for (int i = 0; i < kRounds; ++i) {
            if ((i + t) % 4 != 0) {
                const auto guard = look(lock);
                EXPECT_EQ(begun, done);
                continue;
            }
            const auto guard = enter(lock);
            ++begun;
            if (i % 16 < 4) std::this_thread::yield(); // the others come and have to wait
            ++done;
        }
    });
    EXPECT_EQ(kRounds, done);
}

/// A kind of guard: a try for one, and the rules for what a try and the end of a guard do on thread 0 or 1.
struct GuardKind {
    std::function<std::shared_ptr<void>(bool& acquired)> make;
    std::function<bool(int thread)> enter;
    std::function<void(int thread, bool acquired)> leave;
};

template <class Guard, class Lock>
auto Trying(Lock& lock) {
    return [&lock](bool& acquired) {
        auto guard = std::make_shared<Guard>(lock, B_TRUE);
        acquired = guard->LockAcquired();
        return guard;
    };
}

/// Two threads take turns in trying for guards and in destroying guards of either. Short, so that what failed
/// tries do to a lock does not add up.
void CompareRandomly(unsigned seed, const std::vector<GuardKind>& kinds) {
    struct Made {
        const GuardKind* kind;
        bool acquired;
        std::shared_ptr<void> guard;
    };
    std::vector<Made> made;
    std::mt19937 random(seed);
    const auto step = [&](int self) {
        if (made.size() < random() % 6) {
            Made& m = made.emplace_back(Made{&kinds[random() % kinds.size()], false, nullptr});
            m.guard = m.kind->make(m.acquired);
            EXPECT_EQ(m.kind->enter(self), m.acquired) << "seed " << seed;
        } else if (!made.empty()) {
            std::swap(made[random() % made.size()], made.back());
            made.back().kind->leave(self, made.back().acquired);
            made.pop_back();
        }
    };
    ZAV_Semaphore turn[2];
    turn[0].Signal();
    OnThreads(2, [&](int self) {
        for (int turns = 20; turns >= 0; --turns) {
            turn[self].Wait();
            // In the last turn there are none: the other thread may have ended, and its write locks with it.
            for (unsigned steps = turns > 0 ? random() % 4 : 0; steps > 0; --steps) step(self);
            turn[1 - self].Signal();
        }
    });
}

} // namespace

TEST(Locks, LetOneThreadInAtATime) {
    const auto mutex = [](auto& lock) { return ZAV_Mutex::Lock(lock, B_FALSE); };
    const auto reentrant = [](auto& lock) { return ZAV_ReentrantMutex::Lock(lock, B_FALSE); };
    const auto monitor = [](auto& lock) { return typename std::decay_t<decltype(lock)>::Lock(&lock); };
    LetsOneThreadInAtATime<ZAV_Mutex>(mutex, mutex);
    LetsOneThreadInAtATime<ZAV_ReentrantMutex>(reentrant, reentrant);
    LetsOneThreadInAtATime<ZAV_Monitor>(monitor, monitor);
    LetsOneThreadInAtATime<ZAV_ReentrantMonitor>(monitor, monitor);
    LetsOneThreadInAtATime<RW>([](auto& lock) { return RW::WriteLock(lock, B_FALSE); },
                               [](auto& lock) { return RW::ReadLock(lock, B_FALSE); });
}

TEST(Mutexes, AreFreeAfterTheLastGuardInWhateverOrder) {
    for (unsigned seed = 0; seed < 20; ++seed) {
        ZAV_Mutex mutex;
        ZAV_ReentrantMutex reentrant;
        int owner = -1, held = 0, count = 0;
        const auto enter = [&](int) { return std::exchange(held, 1) == 0; };
        const auto reenter = [&](int thread) {
            if (count > 0 && owner != thread) return false;
            owner = thread;
            return ++count > 0;
        };
        // Whose guard it is is not looked at: another thread may give back.
        CompareRandomly(seed, {{Trying<ZAV_Mutex::Lock>(mutex), enter, [&](int, bool had) { held -= had; }},
                               {Trying<ZAV_ReentrantMutex::Lock>(reentrant), reenter,
                                [&](int, bool had) { count -= had; }}});
    }
}

// A guard that did not acquire releases all the same: one for reading takes a reader off the count, below
// zero too, and one for writing gives up what its thread holds.
TEST(ReadWriteLock, ReleasesWithEveryGuardWhetherItAcquiredOrNot) {
    for (unsigned seed = 0; seed < 100; ++seed) {
        RW lock;
        int writer = -1, depth = 0;
        uint32_t readers = 0;
        bool occupied = false; // follows the count only when that leaves or reaches zero
        const auto startReading = [&](int thread) {
            if (writer != -1 && writer != thread) return false;
            if (readers++ == 0) occupied = true;
            return true;
        };
        const auto endReading = [&](int, bool) {
            if (--readers == 0) occupied = false;
        };
        const auto endWriting = [&](int thread, bool) {
            if (writer == thread && --depth == 0) writer = -1;
        };
        const auto startWriting = [&](int thread) {
            if (writer != -1 && writer != thread) return false;
            writer = thread;
            ++depth;
            if (occupied) endWriting(thread, false);
            return !occupied;
        };
        CompareRandomly(seed, {{Trying<RW::ReadLock>(lock), startReading, endReading},
                               {Trying<RW::WriteLock>(lock), startWriting, endWriting}});
    }
}

TEST(ReadWriteLock, AWaitingWriterGoesBeforeLaterReaders) {
    RW lock;
    auto reader = std::make_unique<RW::ReadLock>(lock, B_FALSE);
    std::atomic<bool> written{false};
    std::thread writer([&] {
        RW::WriteLock guard(lock, B_FALSE);
        written = true;
    });
    while (Gets<RW::ReadLock>(lock)) std::this_thread::yield();
    EXPECT_FALSE(written);
    std::thread late([&] {
        RW::ReadLock guard(lock, B_FALSE);
        EXPECT_TRUE(written);
    });
    reader.reset();
    writer.join();
    late.join();
}

TEST(Locks, StayLockedWhenTheirThreadHasEndedButForWriters) {
    ZAV_Mutex mutex;
    ZAV_ReentrantMutex reentrant;
    RW lock, other;
    std::thread waiter;
    std::thread([&] {
        LeaveBehind<ZAV_Mutex::Lock>(mutex);
        LeaveBehind<ZAV_ReentrantMutex::Lock>(reentrant);
        LeaveBehind<RW::WriteLock>(other);
        for (int nested = 0; nested < 2; ++nested) LeaveBehind<RW::WriteLock>(lock);
        waiter = std::thread([&] { EXPECT_TRUE(RW::ReadLock(lock, B_FALSE).LockAcquired()); });
    }).join();
    waiter.join();
    EXPECT_TRUE(Gets<RW::WriteLock>(lock));
    EXPECT_TRUE(Gets<RW::WriteLock>(other));
    EXPECT_FALSE(Gets<ZAV_Mutex::Lock>(mutex));
    for (int i = 0; i < 3; ++i) // a thread in the same place must not pass for the owner
        std::thread([&] { EXPECT_FALSE(Gets<ZAV_ReentrantMutex::Lock>(reentrant)); }).join();
}

TEST(Semaphore, EveryUnitWakesAWaiter) {
    ZAV_Semaphore units, taken;
    const int kWaiters = 4, kRounds = 50 * kEffort;
    OnThreads(kWaiters + 1, [&](int t) {
        for (int i = 0; i < kRounds; ++i) {
            if (t < kWaiters) {
                units.Wait();
                taken.Signal();
                continue;
            }
            // As many at once as there are waiters, so that wake-ups overlap.
            for (int w = 0; w < kWaiters; ++w) units.Signal();
            for (int w = 0; w < kWaiters; ++w) taken.Wait();
        }
    });
    units.Signal();
    EXPECT_EQ(0, units.TryWait());
    EXPECT_EQ(16, units.TryWait());
}

TEST(Signaller, SignalWakesOneAndBroadcastAllThatWait) {
    ZAV_MutexSignaller signaller;
    ZAV_Semaphore back;
    int waiting = 0, woken = 0;
    OnThreads(5, [&](int t) {
        if (t > 0) {
            ZAV_MutexSignaller::Lock lock(signaller);
            ++waiting;
            lock.Wait();
            ++woken;
            back.Signal();
            return;
        }
        // Counted in the lock that a wait gives up: whoever sees the number knows that so many wait.
        for (int seen = 0; seen < 4; std::this_thread::yield()) {
            ZAV_MutexSignaller::Lock lock(signaller);
            seen = waiting;
        }
        signaller.Signal();
        back.Wait();
        {
            ZAV_MutexSignaller::Lock lock(signaller);
            EXPECT_EQ(1, woken);
        }
        signaller.Broadcast();
    });
    EXPECT_EQ(4, woken);
}

TEST(Signaller, TimesAreCutToMillisecondsAndTimedOutWaitersStayCounted) {
    ZAV_MutexSignaller signaller;
    signaller.Signal(); // nobody waits: lost
    signaller.Broadcast();
    ZAV_MutexSignaller::Lock lock(signaller);
    for (int none : {1000, 999, -999}) EXPECT_EQ(62, lock.TimedWait(none));
    bool others = false;
    std::thread other([&] {
        ZAV_MutexSignaller::Lock second(signaller);
        others = true;
        signaller.Signal();
    });
    EXPECT_FALSE(others);
    EXPECT_EQ(0, lock.TimedWait(-1000)) << "minus one millisecond waits without limit";
    EXPECT_TRUE(others);
    other.join();
    signaller.Broadcast();
    for (int timedOut = 0; timedOut < 3; ++timedOut) EXPECT_EQ(0, lock.TimedWait(0));
    EXPECT_EQ(62, lock.TimedWait(0));
}
