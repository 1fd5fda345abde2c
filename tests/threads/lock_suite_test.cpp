#include <tests/support/on_threads.h>
#include <tests/threads/platform.h>

#include <zavbase/threads/monitor.h>
#include <zavbase/threads/read_write_lock.h>
#include <zavbase/threads/semaphore.h>
#include <zavbase/threads/signaller.h>

#include <gtest/gtest.h>

#include <memory>
#include <thread>

// One suite for everything that lets one thread in at a time. A guard type is made from a lock and from
// whether only to try.

namespace {

template <class M>
struct MonitorGuard : M::Lock {
    MonitorGuard(M& lock, boolean_t) : M::Lock(&lock) {}
};

struct SignallerGuard : ZAV_MutexSignaller::Lock {
    SignallerGuard(ZAV_MutexSignaller& lock, boolean_t) : ZAV_MutexSignaller::Lock(lock) {}
};

struct OneUnit : ZAV_Semaphore {
    OneUnit() { Signal(); }
};

struct SemaphoreGuard {
    SemaphoreGuard(OneUnit& lock, boolean_t tryOnly) : mLock(lock), mAcquired(B_TRUE) {
        if (tryOnly)
            mAcquired = ZAV_Bool(lock.TryWait() == 0);
        else
            lock.Wait();
    }
    ~SemaphoreGuard() {
        if (mAcquired) mLock.Signal();
    }
    boolean_t LockAcquired() const { return mAcquired; }

    OneUnit& mLock;
    boolean_t mAcquired;
};

template <class L, class G>
struct Kind {
    using Lock = L;
    using Guard = G;
};

using Mutex = Kind<ZAV_Mutex, ZAV_Mutex::Lock>;
using Reentrant = Kind<ZAV_ReentrantMutex, ZAV_ReentrantMutex::Lock>;
using Semaphore = Kind<OneUnit, SemaphoreGuard>;
using Writing = Kind<ZAV_ReadWriteLock, ZAV_ReadWriteLock::WriteLock>;
using Signaller = Kind<ZAV_MutexSignaller, SignallerGuard>;
using Monitor = Kind<ZAV_Monitor, MonitorGuard<ZAV_Monitor>>;
using ReentrantMonitor = Kind<ZAV_ReentrantMonitor, MonitorGuard<ZAV_ReentrantMonitor>>;

template <class K>
class LockSuite : public testing::Test {};
using All = testing::Types<Mutex, Reentrant, Semaphore, Writing, Signaller, Monitor, ReentrantMonitor>;
TYPED_TEST_SUITE(LockSuite, All);

template <class K>
class TryLockSuite : public testing::Test {};
using Trying = testing::Types<Mutex, Reentrant, Semaphore, Writing>;
TYPED_TEST_SUITE(TryLockSuite, Trying);

} // namespace

TYPED_TEST(LockSuite, LetsOneThreadInAtATime) {
    typename TypeParam::Lock lock;
    const int kThreads = 4, kRounds = 500 * kEffort;
    long entries = 0;
    int inside = 0;
    OnThreads(kThreads, [&](int) {
        for (int i = 0; i < kRounds; ++i) {
            typename TypeParam::Guard guard(lock, B_FALSE);
            EXPECT_EQ(1, ++inside);
            ++entries;
            --inside;
        }
    });
    EXPECT_EQ(kThreads * kRounds, entries);
}

TYPED_TEST(LockSuite, AWaiterGetsItWhenItIsGivenBack) {
    typename TypeParam::Lock lock;
    auto held = std::make_unique<typename TypeParam::Guard>(lock, B_FALSE);
    ZAV_Semaphore waiting;
    bool givenBack = false;
    std::thread waiter([&] {
        waiting.Signal();
        typename TypeParam::Guard guard(lock, B_FALSE);
        EXPECT_TRUE(givenBack);
    });
    waiting.Wait();
    givenBack = true;
    held.reset();
    waiter.join();
}

TYPED_TEST(TryLockSuite, AFailedTryChangesNothingForOthers) {
    typename TypeParam::Lock lock;
    const auto tryIt = [&] {
        bool acquired;
        std::thread([&] { acquired = typename TypeParam::Guard(lock, B_TRUE).LockAcquired(); }).join();
        return acquired;
    };
    {
        typename TypeParam::Guard held(lock, B_FALSE);
        EXPECT_FALSE(tryIt());
        EXPECT_FALSE(tryIt()) << "the failed try released the lock";
    }
    EXPECT_TRUE(tryIt());
    EXPECT_TRUE(tryIt()) << "a successful try gave nothing back";
}
