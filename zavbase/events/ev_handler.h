#ifndef ZAVBASE_EVENTS_EV_HANDLER_H
#define ZAVBASE_EVENTS_EV_HANDLER_H

#include <atomic>

#include <zavbase/foundation/ref.h>

class ZAV_Event;
class ZAV_EvTie;

/// Who receives events. Derive from it, override HandleEvent, make the object with new, and add it to a
/// dispatcher through a ZAV_EvHandlerRef. The last reference deletes it: the dispatcher's list, every queued
/// event and every pending timer for it, every synchronization object that it is registered with and every
/// helper that works for it hold one each. So it may be destroyed on any thread that drops one of these.
///
/// Threads: QueueEvent, IsActive and the timer calls may be used from any thread, as long as the caller's own
/// reference keeps the body alive during the call. HandleEvent runs on the thread that dispatches where the
/// event was queued. So a handler that is added to another dispatcher while events for it are still queued in
/// the old one may be called by both threads at once: move it when nothing is queued, or guard its members.
class ZAV_API ZAV_EvHandlerBody : public ZAV_RefCount {
    ZAV_DECLARE_CLASS(ZAV_EvHandlerBody)
public:
    static int instance_counter; ///< the live handler bodies; see ZAV_Event::instance_counter

    ZAV_EvHandlerBody();
    ZAV_EvHandlerBody(const ZAV_EvHandlerBody& other); ///< the copy is not registered
    ZAV_EvHandlerBody& operator=(const ZAV_EvHandlerBody& other);
    ~ZAV_EvHandlerBody() override;

    void PrintOn(std::ostream& os) override; ///< the count includes queued events

    /// Queues the event for this handler; higher priorities are handled first, equal ones in the order of
    /// queuing. Takes the event and returns 0; a null event is ignored. With no dispatcher returns -1 and the
    /// event stays the caller's. When the dispatcher goes away during the call, the event is destroyed after
    /// its EmergencyCleanup and the result is 0.
    int QueueEvent(ZAV_Event* event, long priority);

    /// Whether the handler is registered with a dispatcher that still exists.
    boolean_t IsActive() const;

    /// Has a ZAV_EventTimer queued for this handler, with priority 0, once `ms` milliseconds have passed.
    /// Returns the timer's identifier, or -1 when there is no timer manager.
    long RegisterTimer(unsigned long ms);
    /// Removes a pending timer; one that has fired already, or never was, is ignored.
    void UnRegisterTimer(long id);

protected:
    /// Handles one event. The result is made of bits: 1 the handler keeps the event, which is now its own to
    /// delete or to queue again; 2 the handler is to be unregistered. Without bit 1 the event is destroyed.
    /// The base answers 2. An event that this call queues again must be kept (bit 1), whatever else happens.
    ///
    /// A ZAV_Exception* that leaves it is traced and deleted, the event destroyed, the handler stays. Any
    /// other exception leaves ZAV_EvDispatcher::Dispatch.
    virtual int HandleEvent(ZAV_Event* event);

    friend class ZAV_EvDispatcher;
    friend class ZAV_Event;
    friend class ZAV_HeldHandler;

    /// What the handler knows of dispatchers; null until first registered.
    std::atomic<ZAV_EvTie*> mDispatcher;

private:
    ZAV_EvTie& Tie();
    void Hold();
    void LetGo();
    void HoldQueued();
    void LetGoQueued();
};

/// A counted reference to a handler. It always refers to one: there is no default constructor.
class ZAV_API ZAV_EvHandlerRef : public ZAV_Ref {
    ZAV_DECLARE_CLASS(ZAV_EvHandlerRef)
public:
    ZAV_EvHandlerRef(ZAV_EvHandlerBody* body);
    ZAV_EvHandlerRef(const ZAV_EvHandlerRef& other);
    ~ZAV_EvHandlerRef() override;
    ZAV_EvHandlerRef& operator=(const ZAV_EvHandlerRef& other);
    ZAV_EvHandlerRef& operator=(ZAV_EvHandlerBody* body);

    ZAV_EvHandlerBody* GetBody() const { return static_cast<ZAV_EvHandlerBody*>(mBody); }
    ZAV_EvHandlerBody* operator->() const { return GetBody(); }
};

/// Base of helpers that do part of the work of a handler, their master, and keep it alive as long as they
/// work for it. A handler that owns such a helper must take itself away with SetMaster(nullptr) when it ends.
class ZAV_API ZAV_EvHandlerHelper : public ZAV_Object {
    ZAV_DECLARE_CLASS(ZAV_EvHandlerHelper)
public:
    virtual void SetMaster(ZAV_EvHandlerBody* master); ///< null: none
    /// Looks at an event that the master received; what the result says is up to the helper. The base
    /// answers 1.
    virtual int CheckEvent(ZAV_Event* event);

protected:
    ZAV_EvHandlerHelper();
    ZAV_EvHandlerHelper(const ZAV_EvHandlerHelper& other); ///< works for the same master
    ZAV_EvHandlerHelper& operator=(const ZAV_EvHandlerHelper& other);
    ~ZAV_EvHandlerHelper() override;

    ZAV_EvHandlerRef* mMaster; ///< owned; null when there is none
};

#endif
