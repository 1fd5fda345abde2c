#include <zavbase/foundation/startup.h>

#include <zavbase/foundation/trace_stream.h>
#include <zavbase/foundation/tracer.h>
#include <zavbase/os/module_entry.h>
#include <zavbase/os/version.h>

namespace {

constinit zav_os::VersionRecord theVersion = {};

// The Windows 95 family carries its version in the high word of the build number; the other fields are not
// to be trusted there.
void DeriveWindows95Version() {
    uint32_t build = theVersion.mBuild;
    theVersion.mMajor = build >> 24;
    theVersion.mMinor = (build >> 16) & 0xFF;
    theVersion.mBuild = build & 0xFFFF;
}

const char* PlatformName() {
    if (ZAV_Win32s()) return "Win32s";
    if (ZAV_Win95()) return "Win95";
    if (ZAV_Win98()) return "Win98";
    if (ZAV_WinNT4()) return "WinNT4";
    return "WinNT5";
}

void TraceVersion() {
    ZAV_BASE_TRACE(0x10, "OS version information");
    ZAV_BASE_TRACE(0x10, "----------------------");
    ZAV_BASE_TRACE(0x10, "Platform Id:          " << theVersion.mPlatform);
    ZAV_BASE_TRACE(0x10, "Major version number: " << theVersion.mMajor);
    ZAV_BASE_TRACE(0x10, "Minor version number: " << theVersion.mMinor);
    ZAV_BASE_TRACE(0x10, "Build number:         " << theVersion.mBuild);
    ZAV_BASE_TRACE(0x10, "CSD version:          " << theVersion.mServicePack);
    ZAV_BASE_TRACE(0x10, "ZAV OS settings:      " << PlatformName());
}

bool Is(uint32_t platform, uint32_t major) {
    return theVersion.mPlatform == platform && theVersion.mMajor == major;
}

} // namespace

void SetRuntimeOSVersion(void) {
    theVersion.mSize = sizeof theVersion;
    if (!zav_os::QueryVersion(theVersion)) {
        ZAV_BASE_TRACE(0x1, "failed to get OS version info");
        return;
    }
    if (theVersion.mPlatform == 1) DeriveWindows95Version();
    TraceVersion();
}

boolean_t ZAV_Win32s(void) { return ZAV_Bool(theVersion.mPlatform == 0); }
boolean_t ZAV_Win95(void) { return ZAV_Bool(Is(1, 4) && theVersion.mMinor < 10); }
boolean_t ZAV_Win98(void) { return ZAV_Bool(Is(1, 4) && theVersion.mMinor >= 10); }
boolean_t ZAV_WinNT4(void) { return ZAV_Bool(Is(2, 4)); }
boolean_t ZAV_WinNT5(void) { return ZAV_Bool(theVersion.mPlatform == 2 && theVersion.mMajor > 4); }

int zav_os::OnModuleEvent(unsigned reason) {
    if (reason == 0) ZAV_Trace("BASE.DLL : Terminated.\n");
    if (reason == 1) {
        ZAV_Trace("BASE.DLL : Initializing...\n");
        SetRuntimeOSVersion();
    }
    return 1;
}
