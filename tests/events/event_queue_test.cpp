#include <climits>
#include <functional>
#include <map>
#include <memory>
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

// The one sorted list that the queue stands for; a multimap keeps equal ones in order.
typedef std::multimap<long, Numbered*, std::greater<long>> PlainQueue;

Numbered* Pop(PlainQueue& plain) { return plain.empty() ? nullptr : plain.extract(plain.begin()).mapped(); }

Numbered* PushNew(ZAV_EventQueue& queue, long priority) {
    Numbered* event = new Numbered(priority);
    queue.Push(event);
    return event;
}

// Takes events from the queue as its user does: a chain at a time, with the rest put back now and then.
class Taker {
public:
    explicit Taker(ZAV_EventQueue& queue) : mQueue(queue) {}
    ZAV_Event* Take() {
        if (mChain.first == nullptr || (!mQueue.IsEmpty() && mQueue.HighestPriority() > mChain.priority))
            Fetch();
        return mChain.TakeFirst();
    }
    void Fetch() {
        mQueue.PutBack(mChain);
        mChain = mQueue.TakeHighest();
    }
    std::size_t Length() const { return mQueue.Length() + mChain.count; }

private:
    ZAV_EventQueue& mQueue;
    ZAV_EventQueue::Chain mChain;
};

void CompareRandomly(unsigned seed, long lowest, long highest, int steps, unsigned pushesOf10) {
    SCOPED_TRACE(testing::Message() << "seed " << seed << ", priorities " << lowest << " to " << highest);
    std::mt19937 random(seed);
    std::uniform_int_distribution<long> priority(lowest, highest);
    ZAV_EventQueue queue;
    Taker taker(queue);
    PlainQueue plain;
    for (int step = 0; step < steps; ++step) {
        if (random() % 10 < pushesOf10) {
            const long p = priority(random);
            plain.emplace(p, PushNew(queue, p));
        } else {
            if (random() % 4 == 0) taker.Fetch();
            Numbered* expected = Pop(plain);
            ASSERT_EQ(taker.Take(), expected) << "step " << step;
            delete expected;
        }
        ASSERT_EQ(taker.Length(), plain.size());
    }
    while (Numbered* expected = Pop(plain)) {
        ASSERT_EQ(taker.Take(), expected);
        delete expected;
    }
    EXPECT_EQ(taker.Take(), nullptr);
}

TEST(EventQueue, GivesWhatOneSortedListWouldGive) {
    CompareRandomly(1, 0, 0, 2000, 5);
    CompareRandomly(2, -5, 5, 4000, 6);
    CompareRandomly(3, INT_MIN, INT_MAX, 4000, 7); // a bucket an event, both ends included
    CompareRandomly(4, -1, 1, 2000, 4);            // empty most of the time
}

// More priorities than are kept when their buckets are empty, with some events staying behind throughout.
TEST(EventQueue, ForgetsPrioritiesThatWentOutOfUse) {
    ZAV_EventQueue queue;
    Taker taker(queue);
    PlainQueue staying;
    for (const long p : {-100, -101, -100, -101, -100}) staying.emplace(p, PushNew(queue, p));
    for (long priority = 0; priority < 6000; ++priority) {
        const std::unique_ptr<Numbered> event(PushNew(queue, priority));
        ASSERT_EQ(taker.Take(), event.get());
    }
    while (const auto event = std::unique_ptr<Numbered>(Pop(staying))) ASSERT_EQ(taker.Take(), event.get());
}

} // namespace
