#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zavbase/events/ev_dispatcher.h>
#include <zavbase/events/event.h>
#include <zavbase/events/listener.h>
#include <zavbase/foundation/exception.h>
#include <zavbase/foundation/new_handler.h>

#include "tests/support/trace_capture.h"

namespace {

typedef std::vector<int> Numbers;
typedef std::vector<std::string> Lines;

int cleanups; // EmergencyCleanup calls of this test's events

class Numbered : public ZAV_Event {
public:
    explicit Numbered(int number) : ZAV_Event(0x4E756D62), mNumber(number) {}
    void EmergencyCleanup() override { ++cleanups; }
    const int mNumber;
};

// Notes the events that reach it and does what the test wants.
class Script : public ZAV_EvHandlerBody {
    ZAV_DECLARE_CLASS(Script)
public:
    Numbers mSeen;
    std::function<int(Numbered*)> mThen = [](Numbered*) { return 0; };

    void Post(int number, long priority = 0) { ASSERT_EQ(QueueEvent(new Numbered(number), priority), 0); }

protected:
    int HandleEvent(ZAV_Event* event) override {
        Numbered* numbered = static_cast<Numbered*>(event);
        mSeen.push_back(numbered->mNumber);
        return mThen(numbered);
    }
};
ZAV_DEFINE_CLASS(Script, ZAV_EvHandlerBody)

class ScriptListener : public ZAV_Listener {
public:
    explicit ScriptListener(std::function<void()> then = [] {}) : mThen(then) {}
    void Listen(ZAV_ListenerControl control) override {
        EXPECT_EQ(control, LISTEN_POLL);
        ++mPolls;
        mThen();
    }
    int mPolls = 0;
    std::function<void()> mThen;
};

// All events and handlers made by a test are gone at its end.
class Dispatcher : public testing::Test {
protected:
    void SetUp() override {
        cleanups = 0;
        mDispatcher = std::make_unique<ZAV_EvDispatcher>();
        mScript = new Script;
        mRef = std::make_unique<ZAV_EvHandlerRef>(mScript);
        mDispatcher->AddEvHandler(*mRef);
    }
    void TearDown() override {
        mDispatcher.reset();
        mRef.reset();
        EXPECT_EQ(ZAV_Event::instance_counter, mEvents);
        EXPECT_EQ(ZAV_EvHandlerBody::instance_counter, mHandlers);
        EXPECT_EQ(ZAV_EvDispatcher::instance_counter, 0);
    }
    const Numbers& Once() {
        mScript->mSeen.clear();
        mDispatcher->Dispatch(DISPATCH_ONCE);
        return mScript->mSeen;
    }

    void Add(std::initializer_list<ZAV_Listener*> listeners) {
        for (ZAV_Listener* listener : listeners) mDispatcher->AddListener(listener);
    }

