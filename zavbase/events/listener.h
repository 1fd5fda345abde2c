#ifndef ZAVBASE_EVENTS_LISTENER_H
#define ZAVBASE_EVENTS_LISTENER_H

#include <zavbase/collections/link.h>
#include <zavbase/threads/thread.h>

enum ZAV_ListenerControl : int {
    LISTEN_POLL = 0,  ///< handle what is ready now and return without blocking
    LISTEN_BLOCK = 1, ///< wait for input and handle it until Stop is called
};

/// Waits for something outside the event system (a device, a socket, the clock) and turns it into events for
/// handlers. Derive from it, override Listen and Stop, and either add it to a dispatcher, which then polls it
/// between events, or give it to a ZAV_ListenerThread, which lets it block. Neither owns it. It can be in one
/// dispatcher at a time; destroying it takes it out, which must happen on that dispatcher's thread or when
/// nothing dispatches.
class ZAV_API ZAV_Listener : public ZAV_Link {
    ZAV_DECLARE_CLASS(ZAV_Listener)
public:
    virtual void Listen(ZAV_ListenerControl control);
    /// Makes a blocking Listen return soon, waking whatever it waits in. Called from other threads; a call
    /// that comes before Listen counts too.
    virtual void Stop();

protected:
    ZAV_Listener();
    ZAV_Listener(const ZAV_Listener& other);
    ZAV_Listener& operator=(const ZAV_Listener& other);
    ~ZAV_Listener() override;
};

/// A thread that runs a listener in blocking mode. The owner starts it with BeginThread; StopThread asks the
/// listener to stop and returns 0 at once. A ZAV_Exception* or a dummyalloc that leaves Listen is traced and
/// ends the thread, which can be started again.
///
/// The destructor does not stop the listener, it waits for it: call StopThread first.
class ZAV_API ZAV_ListenerThread : public ZAV_Thread {
public:
    ZAV_ListenerThread(const char* name, ZAV_Listener& listener); ///< the name is cut to 63 characters
    ~ZAV_ListenerThread() override;

    ZAV_ThreadError StopThread() override;

private:
    void run() override;

    ZAV_Listener& mListener;
};

#endif
