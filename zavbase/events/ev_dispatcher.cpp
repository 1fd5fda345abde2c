#include <zavbase/events/ev_dispatcher.h>

#include <algorithm>
#include <memory>
#include <vector>

#include <zavbase/events/count_internal.h>
#include <zavbase/events/ev_state_internal.h>
#include <zavbase/events/ev_tie_internal.h>
#include <zavbase/events/event.h>
#include <zavbase/events/held_handler_internal.h>
#include <zavbase/events/listener.h>
#include <zavbase/events/trace_internal.h>
#include <zavbase/foundation/new_handler.h>

ZAV_DEFINE_CLASS(ZAV_EvDispatcher, ZAV_Object)

namespace {

const unsigned long kLongestInterval = 2147483; // milliseconds; the signaller counts microseconds in an int

} // namespace

int ZAV_EvDispatcher::instance_counter = 0;
ZAV_EvDispatcher::EventTracerFn ZAV_EvDispatcher::mEventTracerFn = nullptr;

ZAV_EvDispatcher::ZAV_EvDispatcher() : mWaiting(0), mStopping(0) {
    mQueue.Add(new ZAV_EvState(*this));
    ZAV_CountLive(instance_counter, 1);
}

// Closed first: handlers may be busy posting on other threads and would never let the cleanup end.
ZAV_EvDispatcher::~ZAV_EvDispatcher() {
    State().mIntake.Close();
    Cleanup();
    DropHandlers();
    DropListeners();
    mQueue.ClearAndDestroy();
    ZAV_CountLive(instance_counter, -1);
}

ZAV_EvState& ZAV_EvDispatcher::State() const { return *static_cast<ZAV_EvState*>(mQueue.First()); }

void ZAV_EvDispatcher::AddEvHandler(const ZAV_EvHandlerRef& handler) {
    if (mStopping != 0) return;
    auto entry = std::make_unique<ZAV_EvHandlerRef>(handler);
    ZAV_EvState& state = State();
    ZAV_EvTie& tie = handler->Tie();
    ZAV_Mutex::Lock lock(state.mHandlersLock, B_FALSE);
    tie.SetPort(&state.mPort);
    tie.Listed();
    mHandlers.Add(entry.release());
}

void ZAV_EvDispatcher::RemoveEvHandler(const ZAV_EvHandlerRef& handler) { RemoveHandler(handler.GetBody()); }

// The entry is destroyed outside the lock: it may be the last reference, and the handler's destructor is the
// host's.
void ZAV_EvDispatcher::RemoveHandler(ZAV_EvHandlerBody* handler) {
    std::unique_ptr<ZAV_Link> entry;
    bool lastWhenStopping = false;
    {
        ZAV_Mutex::Lock lock(State().mHandlersLock, B_FALSE);
        ZAV_Link* link = static_cast<ZAV_Link*>(mHandlers.First());
        while (!link->IsListEnd() && !static_cast<ZAV_EvHandlerRef*>(link)->IsRefEqual(handler))
            link = link->NextLink();
        if (link->IsListEnd()) return;
        handler->Tie().SetPort(nullptr);
        handler->Tie().Unlisted();
        entry.reset(mHandlers.Remove(static_cast<const ZAV_Link*>(link)));
        lastWhenStopping = mHandlers.IsEmpty() && mStopping != 0;
    }
    if (lastWhenStopping) SignalChange();
}

bool ZAV_EvDispatcher::HasHandlers() {
    ZAV_Mutex::Lock lock(State().mHandlersLock, B_FALSE);
    return !mHandlers.IsEmpty();
}

// The handlers still refer to the port: a stopped dispatcher takes events as long as it exists.
void ZAV_EvDispatcher::DropHandlers() {
    for (;;) {
        std::unique_ptr<ZAV_Link> entry;
        ZAV_Mutex::Lock lock(State().mHandlersLock, B_FALSE);
        if (mHandlers.IsEmpty()) return;
        entry.reset(mHandlers.RemoveFirst());
        static_cast<ZAV_EvHandlerRef*>(entry.get())->GetBody()->Tie().Unlisted();
    }
}

void ZAV_EvDispatcher::QueueEvent(ZAV_EvHandlerBody* handler, ZAV_Event* event, long priority) {
    if (event == nullptr) return;
    if (!handler->IsActive()) return ZAV_Event::Discard(event);
    ZAV_EvPort& port = State().mPort;
    port.Enter();
    event->PostTo(port, handler, priority);
}

