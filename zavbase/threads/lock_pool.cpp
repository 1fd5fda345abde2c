#include <zavbase/threads/lock_pool.h>

#include <atomic>
#include <cstring>
#include <sstream>
#include <string>

#include <zavbase/foundation/exception_context.h>
#include <zavbase/foundation/startup.h>
#include <zavbase/os/file.h>
#include <zavbase/os/file_lock.h>
#include <zavbase/os/process.h>
#include <zavbase/values/uval_text.h>

ZAV_DEFINE_CLASS(ZAV_ResourceLockPool, ZAV_Object)

namespace {

const unsigned short openWrError = 4, writeError = 7, lockError = 10;

std::atomic<bool> theGuardIsOn(false);

const char* Text(ZAV_SystemString& s) { return s.GetSystemString(); }

/// Windows 95 and 98 do not tell a process's time of creation; the name of its program stands in for it.
bool KnowsOwnersByImage() { return ZAV_Win95() || ZAV_Win98(); }

ZAV_UVal* Field(ZAV_UValDict& entry, const char* key, ZAV_UValType type) {
    ZAV_UVal* value = entry.GetUVal(key);
    if (!value || value->GetType() != type) throw new ZAV_Exception;
    return value;
}

uint32_t NumberField(ZAV_UValDict& entry, const char* key) {
    return static_cast<uint32_t>(Field(entry, key, UVAL_LONG)->GetLongValue(0));
}

void SetNumberField(ZAV_UValDict& entry, const char* key, uint32_t number) {
    entry.DefineUVal(key, UVAL_LONG)->SetLongValue(static_cast<int32_t>(number), 0);
}

/// The whole text of the file, old or new, is what another process sees at any moment. A link standing in the
/// file's place is replaced and not followed.
uint32_t WriteFile(const char* path, ZAV_UValDict& dict, bool mustBeNew, unsigned short& code) {
    std::ostringstream os;
    ZAV_WriteUValTxt(os, &dict, 0);
    const std::string text = os.str();
    zav_os::FileReplacement file;
    code = openWrError;
    if (uint32_t error = file.Open(path, zav_os::NOT_THROUGH_LINKS)) return error;
    code = writeError;
    if (uint32_t error = file.Write(text.data(), text.size())) return error;
    return mustBeNew ? file.CommitNew() : file.Commit();
}

void CreatePoolFile(const char* path) {
    ZAV_UValDict empty(16);
    unsigned short code;
    const uint32_t error = WriteFile(path, empty, true, code);
    // Another process may have been quicker, and then its file is the one.
    if (error && !zav_os::FileExists(path)) ZAV_ThrowFileException(code, error, {path});
}

} // namespace

/// The owner record of a lock entry.
struct ZAV_ResourceLockPool::Owner {
    uint32_t mProcessId = 0;
    char mFileName[260] = "";
    uint32_t mTimeLow = 0;
    uint32_t mTimeHigh = 0;

    static Owner Caller() {
        Owner owner;
        owner.mProcessId = zav_os::OwnProcessId();
        if (!KnowsOwnersByImage())
            zav_os::ProcessIdentity(owner.mProcessId, owner.mTimeLow, owner.mTimeHigh);
        else if (!zav_os::ProcessImageName(owner.mProcessId, owner.mFileName, sizeof owner.mFileName))
            owner.mFileName[0] = 0;
        return owner;
    }

    static Owner Of(ZAV_UValDict& entry) {
        Owner owner;
        owner.mProcessId = NumberField(entry, "ProcessId");
        const char* name = Field(entry, "FileName", UVAL_STRING)->GetCStringValue(0);
        std::strncat(owner.mFileName, name ? name : "", sizeof owner.mFileName - 1);
        owner.mTimeLow = NumberField(entry, "CreationTimeLow");
        owner.mTimeHigh = NumberField(entry, "CreationTimeHigh");
        return owner;
    }

