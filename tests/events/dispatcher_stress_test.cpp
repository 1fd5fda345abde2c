#include <atomic>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "scripted.h"
#include "tests/support/on_threads.h"

namespace {

const int kProducers = 8;
const int kEventsEach = 100000;
const int kLowest = -5, kHighest = 5;

class Counted : public ZAV_Event {
public:
    Counted(std::atomic<int>& cleanedUp, int producer, int number, int priority)
        : ZAV_Event(0x436E7464), mCleanedUp(cleanedUp), mProducer(producer), mNumber(number),
          mRank(priority - kLowest) {}
    void EmergencyCleanup() override { ++mCleanedUp; }

    std::atomic<int>& mCleanedUp;
    const int mProducer, mNumber, mRank;
};

// Gives whether it was taken; what is refused goes at once.
bool Post(const ZAV_EvHandlerRef& handler, std::unique_ptr<ZAV_Event> event, long priority) {
    const bool taken = handler->QueueEvent(event.get(), priority) == 0;
    if (taken) event.release();
    return taken;
}

class DispatcherStress : public EventsTest {
protected:
    void PostCounted(const ZAV_EvHandlerRef& handler, int producer, int number, int priority) {
        auto event = std::make_unique<Counted>(mCleanedUp, producer, number, priority);
        if (!Post(handler, std::move(event), priority)) ++mRefused;
    }

    std::atomic<int> mHandled{0}, mCleanedUp{0}, mRefused{0};
};

// Handlers that leave at random; the producers post at random and bring back those that have gone.
TEST_F(DispatcherStress, AccountsForEveryEvent) {
    int last[kProducers][kHighest - kLowest + 1] = {}; // the number last handled; the dispatching thread's
    int outOfOrder = 0;
    std::minstd_rand leaving(1);
    const Scripted::Then then = [&](ZAV_Event* event) {
        if (event->IsKindOf(&ZAV_EventStop::classZAV_EventStop)) return 2;
        const Counted& counted = *static_cast<Counted*>(event);
        int& before = last[counted.mProducer][counted.mRank];
        outOfOrder += counted.mNumber <= before;
        before = counted.mNumber;
        ++mHandled;
        return leaving() % 5000 == 0 ? 2 : 0;
    };
    const ZAV_EvHandlerRef handlers[] = {new Scripted(then), new Scripted(then), new Scripted(then),
                                         new Scripted(then)};
    ZAV_EvDispatcher dispatcher;
    for (const ZAV_EvHandlerRef& handler : handlers) dispatcher.AddEvHandler(handler);
    auto thread = std::make_unique<ZAV_EvDispatcherThread>(dispatcher);
    thread->BeginThread(ZAV_THREAD_CLEANUP_NONE, 0);
    std::atomic<int> posted{0};
    std::atomic<bool> stopped{false};
    OnThreads(kProducers + 1, [&](int producer) {
        std::minstd_rand random(static_cast<unsigned>(producer + 100));
        for (int i = 1; producer < kProducers && i <= kEventsEach; ++i) {
            const ZAV_EvHandlerRef& handler = handlers[random() % 4];
            PostCounted(handler, producer, i,
                        kLowest + static_cast<int>(random() % (kHighest - kLowest + 1)));
            if (i % 64 == 0 && !stopped && !handler->IsActive()) dispatcher.AddEvHandler(handler);
            ++posted;
        }
        if (producer < kProducers) return;
        // Stops in the middle; the producers go on.
        while (posted < kProducers * kEventsEach / 2 || mHandled < 1000) std::this_thread::yield();
        stopped = true;
        thread->StopThread();
        for (const ZAV_EvHandlerRef& handler : handlers) Post(handler, std::make_unique<ZAV_EventStop>(), 9);
        // A handler may have been brought back after its stop event, or twice: it goes by hand.
        while (thread->Running()) {
            for (const ZAV_EvHandlerRef& handler : handlers) dispatcher.RemoveEvHandler(handler);
            std::this_thread::yield();
        }
        thread.reset();
    });
    dispatcher.Cleanup();
    EXPECT_EQ(mHandled + mCleanedUp + mRefused, kProducers * kEventsEach);
    EXPECT_EQ(outOfOrder, 0);
}

// Producers and the destructor of their dispatcher, with nothing in between.
TEST_F(DispatcherStress, ADispatcherMayGoWhileOthersPost) {
    int made = 0;
    for (int round = 0; round < 60; ++round) {
        auto dispatcher = std::make_unique<ZAV_EvDispatcher>();
        const ZAV_EvHandlerRef handler(new ZAV_EvHandlerBody);
        dispatcher->AddEvHandler(handler);
        std::atomic<int> posted{0};
        std::thread producer([&] {
            for (; mRefused == round; ++posted) PostCounted(handler, 0, posted, round % 3);
        });
        while (posted < round % 7) std::this_thread::yield();
        dispatcher.reset();
        producer.join();
        made += posted;
    }
    EXPECT_EQ(mCleanedUp + mRefused, made);
}

} // namespace
