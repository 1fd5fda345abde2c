#include <zavbase/events/listener.h>

#include <mutex>
#include <unordered_map>

#include <zavbase/events/ev_dispatcher.h>
#include <zavbase/events/listener_internal.h>
#include <zavbase/events/trace_internal.h>
#include <zavbase/foundation/exception.h>
#include <zavbase/foundation/new_handler.h>
#include <zavbase/foundation/process_hooks_internal.h>

ZAV_DEFINE_CLASS(ZAV_Listener, ZAV_Link)

namespace {

struct Table {
    std::mutex lock;
    std::unordered_map<ZAV_Listener*, ZAV_EvDispatcher*> owners;
};

// Never destroyed: listeners may be static objects of the host.
Table& TheTable() {
    static Table* table = new Table;
    return *table;
}
std::mutex& TableLock() { return TheTable().lock; }
ZAV_LockOverFork<TableLock> overFork(ZAV_ProcessHooks::kListeners, [] { delete &TheTable(); });

} // namespace

bool zav_listeners::Claim(ZAV_Listener* listener, ZAV_EvDispatcher* dispatcher) {
    Table& table = TheTable();
    std::lock_guard<std::mutex> guard(table.lock);
    return table.owners.emplace(listener, dispatcher).second;
}

void zav_listeners::Release(ZAV_Listener* listener) {
    Table& table = TheTable();
    std::lock_guard<std::mutex> guard(table.lock);
    table.owners.erase(listener);
}

ZAV_EvDispatcher* zav_listeners::Owner(ZAV_Listener* listener) {
    Table& table = TheTable();
    std::lock_guard<std::mutex> guard(table.lock);
    const auto found = table.owners.find(listener);
    return found != table.owners.end() ? found->second : nullptr;
}

ZAV_Listener::ZAV_Listener() {}

ZAV_Listener::ZAV_Listener(const ZAV_Listener& other) : ZAV_Link(other) {}

ZAV_Listener& ZAV_Listener::operator=(const ZAV_Listener&) { return *this; }

ZAV_Listener::~ZAV_Listener() {
    if (NextLink() == nullptr) return; // in no list at all
    if (ZAV_EvDispatcher* dispatcher = zav_listeners::Owner(this)) dispatcher->RemoveListener(this);
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
