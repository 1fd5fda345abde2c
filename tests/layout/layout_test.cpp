// The fields of the classes whose layout is part of the contract: their order on every platform, and the
// sizes of the objects where pointers and long have 32 bits.
#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <vector>

namespace {

template <class Member, class Class>
ptrdiff_t Offset(Member Class::*member) {
    return std::bit_cast<ptrdiff_t>(member);
}

struct Layout {
    const char* name;
    size_t size;                    // of the object
    size_t size32;                  // what it must be with 32-bit pointers
    std::vector<ptrdiff_t> offsets; // of the fields in their listed order
};

#define LAYOUT(NAME, SIZE32, ...)                                                                            \
    Layout {                                                                                                 \
#NAME, sizeof(NAME), SIZE32, { __VA_ARGS__ }                                                         \
    }

void Check(const std::vector<Layout>& layouts) {
    for (const Layout& layout : layouts) {
        SCOPED_TRACE(layout.name);
        for (size_t i = 1; i < layout.offsets.size(); i++)
            EXPECT_LT(layout.offsets[i - 1], layout.offsets[i]) << "field " << i;
        if (sizeof(void*) == 4) {
            EXPECT_EQ(layout.size32, layout.size);
        }
    }
}

} // namespace

TEST(Layout, Foundation) {
    using Record = ZAV_RuntimeClass;
    Check({
        LAYOUT(Record, 16, Offset(&Record::mName), Offset(&Record::mObjectSize),
               Offset(&Record::mGetBaseClass), Offset(&Record::mReserved)),
        LAYOUT(ZAV_Object, 4),
        LAYOUT(ZAV_Tracer, 20, Offset(&ZAV_Tracer::mName), Offset(&ZAV_Tracer::mStreamP),
               Offset(&ZAV_Tracer::mMask)),
        LAYOUT(ZAV_Exception, 12, Offset(&ZAV_Exception::mDeletable), Offset(&ZAV_Exception::mDeleted)),
        LAYOUT(ZAV_FileException, 20, Offset(&ZAV_FileException::mCode),
               Offset(&ZAV_FileException::mOsError)),
        LAYOUT(ZAV_EXCEPTION_LINK, 8, Offset(&ZAV_EXCEPTION_LINK::mNext),
               Offset(&ZAV_EXCEPTION_LINK::mException)),
        LAYOUT(ZAV_RefCount, 8),
        LAYOUT(ZAV_Ref, 12),
        LAYOUT(ZAV_AllocMemBody, 20, Offset(&ZAV_AllocMemBody::mPointer), Offset(&ZAV_AllocMemBody::mSize),
               Offset(&ZAV_AllocMemBody::mAlign)),
    });
}

TEST(Layout, Strings) {
    Check({
        LAYOUT(ZAV_Str, 16, Offset(&ZAV_Str::mData), Offset(&ZAV_Str::mLength), Offset(&ZAV_Str::mCapacity)),
        LAYOUT(ZAV_String, 16),
        LAYOUT(ZAV_UTFString, 16),
        LAYOUT(ZAV_SubStr, 12, Offset(&ZAV_SubStr::mStart), Offset(&ZAV_SubStr::mLength),
               Offset(&ZAV_SubStr::mOwner)),
        LAYOUT(ZAV_SubString, 12),
        LAYOUT(ZAV_UTFSubString, 12),
        LAYOUT(ZAV_SystemString, 24, Offset(&ZAV_SystemString::mString),
               Offset(&ZAV_SystemString::mUtfString)),
        LAYOUT(ZAV_TextEncodingConverter, 8),
    });
}

TEST(Layout, Collections) {
    Check({
        LAYOUT(ZAV_CltObject, 4),
        LAYOUT(ZAV_LookupKey, 8),
        LAYOUT(ZAV_Assoc, 12),
        LAYOUT(ZAV_Integer, 8),
        LAYOUT(ZAV_AssocInt, 16),
        LAYOUT(ZAV_AssocIs, 16),
        LAYOUT(ZAV_CltString, 20),
        LAYOUT(ZAV_CltUTFString, 20),
        LAYOUT(ZAV_IStream, 8),
        LAYOUT(ZAV_Iterator, 24, Offset(&ZAV_Iterator::mCollection), Offset(&ZAV_Iterator::mIndex),
               Offset(&ZAV_Iterator::mOccurrence), Offset(&ZAV_Iterator::mCurrent),
               Offset(&ZAV_Iterator::mState)),
        LAYOUT(ZAV_ArrayObj, 12, Offset(&ZAV_ArrayObj::mArray), Offset(&ZAV_ArrayObj::mLength)),
        LAYOUT(ZAV_Set, 28, Offset(&ZAV_Set::mCount), Offset(&ZAV_Set::mNbits), Offset(&ZAV_Set::mMask),
               Offset(&ZAV_Set::mContents)),
        LAYOUT(ZAV_Dictionary, 28),
        LAYOUT(ZAV_DictAutoDel, 28),
        LAYOUT(ZAV_Bag, 36, Offset(&ZAV_Bag::mCount), Offset(&ZAV_Bag::mContents)),
        LAYOUT(ZAV_OrderedCltn, 20, Offset(&ZAV_OrderedCltn::mCount), Offset(&ZAV_OrderedCltn::mContents)),
        LAYOUT(ZAV_Stack, 20),
        LAYOUT(ZAV_Link, 8),
        LAYOUT(ZAV_LinkObj, 12),
        LAYOUT(ZAV_LinkedList, 20, Offset(&ZAV_LinkedList::mFirst), Offset(&ZAV_LinkedList::mLast),
               Offset(&ZAV_LinkedList::mCount), Offset(&ZAV_LinkedList::mNil)),
    });
}

