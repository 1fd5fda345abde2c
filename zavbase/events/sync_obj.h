#ifndef ZAVBASE_EVENTS_SYNC_OBJ_H
#define ZAVBASE_EVENTS_SYNC_OBJ_H

#include <zavbase/collections/linked_list.h>
#include <zavbase/events/ev_handler.h>
#include <zavbase/events/event.h>
#include <zavbase/threads/reentrant_mutex.h>

/// A guarded counter that sends a ZAV_EventSync to its registered handlers each time it reaches zero, for
/// instance when the last of several pieces of work is done. It starts at 1.
///
/// Made with new and held by ZAV_SyncObjRef. All calls may be made from any thread; they only queue events,
/// so no handler runs inside them. The registered handlers are kept alive until they are unregistered.
class ZAV_API ZAV_SyncObjBody : public ZAV_RefCount {
    ZAV_DECLARE_CLASS(ZAV_SyncObjBody)
public:
    ZAV_SyncObjBody();
    ZAV_SyncObjBody(const ZAV_SyncObjBody&) = delete;
    ZAV_SyncObjBody& operator=(const ZAV_SyncObjBody&) = delete;
    ~ZAV_SyncObjBody() override;

    /// Each changes the value and returns the new one; it wraps at 32 bits. Set notifies when it sets 0, even
    /// over a 0; the others notify when they arrive at 0.
    int Set(int value);
    int Add(int delta);
    int Substract(int delta);
    int Increment();
    int Decrement();

    /// A handler registered twice is notified twice; UnRegister takes one registration back. The handler must
    /// be one that references may hold (made with new).
    void Register(const ZAV_EvHandlerBody* handler);
    void UnRegister(const ZAV_EvHandlerBody* handler);
    void Cleanup(); ///< unregisters all

    void PrintOn(std::ostream& os) override; ///< "mRefCount=1,mFlag=1"

protected:
    /// Queues one event with priority 0 for each registered handler, in the order of registration, up to the
    /// first that has no dispatcher: that one and those after it get none.
    void Notify();

    zav_long32 mFlag;
    ZAV_LinkedList mRegistered;
    ZAV_ReentrantMutex mSyncLock;

private:
    int Change(int value, bool notify);
};

class ZAV_API ZAV_SyncObjRef : public ZAV_Ref {
    ZAV_DECLARE_CLASS(ZAV_SyncObjRef)
public:
    ZAV_SyncObjRef(); ///< a new object
    ZAV_SyncObjRef(ZAV_SyncObjBody* body);
    ZAV_SyncObjRef(const ZAV_SyncObjRef& other);
    ~ZAV_SyncObjRef() override;
    ZAV_SyncObjRef& operator=(const ZAV_SyncObjRef& other);
    ZAV_SyncObjRef& operator=(ZAV_SyncObjBody* body);

    ZAV_SyncObjBody* GetBody() const { return static_cast<ZAV_SyncObjBody*>(mBody); }
    ZAV_SyncObjBody* operator->() const { return GetBody(); }
};

/// Tells a handler that a synchronization object arrived at zero; made by the object only. Type "Sync".
class ZAV_API ZAV_EventSync : public ZAV_Event {
public:
    ~ZAV_EventSync() override;
    void PrintOn(std::ostream& os) override;

    /// The object that sent it: with several of them, IsRefEqual tells which one it was.
    const ZAV_SyncObjRef& SyncObj() const { return mSyncObj; }

private:
    friend class ZAV_SyncObjBody;
    explicit ZAV_EventSync(ZAV_SyncObjBody* sender);

    ZAV_SyncObjRef mSyncObj;
};

#endif
