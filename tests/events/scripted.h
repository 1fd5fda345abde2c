#ifndef ZAVBASE_TESTS_EVENTS_SCRIPTED_H
#define ZAVBASE_TESTS_EVENTS_SCRIPTED_H

#include <gtest/gtest.h>

#include <zavbase/zavbase.h>

/// Wants everything gone at the end of the test that was made since its beginning.
class EventsTest : public testing::Test {
protected:
    ~EventsTest() override {
        EXPECT_EQ(NewEvents(), 0);
        EXPECT_EQ(NewHandlers(), 0);
        EXPECT_EQ(ZAV_EvDispatcher::instance_counter, 0);
    }
    int NewEvents() const { return ZAV_Event::instance_counter - mEvents; }
    int NewHandlers() const { return ZAV_EvHandlerBody::instance_counter - mHandlers; }

private:
    const int mEvents = ZAV_Event::instance_counter, mHandlers = ZAV_EvHandlerBody::instance_counter;
};

/// A handler that does with an event what the test wants.
class Scripted : public ZAV_EvHandlerBody {
public:
    typedef std::function<int(ZAV_Event*)> Then;
    explicit Scripted(Then then = [](ZAV_Event*) { return 0; }) : mThen(std::move(then)) {}
    Then mThen;

protected:
    int HandleEvent(ZAV_Event* event) override { return mThen(event); }
};

/// A listener that does what the test wants.
class ScriptListener : public ZAV_Listener {
public:
    explicit ScriptListener(std::function<void()> then = [] {}) : mThen(std::move(then)) {}
    void Listen(ZAV_ListenerControl) override {
        ++mCalls;
        mThen();
    }
    int mCalls = 0;
    std::function<void()> mThen;
};

#endif
