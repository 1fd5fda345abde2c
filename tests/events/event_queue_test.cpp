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

// Takes events from the queue as its user does: a chain at a time, with the rest put back now and then.
class Taker {
public:
    explicit Taker(ZAV_EventQueue& queue) : mQueue(queue) {}
    ZAV_Event* Take()
    {
        if (mChain.first == nullptr || (!mQueue.IsEmpty() && mQueue.HighestPriority() > mChain.priority)) Fetch();
        return mChain.TakeFirst();
    }
    void Fetch()
    {
        mQueue.PutBack(mChain);
        mChain = mQueue.TakeHighest();
    }
    std::size_t Length() const { return mQueue.Length() + mChain.count; }

private:
    ZAV_EventQueue& mQueue;
    ZAV_EventQueue::Chain mChain;
};

void CompareRandomly(unsigned seed, long lowest, long highest, int steps, unsigned pushesOf10)
{
    SCOPED_TRACE(testing::Message() << "seed " << seed << ", priorities " << lowest << " to " << highest);
    std::mt19937 random(seed);
    std::uniform_int_distribution<long> priority(lowest, highest);
    ZAV_EventQueue queue;
    Taker taker(queue);
    PlainQueue plain;
    for (int step = 0; step < steps; ++step) {
        if (random() % 10 < pushesOf10) {
            Numbered* event = new Numbered(priority(random));
            queue.Push(event);
            plain.Push(event);
        } else {
            if (random() % 4 == 0) taker.Fetch();
            Numbered* expected = plain.Pop();
            ASSERT_EQ(taker.Take(), expected) << "step " << step;
            delete expected;
        }
        ASSERT_EQ(taker.Length(), plain.Length());
    }
    while (Numbered* expected = plain.Pop()) {
        ASSERT_EQ(taker.Take(), expected);
        delete expected;
    }
    EXPECT_EQ(taker.Take(), nullptr);
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
    Taker taker(queue);
    std::vector<Numbered*> staying;
    for (long i = 0; i < 5; ++i) queue.Push(staying.emplace_back(new Numbered(-100 - i % 2)));
    for (long priority = 0; priority < 6000; ++priority) {
        Numbered* event = new Numbered(priority);
        queue.Push(event);
        ASSERT_EQ(taker.Take(), event);
        delete event;
    }
    std::stable_sort(staying.begin(), staying.end(),
                     [](Numbered* a, Numbered* b) { return a->Priority() > b->Priority(); });
    for (Numbered* event : staying) {
        ASSERT_EQ(taker.Take(), event);
        delete event;
    }
}

} // namespace
