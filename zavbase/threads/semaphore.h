#ifndef ZAVBASE_THREADS_SEMAPHORE_H
#define ZAVBASE_THREADS_SEMAPHORE_H

#include <zavbase/threads/lock_word.h>

/// A counting semaphore inside one process; it starts with no units and holds at most 2^31 - 1.
class ZAV_API ZAV_Semaphore {
public:
    ZAV_Semaphore();
    ~ZAV_Semaphore();
    ZAV_Semaphore(const ZAV_Semaphore&) = delete;
    ZAV_Semaphore& operator=(const ZAV_Semaphore&) = delete;

    void Wait();   ///< takes one unit, waiting for it without limit
    void Signal(); ///< gives one unit
    int TryWait(); ///< 0 took a unit, 16 there was none, 22 the wait failed

private:
    ZAV_Semaphore(unsigned int unused, int initial);

    zav_lock::Word mSemaphore;
};

#endif
