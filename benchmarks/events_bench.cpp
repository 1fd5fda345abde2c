// Posting and handling events, and timers, beside the event loops of Boost.Asio and Qt and beside a mutex
// with a priority queue. Every event is an object of its own that carries a number, goes through the loop's
// public interface and is handled by a virtual or stored call on the thread that runs the loop.
#include <algorithm>
#include <chrono>
#include <memory>
#include <mutex>
#include <queue>
#include <random>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

#include "settle_allocator.h"

#include <zavbase/events/ev_dispatcher.h>
#include <zavbase/events/event.h>
#include <zavbase/events/timer_mgr.h>

#ifdef HAVE_BOOST
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#endif
#ifdef HAVE_QT
#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#endif

namespace {

const int kEvents = 1000000;
const int kPending = 100000;
const int kTimers = 1000000;
const unsigned kFirstDue = 2000, kDueRange = 1000; // milliseconds; adding must not take longer than the first

// Runs `produce` on several threads and `consume` on this one, until both are through.
template <class Produce, class Consume>
void Run(int producers, Produce produce, Consume consume) {
    std::vector<std::thread> threads;
    for (int p = 0; p < producers; ++p)
        threads.emplace_back([&produce, p, producers] {
            for (int i = p; i < kEvents; i += producers) produce(i);
        });
    consume();
    for (std::thread& thread : threads) thread.join();
}

class NumberEvent : public ZAV_Event {
public:
    explicit NumberEvent(long number) : ZAV_Event(0x4E756D62), mNumber(number) {}
    const long mNumber;
};

class SumHandler : public ZAV_EvHandlerBody {
public:
    SumHandler(ZAV_EvDispatcher& dispatcher, int expected) : mDispatcher(dispatcher), mLeft(expected) {}
    long mSum = 0;

protected:
    int HandleEvent(ZAV_Event* event) override {
        mSum += event->Type() == 0x4E756D62 ? static_cast<NumberEvent*>(event)->mNumber : 1;
        if (--mLeft != 0) return 0;
        mDispatcher.Stop();
        return 2;
    }

private:
    ZAV_EvDispatcher& mDispatcher;
    int mLeft;
};

void PostZav(benchmark::State& state) {
    for (auto _ : state) {
        ZAV_EvDispatcher dispatcher;
        SumHandler* handler = new SumHandler(dispatcher, kEvents);
        const ZAV_EvHandlerRef ref(handler);
        dispatcher.AddEvHandler(ref);
        Run(
            static_cast<int>(state.range(0)), [&](int i) { handler->QueueEvent(new NumberEvent(i), 0); },
            [&] { dispatcher.Dispatch(DISPATCH_UNTIL_STOPPED); });
        benchmark::DoNotOptimize(handler->mSum);
    }
    state.SetItemsProcessed(state.iterations() * kEvents);
}
BENCHMARK(PostZav)
    ->Name("Post/zav/producers")
    ->Arg(1)
    ->Arg(4)
    ->UseRealTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

// Fills and drains on one thread, with priorities 0 to range - 1 at random.
std::vector<long> Priorities(long range) {
    std::mt19937 random(1);
    std::vector<long> priorities(kPending);
    for (long& priority : priorities)
        priority = static_cast<long>(random() % static_cast<unsigned long>(range));
    return priorities;
}

void PrioritiesZav(benchmark::State& state) {
    const std::vector<long> priorities = Priorities(state.range(0));
    ZAV_EvDispatcher dispatcher;
    SumHandler* handler = new SumHandler(dispatcher, 0);
    const ZAV_EvHandlerRef ref(handler);
    dispatcher.AddEvHandler(ref);
    for (auto _ : state) {
        for (const long priority : priorities) handler->QueueEvent(new NumberEvent(priority), priority);
        dispatcher.Dispatch(DISPATCH_ONCE);
    }
    state.SetItemsProcessed(state.iterations() * kPending);
}
BENCHMARK(PrioritiesZav)->Name("FillDrain/zav/priorities")->Arg(8)->Arg(10000)->Unit(benchmark::kMillisecond);

class PlainHandler;

class PlainEvent {
public:
    PlainEvent(PlainHandler* handler, long number) : mHandler(handler), mNumber(number) {}
    virtual ~PlainEvent() = default;
    PlainHandler* const mHandler;
    const long mNumber;
};

class PlainHandler {
public:
    virtual ~PlainHandler() = default;
    virtual void Handle(PlainEvent* event) { mSum += event->mNumber; }
    long mSum = 0;
};

struct Queued {
    long priority;
    unsigned long number;
    PlainEvent* event;
    bool operator<(const Queued& other) const {
        return priority != other.priority ? priority < other.priority : number > other.number;
    }
};

void PrioritiesStd(benchmark::State& state) {
    const std::vector<long> priorities = Priorities(state.range(0));
    std::mutex lock;
    std::priority_queue<Queued> queue;
    PlainHandler handler;
    unsigned long number = 0;
    for (auto _ : state) {
        for (const long priority : priorities) {
            PlainEvent* event = new PlainEvent(&handler, priority);
            std::lock_guard<std::mutex> guard(lock);
            queue.push({priority, number++, event});
        }
        for (;;) {
            std::unique_ptr<PlainEvent> event;
            {
                std::lock_guard<std::mutex> guard(lock);
                if (queue.empty()) break;
                event.reset(queue.top().event);
                queue.pop();
            }
            event->mHandler->Handle(event.get());
        }
        benchmark::DoNotOptimize(handler.mSum);
    }
    state.SetItemsProcessed(state.iterations() * kPending);
}
BENCHMARK(PrioritiesStd)
    ->Name("FillDrain/std_priority_queue/priorities")
    ->Arg(8)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond);