void ZAV_EvDispatcher::Stop() {
    mStopping = 1;
    SignalChange();
}

// What happens before it is seen by a dispatcher that is just going to sleep.
void ZAV_EvDispatcher::SignalChange() {
    ZAV_MutexSignaller::Lock lock(mSignaller);
    ++State().mChanges;
    if (mWaiting != 0) mSignaller.Signal();
}

// Under the lock: the dispatching thread holds it from the moment posts see it sleep until it does.
void ZAV_EvDispatcher::Wake() {
    ZAV_MutexSignaller::Lock lock(mSignaller);
    if (mWaiting != 0) mSignaller.Signal();
}

void ZAV_EvDispatcher::SetWakeUpInterval(unsigned long ms) {
    State().mWakeUpInterval = static_cast<std::uint32_t>(ms < kLongestInterval ? ms : kLongestInterval);
}

unsigned long ZAV_EvDispatcher::WakeUpInterval() const { return State().mWakeUpInterval; }

unsigned long ZAV_EvDispatcher::QueueLength() const { return State().mPort.Length(); }

unsigned long ZAV_EvDispatcher::QueueHighWater() const { return State().mPort.HighWater(); }

void ZAV_EvDispatcher::Dispatch(ZAV_EvDispatcherControl control) {
    const ZAV_EvPort::Dispatching here(State().mPort);
    bool done = mStopping != 0;
    while (!done) {
        DispatchBatch();
        if (control == DISPATCH_ONCE) {
            ZAV_BASE_TRACE(0x0200, "DispatchEvent lock.Wait() : DISPATCH_ONCE out");
            break;
        }
        if (control == DISPATCH_UNTIL_NO_HANDLERS && !HasHandlers()) {
            mStopping = 1;
            done = true;
        }
        if (control == DISPATCH_UNTIL_STOPPED) done = EndOrSleep();
    }
    Finish();
}

void ZAV_EvDispatcher::DispatchBatch() {
    ZAV_EvIntake& intake = State().mIntake;
    std::uint32_t rest = intake.Collect();
    do {
        PollListeners();
        if (intake.AtHand() < rest) rest = (std::min)(rest, intake.Collect());
        if (rest == 0) return;
        ZAV_Event* const event = intake.Take();
        if (event == nullptr) return;
        if (event->mPriority < 1) --rest;
        try {
            ZAV_BASE_TRACE(0x0200, "DispatchEvent : event" << *event);
        } catch (...) { // the host's print of it
            ZAV_Event::DiscardQueued(event);
            throw;
        }
        Handle(event, ZAV_HeldHandler(event->TakeDestination(), ZAV_HeldHandler::kQueued));
    } while (rest != 0);
}

namespace {

// Destroys an event that was handled, whatever way the handler was left, unless the handler kept it. A
// destination means that it was queued again without being kept: it is the queue's then.
class HandledEvent {
public:
    HandledEvent(ZAV_Event* event, ZAV_EvHandlerBody* const& destination)
        : mEvent(event), mDestination(destination) {}
    ~HandledEvent() {
        if (mEvent != nullptr && mDestination == nullptr) delete mEvent;
    }
    HandledEvent(const HandledEvent&) = delete;
    HandledEvent& operator=(const HandledEvent&) = delete;

    // From here on it may be handled, and be gone, on another thread.
    void Keep() { mEvent = nullptr; }

private:
    ZAV_Event* mEvent;
    ZAV_EvHandlerBody* const& mDestination;
};

} // namespace

void ZAV_EvDispatcher::DispatchEvent(ZAV_Event* event) {
    Handle(event, ZAV_HeldHandler(event->TakeDestination(), ZAV_HeldHandler::kOwn));
}

// The hold on the handler ends last.
void ZAV_EvDispatcher::Handle(ZAV_Event* event, const ZAV_HeldHandler& handler) {
    HandledEvent handled(event, event->mDestination);
    int flags = 0;
    {
        ZAV_EXCEPTION_LINK link;
        try {
            flags = HandOver(event, handler.Get());
        } catch (ZAV_Exception* e) {
            link.mException = e;
            ZAV_TraceCaught("DispatchEvent caught exception :", e);
        }
    }
    if ((flags & 1) != 0) handled.Keep();
    if ((flags & 2) != 0) RemoveHandler(handler.Get());
}

int ZAV_EvDispatcher::HandOver(ZAV_Event* event, ZAV_EvHandlerBody* handler) {
    TraceEvent("DispatchEvent", event, handler);
    if (handler->IsActive()) return handler->HandleEvent(event);
    event->EmergencyCleanup();
    return 0;
}

