#include <atomic>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <zavbase/events/ev_dispatcher.h>
#include <zavbase/events/event.h>

namespace {

const int kProducers = 8;
const int kEventsEach = 100000;
const int kHandlers = 4;
const int kLowest = -5, kHighest = 5;

struct Account {
    std::atomic<int> handled{0}, cleanedUp{0}, refused{0};
    int Total() const { return handled + cleanedUp + refused; }
};

class Counted : public ZAV_Event {
public:
    Counted(Account& account, int producer, int number, int priority)
        : ZAV_Event(0x436E7464), mAccount(account), mProducer(producer), mNumber(number),
          mRank(priority - kLowest) {}
    void EmergencyCleanup() override { ++mAccount.cleanedUp; }

    // Gives whether it was taken; what is refused goes at once.
    static bool Post(const ZAV_EvHandlerRef& handler, Account& account, int producer, int number,
                     int priority) {
        auto event = std::make_unique<Counted>(account, producer, number, priority);
        const bool taken = handler->QueueEvent(event.get(), priority) == 0;
        if (taken)
            event.release();
        else
            ++account.refused;
        return taken;
    }

    Account& mAccount;
    const int mProducer, mNumber, mRank;
};

// What was last handled, for each producer and priority; the dispatching thread's alone.
typedef int LastHandled[kProducers][kHighest - kLowest + 1];

class Unsteady : public ZAV_EvHandlerBody {
public:
    Unsteady(LastHandled& last, unsigned seed) : mLast(last), mRandom(seed) {}
    int mOutOfOrder = 0;

protected:
    int HandleEvent(ZAV_Event* event) override {
        if (event->IsKindOf(&ZAV_EventStop::classZAV_EventStop)) return 2;
        Counted* counted = static_cast<Counted*>(event);
        mOutOfOrder += counted->mNumber <= mLast[counted->mProducer][counted->mRank];
        mLast[counted->mProducer][counted->mRank] = counted->mNumber;
        ++counted->mAccount.handled;
        return mRandom() % 5000 == 0 ? 2 : 0;
    }

private:
    LastHandled& mLast;
    std::minstd_rand mRandom;
};

class Stress {
public:
    Stress() {
        for (unsigned h = 0; h < kHandlers; ++h) mHandlers.emplace_back(new Unsteady(mLast, h + 1));
    }

    // Posts at random and brings handlers back that have gone.
    void Produce(int producer) {
        std::minstd_rand random(static_cast<unsigned>(producer + 100));
        for (int i = 1; i <= kEventsEach; ++i) {
            const ZAV_EvHandlerRef& handler = mHandlers[random() % kHandlers];
            const int priority = kLowest + static_cast<int>(random() % (kHighest - kLowest + 1));
            Counted::Post(handler, mAccount, producer, i, priority);
            if (i % 64 == 0 && !mStopped && !handler->IsActive()) mDispatcher->AddEvHandler(handler);
            if (producer == 0 && i == kEventsEach / 2) mHalfway = true;
        }
    }

    // Stops in the middle; the producers go on.
    void Run() {
        for (const ZAV_EvHandlerRef& handler : mHandlers) mDispatcher->AddEvHandler(handler);
        auto thread = std::make_unique<ZAV_EvDispatcherThread>(*mDispatcher);
        thread->BeginThread(ZAV_THREAD_CLEANUP_NONE, 0);
        std::vector<std::thread> producers;
        for (int p = 0; p < kProducers; ++p) producers.emplace_back([this, p] { Produce(p); });
        while (!mHalfway || mAccount.handled < 1000) std::this_thread::yield();
        mStopped = true;
        thread->StopThread();
        for (const ZAV_EvHandlerRef& handler : mHandlers) {
            auto stop = std::make_unique<ZAV_EventStop>();
            if (handler->QueueEvent(stop.get(), 9) == 0) stop.release();
        }
        // A handler may have been brought back after its stop event, or twice: it goes by hand.
        while (thread->Running()) {
            for (const ZAV_EvHandlerRef& handler : mHandlers) mDispatcher->RemoveEvHandler(handler);
            std::this_thread::yield();
        }
        thread->WaitForThread();
        thread.reset();
        for (std::thread& producer : producers) producer.join();
        mDispatcher.reset();
    }

    Account mAccount;
    LastHandled mLast = {};
    std::vector<ZAV_EvHandlerRef> mHandlers;
    std::unique_ptr<ZAV_EvDispatcher> mDispatcher = std::make_unique<ZAV_EvDispatcher>();
    std::atomic<bool> mHalfway{false}, mStopped{false};
};

TEST(DispatcherStress, AccountsForEveryEvent) {
    const int events = ZAV_Event::instance_counter;
    {
        Stress stress;
        stress.Run();
        EXPECT_EQ(stress.mAccount.Total(), kProducers * kEventsEach);
        EXPECT_GT(stress.mAccount.handled, 0);
        for (const ZAV_EvHandlerRef& handler : stress.mHandlers)
            EXPECT_EQ(static_cast<Unsteady*>(handler.GetBody())->mOutOfOrder, 0);
    }
    EXPECT_EQ(ZAV_Event::instance_counter, events);
}

// Producers and the destructor of their dispatcher, with nothing in between.
TEST(DispatcherStress, ADispatcherMayGoWhileOthersPost) {
    const int events = ZAV_Event::instance_counter;
    Account account;
    int made = 0;
    for (int round = 0; round < 60; ++round) {
        auto dispatcher = std::make_unique<ZAV_EvDispatcher>();
        const ZAV_EvHandlerRef handler(new ZAV_EvHandlerBody);
        dispatcher->AddEvHandler(handler);
        std::atomic<int> posted{0};
        std::thread producer([&] {
            for (bool taken = true; taken; ++posted)
                taken = Counted::Post(handler, account, 0, posted, round % 3);
        });
        while (posted < round % 7) std::this_thread::yield();
        dispatcher.reset();
        producer.join();
        made += posted;
    }
    EXPECT_EQ(account.cleanedUp + account.refused, made);
    EXPECT_EQ(ZAV_Event::instance_counter, events);
}

} // namespace
