// The classes that hosts derive from or embed: what their run-time records say, the order of their fields and
// of their virtual operations on every platform, and the size of their objects where pointers and long have
// 32 bits.
#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include <bit>

namespace {

constexpr size_t ANY = 0; // for classes whose size is not part of the contract

void CheckRecord(const ZAV_RuntimeClass& record, const char* name, size_t size, ZAV_RuntimeClass* base) {
    EXPECT_STREQ(name, record.mName);
    EXPECT_EQ(size, record.mObjectSize);
    EXPECT_EQ(nullptr, record.mReserved);
    ASSERT_NE(nullptr, record.mGetBaseClass);
    EXPECT_EQ(base, record.mGetBaseClass());
}

template <class... Members>
void CheckFields(size_t size, size_t size32, Members... members) {
    const std::vector<ptrdiff_t> offsets = {std::bit_cast<ptrdiff_t>(members)...};
    for (size_t i = 1; i < offsets.size(); ++i) EXPECT_LT(offsets[i - 1], offsets[i]) << "field " << i;
    if (sizeof(void*) == 4 && size32 != ANY) {
        EXPECT_EQ(size32, size);
    }
}

/// A class without a record: its size and its fields in their listed order.
#define PLAIN(NAME, SIZE32, ...)                                                                             \
    do {                                                                                                     \
        using C [[maybe_unused]] = NAME;                                                                     \
        SCOPED_TRACE(#NAME);                                                                                 \
        CheckFields(sizeof(NAME), SIZE32 __VA_OPT__(, ) __VA_ARGS__);                                        \
    } while (0)

/// A class with a record, in which BASE is its base.
#define CLASS(NAME, BASE, ...)                                                                               \
    do {                                                                                                     \
        SCOPED_TRACE(#NAME);                                                                                 \
        CheckRecord(NAME::class##NAME, #NAME, sizeof(NAME), &BASE::class##BASE);                             \
        PLAIN(NAME, __VA_ARGS__);                                                                            \
    } while (0)

#define TYPED(NAME, SIZE32) CLASS(NAME, ZAV_UVal, SIZE32, &C::mValue, &C::mExternal, &C::mData)

/// The slot of a virtual member function: a pointer to one holds its byte offset in the table plus 1.
template <class Function>
int Slot(Function function) {
    struct Representation {
        ptrdiff_t entry, adjustment;
    };
    static_assert(sizeof(Function) == sizeof(Representation));
    ptrdiff_t entry = std::bit_cast<Representation>(function).entry;
    return entry & 1 ? static_cast<int>((entry - 1) / ptrdiff_t{sizeof(void*)}) : -1;
}

template <class... Functions>
void Consecutive(const char* name, int first, Functions... operations) {
    int expected = first;
    for (const int slot : {Slot(operations)...}) EXPECT_EQ(expected++, slot) << name;
}

#define SLOTS(NAME, ...)                                                                                     \
    do {                                                                                                     \
        using C = NAME;                                                                                      \
        Consecutive(#NAME, __VA_ARGS__);                                                                     \
    } while (0)

/// The overload with that signature.
template <class Signature, class C>
auto As(Signature C::*operation) {
    return operation;
}

using Clt = ZAV_CltObject;

} // namespace

TEST(Layout, Foundation) {
    PLAIN(ZAV_RuntimeClass, 16, &C::mName, &C::mObjectSize, &C::mGetBaseClass, &C::mReserved);
    PLAIN(ZAV_Object, 4);
    PLAIN(ZAV_Tracer, 20, &C::mName, &C::mStreamP, &C::mMask);
    PLAIN(ZAV_EXCEPTION_LINK, 8, &C::mNext, &C::mException);
    CLASS(ZAV_Exception, ZAV_Object, 12, &C::mDeletable, &C::mDeleted);
    CLASS(ZAV_MemoryException, ZAV_Exception, ANY);
    CLASS(ZAV_FileException, ZAV_Exception, 20, &C::mCode, &C::mOsError);
    CLASS(ZAV_ErrorException, ZAV_Exception, ANY);
    CLASS(ZAV_ExitException, ZAV_Exception, ANY);
    CLASS(ZAV_BinPackException, ZAV_Exception, ANY);
    CLASS(ZAV_RefCount, ZAV_Object, 8);
    CLASS(ZAV_Ref, ZAV_Link, 12);
    PLAIN(ZAV_AllocMemBody, 20, &C::mPointer, &C::mSize, &C::mAlign);
}

TEST(Layout, Strings) {
    PLAIN(ZAV_Str, 16, &C::mData, &C::mLength, &C::mCapacity);
    PLAIN(ZAV_String, 16);
    PLAIN(ZAV_UTFString, 16);
    PLAIN(ZAV_SubStr, 12, &C::mStart, &C::mLength, &C::mOwner);
    PLAIN(ZAV_SubString, 12);
    PLAIN(ZAV_UTFSubString, 12);
    CLASS(ZAV_SystemString, ZAV_Object, 24, &C::mString, &C::mUtfString);
    CLASS(ZAV_TextEncodingConverter, ZAV_Object, 8);
}

TEST(Layout, Collections) {
    CLASS(ZAV_CltObject, ZAV_Object, 4);
    CLASS(ZAV_CltNil, ZAV_CltObject, ANY);
    CLASS(ZAV_LookupKey, ZAV_CltObject, 8);
    CLASS(ZAV_Assoc, ZAV_LookupKey, 12);
    CLASS(ZAV_Integer, ZAV_CltObject, 8);
    CLASS(ZAV_AssocInt, ZAV_LookupKey, 16);
    CLASS(ZAV_AssocIs, ZAV_LookupKey, 16);
    CLASS(ZAV_AssocOs, ZAV_LookupKey, ANY);
    CLASS(ZAV_CltString, ZAV_CltObject, 20);
    CLASS(ZAV_CltUTFString, ZAV_CltObject, 20);
    CLASS(ZAV_IStream, ZAV_CltObject, 8);
    CLASS(ZAV_OStream, ZAV_CltObject, ANY);
    CLASS(ZAV_Collection, ZAV_CltObject, ANY);
    CLASS(ZAV_SeqCltn, ZAV_Collection, ANY);
    CLASS(ZAV_Iterator, ZAV_CltObject, 24, &C::mCollection, &C::mIndex, &C::mOccurrence, &C::mCurrent,
          &C::mState);
    CLASS(ZAV_ArrayObj, ZAV_Collection, 12, &C::mArray, &C::mLength);
    CLASS(ZAV_Set, ZAV_Collection, 28, &C::mCount, &C::mNbits, &C::mMask, &C::mContents);
    CLASS(ZAV_Dictionary, ZAV_Set, 28);
    PLAIN(ZAV_DictAutoDel, 28);
    CLASS(ZAV_Bag, ZAV_Collection, 36, &C::mCount, &C::mContents);
    CLASS(ZAV_OrderedCltn, ZAV_SeqCltn, 20, &C::mCount, &C::mContents);
    PLAIN(ZAV_Stack, 20);
    CLASS(ZAV_Link, ZAV_CltObject, 8);
    CLASS(ZAV_LinkObj, ZAV_Link, 12);
    CLASS(ZAV_LinkedList, ZAV_SeqCltn, 20, &C::mFirst, &C::mLast, &C::mCount, &C::mNil);
}

TEST(Layout, Values) {
    CLASS(ZAV_UVal, ZAV_CltObject, 20, &C::mType, &C::mFamily, &C::mNrItemsToPrint, &C::mDimension);
    TYPED(ZAV_UValChar, 32);
    TYPED(ZAV_UValUChar, 32);
    TYPED(ZAV_UValShort, 32);
    TYPED(ZAV_UValUShort, 32);
    TYPED(ZAV_UValLong, 32);
    TYPED(ZAV_UValULong, 32);
    TYPED(ZAV_UValFloat, 32);
    TYPED(ZAV_UValDouble, 40);
    TYPED(ZAV_UValString, 44);
    TYPED(ZAV_UValUTFString, 44);
    TYPED(ZAV_UValPtr, 32);
    CLASS(ZAV_AssocUVal, ZAV_CltObject, 88, &C::mKey, &C::mKeyLength, &C::mValue, &C::mPrev, &C::mNext);
    CLASS(ZAV_UValDict, ZAV_UVal, 60, &C::mSet, &C::mFirst, &C::mLast, &C::mCaseInsensitive);
    PLAIN(ZAV_DictPath, 32, &C::mPath, &C::mFirstKey, &C::mEnd, &C::mSize);
}

TEST(Layout, MessagesAndPlatform) {
    CLASS(ZAV_I18nMsg, ZAV_Object, 32, &C::mWarning, &C::mId, &C::mArgs);
    CLASS(ZAV_Error, ZAV_I18nMsg, 32);
    CLASS(ZAV_I18nMsgArg, ZAV_Link, 60, &C::mTag, &C::mType, &C::mMsg);
    CLASS(ZAV_I18nMsgArgList, ZAV_LinkedList, 20);
    CLASS(ZAV_I18nResource, ZAV_Object, 56, &C::mResourceFile, &C::mDicts);
    CLASS(ZAV_File, ZAV_Object, 44, &C::mName, &C::mInfo);
    PLAIN(ZAV_Point, 4, &C::mX, &C::mY);
    PLAIN(ZAV_Rect, 8, &C::mOrigin, &C::mCorner);
    CLASS(ZAV_SharedLib, ZAV_Object, 96, &C::mName, &C::mDirectory, &C::mFullPath, &C::mLoaded, &C::mModule,
          &C::mCreateFn, &C::mFreeFn, &C::mGetI18nDefsFn);
    PLAIN(ZAV_StaticDll, 36, &C::mName, &C::mCreateFn, &C::mFreeFn, &C::mGetI18nDefsFn);
}

TEST(Layout, ThreadsAndLocks) {
    PLAIN(ZAV_ThreadError, 4);
    PLAIN(ZAV_Mutex, 4);
    PLAIN(ZAV_Mutex::Lock, 8, &C::mMutex, &C::mAcquired);
    PLAIN(ZAV_ReentrantMutex, 16, &C::mOwner, &C::mCount, &C::mGuard, &C::mSemaphore);
    PLAIN(ZAV_Semaphore, 4);
    PLAIN(ZAV_ReadWriteLock, 40, &C::mWriteMutex, &C::mCountSection, &C::mReaders, &C::mNoReaders);
    PLAIN(ZAV_ReadWriteLock::ReadLock, 8, &C::mLock, &C::mAcquired);
    PLAIN(ZAV_MutexSignaller, 16, &C::mMutex, &C::mSemaphore, &C::mWaiters, &C::mWaitersMutex);
    PLAIN(ZAV_MutexSignaller::Lock, 8, &C::mSignaller, &C::mHeld);
    PLAIN(ZAV_Monitor, 4);
    PLAIN(ZAV_ReentrantMonitor, 16);
    CLASS(ZAV_ResourceLockPool, ZAV_Object, 92, &C::mFileName, &C::mLocks, &C::mDirty);
    CLASS(ZAV_Thread, ZAV_CltObject, 132, &C::mInfoString, &C::mHandle, &C::mThreadId, &C::mRunning,
          &C::mRunningLock, &C::mFlag, &C::mCleanup);
}

TEST(Layout, Events) {
    CLASS(ZAV_Event, ZAV_Link, 20, &C::mDestination, &C::mType, &C::mPriority);
    CLASS(ZAV_EventStart, ZAV_Event, ANY);
    CLASS(ZAV_EventStop, ZAV_Event, 20);
    PLAIN(ZAV_EventSync, 32);
    CLASS(ZAV_EventTimer, ZAV_Event, 32, &C::mTimeout, &C::mStart, &C::mId);
    CLASS(ZAV_EvHandlerBody, ZAV_RefCount, 12);
    CLASS(ZAV_EvHandlerRef, ZAV_Ref, 12);
    CLASS(ZAV_EvHandlerHelper, ZAV_Object, 8);
    CLASS(ZAV_SyncObjBody, ZAV_RefCount, 48, &C::mFlag, &C::mRegistered, &C::mSyncLock);
    CLASS(ZAV_SyncObjRef, ZAV_Ref, ANY);
    CLASS(ZAV_TimerBody, ZAV_SyncObjBody, 56, &C::mStart, &C::mTimeout);
    CLASS(ZAV_TimerRef, ZAV_SyncObjRef, ANY);
    CLASS(ZAV_Listener, ZAV_Link, 8);
    PLAIN(ZAV_ListenerThread, 136);
    PLAIN(ZAV_EvDispatcherThread, 136);
    CLASS(ZAV_EvDispatcher, ZAV_Object, 88, &C::mListeners, &C::mHandlers, &C::mSignaller, &C::mQueue,
          &C::mWaiting, &C::mStopping);
    CLASS(ZAV_TimerMgr, ZAV_Listener, 64, &C::mTimers, &C::mLastId, &C::mTimersMutex, &C::mStopped,
          &C::mThread, &C::mDispatcher, &C::mWakeUp);
}

// The destructor takes the first two slots, so GetRuntimeClass stands in slot 2 of every class of the tree.
TEST(Slots, ObjectsAndStrings) {
    SLOTS(ZAV_Object, 2, &C::GetRuntimeClass, &C::PrintOn, &C::DumpOn);
    SLOTS(ZAV_Exception, 5, &C::ToString);
    SLOTS(ZAV_Str, 2, &C::PrintOn);
}

TEST(Slots, Collections) {
    SLOTS(ZAV_CltObject, 5, &C::Species, &C::Size, &C::IsEqual, &C::Compare, &C::Hash);
    SLOTS(ZAV_LookupKey, 10, &C::ShallowCopy, &C::DeepenShallowCopy, As<Clt*(Clt*)>(&C::Key),
          As<Clt*() const>(&C::Key), As<Clt*(Clt*)>(&C::Value), As<Clt*() const>(&C::Value));
    SLOTS(ZAV_Integer, 10, &C::ShallowCopy, &C::DeepenShallowCopy);
    SLOTS(ZAV_CltString, 10, &C::ShallowCopy);
    SLOTS(ZAV_Collection, 10, &C::Add, &C::AddContentsTo, As<Clt*&(int)>(&C::At),
          As<Clt* const&(int) const>(&C::At), &C::DoNext, &C::Remove, &C::RemoveAndDestroy, &C::AddAll,
          &C::RemoveAll, &C::DeepenShallowCopy, &C::DoFinish, &C::DoReset, &C::Clear, &C::ClearAndDestroy,
          &C::Includes, &C::IsEmpty, &C::OccurrencesOf);
    SLOTS(ZAV_Set, 27, &C::ShallowCopy, &C::FindIndexOf, &C::Capacity, &C::FindObjectWithKey, &C::ReSize);
    SLOTS(ZAV_Dictionary, 32, &C::AddAssoc, &C::AddKeysTo, &C::AddValuesTo, &C::AssocAt,
          As<Clt*(const Clt*, Clt*)>(&C::AtKey), As<Clt*(const Clt*) const>(&C::AtKey), &C::IncludesAssoc,
          &C::IncludesKey, &C::KeyAtValue, &C::RemoveAssoc, &C::RemoveKey);
    SLOTS(ZAV_ArrayObj, 27, &C::ShallowCopy, &C::Capacity, &C::ReSize, &C::Sort);
    SLOTS(ZAV_SeqCltn, 27, &C::First, &C::Last, As<int(const Clt*) const>(&C::IndexOf),
          &C::IndexOfSubCollection, &C::ReplaceFrom);
}

TEST(Slots, Values) {
    SLOTS(ZAV_UVal, 10, &C::DeepCopy, &C::SetStrValue, &C::GetStrValue, &C::SetPtrValue, &C::GetPtrValue,
          &C::SetCharValue, &C::GetCharValue, &C::SetUCharValue, &C::GetUCharValue, &C::SetShortValue,
          &C::GetShortValue, &C::SetUShortValue, &C::GetUShortValue, &C::SetLongValue, &C::GetLongValue,
          &C::SetULongValue, &C::GetULongValue, &C::SetFloatValue, &C::GetFloatValue, &C::SetDoubleValue,
          &C::GetDoubleValue, &C::GetCStringValue, &C::GetSystemStringValue);
}

TEST(Slots, ThreadsAndEvents) {
    SLOTS(ZAV_Thread, 10, &C::StopThread, &C::MySignalHandler, &C::GetInfoString,
          As<void(char*)>(&C::SetInfoString), &C::run, &C::cleanup);
    SLOTS(ZAV_Event, 10, &C::EmergencyCleanup);
    SLOTS(ZAV_EvHandlerBody, 5, &C::HandleEvent);
    SLOTS(ZAV_EvHandlerHelper, 5, &C::SetMaster, &C::CheckEvent);
    SLOTS(ZAV_Listener, 10, &C::Listen, &C::Stop);
}
