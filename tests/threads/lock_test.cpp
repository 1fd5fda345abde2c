#include <tests/support/on_threads.h>
#include <tests/threads/platform.h>

#include <zavbase/threads/read_write_lock.h>
#include <zavbase/threads/reentrant_mutex.h>
#include <zavbase/threads/semaphore.h>
#include <zavbase/threads/signaller.h>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <new>
#include <thread>
#include <vector>

namespace {

using RW = ZAV_ReadWriteLock;

template <class F>
void OnThread(F f) {
    std::thread(f).join();
}

/// A guard that is destroyed only if asked to.
template <class Guard>
struct Manual {
    template <class Lock>
    Manual(Lock& lock, boolean_t tryOnly) : guard(*new (room) Guard(lock, tryOnly)) {}
    void Destroy() { guard.~Guard(); }
    boolean_t Acquired() const { return guard.LockAcquired(); }

    alignas(Guard) unsigned char room[sizeof(Guard)];
    Guard& guard;
};

/// Whether a try on another thread succeeds; a failed one is not released, as its destruction might do.
template <class Guard, class Lock>
bool OtherGets(Lock& lock) {
    bool acquired = false;
    OnThread([&] {
        Manual<Guard> guard(lock, B_TRUE);
        acquired = guard.Acquired();
        if (acquired) guard.Destroy();
    });
    return acquired;
}

} // namespace

TEST(Mutex, BelongsToNoThread) {
    ZAV_Mutex mutex;
    auto held = std::make_unique<ZAV_Mutex::Lock>(mutex, B_FALSE);
    EXPECT_FALSE(ZAV_Mutex::Lock(mutex, B_TRUE).LockAcquired()) << "it is not re-entrant";
    OnThread([&] { held.reset(); });
    EXPECT_TRUE(ZAV_Mutex::Lock(mutex, B_TRUE).LockAcquired());

    OnThread([&] { Manual<ZAV_Mutex::Lock> leftBehind(mutex, B_FALSE); });
    EXPECT_FALSE(ZAV_Mutex::Lock(mutex, B_TRUE).LockAcquired()) << "a thread that ends leaves it locked";
}

TEST(ReentrantMutex, IsFreeAfterTheLastGuardInWhateverOrder) {
    ZAV_ReentrantMutex mutex;
    using Lock = ZAV_ReentrantMutex::Lock;
    auto outer = std::make_unique<Lock>(mutex, B_FALSE);
    auto inner = std::make_unique<Lock>(mutex, B_TRUE);
    EXPECT_TRUE(inner->LockAcquired()) << "the owner's try succeeds";
    outer.reset();
    EXPECT_FALSE(OtherGets<Lock>(mutex));
    inner.reset();
    EXPECT_TRUE(OtherGets<Lock>(mutex));

    // The owner is not looked at on the way out: another thread may give back, and then the owner is nobody.
    auto held = std::make_unique<Lock>(mutex, B_FALSE);
    OnThread([&] { held.reset(); });
    OnThread([&] { held = std::make_unique<Lock>(mutex, B_TRUE); });
    EXPECT_TRUE(held->LockAcquired());
    EXPECT_FALSE(Lock(mutex, B_TRUE).LockAcquired()) << "the former owner is still taken for the owner";
    held.reset();
}

TEST(ReentrantMutex, StaysLockedWhenItsThreadHasEnded) {
    ZAV_ReentrantMutex mutex;
    OnThread([&] { Manual<ZAV_ReentrantMutex::Lock> leftBehind(mutex, B_FALSE); });
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(OtherGets<ZAV_ReentrantMutex::Lock>(mutex))
            << "a thread in the same place passed for the owner";
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
    EXPECT_EQ(16, units.TryWait());
}

TEST(ReadWriteLock, ReadersKeepAWriterOut) {
    RW lock;
    {
        RW::ReadLock first(lock, B_FALSE);
        auto second = std::make_unique<RW::ReadLock>(lock, B_FALSE);
        EXPECT_FALSE(OtherGets<RW::WriteLock>(lock));
        EXPECT_TRUE(OtherGets<RW::ReadLock>(lock)) << "the failed writer left the write side taken";
        second.reset();
        EXPECT_FALSE(OtherGets<RW::WriteLock>(lock));
    }
    EXPECT_TRUE(OtherGets<RW::WriteLock>(lock));
}

TEST(ReadWriteLock, TheWriterMayReadAndWriteAgain) {
    RW lock;
    {
        RW::WriteLock outer(lock, B_FALSE);
        {
            RW::WriteLock inner(lock, B_TRUE);
            EXPECT_TRUE(inner.LockAcquired());
        }
        {
            RW::ReadLock reader(lock, B_TRUE);
            EXPECT_TRUE(reader.LockAcquired());
        }
        EXPECT_FALSE(OtherGets<RW::ReadLock>(lock));
        EXPECT_FALSE(OtherGets<RW::WriteLock>(lock));
    }
    EXPECT_TRUE(OtherGets<RW::ReadLock>(lock));
}

TEST(ReadWriteLock, AWaitingWriterGoesBeforeLaterReaders) {
    RW lock;
    auto reader = std::make_unique<RW::ReadLock>(lock, B_FALSE);
    std::atomic<bool> written{false};
    std::thread writer([&] {
        RW::WriteLock guard(lock, B_FALSE);
        written = true;
    });
    while (OtherGets<RW::ReadLock>(lock)) std::this_thread::yield();
    EXPECT_FALSE(written);
    std::thread late([&] {
        RW::ReadLock guard(lock, B_FALSE);
        EXPECT_TRUE(written);
    });
    reader.reset();
    writer.join();
    late.join();
}

