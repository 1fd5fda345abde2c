#include <memory>

#include <gtest/gtest.h>

#include <zavbase/events/ev_dispatcher.h>
#include <zavbase/events/sync_obj.h>
#include <zavbase/strings/byte_string.h>

#include "tests/support/printed.h"

namespace {

class SyncCounter : public ZAV_EvHandlerBody {
public:
    int mSyncs = 0;
    std::string mText;

protected:
    int HandleEvent(ZAV_Event* event) override {
        ++mSyncs;
        mText = Printed(*event);
        return 0;
    }
};

TEST(Event, ShowsItsType) {
    ZAV_EventStop stop;
    ZAV_String text("is ");
    stop.Type2Str(&text);
    EXPECT_TRUE(text == "is Stop");
    EXPECT_EQ(Printed(stop), "Event 'Stop' = ZAV_EventStop");
    EXPECT_EQ(Printed(*std::make_unique<ZAV_Event>(0x61626364L)), "Event 'abcd'");
}

TEST(SyncObj, NotifiesOnTheWayToZero) {
    ZAV_EvDispatcher dispatcher;
    SyncCounter* counter = new SyncCounter;
    dispatcher.AddEvHandler(ZAV_EvHandlerRef(counter));
    ZAV_SyncObjRef sync;
    sync->Register(counter);
    typedef ZAV_SyncObjBody Sync;
    struct {
        int start, (*change)(Sync&), value, notified;
    } const rows[] = {
        {1, [](Sync& s) { return s.Decrement(); }, 0, 1},
        {0, [](Sync& s) { return s.Decrement(); }, -1, 0},
        {-1, [](Sync& s) { return s.Increment(); }, 0, 1},
        {5, [](Sync& s) { return s.Add(-5); }, 0, 1},
        {0, [](Sync& s) { return s.Add(0); }, 0, 1},
        {5, [](Sync& s) { return s.Substract(5); }, 0, 1},
        {5, [](Sync& s) { return s.Substract(6); }, -1, 0},
        {0, [](Sync& s) { return s.Set(0); }, 0, 1},
        {0x7FFFFFFF, [](Sync& s) { return s.Increment(); }, -0x7FFFFFFF - 1, 0},
        {0, [](Sync& s) { return s.Substract(-0x7FFFFFFF - 1); }, -0x7FFFFFFF - 1, 0},
    };
    for (const auto& row : rows) {
        sync->Set(row.start);
        dispatcher.Dispatch(DISPATCH_ONCE);
        counter->mSyncs = 0;
        EXPECT_EQ(row.change(*sync.GetBody()), row.value) << "row " << &row - rows;
        dispatcher.Dispatch(DISPATCH_ONCE);
        EXPECT_EQ(counter->mSyncs, row.notified) << "row " << &row - rows;
    }
    sync->Set(0);
    dispatcher.Dispatch(DISPATCH_ONCE);
    EXPECT_EQ(counter->mText, "Event 'Sync' = ZAV_EventSync :mRefCount=2,mFlag=0");
}

TEST(SyncObj, NotifiesEachRegistrationUpToAnInactiveHandler) {
    ZAV_EvDispatcher dispatcher;
    SyncCounter *first = new SyncCounter, *inactive = new SyncCounter, *last = new SyncCounter;
    const ZAV_EvHandlerRef refs[] = {first, inactive, last};
    dispatcher.AddEvHandler(refs[0]);
    dispatcher.AddEvHandler(refs[2]);
    ZAV_SyncObjRef sync;
    for (SyncCounter* handler : {first, first, inactive, last}) sync->Register(handler);
    const int events = ZAV_Event::instance_counter;
    sync->Set(0);
    EXPECT_EQ(ZAV_Event::instance_counter, events + 2); // the one for the inactive handler is gone
    sync->UnRegister(first);
    sync->UnRegister(inactive);
    sync->UnRegister(inactive); // not registered any more
    sync->Set(0);
    dispatcher.Dispatch(DISPATCH_ONCE);
    EXPECT_EQ(first->mSyncs, 3);
    EXPECT_EQ(last->mSyncs, 1);
    sync->Cleanup();
    sync->Set(0);
    EXPECT_EQ(dispatcher.QueueLength(), 0u);
}

// The handler holds the object, the object the handler: the cycle is cut by what the handler's destructor or
// the last registration does, in the middle of a call.
TEST(SyncObj, MayLoseItsLastReferenceDuringACall) {
    class Owner : public SyncCounter {
    public:
        ZAV_SyncObjRef mSync;
    };
    const int handlers = ZAV_EvHandlerBody::instance_counter;
    Owner* owner = new Owner;
    ZAV_SyncObjBody* sync = owner->mSync.GetBody();
    sync->Register(owner);
    EXPECT_EQ(ZAV_EvHandlerBody::instance_counter, handlers + 1);
    sync->UnRegister(owner); // destroys the owner, and with it the object
    EXPECT_EQ(ZAV_EvHandlerBody::instance_counter, handlers);

    owner = new Owner;
    owner->mSync->Register(owner);
    owner->mSync->Cleanup();
    EXPECT_EQ(ZAV_EvHandlerBody::instance_counter, handlers);
}

TEST(EvHandlerHelper, HoldsItsMaster) {
    class Helper : public ZAV_EvHandlerHelper {};
    const int handlers = ZAV_EvHandlerBody::instance_counter;
    Helper helper;
    EXPECT_EQ(helper.CheckEvent(nullptr), 1);
    SyncCounter* master = new SyncCounter;
    helper.SetMaster(master);
    helper.SetMaster(master); // the helper's is the only reference
    {
        Helper copy(helper);
        helper.SetMaster(nullptr);
        EXPECT_EQ(ZAV_EvHandlerBody::instance_counter, handlers + 1);
    }
    EXPECT_EQ(ZAV_EvHandlerBody::instance_counter, handlers);
}

} // namespace