std::vector<unsigned> DueTimes() {
    std::mt19937 random(2);
    std::vector<unsigned> due(kTimers);
    for (unsigned& ms : due) ms = kFirstDue + static_cast<unsigned>(random()) % kDueRange;
    return due;
}

// Every other timer, in an order of its own.
std::vector<std::size_t> Cancelled() {
    std::vector<std::size_t> which;
    for (std::size_t i = 0; i < kTimers; i += 2) which.push_back(i);
    std::shuffle(which.begin(), which.end(), std::mt19937(3));
    return which;
}

struct ZavTimers {
    ZavTimers() : handler(new SumHandler(dispatcher, 0)), ref(handler) {
        dispatcher.AddEvHandler(ref);
        ZAV_TimerMgr::InitializeListener(B_FALSE, &dispatcher);
    }
    ~ZavTimers() { ZAV_TimerMgr::CleanupListener(); }

    void AddAndCancel(const std::vector<unsigned>& due, const std::vector<std::size_t>& cancelled) {
        std::vector<long> ids(due.size());
        for (std::size_t i = 0; i < due.size(); ++i) ids[i] = ZAV_TimerMgr::AddTimer(due[i], handler, 0);
        for (const std::size_t i : cancelled) ZAV_TimerMgr::RemoveTimer(ids[i]);
    }
    void Fire() {
        dispatcher.Dispatch(DISPATCH_ONCE); // polls the timers
        dispatcher.Dispatch(DISPATCH_ONCE); // handles their events
    }
    long Fired() const { return handler->mSum; }

    ZAV_EvDispatcher dispatcher;
    SumHandler* handler;
    ZAV_EvHandlerRef ref;
};

#ifdef HAVE_BOOST
struct AsioTimers {
    void AddAndCancel(const std::vector<unsigned>& due, const std::vector<std::size_t>& cancelled) {
        timers.reserve(due.size());
        for (const unsigned ms : due) {
            timers.emplace_back(io, std::chrono::milliseconds(ms));
            timers.back().async_wait([this](const boost::system::error_code& error) {
                if (!error) ++fired;
            });
        }
        for (const std::size_t i : cancelled) timers[i].cancel();
        io.poll(); // cancelled operations are done with, and their memory is free, only when they have run
    }
    void Fire() { io.poll(); }
    long Fired() const { return fired; }