    const int mEvents = ZAV_Event::instance_counter;
    const int mHandlers = ZAV_EvHandlerBody::instance_counter;
    std::unique_ptr<ZAV_EvDispatcher> mDispatcher;
    Script* mScript;
    std::unique_ptr<ZAV_EvHandlerRef> mRef;
};

TEST_F(Dispatcher, HandlesHigherPrioritiesFirstAndEqualOnesInOrder) {
    int number = 0;
    for (const long priority : {0, 5, 0, 5, -7, 5}) mScript->Post(++number, priority);
    EXPECT_EQ(mDispatcher->QueueLength(), 6u);
    EXPECT_EQ(Once(), (Numbers{2, 4, 6, 1, 3, 5}));
    EXPECT_EQ(mDispatcher->QueueLength(), 0u);
    EXPECT_EQ(mDispatcher->QueueHighWater(), 6u);
}

TEST_F(Dispatcher, ABatchCountsOnlyTheEventsWithoutPriority) {
    mScript->mThen = [this](Numbered* event) {
        if (event->mNumber < 10) mScript->Post(event->mNumber + 10, event->mNumber);
        return 0;
    };
    for (const int number : {0, 1, 2}) mScript->Post(number);
    // 10 comes too late; 11 goes before 2 and does not count; 12 comes when the three have been counted.
    EXPECT_EQ(Once(), (Numbers{0, 1, 11, 2}));
    EXPECT_EQ(Once(), (Numbers{12, 10}));
}

TEST_F(Dispatcher, AnInactiveHandlerGetsNothing) {
    class Opened : public ZAV_EvDispatcher {
    public:
        using ZAV_EvDispatcher::QueueEvent;
    } opened;
    Script* never = new Script;
    const ZAV_EvHandlerRef ref(never);
    auto event = std::make_unique<Numbered>(1);
    EXPECT_EQ(never->QueueEvent(event.get(), 0), -1); // it stays the caller's
    opened.QueueEvent(never, event.release(), 0);
    EXPECT_EQ(cleanups, 1);

    mScript->Post(2);
    EXPECT_EQ(mScript->QueueEvent(nullptr, 0), 0);
    mDispatcher->RemoveEvHandler(*mRef);
    mDispatcher->RemoveEvHandler(ref); // was never in
    EXPECT_EQ(Once(), Numbers{});
    EXPECT_EQ(cleanups, 2);
}

TEST_F(Dispatcher, DoesWhatTheResultBitsSay) {
    Numbered* kept = nullptr;
    mScript->mThen = [&](Numbered* event) {
        kept = event;
        return 3;
    };
    mScript->Post(1);
    mScript->Post(2);
    EXPECT_EQ(Once(), Numbers{1});
    EXPECT_FALSE(mScript->IsActive());
    EXPECT_EQ(cleanups, 1); // 2
    EXPECT_EQ(kept->mNumber, 1);

    mDispatcher->AddEvHandler(*mRef);
    int turns = 0;
    mScript->mThen = [&](Numbered* event) {
        if (++turns == 3) return 0;
        mScript->QueueEvent(event, -1);
        return turns == 1 ? 1 : 0; // 0 is wrong, but it is in this dispatcher's queue and stays there
    };
    mScript->QueueEvent(kept, 0);
    EXPECT_EQ(Once(), (Numbers{1}));
    mDispatcher->Dispatch(DISPATCH_ONCE);
    EXPECT_EQ(Once(), (Numbers{1}));
    EXPECT_EQ(ZAV_Event::instance_counter, mEvents);
}

TEST_F(Dispatcher, AbsorbsTheLibrarysExceptionsOnly) {
    TraceCapture trace(0x0001);
    mScript->mThen = [](Numbered* event) -> int {
        if (event->mNumber == 1) ZAV_ThrowFileException(3, 5);
        if (event->mNumber == 2) throw static_cast<ZAV_FileException*>(nullptr);
        if (event->mNumber == 3) throw 3;
        if (event->mNumber == 4) throw dummyalloc();
        return 0;
    };
    for (int number = 1; number <= 5; ++number) mScript->Post(number);
    EXPECT_THROW(Once(), int);
    EXPECT_THROW(Once(), dummyalloc);
    EXPECT_EQ(ZAV_Event::instance_counter, mEvents + 1);
    EXPECT_EQ(Once(), Numbers{5});
    EXPECT_TRUE(mScript->IsActive());
    EXPECT_EQ(trace.Lines(), (Lines{"DispatchEvent caught exception :File exception: OpenRdError",
                                    "DispatchEvent caught exception :"}));
}

TEST_F(Dispatcher, AHandlerMayDispatchTakeItselfOutAndGo) {
    mScript->mThen = [this](Numbered* event) {
        if (event->mNumber == 1) mDispatcher->Dispatch(DISPATCH_ONCE);
        if (event->mNumber == 3) {
            mDispatcher->RemoveEvHandler(*mRef);
            mRef.reset(); // the reference that the dispatcher took off the event is now the last
            EXPECT_EQ(ZAV_EvHandlerBody::instance_counter, mHandlers + 1);
        }
        return 0;
    };
    for (const int number : {1, 2, 3}) mScript->Post(number);
    mDispatcher->Dispatch(DISPATCH_ONCE);
    EXPECT_EQ(ZAV_EvHandlerBody::instance_counter, mHandlers);
}

TEST_F(Dispatcher, AHandlerMovesBetweenDispatchersAndOutlivesThem) {
    {
        ZAV_EvDispatcher other;
        for (int round = 0; round < 3; ++round) {
            other.AddEvHandler(*mRef);
            mScript->Post(1);
            mDispatcher->AddEvHandler(*mRef);
            mScript->Post(2);
        }
        EXPECT_EQ(other.QueueLength(), 3u);
        EXPECT_EQ(Once(), (Numbers{2, 2, 2}));
        other.AddEvHandler(*mRef);
    }
    EXPECT_EQ(cleanups, 3);
    EXPECT_FALSE(mScript->IsActive());
    mDispatcher->AddEvHandler(*mRef);
    mScript->Post(3);
    mDispatcher.reset();
    EXPECT_EQ(cleanups, 4);
    EXPECT_FALSE(mScript->IsActive());
    EXPECT_EQ(mScript->QueueEvent(std::make_unique<Numbered>(4).get(), 0), -1);
    mDispatcher = std::make_unique<ZAV_EvDispatcher>();
}

TEST_F(Dispatcher, StopWaitsForTheHandlersOfARunningDispatch) {
    TraceCapture trace(0x0100);
    ScriptListener never;
    mScript->mThen = [&](Numbered* event) {
        if (event->mNumber == 2) return 2;
        mDispatcher->Stop();
        mDispatcher->Stop();
        mDispatcher->AddListener(&never);
        mDispatcher->AddEvHandler(ZAV_EvHandlerRef(new Script));
        mScript->Post(2, -1);
        mScript->Post(3, -2); // is queued, and cleaned up: the handler is gone by then
        return 0;
    };
    mScript->Post(1);
    mDispatcher->Dispatch(DISPATCH_UNTIL_STOPPED);
    EXPECT_EQ(mScript->mSeen, (Numbers{1, 2}));
    EXPECT_EQ(cleanups, 1);
    EXPECT_EQ(never.mPolls, 0);
    EXPECT_EQ(trace.Lines(),
              (Lines{"EventHandlers not yet terminated :", "  --Script", "EventDispatcher terminating :"}));
}

TEST_F(Dispatcher, StopBeforeDispatchGoesStraightToTheEnd) {
    TraceCapture trace(0x0300);
    ScriptListener listener;
    mDispatcher->AddListener(&listener);
    mScript->Post(1);
    mDispatcher->Stop();
    mDispatcher->Dispatch(DISPATCH_UNTIL_STOPPED);
    EXPECT_EQ(cleanups, 1);
    EXPECT_EQ(listener.mPolls, 0);
    EXPECT_EQ(trace.Text(), "");
    mScript->Post(2); // a stopped dispatcher still takes events
    EXPECT_EQ(Once(), Numbers{});
    EXPECT_EQ(cleanups, 2);
}

TEST_F(Dispatcher, RunsUntilNoHandlerIsLeft) {
    ScriptListener listener([this] {
        if (mScript->mSeen.size() < 3) mScript->Post(1);
    });
    mDispatcher->AddListener(&listener);
    mScript->mThen = [this](Numbered*) { return mScript->mSeen.size() == 3 ? 2 : 0; };
    mDispatcher->Dispatch(DISPATCH_UNTIL_NO_HANDLERS);
    EXPECT_EQ(mScript->mSeen, (Numbers{1, 1, 1}));
    mDispatcher->AddEvHandler(*mRef);
    EXPECT_FALSE(mScript->IsActive());
}

TEST_F(Dispatcher, PollsListenersBeforeEveryEvent) {
    TraceCapture trace(0x0001);
    ScriptListener first, thrower([] { ZAV_ThrowExitException(); }), last;
    Add({&first, &thrower, &last, &first});
    Once();
    EXPECT_EQ(Numbers({first.mPolls, thrower.mPolls, last.mPolls}), (Numbers{1, 1, 0}));
    mScript->Post(1);
    mScript->Post(2);
    Once();
    EXPECT_EQ(Numbers({first.mPolls, thrower.mPolls, last.mPolls}), (Numbers{3, 1, 2}));
    EXPECT_EQ(trace.Lines(),
              Lines{"Removing a listener : Dispatch caught exception in Listen():Exit exception: "});
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
        if (second.mPolls != 1) return;
        mDispatcher->Dispatch(
            DISPATCH_ONCE); // a walk inside the walk, which takes out what both come to next
        mDispatcher->RemoveListener(&last);
    };
    Add({&first, destroyed.get(), &second});
    Once();
    EXPECT_EQ(Numbers({first.mPolls, second.mPolls, last.mPolls}), (Numbers{1, 2, 1}));

    ZAV_EvDispatcher other;
    other.AddListener(&first);
    mDispatcher->AddListener(&first); // is in one at a time
    Once();
    EXPECT_EQ(first.mPolls, 1);
}

TEST_F(Dispatcher, TellsTheEventTracer) {
    static Lines told;
    told.clear();
    ZAV_EvDispatcher::SetEventTracer([](const char* text, ZAV_Event* event, ZAV_EvHandlerBody* handler) {
        EXPECT_EQ(static_cast<Numbered*>(event)->mNumber, 1);
        told = {text, handler->ClassName()};
    });
    mScript->Post(1);
    Once();
    ZAV_EvDispatcher::SetEventTracer(nullptr);
    mScript->Post(2);
    Once();
    EXPECT_EQ(told, (Lines{"DispatchEvent", "Script"}));
}

} // namespace
