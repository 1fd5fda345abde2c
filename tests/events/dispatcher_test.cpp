#include <climits>
#include <random>

#include "scripted.h"
#include "tests/support/printed.h"
#include "tests/support/trace_capture.h"

namespace {

typedef std::vector<int> Numbers;
typedef std::vector<std::string> Lines;

class Numbered : public ZAV_Event {
public:
    Numbered(int number, int& cleanups) : ZAV_Event(0x4E756D62), mNumber(number), mCleanups(cleanups) {}
    void EmergencyCleanup() override { ++mCleanups; }
    const int mNumber;
    int& mCleanups;
};

// A dispatcher with one handler, which notes the events that reach it and does what the test wants.
class Dispatcher : public EventsTest {
protected:
    Dispatcher() { mDispatcher->AddEvHandler(*mRef); }

    Numbered* New(int number) { return new Numbered(number, mCleanups); }
    void Post(int number, long priority = 0) { ASSERT_EQ(mHandler->QueueEvent(New(number), priority), 0); }
    const Numbers& Once() {
        mSeen.clear();
        mDispatcher->Dispatch(DISPATCH_ONCE);
        return mSeen;
    }

    Numbers mSeen;
    int mCleanups = 0;
    std::function<int(Numbered*)> mThen = [](Numbered*) { return 0; };
    std::unique_ptr<ZAV_EvDispatcher> mDispatcher = std::make_unique<ZAV_EvDispatcher>();
    ZAV_EvHandlerBody* mHandler = new Scripted([this](ZAV_Event* event) {
        mSeen.push_back(static_cast<Numbered*>(event)->mNumber);
        return mThen(static_cast<Numbered*>(event));
    });
    std::unique_ptr<ZAV_EvHandlerRef> mRef = std::make_unique<ZAV_EvHandlerRef>(mHandler);
};

// Events are posted before the dispatch and by the handler; a multimap keeps equal ones in order. A batch
// ends when as many events without priority were handled as there were events at its start.
TEST_F(Dispatcher, HandlesWhatOneSortedListWouldGive) {
    std::mt19937 random(1);
    std::multimap<long, int, std::greater<long>> plain;
    size_t most = 0, rest = 0;
    const long ranges[][2] = {{0, 0}, {-5, 5}, {INT_MIN, INT_MAX}, {-1, 1}};
    for (const auto& [lowest, highest] : ranges) {
        std::uniform_int_distribution<long> priority(lowest, highest);
        int number = 0;
        const auto post = [&] {
            const auto added = plain.emplace(priority(random), ++number);
            Post(number, added->first);
            most = std::max(most, plain.size());
        };
        mThen = [&](Numbered* event) {
            EXPECT_EQ(event->mNumber, plain.begin()->second);
            EXPECT_NE(rest, 0u);
            rest = std::min(rest, plain.size()) - (plain.begin()->first < 1);
            plain.erase(plain.begin());
            EXPECT_EQ(mDispatcher->QueueLength(), plain.size());
            while (number < 3000 && random() % 100 < 52) post();
            return 0;
        };
        while (number < 3000 || mDispatcher->QueueLength() != 0) {
            if (number < 3000) post();
            if (random() % 4 != 0) continue;
            rest = plain.size();
            Once();
            EXPECT_TRUE(rest == 0 || plain.empty());
        }
        EXPECT_TRUE(plain.empty()) << lowest << " to " << highest;
    }
    EXPECT_EQ(mDispatcher->QueueHighWater(), most);
}

TEST_F(Dispatcher, AnInactiveHandlerGetsNothing) {
    struct Opened : ZAV_EvDispatcher {
        using ZAV_EvDispatcher::QueueEvent;
    } opened;
    const ZAV_EvHandlerRef never(new Scripted);
    std::unique_ptr<Numbered> event(New(1));
    EXPECT_EQ(never->QueueEvent(event.get(), 0), -1); // it stays the caller's
    opened.QueueEvent(never.GetBody(), event.release(), 0);
    EXPECT_EQ(mCleanups, 1);

    Post(2);
    Post(3);
    EXPECT_EQ(mHandler->QueueEvent(nullptr, 0), 0);
    EXPECT_EQ(Printed(*mHandler), "mRefCount=4"); // the test's reference, the list's, two events
    mDispatcher->RemoveEvHandler(*mRef);
    mDispatcher->RemoveEvHandler(never);
    EXPECT_EQ(Printed(*mHandler), "mRefCount=3");
    EXPECT_EQ(mDispatcher->QueueLength(), 2u);
    mRef.reset(); // the queued events alone hold the handler
    EXPECT_EQ(NewHandlers(), 2);
    EXPECT_EQ(Once(), Numbers{});
    EXPECT_EQ(mCleanups, 3);
    EXPECT_EQ(mDispatcher->QueueLength(), 0u);
    EXPECT_EQ(NewHandlers(), 1);
}

TEST_F(Dispatcher, DoesWhatTheResultBitsSay) {
    Numbered* kept = nullptr;
    mThen = [&](Numbered* event) {
        kept = event;
        return 3;
    };
    Post(1);
    Post(2);
    EXPECT_EQ(Once(), Numbers{1});
    EXPECT_FALSE(mHandler->IsActive());
    EXPECT_EQ(mCleanups, 1); // 2

    mDispatcher->AddEvHandler(*mRef);
    int turns = 0;
    mThen = [&](Numbered* event) {
        if (++turns == 3) return 0;
        mHandler->QueueEvent(event, -1);
        return turns == 1 ? 1 : 0; // 0 is wrong, but it is in this dispatcher's queue and stays there
    };
    mHandler->QueueEvent(kept, 0);
    for (int turn = 0; turn < 3; ++turn) EXPECT_EQ(Once(), Numbers{1});
    EXPECT_EQ(NewEvents(), 0);
}

TEST_F(Dispatcher, AbsorbsTheLibrarysExceptionsOnly) {
    TraceCapture trace(0x0001);
    mThen = [](Numbered* event) -> int {
        if (event->mNumber == 1) ZAV_ThrowFileException(3, 5);
        if (event->mNumber == 2) throw static_cast<ZAV_FileException*>(nullptr);
        if (event->mNumber == 3) throw 3;
        if (event->mNumber == 4) throw dummyalloc();
        return 0;
    };
    for (const int number : {1, 2, 3, 4, 5}) Post(number);
    EXPECT_THROW(Once(), int);
    EXPECT_THROW(Once(), dummyalloc);
    EXPECT_EQ(NewEvents(), 1);
    EXPECT_EQ(Once(), Numbers{5});
    EXPECT_EQ(trace.Lines(), (Lines{"DispatchEvent caught exception :File exception: OpenRdError",
                                    "DispatchEvent caught exception :"}));
}

// Only the dispatcher holds the handler.
TEST_F(Dispatcher, AnEventThatCannotBePrintedIsCleanedUp) {
    struct Unprintable : Numbered {
        using Numbered::Numbered;
        void PrintOn(std::ostream&) override { throw 1; }
    };
    TraceCapture trace(0x0200);
    mRef.reset();
    mHandler->QueueEvent(new Unprintable(1, mCleanups), 0);
    Post(2);
    EXPECT_THROW(Once(), int);
    EXPECT_EQ(mCleanups, 1);
    EXPECT_EQ(Once(), Numbers{2});
}

TEST_F(Dispatcher, AHandlerMayDispatchTakeItselfOutAndGo) {
    mThen = [this](Numbered* event) {
        if (event->mNumber == 1) mDispatcher->Dispatch(DISPATCH_ONCE);
        if (event->mNumber == 3) {
            mDispatcher->RemoveEvHandler(*mRef);
            mRef.reset(); // the reference that the dispatcher took off the event is now the last
            EXPECT_EQ(NewHandlers(), 1);
        }
        return 0;
    };
    for (const int number : {1, 2, 3}) Post(number);
    mDispatcher->Dispatch(DISPATCH_UNTIL_NO_HANDLERS);
    EXPECT_EQ(mSeen, (Numbers{1, 2, 3}));
    EXPECT_EQ(NewHandlers(), 0);
}

TEST_F(Dispatcher, AHandlerMovesBetweenDispatchersAndOutlivesThem) {
    auto other = std::make_unique<ZAV_EvDispatcher>();
    for (int round = 0; round < 3; ++round) {
        other->AddEvHandler(*mRef);
        Post(1);
        mDispatcher->AddEvHandler(*mRef);
        Post(2);
    }
    EXPECT_EQ(other->QueueLength(), 3u);
    // The test's reference, three and four in the dispatchers' lists, and those of the queued events.
    EXPECT_EQ(Printed(*mHandler), "mRefCount=14");
    EXPECT_EQ(Once(), (Numbers{2, 2, 2}));
    EXPECT_EQ(Printed(*mHandler), "mRefCount=11");
    mDispatcher->RemoveEvHandler(*mRef); // is still in other lists
    mDispatcher->AddEvHandler(*mRef);
    Post(2);
    mDispatcher->RemoveEvHandler(*mRef);
    EXPECT_EQ(Printed(*mHandler), "mRefCount=11"); // a list's reference fewer, an event more
    for (auto* dispatcher : {&other, &mDispatcher}) {
        (*dispatcher)->AddEvHandler(*mRef);
        Post(3);
        dispatcher->reset();
        EXPECT_FALSE(mHandler->IsActive());
        EXPECT_EQ(mHandler->QueueEvent(std::unique_ptr<Numbered>(New(4)).get(), 0), -1);
    }
    EXPECT_EQ(mCleanups, 6);
}

TEST_F(Dispatcher, StopWaitsForTheHandlersOfARunningDispatch) {
    TraceCapture trace(0x0100);
    ScriptListener never;
    mThen = [&](Numbered* event) {
        if (event->mNumber == 2) return 2;
        mDispatcher->Stop();
        mDispatcher->Stop();
        mDispatcher->AddListener(&never);
        mDispatcher->AddEvHandler(ZAV_EvHandlerRef(new Scripted));
        Post(2, -1);
        Post(3, -2); // is queued, and cleaned up: the handler is gone by then
        return 0;
    };
    Post(1);
    mDispatcher->Dispatch(DISPATCH_UNTIL_STOPPED);
    EXPECT_EQ(mSeen, (Numbers{1, 2}));
    EXPECT_EQ(mCleanups, 1);
    EXPECT_EQ(never.mCalls, 0);
    EXPECT_EQ(trace.Lines(), (Lines{"EventHandlers not yet terminated :", "  --ZAV_EvHandlerBody",
                                    "EventDispatcher terminating :"}));
}

TEST_F(Dispatcher, StopBeforeDispatchGoesStraightToTheEnd) {
    ScriptListener listener;
    mDispatcher->AddListener(&listener);
    Post(1);
    mDispatcher->Stop();
    mDispatcher->Dispatch(DISPATCH_UNTIL_STOPPED);
    EXPECT_EQ(mCleanups, 1);
    EXPECT_EQ(listener.mCalls, 0);
    Post(2); // a stopped dispatcher still takes events
    mRef.reset();
    EXPECT_EQ(NewHandlers(), 1);
    EXPECT_EQ(Once(), Numbers{});
    EXPECT_EQ(mCleanups, 2);
}

TEST_F(Dispatcher, PollsListenersAndTellsTheTracerBeforeEveryEvent) {
    static Numbers told;
    told.clear();
    ScriptListener first, thrower([] { ZAV_ThrowExitException(); }),
        last([&] { told.push_back(last.mCalls); });
    TraceCapture trace(0x0001);
    for (ZAV_Listener* listener : {&first, &thrower, &last, &first}) mDispatcher->AddListener(listener);
    Once();
    EXPECT_EQ(trace.Lines(),
              Lines{"Removing a listener : Dispatch caught exception in Listen():Exit exception: "});
    ZAV_EvDispatcher::SetEventTracer([](const char* text, ZAV_Event* event, ZAV_EvHandlerBody* handler) {
        EXPECT_STREQ(text, "DispatchEvent");
        EXPECT_TRUE(handler->IsActive());
        told.push_back(static_cast<Numbered*>(event)->mNumber);
    });
    Post(10);
    Post(20);
    Once();
    ZAV_EvDispatcher::SetEventTracer(nullptr);
    Post(30);
    Once();
    EXPECT_EQ(told, (Numbers{1, 10, 2, 20, 3}));
    EXPECT_EQ(first.mCalls, 4);
    EXPECT_EQ(thrower.mCalls, 1);
}

TEST_F(Dispatcher, ListenersMayLeaveAndBeDestroyedDuringAPoll) {
    auto destroyed = std::make_unique<ScriptListener>();
    ScriptListener last, second, first;
    first.mThen = [&] {
        mDispatcher->RemoveListener(&first);
        mDispatcher->RemoveListener(&first); // not in any more
        mDispatcher->RemoveListener(nullptr);
        destroyed.reset(); // comes next
        mDispatcher->AddListener(&last);
    };
    second.mThen = [&] {
        // A walk inside the walk, which takes out what both come to next.
        if (second.mCalls == 1) mDispatcher->Dispatch(DISPATCH_ONCE);
        if (second.mCalls == 2) mDispatcher->RemoveListener(&last);
    };
    for (ZAV_Listener* listener : {&first, destroyed.get(), &second}) mDispatcher->AddListener(listener);
    Once();
    EXPECT_EQ(Numbers({first.mCalls, second.mCalls, last.mCalls}), (Numbers{1, 2, 0}));

    ZAV_EvDispatcher other;
    other.AddListener(&first);
    mDispatcher->AddListener(&first); // is in one at a time
    Once();
    EXPECT_EQ(first.mCalls, 1);
    other.Dispatch(DISPATCH_ONCE);
    EXPECT_EQ(first.mCalls, 2);
}

} // namespace
