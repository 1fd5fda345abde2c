#ifndef ZAVBASE_EVENTS_EVENT_H
#define ZAVBASE_EVENTS_EVENT_H

#include <zavbase/collections/link.h>
#include <zavbase/events/event_count.h>
#include <zavbase/foundation/pooled.h>

class ZAV_EvHandlerBody;
class ZAV_EvHandlerRef;
class ZAV_EvPort;
class ZAV_String;

/// What travels through a dispatcher: a type code, a destination while it is queued, and whatever a derived
/// class adds.
///
/// Events are made with new and queued with ZAV_EvHandlerBody::QueueEvent. From then on the dispatcher owns
/// the event: it is handled once and destroyed, or kept by its handler (result bit 1 of HandleEvent), or
/// destroyed unhandled after EmergencyCleanup. A queued event must not be touched, deleted or queued again.
/// A copy is a new event that is not queued; assigning copies the type only.
class ZAV_API ZAV_Event : public ZAV_Link, public ZAV_Pooled {
    ZAV_DECLARE_CLASS(ZAV_Event)
public:
    /// The number of live events of the process, an int for its readers. Counted without losses on whatever
    /// threads; read it when no other thread is busy with events.
    static ZAV_EventCount instance_counter;

    /// `type` is four characters, the first in the most significant byte: 0x53746F70 is "Stop".
    explicit ZAV_Event(long type);
    ZAV_Event(const ZAV_Event& other);
    ZAV_Event& operator=(const ZAV_Event& other);
    ~ZAV_Event() override;

    long Type() const { return mType; }
    void Type2Str(ZAV_String* text) const;   ///< appends the four characters
    void PrintOn(std::ostream& os) override; ///< "Event '", the four characters and "'"

    /// Called, on any thread and under no lock of the library, just before the event is destroyed without
    /// having been handled. An event that carries what must not get lost overrides it. It must not throw and
    /// must not queue the event again.
    virtual void EmergencyCleanup();

protected:
    /// Makes the event refer to the handler, which it then keeps alive, and stores the priority.
    void SetDestination(ZAV_EvHandlerBody* handler, long priority);
    /// Gives the caller a reference in place of the event's own, to delete; the priority becomes 0. Null when
    /// the event is not queued.
    ZAV_EvHandlerRef* RemoveDestination();

    friend class ZAV_EvDispatcher;
    friend class ZAV_EvHandlerBody;
    friend class ZAV_EvIntake;
    friend class ZAV_EvPort;
    friend class ZAV_EventQueue;
    friend class ZAV_TimerMgr;

    ZAV_EvHandlerBody* mDestination; ///< held, by the queue or by the event; null when not queued
    zav_long32 mType;
    zav_long32 mPriority;

private:
    void PostTo(ZAV_EvPort& port, ZAV_EvHandlerBody* handler, long priority);
    static void Discard(ZAV_Event* event);
    static void DiscardQueued(ZAV_Event* event);
    ZAV_EvHandlerBody* TakeDestination();
    void DropDestination();
};

/// Asks a handler to begin its work; the library gives it no other meaning. Type "Strt".
class ZAV_API ZAV_EventStart : public ZAV_Event {
    ZAV_DECLARE_CLASS(ZAV_EventStart)
public:
    ZAV_EventStart();
    void PrintOn(std::ostream& os) override;
};

/// Asks a handler to end: it is expected to answer with result bit 2, so that it gets unregistered. Type
/// "Stop".
class ZAV_API ZAV_EventStop : public ZAV_Event {
    ZAV_DECLARE_CLASS(ZAV_EventStop)
public:
    ZAV_EventStop();
    void PrintOn(std::ostream& os) override;
};

#endif
