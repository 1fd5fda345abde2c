#include <zavbase/os/version.h>

#include <windows.h>

#include <cstring>

namespace zav_os {

bool QueryVersion(VersionRecord& record) {
    OSVERSIONINFOA info = {};
    static_assert(sizeof info == sizeof record && sizeof info == 148);
    info.dwOSVersionInfoSize = record.mSize;
    if (!GetVersionExA(&info)) return false;
    std::memcpy(&record, &info, sizeof record);
    return true;
}

} // namespace zav_os