    void Store(ZAV_UValDict& entry) const {
        SetNumberField(entry, "ProcessId", mProcessId);
        entry.DefineUVal("FileName", UVAL_STRING)->SetStrValue(mFileName, 0);
        SetNumberField(entry, "CreationTimeLow", mTimeLow);
        SetNumberField(entry, "CreationTimeHigh", mTimeHigh);
    }

    bool operator==(const Owner& o) const {
        return mProcessId == o.mProcessId && std::strcmp(mFileName, o.mFileName) == 0 && HasTimesOf(o);
    }

    bool HasTimesOf(const Owner& o) const { return mTimeLow == o.mTimeLow && mTimeHigh == o.mTimeHigh; }

    bool IsAlive() const {
        Owner now;
        if (KnowsOwnersByImage())
            return zav_os::ProcessImageName(mProcessId, now.mFileName, sizeof now.mFileName) &&
                   std::strcmp(mFileName, now.mFileName) == 0;
        return zav_os::ProcessIdentity(mProcessId, now.mTimeLow, now.mTimeHigh) && HasTimesOf(now);
    }
};

/// Held for the length of an operation, also when an exception ends it.
class ZAV_ResourceLockPool::Guard {
public:
    explicit Guard(ZAV_SystemString& fileName) {
        if (!theGuardIsOn) return;
        const std::string path = std::string(Text(fileName)) + ".guard";
        if (uint32_t error = mLock.Take(path.c_str()))
            ZAV_ThrowFileException(lockError, error, {path.c_str()});
    }

private:
    zav_os::FileLock mLock;
};

ZAV_ResourceLockPool::ZAV_ResourceLockPool(const ZAV_SystemString& fileName)
    : mFileName(fileName), mLocks(16), mDirty(0) {}

ZAV_ResourceLockPool::ZAV_ResourceLockPool(const ZAV_ResourceLockPool& other) = default;
ZAV_ResourceLockPool& ZAV_ResourceLockPool::operator=(const ZAV_ResourceLockPool& other) = default;
ZAV_ResourceLockPool::~ZAV_ResourceLockPool() {}

ZAV_ResourceLockPool::RetVal ZAV_ResourceLockPool::Lock(const char* name) {
    const Guard guard(mFileName);
    Open();
    const Owner caller = Owner::Caller();
    RetVal result = HolderOf(name, caller);
    if (result == HAVE_LOCK) {
        result = ALREADY_HAD_LOCK;
    } else if (result == NOBODY_HAS_LOCK) {
        ZAV_UValDict* entry = mLocks.DefineUValDict(name);
        if (!entry) ThrowDamaged(name);
        caller.Store(*entry);
        mDirty = 1;
        result = HAVE_LOCK;
    }
    Close();
    return result;
}

ZAV_ResourceLockPool::RetVal ZAV_ResourceLockPool::UnLock(const char* name) {
    const Guard guard(mFileName);
    Open();
    RetVal result = HolderOf(name, Owner::Caller());
    if (result == HAVE_LOCK) {
        Remove(name);
        result = UNLOCKED;
    }
    Close();
    return result;
}

ZAV_ResourceLockPool::RetVal ZAV_ResourceLockPool::GetLockState(const char* name) {
    const Guard guard(mFileName);
    Open();
    const RetVal result = HolderOf(name, Owner::Caller());
    Close();
    return result;
}

void ZAV_ResourceLockPool::ClearOwnLocks() {
    const Guard guard(mFileName);
    Open();
    const Owner caller = Owner::Caller();
    ZAV_AssocUVal* next = mLocks.GetNextAssoc(nullptr);
    while (ZAV_AssocUVal* lock = next) {
        next = mLocks.GetNextAssoc(lock);
        ZAV_UValDict* entry = DictOf(lock);
        if (!entry) continue;
        const Owner owner = OwnerIn(*entry, lock->Key());
        if (owner == caller || !owner.IsAlive()) RemoveTop(lock);
    }
    Close();
}

