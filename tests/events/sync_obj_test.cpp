#include "scripted.h"

namespace {

class SyncObj : public EventsTest {};

TEST_F(SyncObj, NotifiesOnTheWayToZero) {
    Scripted* handler = new Scripted;
    ZAV_EvDispatcher dispatcher;
    dispatcher.AddEvHandler(handler);
    ZAV_SyncObjRef sync;
    sync->Register(handler);
    typedef ZAV_SyncObjBody Sync;
    struct {
        int start, (*change)(Sync&), value;
        unsigned notified;
    } const rows[] = {
        {1, [](Sync& s) { return s.Decrement(); }, 0, 1},
        {-1, [](Sync& s) { return s.Increment(); }, 0, 1},
        {5, [](Sync& s) { return s.Add(-5); }, 0, 1},
        {0, [](Sync& s) { return s.Add(0); }, 0, 1},
        {5, [](Sync& s) { return s.Substract(6); }, -1, 0},
        {0, [](Sync& s) { return s.Set(0); }, 0, 1},
        {0x7FFFFFFF, [](Sync& s) { return s.Increment(); }, -0x7FFFFFFF - 1, 0},
        {0, [](Sync& s) { return s.Substract(-0x7FFFFFFF - 1); }, -0x7FFFFFFF - 1, 0},
    };
    for (const auto& row : rows) {
        sync->Set(row.start);
        dispatcher.Cleanup();
        EXPECT_EQ(row.change(*sync.GetBody()), row.value) << "row " << &row - rows;
        EXPECT_EQ(dispatcher.QueueLength(), row.notified) << "row " << &row - rows;
    }
}

TEST_F(SyncObj, NotifiesEachRegistrationUpToAnInactiveHandler) {
    ZAV_EvHandlerBody *first = new Scripted, *inactive = new Scripted, *last = new Scripted;
    const ZAV_EvHandlerRef references[] = {first, inactive, last};
    ZAV_EvDispatcher dispatcher;
    dispatcher.AddEvHandler(first);
    dispatcher.AddEvHandler(last);
    ZAV_SyncObjRef sync;
    for (const auto* handler : {first, first, inactive, last}) sync->Register(handler);
    sync->Set(0);
    EXPECT_EQ(NewEvents(), 2); // the one for the inactive handler is gone
    sync->UnRegister(first);
    sync->UnRegister(inactive);
    sync->UnRegister(inactive); // not registered any more
    sync->Set(0);
    EXPECT_EQ(dispatcher.QueueLength(), 4u);
    sync->Cleanup();
    sync->Set(0);
    EXPECT_EQ(dispatcher.QueueLength(), 4u);
}

// The handler holds the object, the object the handler: the cycle is cut by what the handler's destructor or
// the last registration does, in the middle of a call.
TEST_F(SyncObj, MayLoseItsLastReferenceDuringACall) {
    struct Owner : ZAV_EvHandlerBody {
        ZAV_SyncObjRef mSync;
    };
    Owner* owner = new Owner;
    ZAV_SyncObjBody* sync = owner->mSync.GetBody();
    sync->Register(owner);
    EXPECT_EQ(NewHandlers(), 1);
    sync->UnRegister(owner); // destroys the owner, and with it the object
    EXPECT_EQ(NewHandlers(), 0);

    owner = new Owner;
    owner->mSync->Register(owner);
    owner->mSync->Cleanup();
}

TEST_F(SyncObj, AHelperHoldsItsMaster) {
    struct Helper : ZAV_EvHandlerHelper {
    } helper;
    EXPECT_EQ(helper.CheckEvent(nullptr), 1);
    Scripted* master = new Scripted;
    helper.SetMaster(master);
    helper.SetMaster(master); // the helper's is the only reference
    Helper copy(helper);
    helper.SetMaster(nullptr);
    EXPECT_EQ(NewHandlers(), 1);
}

} // namespace
