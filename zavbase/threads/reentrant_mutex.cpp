#include <zavbase/threads/reentrant_mutex.h>

#include <zavbase/os/sync.h>

ZAV_ReentrantMutex::ZAV_ReentrantMutex() { zav_os::ReentrantOpen({mOwner, mCount, mGuard, mSemaphore}); }
ZAV_ReentrantMutex::~ZAV_ReentrantMutex() { zav_os::ReentrantClose({mOwner, mCount, mGuard, mSemaphore}); }

#if ZAV_LOCKS_ARE_WORDS
// Addresses and the system's identifiers go to the next thread when one ends, and that one would pass for the
// owner of what the other left locked.
__thread uintptr_t zav_lock::theThreadMark = 0;

static uintptr_t OwnMark() {
    static std::atomic<uintptr_t> last{0};
    if (zav_lock::theThreadMark == 0)
        zav_lock::theThreadMark = last.fetch_add(1, std::memory_order_relaxed) + 1;
    return zav_lock::theThreadMark;
}
#else
static uintptr_t OwnMark() { return 0; }
#endif

boolean_t ZAV_ReentrantMutex::Enter(boolean_t tryOnly) {
    if (!zav_os::ReentrantEnter({mOwner, mCount, mGuard, mSemaphore}, tryOnly)) return B_FALSE;
    if (ZAV_LOCKS_ARE_WORDS) {
        mOwner.store(OwnMark(), std::memory_order_relaxed);
        mCount.store(1, std::memory_order_relaxed);
    }
    return B_TRUE;
}

void ZAV_ReentrantMutex::Leave() { zav_os::ReentrantLeave({mOwner, mCount, mGuard, mSemaphore}); }
