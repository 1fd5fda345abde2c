// Every class's run-time record: its name, the size of its objects and the record of its base.
#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

namespace {

struct Row {
    const ZAV_RuntimeClass* record;
    const char* name;
    size_t size;
    const ZAV_RuntimeClass* base;
};

#define ROW(NAME, BASE)                                                                                      \
    { &NAME::class##NAME, #NAME, sizeof(NAME), &BASE::class##BASE }

const Row theRows[] = {
    ROW(ZAV_CltObject, ZAV_Object),
    ROW(ZAV_Exception, ZAV_Object),
    ROW(ZAV_I18nMsg, ZAV_Object),
    ROW(ZAV_I18nResource, ZAV_Object),
    ROW(ZAV_RefCount, ZAV_Object),
    ROW(ZAV_EvDispatcher, ZAV_Object),
    ROW(ZAV_EvHandlerHelper, ZAV_Object),
    ROW(ZAV_File, ZAV_Object),
    ROW(ZAV_ResourceLockPool, ZAV_Object),
    ROW(ZAV_SharedLib, ZAV_Object),
    ROW(ZAV_TextEncodingConverter, ZAV_Object),
    ROW(ZAV_SystemString, ZAV_Object),
    ROW(ZAV_Error, ZAV_I18nMsg),
    ROW(ZAV_MemoryException, ZAV_Exception),
    ROW(ZAV_FileException, ZAV_Exception),
    ROW(ZAV_ErrorException, ZAV_Exception),
    ROW(ZAV_ExitException, ZAV_Exception),
    ROW(ZAV_BinPackException, ZAV_Exception),
    ROW(ZAV_LookupKey, ZAV_CltObject),
    ROW(ZAV_Integer, ZAV_CltObject),
    ROW(ZAV_CltNil, ZAV_CltObject),
    ROW(ZAV_CltString, ZAV_CltObject),
    ROW(ZAV_CltUTFString, ZAV_CltObject),
    ROW(ZAV_IStream, ZAV_CltObject),
    ROW(ZAV_OStream, ZAV_CltObject),
    ROW(ZAV_Collection, ZAV_CltObject),
    ROW(ZAV_Iterator, ZAV_CltObject),
    ROW(ZAV_Link, ZAV_CltObject),
    ROW(ZAV_Thread, ZAV_CltObject),
    ROW(ZAV_AssocUVal, ZAV_CltObject),
    ROW(ZAV_Assoc, ZAV_LookupKey),
    ROW(ZAV_AssocInt, ZAV_LookupKey),
    ROW(ZAV_AssocIs, ZAV_LookupKey),
    ROW(ZAV_AssocOs, ZAV_LookupKey),
    ROW(ZAV_ArrayObj, ZAV_Collection),
    ROW(ZAV_Bag, ZAV_Collection),
    ROW(ZAV_SeqCltn, ZAV_Collection),
    ROW(ZAV_Set, ZAV_Collection),
    ROW(ZAV_Dictionary, ZAV_Set),
    ROW(ZAV_LinkedList, ZAV_SeqCltn),
    ROW(ZAV_OrderedCltn, ZAV_SeqCltn),
    ROW(ZAV_I18nMsgArgList, ZAV_LinkedList),
    ROW(ZAV_LinkObj, ZAV_Link),
    ROW(ZAV_Event, ZAV_Link),
    ROW(ZAV_Listener, ZAV_Link),
    ROW(ZAV_Ref, ZAV_Link),
    ROW(ZAV_EventStart, ZAV_Event),
    ROW(ZAV_EventStop, ZAV_Event),
    ROW(ZAV_EventTimer, ZAV_Event),
    ROW(ZAV_TimerMgr, ZAV_Listener),
    ROW(ZAV_EvHandlerBody, ZAV_RefCount),
    ROW(ZAV_SyncObjBody, ZAV_RefCount),
    ROW(ZAV_TimerBody, ZAV_SyncObjBody),
    ROW(ZAV_EvHandlerRef, ZAV_Ref),
    ROW(ZAV_SyncObjRef, ZAV_Ref),
    ROW(ZAV_TimerRef, ZAV_SyncObjRef),
    ROW(ZAV_I18nMsgArg, ZAV_Link),
    ROW(ZAV_UVal, ZAV_CltObject),
    ROW(ZAV_UValDict, ZAV_UVal),
    ROW(ZAV_UValChar, ZAV_UVal),
    ROW(ZAV_UValUChar, ZAV_UVal),
    ROW(ZAV_UValShort, ZAV_UVal),
    ROW(ZAV_UValUShort, ZAV_UVal),
    ROW(ZAV_UValLong, ZAV_UVal),
    ROW(ZAV_UValULong, ZAV_UVal),
    ROW(ZAV_UValFloat, ZAV_UVal),
    ROW(ZAV_UValDouble, ZAV_UVal),
    ROW(ZAV_UValString, ZAV_UVal),
    ROW(ZAV_UValUTFString, ZAV_UVal),
    ROW(ZAV_UValPtr, ZAV_UVal),
};

} // namespace

TEST(Records, NameSizeAndBase) {
    for (const Row& row : theRows) {
        SCOPED_TRACE(row.name);
        EXPECT_STREQ(row.name, row.record->mName);
        EXPECT_EQ(row.size, row.record->mObjectSize);
        EXPECT_EQ(nullptr, row.record->mReserved);
        ASSERT_NE(nullptr, row.record->mGetBaseClass);
        EXPECT_EQ(row.base, row.record->mGetBaseClass());
    }
}
