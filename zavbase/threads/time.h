#ifndef ZAVBASE_THREADS_TIME_H
#define ZAVBASE_THREADS_TIME_H

#include <zavbase/threads/thread_error.h>

/// The sleeps return code 0. `seconds * 1000` is computed in 32 bits and wraps: 4294968 sleeps 704 ms.
ZAV_API ZAV_ThreadError ZAV_Sleep(unsigned int seconds);
/// 0 lets other threads run; 0xFFFFFFFF sleeps for ever.
ZAV_API ZAV_ThreadError ZAV_MilliSleep(unsigned long milliseconds);

/// The system's count of milliseconds, 32 bits, which wraps after about 49.7 days.
ZAV_API unsigned long ZAV_CurrentTime();
/// The milliseconds from `start` to `now`; a `now` of 0 means the present. When the count wrapped in between,
/// the result is one less than the true difference.
ZAV_API unsigned long ZAV_ElapsedTime(unsigned long start, unsigned long now);

#endif
