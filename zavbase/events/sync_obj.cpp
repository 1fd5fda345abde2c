#include <zavbase/events/sync_obj.h>

#include <memory>
#include <optional>
#include <ostream>

ZAV_DEFINE_CLASS(ZAV_SyncObjBody, ZAV_RefCount)
ZAV_DEFINE_CLASS(ZAV_SyncObjRef, ZAV_Ref)

namespace {

const long kTypeSync = 0x53796E63;

// Keeps a body alive during an operation on it: the events that it sends may hold and drop the last
// reference. A body that nobody counts is left alone, since the first reference to go would delete it.
class SelfReference {
public:
    SelfReference(ZAV_SyncObjBody* body, bool counted) {
        if (counted) mRef.emplace(body);
    }

private:
    std::optional<ZAV_SyncObjRef> mRef;
};

int Wrapped(int a, int b) { return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b)); }

} // namespace

ZAV_SyncObjBody::ZAV_SyncObjBody() : mFlag(1) {}

ZAV_SyncObjBody::~ZAV_SyncObjBody() { mRegistered.ClearAndDestroy(); }

int ZAV_SyncObjBody::Set(int value) {
    SelfReference self(this, mRefCount > 0);
    ZAV_ReentrantMutex::Lock lock(mSyncLock, B_FALSE);
    return Change(value, value == 0);
}

int ZAV_SyncObjBody::Add(int delta) {
    SelfReference self(this, mRefCount > 0);
    ZAV_ReentrantMutex::Lock lock(mSyncLock, B_FALSE);
    const int value = Wrapped(static_cast<int>(mFlag), delta);
    return Change(value, value == 0);
}

int ZAV_SyncObjBody::Substract(int delta) { return Add(Wrapped(~delta, 1)); }

int ZAV_SyncObjBody::Increment() { return Add(1); }

int ZAV_SyncObjBody::Decrement() { return Add(-1); }

int ZAV_SyncObjBody::Change(int value, bool notify) {
    mFlag = value;
    if (notify) Notify();
    return value;
}

void ZAV_SyncObjBody::Notify() {
    for (ZAV_Link* link = static_cast<ZAV_Link*>(mRegistered.First()); !link->IsListEnd();
         link = link->NextLink()) {
        std::unique_ptr<ZAV_EventSync> event(new ZAV_EventSync(this));
        if ((*static_cast<ZAV_EvHandlerRef*>(link))->QueueEvent(event.get(), 0) != 0) return;
        event.release();
    }
}

void ZAV_SyncObjBody::Register(const ZAV_EvHandlerBody* handler) {
    auto entry = std::make_unique<ZAV_EvHandlerRef>(const_cast<ZAV_EvHandlerBody*>(handler));
    SelfReference self(this, mRefCount > 0);
    ZAV_ReentrantMutex::Lock lock(mSyncLock, B_FALSE);
    mRegistered.Add(entry.release());
}

// The entry is destroyed outside the lock: it may be the last reference to its handler.
void ZAV_SyncObjBody::UnRegister(const ZAV_EvHandlerBody* handler) {
    SelfReference self(this, mRefCount > 0);
    std::unique_ptr<ZAV_Link> entry;
    ZAV_ReentrantMutex::Lock lock(mSyncLock, B_FALSE);
    ZAV_Link* link = static_cast<ZAV_Link*>(mRegistered.First());
    while (!link->IsListEnd() && !static_cast<ZAV_EvHandlerRef*>(link)->IsRefEqual(handler))
        link = link->NextLink();
    if (!link->IsListEnd()) entry.reset(mRegistered.Remove(static_cast<const ZAV_Link*>(link)));
}

void ZAV_SyncObjBody::Cleanup() {
    SelfReference self(this, mRefCount > 0);
    for (;;) {
        std::unique_ptr<ZAV_Link> entry;
        ZAV_ReentrantMutex::Lock lock(mSyncLock, B_FALSE);
        if (mRegistered.IsEmpty()) return;
        entry.reset(mRegistered.RemoveFirst());
    }
}

void ZAV_SyncObjBody::PrintOn(std::ostream& os) {
    ZAV_RefCount::PrintOn(os);
    ZAV_ReentrantMutex::Lock lock(mSyncLock, B_FALSE);
    os << ",mFlag=" << mFlag;
}

ZAV_SyncObjRef::ZAV_SyncObjRef() : ZAV_Ref(new ZAV_SyncObjBody) {}

ZAV_SyncObjRef::ZAV_SyncObjRef(ZAV_SyncObjBody* body) : ZAV_Ref(body) {}

ZAV_SyncObjRef::ZAV_SyncObjRef(const ZAV_SyncObjRef& other) : ZAV_Ref(other) {}

ZAV_SyncObjRef::~ZAV_SyncObjRef() {}

ZAV_SyncObjRef& ZAV_SyncObjRef::operator=(const ZAV_SyncObjRef& other) {
    ZAV_Ref::operator=(other);
    return *this;
}

ZAV_SyncObjRef& ZAV_SyncObjRef::operator=(ZAV_SyncObjBody* body) {
    ZAV_Ref::operator=(body);
    return *this;
}

ZAV_EventSync::ZAV_EventSync(ZAV_SyncObjBody* sender) : ZAV_Event(kTypeSync), mSyncObj(sender) {}

ZAV_EventSync::~ZAV_EventSync() {}

void ZAV_EventSync::PrintOn(std::ostream& os) {
    ZAV_Event::PrintOn(os);
    os << " = ZAV_EventSync :" << *mSyncObj.GetBody();
}
