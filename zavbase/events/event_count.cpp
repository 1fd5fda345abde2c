#include <zavbase/events/event_count.h>

#include <mutex>

#include <zavbase/events/event.h>

namespace {

enum ThreadState { THREAD_NEW, THREAD_LISTED, THREAD_ENDED };

// What a thread has counted. Only it writes there.
struct ThreadCount {
    std::atomic<int> changes;
    ThreadState state;
    ThreadCount* next;
    ThreadCount* previous;
};

thread_local constinit ThreadCount tCount = {};

// Never destroyed: threads may outlive static objects.
struct Threads {
    std::mutex lock;
    ThreadCount* first = nullptr;
};

Threads& TheThreads() {
    static Threads* const threads = new Threads;
    return *threads;
}

void List(ThreadCount& count) {
    Threads& threads = TheThreads();
    std::lock_guard<std::mutex> guard(threads.lock);
    count.next = threads.first;
    if (count.next != nullptr) count.next->previous = &count;
    threads.first = &count;
    count.state = THREAD_LISTED;
}

void Unlist(ThreadCount& count, std::atomic<int>& ofEnded) {
    Threads& threads = TheThreads();
    std::lock_guard<std::mutex> guard(threads.lock);
    (count.previous != nullptr ? count.previous->next : threads.first) = count.next;
    if (count.next != nullptr) count.next->previous = count.previous;
    count.state = THREAD_ENDED;
    ofEnded.fetch_add(count.changes.load(std::memory_order_relaxed), std::memory_order_relaxed);
}

// Ends a thread's listing. Events that destructors of other thread-local objects destroy later are not
// counted there any more.
struct Janitor {
    ~Janitor() {
        if (ofEnded != nullptr) Unlist(tCount, *ofEnded);
    }
    std::atomic<int>* ofEnded = nullptr;
};

Janitor& TheJanitor() {
    static thread_local Janitor janitor;
    return janitor;
}

} // namespace

// The one writer needs no atomic addition.
void ZAV_EventCount::Add(int change) {
    ThreadCount& count = tCount;
    if (count.state != THREAD_LISTED) return AddSlowly(change);
    count.changes.store(count.changes.load(std::memory_order_relaxed) + change, std::memory_order_relaxed);
}

void ZAV_EventCount::AddSlowly(int change) {
    if (tCount.state == THREAD_ENDED) {
        mOfEnded.fetch_add(change, std::memory_order_relaxed);
        return;
    }
    TheJanitor().ofEnded = &mOfEnded;
    List(tCount);
    Add(change);
}

ZAV_EventCount::operator int() const {
    Threads& threads = TheThreads();
    std::lock_guard<std::mutex> guard(threads.lock);
    int sum = mOfEnded.load(std::memory_order_relaxed);
    for (const ThreadCount* count = threads.first; count != nullptr; count = count->next)
        sum += count->changes.load(std::memory_order_relaxed);
    return sum;
}
