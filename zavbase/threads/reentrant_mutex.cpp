#include <zavbase/threads/reentrant_mutex.h>

#include <zavbase/os/sync.h>

ZAV_ReentrantMutex::ZAV_ReentrantMutex() { zav_os::ReentrantOpen({mOwner, mCount, mGuard, mSemaphore}); }
ZAV_ReentrantMutex::~ZAV_ReentrantMutex() { zav_os::ReentrantClose({mOwner, mCount, mGuard, mSemaphore}); }

boolean_t ZAV_ReentrantMutex::Enter(boolean_t tryOnly) {
    return ZAV_Bool(zav_os::ReentrantEnter({mOwner, mCount, mGuard, mSemaphore}, tryOnly));
}

void ZAV_ReentrantMutex::Leave() { zav_os::ReentrantLeave({mOwner, mCount, mGuard, mSemaphore}); }