void ZAV_ResourceLockPool::ClearInvalidLocks() {
    const Guard guard(mFileName);
    Open();
    ZAV_AssocUVal* next = mLocks.GetNextAssoc(nullptr);
    while (ZAV_AssocUVal* lock = next) {
        next = mLocks.GetNextAssoc(lock);
        ZAV_UValDict* entry = DictOf(lock);
        if (!entry) continue;
        ZAV_TRY {
            if (!IsOwnerAlive(*entry)) RemoveTop(lock);
        }
        ZAV_CATCH(ZAV_Exception, unreadable) { (void)unreadable; }
        ZAV_CATCH_END
    }
    Close();
}

const char* ZAV_ResourceLockPool::RetVal2String(RetVal value) {
    switch (value) {
    case HAVE_LOCK:
        return "HAVE_LOCK";
    case ALREADY_HAD_LOCK:
        return "ALREADY_HAD_LOCK";
    case OTHER_HAS_LOCK:
        return "OTHER_HAS_LOCK";
    case NOBODY_HAS_LOCK:
        return "NOBODY_HAS_LOCK";
    case UNLOCKED:
        return "UNLOCKED";
    }
    return "<ILLEGAL VALUE>";
}

void ZAV_ResourceLockPool::SetGuard(boolean_t on) { theGuardIsOn = on != B_FALSE; }
boolean_t ZAV_ResourceLockPool::HasGuard() { return ZAV_Bool(theGuardIsOn); }

boolean_t ZAV_ResourceLockPool::IsOwnerAlive(ZAV_UValDict& entry) {
    return ZAV_Bool(Owner::Of(entry).IsAlive());
}

void ZAV_ResourceLockPool::Open() {
    Cleanup();
    if (!zav_os::FileExists(Text(mFileName))) CreatePoolFile(Text(mFileName));
    mLocks.ReadTextFile(mFileName);
}

void ZAV_ResourceLockPool::Close() {
    if (mDirty == 1) {
        unsigned short code;
        const uint32_t error = WriteFile(Text(mFileName), mLocks, false, code);
        if (error) ZAV_ThrowFileException(code, error, {Text(mFileName)});
    }
    Cleanup();
}

void ZAV_ResourceLockPool::Cleanup() {
    mLocks.Clear();
    mDirty = 0;
}

/// Who holds the lock, as seen by `caller`; removes the entry of a dead owner.
ZAV_ResourceLockPool::RetVal ZAV_ResourceLockPool::HolderOf(const char* name, const Owner& caller) {
    ZAV_UVal* entry = mLocks.GetUVal(name);
    if (!entry) return NOBODY_HAS_LOCK;
    if (entry->GetType() != UVAL_DICT) ThrowDamaged(name);
    const Owner owner = OwnerIn(static_cast<ZAV_UValDict&>(*entry), name);
    if (owner.IsAlive()) return owner == caller ? HAVE_LOCK : OTHER_HAS_LOCK;
    Remove(name);
    return NOBODY_HAS_LOCK;
}

ZAV_ResourceLockPool::Owner ZAV_ResourceLockPool::OwnerIn(ZAV_UValDict& entry, const char* name) {
    ZAV_TRY { return Owner::Of(entry); }
    ZAV_CATCH(ZAV_Exception, e) { (void)e; }
    ZAV_CATCH_END
    ThrowDamaged(name);
}

void ZAV_ResourceLockPool::ThrowDamaged(const char* name) {
    const std::string reason = "no owner can be read for the lock \"" + std::string(name ? name : "") + "\"";
    ZAV_Exception* exception = new ZAV_Exception;
    ZAV_AddExceptionContext(exception, {Text(mFileName), reason.c_str()});
    throw exception;
}

void ZAV_ResourceLockPool::Remove(const char* name) {
    mLocks.RemoveUVal(name);
    mDirty = 1;
}

void ZAV_ResourceLockPool::RemoveTop(ZAV_AssocUVal* lock) {
    mLocks.RemoveEntry(lock->Key());
    mDirty = 1;
}

ZAV_UValDict* ZAV_ResourceLockPool::DictOf(ZAV_AssocUVal* lock) {
    ZAV_UVal* value = lock->Value();
    return value && value->GetType() == UVAL_DICT ? static_cast<ZAV_UValDict*>(value) : nullptr;
}