TEST(Layout, Values) {
#define TYPED(NAME, SIZE32)                                                                                  \
    LAYOUT(NAME, SIZE32, Offset(&NAME::mValue), Offset(&NAME::mExternal), Offset(&NAME::mData))
    Check({
        LAYOUT(ZAV_UVal, 20, Offset(&ZAV_UVal::mType), Offset(&ZAV_UVal::mFamily),
               Offset(&ZAV_UVal::mNrItemsToPrint), Offset(&ZAV_UVal::mDimension)),
        TYPED(ZAV_UValChar, 32),
        TYPED(ZAV_UValUChar, 32),
        TYPED(ZAV_UValShort, 32),
        TYPED(ZAV_UValUShort, 32),
        TYPED(ZAV_UValLong, 32),
        TYPED(ZAV_UValULong, 32),
        TYPED(ZAV_UValFloat, 32),
        TYPED(ZAV_UValDouble, 40),
        TYPED(ZAV_UValString, 44),
        TYPED(ZAV_UValUTFString, 44),
        TYPED(ZAV_UValPtr, 32),
        LAYOUT(ZAV_AssocUVal, 88, Offset(&ZAV_AssocUVal::mKey), Offset(&ZAV_AssocUVal::mKeyLength),
               Offset(&ZAV_AssocUVal::mValue), Offset(&ZAV_AssocUVal::mPrev), Offset(&ZAV_AssocUVal::mNext)),
        LAYOUT(ZAV_UValDict, 60, Offset(&ZAV_UValDict::mSet), Offset(&ZAV_UValDict::mFirst),
               Offset(&ZAV_UValDict::mLast), Offset(&ZAV_UValDict::mCaseInsensitive)),
        LAYOUT(ZAV_DictPath, 32, Offset(&ZAV_DictPath::mPath), Offset(&ZAV_DictPath::mFirstKey),
               Offset(&ZAV_DictPath::mEnd), Offset(&ZAV_DictPath::mSize)),
    });
}

TEST(Layout, MessagesAndPlatform) {
    Check({
        LAYOUT(ZAV_I18nMsg, 32, Offset(&ZAV_I18nMsg::mWarning), Offset(&ZAV_I18nMsg::mId),
               Offset(&ZAV_I18nMsg::mArgs)),
        LAYOUT(ZAV_Error, 32),
        LAYOUT(ZAV_I18nMsgArg, 60, Offset(&ZAV_I18nMsgArg::mTag), Offset(&ZAV_I18nMsgArg::mType),
               Offset(&ZAV_I18nMsgArg::mMsg)),
        LAYOUT(ZAV_I18nMsgArgList, 20),
        LAYOUT(ZAV_I18nResource, 56, Offset(&ZAV_I18nResource::mResourceFile),
               Offset(&ZAV_I18nResource::mDicts)),
        LAYOUT(ZAV_File, 44, Offset(&ZAV_File::mName), Offset(&ZAV_File::mInfo)),
        LAYOUT(ZAV_Point, 4, Offset(&ZAV_Point::mX), Offset(&ZAV_Point::mY)),
        LAYOUT(ZAV_Rect, 8, Offset(&ZAV_Rect::mOrigin), Offset(&ZAV_Rect::mCorner)),
        LAYOUT(ZAV_SharedLib, 96, Offset(&ZAV_SharedLib::mName), Offset(&ZAV_SharedLib::mDirectory),
               Offset(&ZAV_SharedLib::mFullPath), Offset(&ZAV_SharedLib::mLoaded),
               Offset(&ZAV_SharedLib::mModule), Offset(&ZAV_SharedLib::mCreateFn),
               Offset(&ZAV_SharedLib::mFreeFn), Offset(&ZAV_SharedLib::mGetI18nDefsFn)),
        LAYOUT(ZAV_StaticDll, 36, Offset(&ZAV_StaticDll::mName), Offset(&ZAV_StaticDll::mCreateFn),
               Offset(&ZAV_StaticDll::mFreeFn), Offset(&ZAV_StaticDll::mGetI18nDefsFn)),
    });
}

