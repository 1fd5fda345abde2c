#ifndef ZAVBASE_THREADS_LOCK_POOL_H
#define ZAVBASE_THREADS_LOCK_POOL_H

#include <zavbase/foundation/object.h>
#include <zavbase/strings/system_string.h>
#include <zavbase/values/value_dict.h>

/// Advisory named locks shared between processes through one text file. A lock belongs to a process, not to
/// a thread or an object; when its process has ended, the lock counts as free, so that a crash never blocks
/// a resource for ever.
///
///     ZAV_ResourceLockPool pool(fileName);
///     if (pool.Lock("printer") == ZAV_ResourceLockPool::HAVE_LOCK) { ... pool.UnLock("printer"); }
///
/// Every operation reads the file, decides, and writes the file back if something changed. A name is a
/// dictionary path: "a:b" is the entry b in the entry a. Such a group entry has no owner of its own:
/// GetLockState("a") and ClearOwnLocks then throw. Names differ in the first 64 characters of a level. A name
/// with an empty level ("a::b", ":b") is not kept by the text form: Lock grants it to everybody, every time.
///
/// The file is replaced as a whole, so that readers find the old or the new content and nothing else; it is
/// never created or written through a link. By itself the pool does not keep two processes from reading the
/// file at the same moment, and then the later write wins; SetGuard makes each operation exclusive.
///
/// An owner is known by its process id and its time of creation, so an id that the system has given to
/// another program does not count. On Linux the two halves of that time hold the start in clock ticks and a
/// number for the boot of the machine. Processes are seen as the system shows them to the caller: an owner in
/// another process namespace, or one that the caller may not query, counts as ended, and so does a process
/// that has ended but was not waited for.
///
/// One object belongs to one thread at a time. Failures to read or write the file throw ZAV_FileException*
/// or ZAV_ErrorException*; a damaged lock entry throws a bare ZAV_Exception*.
class ZAV_API ZAV_ResourceLockPool : public ZAV_Object {
    ZAV_DECLARE_CLASS(ZAV_ResourceLockPool)

public:
    enum RetVal {
        HAVE_LOCK = 0,        ///< the calling process owns the lock: newly, or as GetLockState found
        ALREADY_HAD_LOCK = 1, ///< Lock found that the caller owned it before
        OTHER_HAS_LOCK = 2,   ///< another live process owns it
        NOBODY_HAS_LOCK = 3,  ///< no live process owns it
        UNLOCKED = 4          ///< UnLock released the caller's lock
    };

    ZAV_ResourceLockPool(const ZAV_SystemString& fileName);
    ZAV_ResourceLockPool(const ZAV_ResourceLockPool& other);
    ZAV_ResourceLockPool& operator=(const ZAV_ResourceLockPool& other);
    ~ZAV_ResourceLockPool() override;

    /// Takes the lock unless another live process has it; never waits for it. Throws a ZAV_Exception* when
    /// the name cannot be an entry: the empty name, or one that leads through something else.
    RetVal Lock(const char* name);
    /// Releases the caller's lock; the lock of a dead owner is removed and counts as nobody's.
    RetVal UnLock(const char* name);
    /// The lock of a dead owner is removed here too.
    RetVal GetLockState(const char* name);

    /// Removes the caller's locks and those of dead owners. Looks at top-level entries only.
    void ClearOwnLocks();
    /// Removes the locks of dead owners; entries that cannot be read stay. Looks at top-level entries only.
    void ClearInvalidLocks();

    /// The value's name, "<ILLEGAL VALUE>" for any other number.
    static const char* RetVal2String(RetVal value);

    /// Switches the guard of all pools of this process (off at start): each operation then holds a lock on
    /// the file FILENAME.guard beside the pool file, waiting for it without limit. The system drops that lock
    /// when its holder ends, however it ends. It keeps out only processes and threads that switch it on too.
    /// The guard file is created when missing and never removed. Throws ZAV_FileException* with code 10
    /// (LockError) from the operations when it cannot be had.
    static void SetGuard(boolean_t on);
    static boolean_t HasGuard();

    /// Whether the process named in a lock entry of a pool file still runs; changes nothing. Throws a
    /// ZAV_Exception* for an entry that names no owner.
    static boolean_t IsOwnerAlive(ZAV_UValDict& entry);

protected:
    /// Forgets the former content, creates the file with an empty dictionary if there is none, and reads it.
    void Open();
    /// Writes the content back if it was changed, then forgets it.
    void Close();
    void Cleanup();

private:
    class Guard;
    struct Owner;

    RetVal HolderOf(const char* name, const Owner& caller);
    Owner OwnerIn(ZAV_UValDict& entry, const char* name);
    [[noreturn]] void ThrowDamaged(const char* name);
    void Remove(const char* name);
    void RemoveTop(ZAV_AssocUVal* lock);
    static ZAV_UValDict* DictOf(ZAV_AssocUVal* lock);

    ZAV_SystemString mFileName;
    ZAV_UValDict mLocks;
    int32_t mDirty;
};

#endif