    boost::asio::io_context io;
    std::vector<boost::asio::steady_timer> timers;
    long fired = 0;
};
#endif

template <class Timers>
void AddAndCancel(benchmark::State& state) {
    const std::vector<unsigned> due = DueTimes();
    const std::vector<std::size_t> cancelled = Cancelled();
    SettleAllocator();
    for (auto _ : state) {
        auto timers = std::make_unique<Timers>();
        timers->AddAndCancel(due, cancelled);
        state.PauseTiming();
        timers.reset();
        SettleAllocator();
        state.ResumeTiming();
    }
}

template <class Timers>
void Fire(benchmark::State& state) {
    const std::vector<unsigned> due = DueTimes();
    const std::vector<std::size_t> cancelled = Cancelled();
    for (auto _ : state) {
        state.PauseTiming();
        Timers timers;
        timers.AddAndCancel(due, cancelled);
        std::this_thread::sleep_for(std::chrono::milliseconds(kFirstDue + kDueRange + 10));
        const long before = timers.Fired();
        state.ResumeTiming();
        timers.Fire();
        state.PauseTiming();
        if (timers.Fired() - before < kTimers / 4) state.SkipWithError("most timers fired before");
        state.ResumeTiming();
    }
}

BENCHMARK(AddAndCancel<ZavTimers>)
    ->Name("Timers/zav/add_and_cancel")
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Fire<ZavTimers>)->Name("Timers/zav/fire")->Iterations(1)->Unit(benchmark::kMillisecond);

#ifdef HAVE_BOOST
BENCHMARK(AddAndCancel<AsioTimers>)
    ->Name("Timers/asio/add_and_cancel")
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Fire<AsioTimers>)->Name("Timers/asio/fire")->Iterations(1)->Unit(benchmark::kMillisecond);

void PostAsio(benchmark::State& state) {
    for (auto _ : state) {
        boost::asio::io_context io;
        auto work = boost::asio::make_work_guard(io);
        long sum = 0;
        int left = kEvents;
        Run(
            static_cast<int>(state.range(0)),
            [&](int i) {
                boost::asio::post(io, [&sum, &left, &work, i] {
                    sum += i;
                    if (--left == 0) work.reset();
                });
            },
            [&] { io.run(); });
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kEvents);
}
BENCHMARK(PostAsio)
    ->Name("Post/asio/producers")
    ->Arg(1)
    ->Arg(4)
    ->UseRealTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);
#endif

#ifdef HAVE_QT
class QtNumber : public QEvent {
public:
    explicit QtNumber(int number) : QEvent(QEvent::User), mNumber(number) {}
    const int mNumber;
};

class QtSum : public QObject {
public:
    long mSum = 0;
    int mLeft = kEvents;

protected:
    void customEvent(QEvent* event) override {
        mSum += static_cast<QtNumber*>(event)->mNumber;
        if (--mLeft == 0) QCoreApplication::quit();
    }
};

void PostQt(benchmark::State& state) {
    int argc = 1;
    char name[] = "events_bench";
    char* argv[] = {name, nullptr};
    QCoreApplication application(argc, argv);
    for (auto _ : state) {
        QtSum handler;
        Run(
            static_cast<int>(state.range(0)),
            [&](int i) { QCoreApplication::postEvent(&handler, new QtNumber(i)); },
            [] { QCoreApplication::exec(); });
        benchmark::DoNotOptimize(handler.mSum);
    }
    state.SetItemsProcessed(state.iterations() * kEvents);
}
BENCHMARK(PostQt)
    ->Name("Post/qt/producers")
    ->Arg(1)
    ->Arg(4)
    ->UseRealTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);
#endif

} // namespace
