#include <algorithm>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <zavbase/events/ticks_internal.h>
#include <zavbase/events/timer_queue_internal.h>

namespace {

typedef std::uint32_t Ticks;

// The queue only hands the pointers out again, so they may be numbers.
ZAV_EventTimer* TimerNumber(int id) {
    return reinterpret_cast<ZAV_EventTimer*>(static_cast<std::uintptr_t>(id));
}
int NumberOf(ZAV_EventTimer* timer) { return static_cast<int>(reinterpret_cast<std::uintptr_t>(timer)); }

// The one list that the queue stands for, in 32-bit ticks.
class PlainTimers {
public:
    void Insert(int id, Ticks now, Ticks timeout) {
        const Ticks due = now + timeout;
        auto at = mTimers.begin();
        while (at != mTimers.end() && at->ElapsedAt(due)) ++at;
        mTimers.insert(at, {id, now, timeout});
    }
    bool Cancel(int id) {
        return std::erase_if(mTimers, [id](const Timer& t) { return t.id == id; }) != 0;
    }
    int TakeDue(Ticks now) {
        if (mTimers.empty() || !mTimers.front().ElapsedAt(now)) return 0;
        const int id = mTimers.front().id;
        mTimers.erase(mTimers.begin());
        return id;
    }
    std::size_t Count() const { return mTimers.size(); }

private:
    struct Timer {
        int id;
        Ticks start, timeout;
        bool ElapsedAt(Ticks now) const { return ZAV_TicksBetween(start, now) >= timeout; }
    };
    std::vector<Timer> mTimers;
};

void CompareRandomly(unsigned seed, Ticks begin, Ticks longest, Ticks longestStep) {
    SCOPED_TRACE(testing::Message() << "seed " << seed << ", from " << begin << ", up to " << longest);
    std::mt19937 random(seed);
    ZAV_TimerQueue queue;
    PlainTimers plain;
    Ticks now = begin;
    int lastId = 0;
    for (int step = 0; step < 20000; ++step) {
        const unsigned what = random() % 16;
        if (what < 8) {
            const Ticks timeout = static_cast<Ticks>(random()) % (longest + 1);
            ++lastId;
            queue.Insert(TimerNumber(lastId), lastId, now, timeout);
            plain.Insert(lastId, now, timeout);
        } else if (what < 12) {
            const int id = 1 + static_cast<int>(random() % static_cast<unsigned>(lastId + 1));
            ASSERT_EQ(queue.Cancel(id) != nullptr, plain.Cancel(id)) << "step " << step;
        } else if (what < 13) {
            now += static_cast<Ticks>(random()) % (longestStep + 1);
        }
        const int expected = plain.TakeDue(now);
        ASSERT_EQ(NumberOf(queue.TakeDue(now)), expected) << "step " << step << " at " << now;
        ASSERT_EQ(queue.Count(), plain.Count());
    }
}

TEST(TimerQueue, GivesWhatOneSortedListWouldGive) {
    CompareRandomly(1, 5, 50, 20);
    CompareRandomly(2, 0, 100000, 3000);
    CompareRandomly(3, 0xFFFFFFF0u, 12, 3); // equal due times on both sides of the wrap
    CompareRandomly(4, 0xFFFFF000u, 2000, 50);
    CompareRandomly(5, 0xFFF00000u, 3000000, 20000); // sweeps many cancelled ones
    CompareRandomly(6, 0xC0000000u, 0x3FFFFFFF, 0x100000);
}

// Where 32-bit arithmetic on signed times would fire at once, or wait for nothing over and over.
TEST(TimerQueue, WaitsForTimesBeyondTwoToThe31) {
    for (const Ticks timeout : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        ZAV_TimerQueue queue;
        const Ticks start = 1000;
        queue.Insert(TimerNumber(1), 1, start, timeout);
        const Ticks wrapped = start + timeout < start ? 1 : 0;
        EXPECT_EQ(queue.TicksToGo(start, 10000), 10000u);
        for (Ticks passed = 0; passed < timeout - 0x40000000; passed += 0x20000000)
            ASSERT_EQ(queue.TakeDue(start + passed), nullptr) << timeout << " at " << passed;
        EXPECT_EQ(queue.TicksToGo(start + timeout - 3, 10000), 3 + wrapped);
        EXPECT_EQ(queue.TakeDue(start + timeout - 1 + wrapped), nullptr);
        EXPECT_EQ(queue.TakeDue(start + timeout + wrapped), TimerNumber(1));
    }
}

TEST(TimerQueue, ToleratesAReadingThatWasOvertaken) {
    ZAV_TimerQueue queue;
    queue.Insert(TimerNumber(1), 1, 5000, 1000);
    EXPECT_EQ(queue.TakeDue(4990), nullptr);
    EXPECT_FALSE(queue.Insert(TimerNumber(2), 2, 4999, 1100));
    EXPECT_TRUE(queue.Insert(TimerNumber(3), 3, 5001, 10));
    EXPECT_EQ(queue.TicksToGo(5001, 10000), 10u);
    EXPECT_EQ(queue.TakeDue(5011), TimerNumber(3));
    EXPECT_EQ(queue.TakeDue(5999), nullptr);
}

TEST(TimerQueue, EmptiesWhateverIsLeft) {
    ZAV_TimerQueue queue;
    for (int id = 1; id <= 10; ++id) queue.Insert(TimerNumber(id), id, 0, static_cast<Ticks>(id / 3));
    ASSERT_EQ(queue.TakeDue(1), TimerNumber(1)); // stands in the middle of those due at once
    queue.Cancel(4);
    std::vector<int> left;
    while (ZAV_EventTimer* timer = queue.TakeAny()) left.push_back(NumberOf(timer));
    std::sort(left.begin(), left.end());
    EXPECT_EQ(left, (std::vector<int>{2, 3, 5, 6, 7, 8, 9, 10}));
    EXPECT_EQ(queue.TakeDue(100), nullptr);
}

} // namespace
