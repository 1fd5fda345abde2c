#ifndef ZAVBASE_THREADS_THREAD_H
#define ZAVBASE_THREADS_THREAD_H

#include <zavbase/collections/clt_object.h>
#include <zavbase/threads/mutex.h>
#include <zavbase/threads/read_write_lock.h>
#include <zavbase/threads/thread_error.h>

class ZAV_Dictionary;
struct ZAV_EXCEPTION_LINK;

enum ZAV_ThreadFlag : int {
    ZAV_THREAD_PLAIN = 0,
    ZAV_THREAD_JOINED = 1,   ///< what the library's own threads use; the same as plain
    ZAV_THREAD_DETACHED = 5, ///< the destructor does not wait for the thread to end
};

/// Stored by BeginThread; no value has an effect.
enum ZAV_ThreadCleanup : int { ZAV_THREAD_CLEANUP_NONE = 0 };

/// A thread: derive from it and give `run` a body. A body that can be stopped returns soon after Running()
/// became false.
///
///     class Worker : public ZAV_Thread {
///     public:
///         Worker() : ZAV_Thread(ZAV_THREAD_PLAIN) {}
///         ~Worker() override { FinishThread(); }
///     private:
///         void run() override { while (Running()) WorkSome(); }
///     };
///
/// Ownership: the owner of the object destroys it. The destructor stops the thread and waits for it, unless
/// it was constructed detached. When it runs, the derived part of the object is gone already: a derived
/// destructor therefore calls FinishThread first, or the owner calls StopThread and WaitForThread before
/// destroying. A detached object may be destroyed while its thread runs on; `run` must then not use it any
/// more.
///
/// Threads: BeginThread, the priorities and the destructor are for the owner, and a restart or the destructor
/// only once nobody waits for the former run any more; everything else is for any thread. An exception that
/// leaves `run`, other than ZAV_Thread::ExitException, ends the process. (On Linux pthread_exit and
/// cancellation are none: they unwind the body, and the thread ends in order.)
class ZAV_API ZAV_Thread : public ZAV_CltObject {
    ZAV_DECLARE_CLASS(ZAV_Thread)
public:
    /// Thrown (by value) out of `run`: the thread ends in order, after a call of `cleanup`.
    class ExitException {};

    explicit ZAV_Thread(ZAV_ThreadFlag flag);
    ZAV_Thread(const ZAV_Thread&) = delete;
    ZAV_Thread& operator=(const ZAV_Thread&) = delete;
    ~ZAV_Thread() override;

    /// Starts the thread, with a stack of `stackSize` bytes or, for 0, the system's default. 22 when it is
    /// running or about to. Running() may still be false just after this. A stopped object can be started
    /// again, but only after WaitForThread: it counts as stopped while its body is still on the way out, and
    /// a second body would run beside that one on the same object. (A dispatcher's or listener's thread
    /// counts as running until its body has ended, whatever StopThread was told.)
    ZAV_ThreadError BeginThread(ZAV_ThreadCleanup cleanup, unsigned int stackSize);
    /// Asks the thread to stop: Running() becomes false. On the thread itself it does not return: the thread
    /// ends at once, without destroying the objects on its stack.
    /// A thread that has not come to its body yet will find it false there. A thread that ended itself this
    /// way leaves Running() true: it is started again only after another StopThread.
    virtual ZAV_ThreadError StopThread();
    /// Waits until the thread has ended. Any number of threads may wait. On the thread itself 36. In every
    /// case the thread is no longer registered afterwards (CurrentThread does not find it).
    ZAV_ThreadError WaitForThread();
    /// The same for at most `milliseconds` (0xFFFFFFFF: without limit); 62 when the time ran out, and then
    /// the thread stays registered.
    ZAV_ThreadError WaitForThread(unsigned long milliseconds);
    /// Waits for the end of one of the registered running threads. It hands the system thread identifiers
    /// where that expects handles, so it nearly always returns the system's error, with `which` null. On
    /// Windows it may also never return: an identifier may be the value of some handle of the process, which
    /// is then waited for. Kept for the hosts that know it so; wait for each thread instead.
    static ZAV_ThreadError WaitForAnyThread(ZAV_Thread*& which);

    /// Whether the body is running and was not asked to stop.
    boolean_t Running();
    void Running(boolean_t running);

    /// -15 (idle) to 15 (time-critical), others are cut; 0 is normal. On Linux it is the negated nice value
    /// of the thread, which only privileged processes may lower.
    ZAV_ThreadError SetPriority(int priority);
    ZAV_ThreadError GetPriority(int* priority); ///< stores 0 on an error

    virtual void MySignalHandler(int signal); ///< no effect
    /// A name for people, at most 63 characters; longer ones are cut.
    virtual char* GetInfoString();
    virtual void SetInfoString(char* text);
    void SetInfoString(const char* text) { SetInfoString(const_cast<char*>(text)); }
    /// Copies the name of the thread registered under an identifier (null: the calling thread) to `out`,
    /// which has room for 64 characters; an empty name if there is none.
    static void GetInfoStringFromID(void* id, char* out);

    /// The thread's handle, not its identifier; -1 while it was not started.
    const uintptr_t& ThreadId() const { return mHandle; }
    static unsigned long OSThreadId();  ///< the identifier of the calling thread, 32 bits
    static ZAV_Thread* CurrentThread(); ///< the registered object of the calling thread, or null

    static void yield(const ZAV_Thread* ignored); ///< lets other threads run
    static boolean_t ThreadingAvailable() { return B_TRUE; }
    ZAV_ThreadError SendSignalToThread(int) { return ZAV_ThreadError(0); } ///< no effect
    static void ThreadSignalHandler(int) {}                                ///< no effect

protected:
    /// Ends the calling thread, which must be this object's, at once, as StopThread does there. Otherwise
    /// returns 22.
    ZAV_ThreadError exit_thread();
    /// What the destructor does first: asks the thread to stop (as ZAV_Thread does it, not as a derived class
    /// does) and, unless detached, waits for its end. For destructors of derived classes.
    void FinishThread();

private:
    struct ZAV_LOCAL OverFork;

    virtual void run() = 0;
    virtual void cleanup();

    ZAV_ThreadError Start(unsigned int stackSize);
    void Register();
    void Unregister();
    boolean_t caller_is_self() const;
    static void create(void* run);
    static void precreate(void* run);
    static ZAV_Thread* get_thread_object(void* id);
    static ZAV_Dictionary& threads();
    static ZAV_Mutex& threadsmutex();

    char mInfoString[64];
    uintptr_t mHandle;
    uint32_t mThreadId;
    boolean_t mRunning;
    ZAV_ReadWriteLock mRunningLock;
    ZAV_ThreadFlag mFlag;
    ZAV_ThreadCleanup mCleanup;
    ZAV_EXCEPTION_LINK* mLinkHead; ///< of the chain of handler scopes on this thread
};

#endif
