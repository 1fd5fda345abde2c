#include <algorithm>
#include <climits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <zavbase/events/ev_handler.h>
#include <zavbase/events/event.h>
#include <zavbase/events/event_queue_internal.h>

namespace {

class Numbered : public ZAV_Event {
public:
    explicit Numbered(long priority) : ZAV_Event(0) { mPriority = static_cast<zav_long32>(priority); }
    long Priority() const { return mPriority; }
};

// The one list that the queue stands for: behind the last event of at least the new one's priority.
class PlainQueue {
public:
    void Push(Numbered* event)
    {
        auto at = mEvents.begin();
        while (at != mEvents.end() && (*at)->Priority() >= event->Priority()) ++at;
        mEvents.insert(at, event);
    }
    Numbered* Pop()
    {
        if (mEvents.empty()) return nullptr;
        Numbered* first = mEvents.front();
        mEvents.erase(mEvents.begin());
        return first;
    }
    std::size_t Length() const { return mEvents.size(); }

private:
    std::vector<Numbered*> mEvents;
};

void CompareRandomly(unsigned seed, long lowest, long highest, int steps, unsigned pushesOf10)
{
    SCOPED_TRACE(testing::Message() << "seed " << seed << ", priorities " << lowest << " to " << highest);
    std::mt19937 random(seed);
    std::uniform_int_distribution<long> priority(lowest, highest);
    ZAV_EventQueue queue;
    PlainQueue plain;
    for (int step = 0; step < steps; ++step) {
        if (random() % 10 < pushesOf10) {
            Numbered* event = new Numbered(priority(random));
            queue.Push(event);
            plain.Push(event);
        } else {
            Numbered* expected = plain.Pop();
            ASSERT_EQ(queue.Pop(), expected) << "step " << step;
            delete expected;
        }
        ASSERT_EQ(queue.Length(), plain.Length());
    }
    while (Numbered* expected = plain.Pop()) {
        ASSERT_EQ(queue.Pop(), expected);
        delete expected;
    }
    EXPECT_EQ(queue.Pop(), nullptr);
}

TEST(EventQueue, GivesWhatOneSortedListWouldGive)
{
    CompareRandomly(1, 0, 0, 2000, 5);
    CompareRandomly(2, -5, 5, 4000, 6);
    CompareRandomly(3, INT_MIN, INT_MAX, 4000, 7);  // a bucket an event, both ends included
    CompareRandomly(4, -1, 1, 2000, 4);             // empty most of the time
}

// More priorities than are kept when their buckets are empty, with some events staying behind throughout.
TEST(EventQueue, ForgetsPrioritiesThatWentOutOfUse)
{
    ZAV_EventQueue queue;
    std::vector<Numbered*> staying;
    for (long i = 0; i < 5; ++i) queue.Push(staying.emplace_back(new Numbered(-100 - i % 2)));
    for (long priority = 0; priority < 6000; ++priority) {
        Numbered* event = new Numbered(priority);
        queue.Push(event);
        ASSERT_EQ(queue.Pop(), event);
        delete event;
    }
    std::stable_sort(staying.begin(), staying.end(),
                     [](Numbered* a, Numbered* b) { return a->Priority() > b->Priority(); });
    for (Numbered* event : staying) {
        ASSERT_EQ(queue.Pop(), event);
        delete event;
    }
}

} // namespace
