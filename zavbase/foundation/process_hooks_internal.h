#ifndef ZAVBASE_FOUNDATION_PROCESS_HOOKS_INTERNAL_H
#define ZAVBASE_FOUNDATION_PROCESS_HOOKS_INTERNAL_H

/// How what a source file keeps for the whole process gets through a fork, and goes when the library is
/// unloaded while the process lives on. Each such file has one as a static object; those without a lock say
/// only what to do at the unloading.
///
/// A fork copies one thread and all locks: one that another thread held stays held in the child for ever. So
/// the forking thread takes them all before, in the order of Level, and gives them back on both sides.
class ZAV_ProcessHooks {
public:
    /// Who holds a lock may wait for one of a later level and for none of an earlier one. At the unloading
    /// the order is the same: what is given back first may use what comes later.
    enum Level {
        kMade, ///< no lock: what is made at its first use is made before the fork, not half way through it
        kTimerManager,
        kTraceLines,
        kTimers,
        kListeners,
        kThreads,
        kTables,
        kBlocks
    };

    /// Each may be null. The first two are called on the forking thread; the second in the opposite order.
    typedef void (*BeforeFork)();
    typedef void (*AfterFork)(bool inChild);
    typedef void (*AtUnload)();
    ZAV_ProcessHooks(Level level, BeforeFork before, AfterFork after, AtUnload unload);
    ZAV_ProcessHooks(const ZAV_ProcessHooks&) = delete;
    ZAV_ProcessHooks& operator=(const ZAV_ProcessHooks&) = delete;

    static void Unload();

private:
    static void CallBefore();
    static void CallAfter(bool inChild);
    void LeaveFromLast(bool inChild);

    const Level mLevel;
    const BeforeFork mBefore;
    const AfterFork mAfter;
    const AtUnload mUnload;
    bool mCalled = false; // before the fork that is going on
    ZAV_ProcessHooks* mNext;
};

/// The same for one lock, which `get` gives.
template <auto get>
class ZAV_LockOverFork : public ZAV_ProcessHooks {
public:
    explicit ZAV_LockOverFork(Level level, AtUnload unload = nullptr)
        : ZAV_ProcessHooks(
              level, [] { get().lock(); }, [](bool) { get().unlock(); }, unload) {}
};

#endif
