#include <zavbase/os/version.h>

#include <sys/utsname.h>

#include <algorithm>
#include <string>

namespace zav_os {

bool QueryVersion(VersionRecord& record) {
    utsname name;
    if (uname(&name) < 0) return false;
    std::string system = std::string(name.sysname) + " " + name.release;
    record.mMajor = 5;
    record.mMinor = 0;
    record.mBuild = 0;
    record.mPlatform = 2;
    size_t length = std::min(system.size(), sizeof record.mServicePack - 1);
    system.copy(record.mServicePack, length);
    record.mServicePack[length] = 0;
    return true;
}

} // namespace zav_os
