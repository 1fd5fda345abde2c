#include <zavbase/foundation/process_hooks_internal.h>

#include <zavbase/os/fork.h>
#include <zavbase/os/lock.h>
#include <zavbase/os/module_entry.h>

namespace {

constinit ZAV_ProcessHooks* theFirst = nullptr; // in the order of their levels
constinit zav_os::Lock theForks;                // one thread after the other

} // namespace

// Another thread may fork while the library is being loaded; the list is whole at any time.
ZAV_ProcessHooks::ZAV_ProcessHooks(Level level, BeforeFork before, AfterFork after, AtUnload unload)
    : mLevel(level), mBefore(before), mAfter(after), mUnload(unload) {
    if (theFirst == nullptr) zav_os::AtFork(CallBefore, CallAfter);
    ZAV_ProcessHooks** place = &theFirst;
    while (*place != nullptr && (*place)->mLevel <= level) place = &(*place)->mNext;
    mNext = *place;
    *place = this;
}

void ZAV_ProcessHooks::CallBefore() {
    theForks.lock();
    for (ZAV_ProcessHooks* hooks = theFirst; hooks != nullptr; hooks = hooks->mNext) {
        hooks->mCalled = true;
        if (hooks->mBefore != nullptr) hooks->mBefore();
    }
}

void ZAV_ProcessHooks::CallAfter(bool inChild) {
    theFirst->LeaveFromLast(inChild);
    theForks.unlock();
}

void ZAV_ProcessHooks::LeaveFromLast(bool inChild) {
    if (mNext != nullptr) mNext->LeaveFromLast(inChild);
    if (mCalled && mAfter != nullptr) mAfter(inChild);
    mCalled = false;
}

void ZAV_ProcessHooks::Unload() {
    for (ZAV_ProcessHooks* hooks = theFirst; hooks != nullptr; hooks = hooks->mNext)
        if (hooks->mUnload != nullptr) hooks->mUnload();
}

void zav_os::OnModuleUnload() { ZAV_ProcessHooks::Unload(); }
