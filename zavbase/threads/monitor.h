#ifndef ZAVBASE_THREADS_MONITOR_H
#define ZAVBASE_THREADS_MONITOR_H

#include <zavbase/threads/mutex.h>
#include <zavbase/threads/reentrant_mutex.h>

/// A mutex as a base class: a class derives from it and guards its members with
/// `ZAV_Monitor::Lock guard(this);`. The guard always waits.
class ZAV_API ZAV_Monitor : public ZAV_Mutex {
public:
    class ZAV_API Lock : public ZAV_Mutex::Lock {
    public:
        explicit Lock(ZAV_Monitor* const monitor) : ZAV_Mutex::Lock(*monitor, B_FALSE) {}
    };
};

/// The same with a re-entrant mutex: members that hold the lock may call each other.
class ZAV_API ZAV_ReentrantMonitor : public ZAV_ReentrantMutex {
public:
    class ZAV_API Lock : public ZAV_ReentrantMutex::Lock {
    public:
        explicit Lock(ZAV_ReentrantMonitor* const monitor) : ZAV_ReentrantMutex::Lock(*monitor, B_FALSE) {}
    };
};

#endif
