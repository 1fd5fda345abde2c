#include <mutex>
#include <unordered_map>

#include <zavbase/events/ev_dispatcher.h>
#include <zavbase/events/listener.h>
#include <zavbase/events/listener_internal.h>
#include <zavbase/events/trace_internal.h>
#include <zavbase/foundation/process_hooks_internal.h>

// The dispatcher's listeners: who is in which dispatcher, and the polling.

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

// False when a dispatcher has it already.
bool Claim(ZAV_Listener* listener, ZAV_EvDispatcher* dispatcher) {
    Table& table = TheTable();
    std::lock_guard<std::mutex> guard(table.lock);
    return table.owners.emplace(listener, dispatcher).second;
}

void Disclaim(ZAV_Listener* listener) {
    Table& table = TheTable();
    std::lock_guard<std::mutex> guard(table.lock);
    table.owners.erase(listener);
}

ZAV_EvDispatcher* OwnerOf(ZAV_Listener* listener) {
    Table& table = TheTable();
    std::lock_guard<std::mutex> guard(table.lock);
    const auto found = table.owners.find(listener);
    return found != table.owners.end() ? found->second : nullptr;
}

// A walk of this thread through the listeners of some dispatcher; a listener may dispatch again. Kept by the
// thread: a listener may end it without returning, and the dispatcher is used on.
struct Poll {
    static thread_local Poll* tInnermost;

    Poll() : outer(tInnermost) { tInnermost = this; }
    ~Poll() { tInnermost = outer; }
    Poll(const Poll&) = delete;
    Poll& operator=(const Poll&) = delete;

    Poll* const outer;
    ZAV_Link* next = nullptr;
};
thread_local constinit Poll* Poll::tInnermost = nullptr;

} // namespace

void zav_listeners::Enter(ZAV_EvDispatcher* dispatcher, ZAV_Listener* listener) {
    dispatcher->AddListener(listener);
}

void zav_listeners::Leave(ZAV_Listener* listener) {
    if (ZAV_EvDispatcher* const dispatcher = OwnerOf(listener)) dispatcher->RemoveListener(listener);
}

void ZAV_EvDispatcher::AddListener(ZAV_Listener* listener) {
    if (mStopping != 0 || listener == nullptr || !Claim(listener, this)) return;
    mListeners.Add(listener);
}

// The address is only compared until it is found in the list: the listener may be gone.
void ZAV_EvDispatcher::RemoveListener(ZAV_Listener* listener) {
    if (listener == nullptr) return;
    for (Poll* poll = Poll::tInnermost; poll != nullptr; poll = poll->outer)
        if (poll->next == listener) poll->next = listener->NextLink();
    if (mListeners.Remove(static_cast<const ZAV_Link*>(listener)) != nullptr) Disclaim(listener);
}

void ZAV_EvDispatcher::DropListeners() {
    while (!mListeners.IsEmpty()) RemoveListener(static_cast<ZAV_Listener*>(mListeners.First()));
}

void ZAV_EvDispatcher::PollListeners() {
    if (mListeners.IsEmpty()) return;
    Poll poll;
    ZAV_Listener* current = nullptr;
    ZAV_EXCEPTION_LINK link;
    try {
        for (poll.next = static_cast<ZAV_Link*>(mListeners.First()); !poll.next->IsListEnd();) {
            current = static_cast<ZAV_Listener*>(poll.next);
            poll.next = current->NextLink();
            current->Listen(LISTEN_POLL);
        }
    } catch (ZAV_Exception* e) {
        link.mException = e;
        ZAV_TraceCaught("Removing a listener : Dispatch caught exception in Listen():", e);
        RemoveListener(current);
    }
}