// Whether to end. The changes are counted from before the tests on, so that none of them is slept over.
bool ZAV_EvDispatcher::EndOrSleep() {
    ZAV_EvState& state = State();
    if (mStopping == 0 && state.mIntake.Collect() != 0) return false;
    unsigned seenChanges;
    {
        ZAV_MutexSignaller::Lock lock(mSignaller);
        seenChanges = state.mChanges;
    }
    if (mStopping != 0) {
        if (!HasHandlers()) {
            ZAV_BASE_TRACE(0x0100, "EventDispatcher terminating :");
            return true;
        }
        TraceRemainingHandlers();
    }
    Sleep(seenChanges);
    return false;
}

void ZAV_EvDispatcher::TraceRemainingHandlers() {
    if (ZAV_TraceLine::Sink(tr_base, tr_base_name, 0x0100) == nullptr) return;
    std::vector<const char*> names;
    {
        ZAV_Mutex::Lock lock(State().mHandlersLock, B_FALSE);
        for (ZAV_Link* link = static_cast<ZAV_Link*>(mHandlers.First()); !link->IsListEnd();
             link = link->NextLink())
            names.push_back(static_cast<ZAV_EvHandlerRef*>(link)->GetBody()->ClassName());
    }
    ZAV_BASE_TRACE(0x0100, "EventHandlers not yet terminated :");
    for (const char* name : names) ZAV_BASE_TRACE(0x0100, "  --" << name);
}

namespace {

// Marks the dispatcher as asleep for its scope; under the dispatcher's signaller.
class Asleep {
public:
    Asleep(ZAV_EvPort& port, std::atomic<std::int32_t>& waiting) : mPort(port), mWaiting(waiting) {
        mWaiting = 1;
    }
    ~Asleep() {
        mWaiting = 0;
        mPort.EndSleep();
    }
    Asleep(const Asleep&) = delete;
    Asleep& operator=(const Asleep&) = delete;

private:
    ZAV_EvPort& mPort;
    std::atomic<std::int32_t>& mWaiting;
};

} // namespace

void ZAV_EvDispatcher::Sleep(unsigned seenChanges) {
    ZAV_EvState& state = State();
    ZAV_MutexSignaller::Lock lock(mSignaller);
    if (state.mChanges != seenChanges || !state.mIntake.BeginSleep()) return;
    const Asleep asleep(state.mPort, mWaiting);
    const std::uint32_t interval = state.mWakeUpInterval;
    if (interval != 0)
        lock.TimedWait(static_cast<int>(interval * 1000));
    else
        lock.Wait();
}

void ZAV_EvDispatcher::Finish() {
    if (mStopping == 0) return;
    Cleanup();
    DropHandlers();
    DropListeners();
}

void ZAV_EvDispatcher::Cleanup() {
    while (State().mIntake.DiscardNext()) {
    }
}

void ZAV_EvDispatcher::SetEventTracer(EventTracerFn fn) {
    std::atomic_ref<EventTracerFn>(mEventTracerFn).store(fn, std::memory_order_release);
}

void ZAV_EvDispatcher::TraceEvent(const char* text, ZAV_Event* event, ZAV_EvHandlerBody* handler) {
    EventTracerFn fn = std::atomic_ref<EventTracerFn>(mEventTracerFn).load(std::memory_order_acquire);
    if (fn != nullptr) fn(text, event, handler);
}

ZAV_EvDispatcherThread::ZAV_EvDispatcherThread(ZAV_EvDispatcher& dispatcher)
    : ZAV_Thread(ZAV_THREAD_JOINED), mDispatcher(dispatcher) {}

// The wait is here and not left to the base: a thread that has not yet entered run must still find this
// class.
ZAV_EvDispatcherThread::~ZAV_EvDispatcherThread() {
    ZAV_BASE_TRACE(0x0080, "ZAV_EvDispatcherThread exited");
    FinishThread();
}

ZAV_ThreadError ZAV_EvDispatcherThread::StopThread() {
    mDispatcher.Stop();
    return ZAV_ThreadError(0);
}

void ZAV_EvDispatcherThread::run() {
    ZAV_EXCEPTION_LINK link;
    try {
        mDispatcher.Dispatch(DISPATCH_UNTIL_STOPPED);
    } catch (const dummyalloc&) {
        ZAV_BASE_TRACE(0x0001, "ZAV_EvDispatcherThread : unexpected badalloc exception during Dispatch() :");
    }
}
