#ifndef ZAVBASE_EVENTS_EV_DISPATCHER_H
#define ZAVBASE_EVENTS_EV_DISPATCHER_H

#include <atomic>

#include <zavbase/collections/linked_list.h>
#include <zavbase/events/ev_handler.h>
#include <zavbase/threads/signaller.h>
#include <zavbase/threads/thread.h>

class ZAV_EvState;
class ZAV_HeldHandler;
class ZAV_Listener;

/// How long ZAV_EvDispatcher::Dispatch goes on. Any other value dispatches for ever, without sleeping.
enum ZAV_EvDispatcherControl : int {
    DISPATCH_ONCE = 0,              ///< handle the events present now, then return
    DISPATCH_UNTIL_STOPPED = 1,     ///< sleep when idle; return once stopped and without handlers
    DISPATCH_UNTIL_NO_HANDLERS = 2, ///< return once without handlers; never sleeps, polls all the time
};

/// The event loop: a queue of events, the handlers that they are for, and the listeners that make them. The
/// thread that calls Dispatch runs it: listeners and handlers are called on that thread, one at a time, with
/// no lock held. Only one thread may dispatch at a time; a handler may dispatch again from inside.
///
/// Threads: queuing an event (ZAV_EvHandlerBody::QueueEvent), Stop, AddEvHandler, RemoveEvHandler and the
/// counters are for any thread. AddListener, RemoveListener and Cleanup are for the dispatching thread, or
/// for a time when none dispatches. Other threads may still hold and use the handlers when the dispatcher is
/// destroyed: the handlers turn inactive.
///
/// Ownership: queued events are the dispatcher's; handlers are counted; listeners stay the host's.
///
/// Cost: queuing and taking an event cost the same however many are pending; a priority that comes into use
/// costs the logarithm of the number of priorities in use.
class ZAV_API ZAV_EvDispatcher : public ZAV_Object {
    ZAV_DECLARE_CLASS(ZAV_EvDispatcher)
public:
    static int instance_counter; ///< the live dispatchers; see ZAV_Event::instance_counter

    ZAV_EvDispatcher();
    ZAV_EvDispatcher(const ZAV_EvDispatcher&) = delete;
    ZAV_EvDispatcher& operator=(const ZAV_EvDispatcher&) = delete;
    ~ZAV_EvDispatcher() override;

    /// Neither accepts anything once stopped: the call is ignored. A listener that is in a dispatcher already
    /// is ignored too; a handler added twice is in twice.
    void AddListener(ZAV_Listener* listener);
    void AddEvHandler(const ZAV_EvHandlerRef& handler);

    /// Takes the listener out, if it is in. A listener may take out itself or others while it is polled.
    void RemoveListener(ZAV_Listener* listener);
    /// Takes the first entry for this handler out and makes the handler inactive. Its events that are still
    /// queued will be destroyed after their EmergencyCleanup. A handler that is not in is ignored.
    void RemoveEvHandler(const ZAV_EvHandlerRef& handler);

    /// Runs the loop. Listeners are polled before every event. Events are handled highest priority first and
    /// first in first out among equals, one batch after the other: a batch ends when as many events of
    /// priority 0 and below were handled as were queued at its start; events of priority 1 and above do not
    /// count, so a handler that keeps queuing those to itself keeps the batch from ending.
    ///
    /// A dispatcher that sleeps sees nothing but queued events and Stop; polled listeners, among them a timer
    /// manager without a thread of its own, have to wait until then. SetWakeUpInterval changes that.
    ///
    /// Once stopped, what is still queued when it returns is destroyed after its EmergencyCleanup, and
    /// handlers and listeners are dropped. Stopped before Dispatch, it does only that.
    void Dispatch(ZAV_EvDispatcherControl control);

    /// Has Dispatch(DISPATCH_UNTIL_STOPPED) return as soon as no handler is left: send the handlers a
    /// ZAV_EventStop or remove them. A stopped dispatcher stays stopped, but still takes events.
    void Stop();

    /// Destroys all queued events after their EmergencyCleanup, also those that are queued meanwhile.
    void Cleanup();

    /// Has a sleeping Dispatch wake and poll its listeners every `ms` milliseconds, at most every 2147483;
    /// 0, as at the beginning, lets it sleep. Takes effect with the next sleep.
    void SetWakeUpInterval(unsigned long ms);
    unsigned long WakeUpInterval() const;

    unsigned long QueueLength() const; ///< events queued now
    /// The most events that were ever queued at a time. Exact for what the dispatching thread queues itself
    /// and for what is queued while nobody dispatches; else it may miss a peak by 32 events.
    unsigned long QueueHighWater() const;

    /// Called on the dispatching thread with the text "DispatchEvent", the event and its handler, before each
    /// event is handled; null for none. One function for the process.
    typedef void (*EventTracerFn)(const char* text, ZAV_Event* event, ZAV_EvHandlerBody* handler);
    static void SetEventTracer(EventTracerFn fn);

protected:
    /// Queues the event here, if the handler is active, and else destroys it after its EmergencyCleanup.
    void QueueEvent(ZAV_EvHandlerBody* handler, ZAV_Event* event, long priority);
    /// Hands a taken event to its handler and does what the handler's result says.
    void DispatchEvent(ZAV_Event* event);

private:
    friend class ZAV_EvState;

    ZAV_EvState& State() const;
    void TraceEvent(const char* text, ZAV_Event* event, ZAV_EvHandlerBody* handler);
    void DispatchBatch();
    void RemoveHandler(ZAV_EvHandlerBody* handler);
    void Handle(ZAV_Event* event, const ZAV_HeldHandler& handler);
    int HandOver(ZAV_Event* event, ZAV_EvHandlerBody* handler);
    void PollListeners();
    bool HasHandlers();
    bool EndOrSleep();
    void Sleep(unsigned seenChanges);
    void SignalChange();
    void Wake();
    void TraceRemainingHandlers();
    void Finish();
    void DropHandlers();
    void DropListeners();

    ZAV_LinkedList mListeners;
    ZAV_LinkedList mHandlers;
    ZAV_MutexSignaller mSignaller;
    ZAV_LinkedList mQueue; ///< its one link is the state, which holds the events by priority
    std::atomic<std::int32_t> mWaiting;
    std::atomic<std::int32_t> mStopping;

    static EventTracerFn mEventTracerFn;
};

/// A thread that runs a dispatcher until it is stopped. StopThread stops the dispatcher and returns 0 at
/// once; the thread ends when its handlers are gone. A dummyalloc that leaves Dispatch is traced and ends the
/// thread.
///
/// The destructor does not stop the dispatcher, it waits for it: call StopThread first.
class ZAV_API ZAV_EvDispatcherThread : public ZAV_Thread {
public:
    explicit ZAV_EvDispatcherThread(ZAV_EvDispatcher& dispatcher);
    ~ZAV_EvDispatcherThread() override;

    ZAV_ThreadError StopThread() override;

private:
    void run() override;

    ZAV_EvDispatcher& mDispatcher;
};

#endif