TEST(Layout, ThreadsAndLocks) {
    using RW = ZAV_ReadWriteLock;
    using Signaller = ZAV_MutexSignaller;
    Check({
        LAYOUT(ZAV_ThreadError, 4),
        LAYOUT(ZAV_Mutex, 4),
        LAYOUT(ZAV_Mutex::Lock, 8, Offset(&ZAV_Mutex::Lock::mMutex), Offset(&ZAV_Mutex::Lock::mAcquired)),
        LAYOUT(ZAV_ReentrantMutex, 16, Offset(&ZAV_ReentrantMutex::mOwner),
               Offset(&ZAV_ReentrantMutex::mCount), Offset(&ZAV_ReentrantMutex::mGuard),
               Offset(&ZAV_ReentrantMutex::mSemaphore)),
        LAYOUT(ZAV_Semaphore, 4),
        LAYOUT(ZAV_ReadWriteLock, 40, Offset(&RW::mWriteMutex), Offset(&RW::mCountSection),
               Offset(&RW::mReaders), Offset(&RW::mNoReaders)),
        LAYOUT(ZAV_ReadWriteLock::ReadLock, 8, Offset(&RW::ReadLock::mLock),
               Offset(&RW::ReadLock::mAcquired)),
        LAYOUT(ZAV_MutexSignaller, 16, Offset(&Signaller::mMutex), Offset(&Signaller::mSemaphore),
               Offset(&Signaller::mWaiters), Offset(&Signaller::mWaitersMutex)),
        LAYOUT(ZAV_MutexSignaller::Lock, 8, Offset(&Signaller::Lock::mSignaller),
               Offset(&Signaller::Lock::mHeld)),
        LAYOUT(ZAV_Monitor, 4),
        LAYOUT(ZAV_ReentrantMonitor, 16),
        LAYOUT(ZAV_ResourceLockPool, 92, Offset(&ZAV_ResourceLockPool::mFileName),
               Offset(&ZAV_ResourceLockPool::mLocks), Offset(&ZAV_ResourceLockPool::mDirty)),
        LAYOUT(ZAV_Thread, 132, Offset(&ZAV_Thread::mInfoString), Offset(&ZAV_Thread::mHandle),
               Offset(&ZAV_Thread::mThreadId), Offset(&ZAV_Thread::mRunning),
               Offset(&ZAV_Thread::mRunningLock), Offset(&ZAV_Thread::mFlag), Offset(&ZAV_Thread::mCleanup)),
    });
}

TEST(Layout, Events) {
    using Dispatcher = ZAV_EvDispatcher;
    using Mgr = ZAV_TimerMgr;
    Check({
        LAYOUT(ZAV_Event, 20, Offset(&ZAV_Event::mDestination), Offset(&ZAV_Event::mType),
               Offset(&ZAV_Event::mPriority)),
        LAYOUT(ZAV_EventStop, 20),
        LAYOUT(ZAV_EventSync, 32),
        LAYOUT(ZAV_EventTimer, 32, Offset(&ZAV_EventTimer::mTimeout), Offset(&ZAV_EventTimer::mStart),
               Offset(&ZAV_EventTimer::mId)),
        LAYOUT(ZAV_EvHandlerBody, 12),
        LAYOUT(ZAV_EvHandlerRef, 12),
        LAYOUT(ZAV_EvHandlerHelper, 8),
        LAYOUT(ZAV_SyncObjBody, 48, Offset(&ZAV_SyncObjBody::mFlag), Offset(&ZAV_SyncObjBody::mRegistered),
               Offset(&ZAV_SyncObjBody::mSyncLock)),
        LAYOUT(ZAV_TimerBody, 56, Offset(&ZAV_TimerBody::mStart), Offset(&ZAV_TimerBody::mTimeout)),
        LAYOUT(ZAV_Listener, 8),
        LAYOUT(ZAV_ListenerThread, 136),
        LAYOUT(ZAV_EvDispatcherThread, 136),
        LAYOUT(ZAV_EvDispatcher, 88, Offset(&Dispatcher::mListeners), Offset(&Dispatcher::mHandlers),
               Offset(&Dispatcher::mSignaller), Offset(&Dispatcher::mQueue), Offset(&Dispatcher::mWaiting),
               Offset(&Dispatcher::mStopping)),
        LAYOUT(ZAV_TimerMgr, 64, Offset(&Mgr::mTimers), Offset(&Mgr::mLastId), Offset(&Mgr::mTimersMutex),
               Offset(&Mgr::mStopped), Offset(&Mgr::mThread), Offset(&Mgr::mDispatcher),
               Offset(&Mgr::mWakeUp)),
    });
}
