#include <zavbase/events/listener.h>

#include <zavbase/events/listener_internal.h>
#include <zavbase/events/trace_internal.h>
#include <zavbase/foundation/exception.h>
#include <zavbase/foundation/new_handler.h>

ZAV_DEFINE_CLASS(ZAV_Listener, ZAV_Link)

ZAV_Listener::ZAV_Listener() {}

ZAV_Listener::ZAV_Listener(const ZAV_Listener& other) : ZAV_Link(other) {}

ZAV_Listener& ZAV_Listener::operator=(const ZAV_Listener&) { return *this; }

ZAV_Listener::~ZAV_Listener() {
    if (NextLink() != nullptr) zav_listeners::Leave(this); // null: in no list at all
}

void ZAV_Listener::Listen(ZAV_ListenerControl) {}

void ZAV_Listener::Stop() {}

ZAV_ListenerThread::ZAV_ListenerThread(const char* name, ZAV_Listener& listener)
    : ZAV_Thread(ZAV_THREAD_JOINED), mListener(listener) {
    SetInfoString(const_cast<char*>(name));
}

// The wait is here and not left to the base: a thread that has not yet entered run must still find this
// class.
ZAV_ListenerThread::~ZAV_ListenerThread() {
    ZAV_BASE_TRACE(0x0080, "ZAV_ListenerThread exited");
    FinishThread();
}

ZAV_ThreadError ZAV_ListenerThread::StopThread() {
    mListener.Stop();
    return ZAV_ThreadError(0);
}

void ZAV_ListenerThread::run() {
    ZAV_EXCEPTION_LINK link;
    try {
        mListener.Listen(LISTEN_BLOCK);
    } catch (ZAV_Exception* e) {
        link.mException = e;
        ZAV_BASE_TRACE(0x0001, "ZAV_ListenerThread : unexpected exception during Listen() :");
        if (e != nullptr) ZAV_BASE_TRACE(0x0001, *e);
    } catch (const dummyalloc&) {
        ZAV_BASE_TRACE(0x0001, "ZAV_ListenerThread : unexpected badalloc exception during Listen() :");
    }
}