TEST(ReadWriteLock, AFailedTryToReadTakesAReaderOffTheCount) {
    RW lock;
    Manual<RW::WriteLock> writer(lock, B_FALSE);
    OnThread([&] { EXPECT_FALSE(RW::ReadLock(lock, B_TRUE).LockAcquired()); });
    writer.Destroy();
    // The count is now one below zero while the lock still counts as free of readers.
    {
        RW::ReadLock unseen(lock, B_FALSE);
        EXPECT_TRUE(OtherGets<RW::WriteLock>(lock));
        RW::ReadLock seen(lock, B_FALSE);
        EXPECT_FALSE(OtherGets<RW::WriteLock>(lock));
    }
    EXPECT_TRUE(OtherGets<RW::WriteLock>(lock));
}

TEST(ReadWriteLock, AFailedTryToWriteReleasesWhatItsThreadHolds) {
    RW lock;
    {
        RW::WriteLock held(lock, B_FALSE);
        OnThread([&] { EXPECT_FALSE(RW::WriteLock(lock, B_TRUE).LockAcquired()); });
        EXPECT_FALSE(OtherGets<RW::WriteLock>(lock)) << "another thread's guard released it";
        RW::ReadLock reader(lock, B_FALSE);
        EXPECT_FALSE(RW::WriteLock(lock, B_TRUE).LockAcquired()) << "the reader keeps it out";
        EXPECT_TRUE(OtherGets<RW::ReadLock>(lock))
            << "the inner guard's end should have given up the outer hold";
    }
    EXPECT_TRUE(OtherGets<RW::WriteLock>(lock));
}

TEST(ReadWriteLock, IsFreeWhenTheWritersThreadHasEnded) {
    RW lock, other;
    OnThread([&] {
        Manual<RW::WriteLock> leftBehind(lock, B_FALSE), nested(lock, B_FALSE), second(other, B_FALSE);
    });
    EXPECT_TRUE(OtherGets<RW::WriteLock>(lock));
    EXPECT_TRUE(OtherGets<RW::WriteLock>(other));
    // A waiter is woken by it, too.
    std::thread waiter;
    OnThread([&] {
        Manual<RW::WriteLock> leftBehind(lock, B_FALSE);
        waiter = std::thread([&] { EXPECT_TRUE(RW::ReadLock(lock, B_FALSE).LockAcquired()); });
    });
    waiter.join();
}

TEST(ReadWriteLock, WritersAreAloneAndReadersSeeWholeUpdates) {
    RW lock;
    const int kRounds = 300 * kEffort;
    long first = 0, second = 0;
    OnThreads(4, [&](int t) {
        for (int i = 0; i < kRounds; ++i) {
            if ((i + t) % 4 == 0) {
                RW::WriteLock guard(lock, B_FALSE);
                ++first;
                RW::WriteLock nested(lock, B_FALSE);
                ++second;
            } else {
                RW::ReadLock guard(lock, B_FALSE);
                EXPECT_EQ(first, second);
            }
        }
    });
    EXPECT_EQ(kRounds, first);
}

namespace {

/// Threads that wait on a signaller. Counted in the lock that their wait gives up: whoever gets the lock and
/// sees a count knows that these threads wait.
class Waiters {
public:
    explicit Waiters(int count) {
        for (int i = 0; i < count; ++i)
            mThreads.emplace_back([this] {
                ZAV_MutexSignaller::Lock lock(signaller);
                ++mWaiting;
                lock.Wait();
                ++mWoken;
                mBack.Signal();
            });
        for (int waiting = 0; waiting < count; std::this_thread::yield()) {
            ZAV_MutexSignaller::Lock lock(signaller);
            waiting = mWaiting;
        }
    }
    int WokenAfter(int units) {
        for (int i = 0; i < units; ++i) mBack.Wait();
        ZAV_MutexSignaller::Lock lock(signaller);
        return mWoken;
    }
    void Join() {
        for (std::thread& thread : mThreads) thread.join();
    }

    ZAV_MutexSignaller signaller;

private:
    std::vector<std::thread> mThreads;
    ZAV_Semaphore mBack;
    int mWaiting = 0, mWoken = 0;
};

} // namespace

TEST(Signaller, SignalWakesOneAndBroadcastAllThatWait) {
    Waiters waiters(4);
    waiters.signaller.Signal();
    EXPECT_EQ(1, waiters.WokenAfter(1));
    waiters.signaller.Broadcast();
    EXPECT_EQ(4, waiters.WokenAfter(3));
    waiters.Join();
}

TEST(Signaller, ASignalWithNoWaiterIsLost) {
    ZAV_MutexSignaller signaller;
    signaller.Signal();
    signaller.Broadcast();
    ZAV_MutexSignaller::Lock lock(signaller);
    EXPECT_EQ(62, lock.TimedWait(1000));
}

TEST(Signaller, TimesAreCutToMillisecondsAndTheLockIsTakenAgain) {
    ZAV_MutexSignaller signaller;
    ZAV_MutexSignaller::Lock lock(signaller);
    for (int none : {999, -999}) EXPECT_EQ(62, lock.TimedWait(none));
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
}

TEST(Signaller, AWaiterThatTimedOutStaysCounted) {
    ZAV_MutexSignaller signaller;
    ZAV_MutexSignaller::Lock lock(signaller);
    EXPECT_EQ(62, lock.TimedWait(0));
    EXPECT_EQ(62, lock.TimedWait(0));
    signaller.Broadcast();
    EXPECT_EQ(0, lock.TimedWait(0));
    EXPECT_EQ(0, lock.TimedWait(0));
    EXPECT_EQ(62, lock.TimedWait(0));
}
