#include <cstdlib>

#include <zavbase/events/ev_port_internal.h>

#include "scripted.h"

namespace {

std::function<void()> inNextAllocation;

} // namespace

[[gnu::noinline]] void* operator new(std::size_t size) {
    if (inNextAllocation) std::exchange(inNextAllocation, nullptr)();
    if (void* block = std::malloc(size)) return block;
    throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size);
}
[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace {

// A port is kept for the next dispatcher, but not while somebody may be about to post there.
TEST(EvPort, IsOpenedAnewWhenNobodyPosts) {
    ZAV_EvPort* const port = ZAV_EvPort::Open(nullptr);
    struct Place { // of a handler that changes its dispatcher between two looks
        ZAV_EvPort* load() const { return ports[looks++ != 0]; }
        ZAV_EvPort* ports[2];
        mutable int looks = 0;
    };
    ASSERT_EQ(ZAV_EvPort::Enter(Place{{port, port}}), port);
    EXPECT_EQ(port->Close(), nullptr);
    port->Release();
    ZAV_EvPort* const other = ZAV_EvPort::Open(nullptr);
    EXPECT_NE(other, port);
    EXPECT_EQ(ZAV_EvPort::Enter(Place{{other, nullptr}}), nullptr);
    EXPECT_EQ(other->Length(), 0u);
    ZAV_EventStart event;
    EXPECT_FALSE(port->Post(&event)); // was entered; is left, and quiet
    EXPECT_EQ(ZAV_EvPort::Open(nullptr), port);
    for (ZAV_EvPort* last : {port, other}) {
        last->Close();
        last->Release();
    }
}

class EvIntake : public EventsTest {
protected:
    struct Numbered : ZAV_EventStart {
        Numbered(int number, int& lost) : mNumber(number), mLost(lost) {}
        void EmergencyCleanup() override { ++mLost; }
        const int mNumber;
        int& mLost;
    };
    EvIntake() {
        mDispatcher.AddEvHandler(mHandler);
        mSeen.reserve(16);
    }
    void Post(int number, long priority) { mHandler->QueueEvent(new Numbered(number, mLost), priority); }
    void PostFromOutside(std::initializer_list<std::pair<int, long>> events) {
        std::thread([&] {
            for (const auto& [number, priority] : events) Post(number, priority);
        }).join();
    }

    std::vector<int> mSeen;
    std::map<int, std::function<void()>> mThen; // after the event of that number
    int mLost = 0;
    const ZAV_EvHandlerRef mHandler{new Scripted([this](ZAV_Event* event) {
        mSeen.push_back(static_cast<Numbered*>(event)->mNumber);
        if (const auto then = mThen.find(mSeen.back()); then != mThen.end()) then->second();
        return 0;
    })};
    ZAV_EvDispatcher mDispatcher;
};

// 6 is posted while what came during 3 is sorted in, when the mark that 3 raised is still up.
TEST_F(EvIntake, AnUrgentEventThatComesWhileOthersAreSortedInIsNext) {
    Post(1, 0);
    Post(2, 0);
    mThen[1] = [this] { PostFromOutside({{3, 9}, {4, 8}}); };
    mThen[3] = [this] {
        PostFromOutside({{5, 7}, {7, 6}});
        inNextAllocation = [this] { Post(6, 9); };
    };
    mDispatcher.Dispatch(DISPATCH_ONCE);
    EXPECT_EQ(mSeen, (std::vector<int>{1, 3, 6, 4, 5, 7, 2}));
}

TEST_F(EvIntake, KeepsEventsWhileThereIsNoMemory) {
    const auto fail = [] { throw std::bad_alloc(); };
    for (const int number : {1, 2, 3}) Post(number, -number);
    inNextAllocation = fail;
    EXPECT_THROW(mDispatcher.Dispatch(DISPATCH_ONCE), std::bad_alloc);
    mThen[3] = [&] {
        std::unique_ptr<Numbered> events[4];
        for (auto& event : events) event = std::make_unique<Numbered>(4, mLost);
        inNextAllocation = fail;
        for (long i = 0; i < 4; ++i) mHandler->QueueEvent(events[i].release(), i);
    };
    mDispatcher.Dispatch(DISPATCH_ONCE);
    EXPECT_EQ(mSeen, (std::vector<int>{1, 2, 3}));
    EXPECT_FALSE(inNextAllocation);
    for (int number = 8; number < 10; ++number) Post(number, number);
    inNextAllocation = fail;
    mDispatcher.Cleanup();
    EXPECT_EQ(mLost, 6);
    EXPECT_FALSE(inNextAllocation);
    EXPECT_EQ(mDispatcher.QueueLength(), 0u);
}

} // namespace
