#ifndef ZAVBASE_OS_VERSION_H
#define ZAVBASE_OS_VERSION_H

#include <cstdint>

namespace zav_os {

/// The system's version information, laid out as Windows returns it. The field names avoid `major` and
/// `minor`, which are macros on some systems.
struct VersionRecord {
    uint32_t mSize;
    uint32_t mMajor;
    uint32_t mMinor;
    uint32_t mBuild;    ///< on the Windows 95 family the high word repeats major and minor
    uint32_t mPlatform; ///< 0 Win32s, 1 the Windows 95 family, 2 the NT family
    char mServicePack[128];
};

/// Asks the system; the one source of the platform record, so a test that replaces it runs on any platform it
/// likes. False when the system does not tell; the record is then untouched. Elsewhere than on Windows: the
/// NT family, version 5.0, build 0, with the system's own name and release as the service pack.
bool QueryVersion(VersionRecord& record);

} // namespace zav_os

#endif
