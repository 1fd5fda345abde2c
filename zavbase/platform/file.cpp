#include <zavbase/platform/file.h>

#include <zavbase/os/file.h>

ZAV_DEFINE_CLASS(ZAV_File, ZAV_Object)

ZAV_File::ZAV_File() {}
ZAV_File::ZAV_File(const ZAV_SystemString& name) : mName(name) {}
ZAV_File::ZAV_File(const ZAV_File& other) : ZAV_Object(other), mName(other.mName), mInfo(other.mInfo) {}
ZAV_File::~ZAV_File() {}

ZAV_File& ZAV_File::operator=(const ZAV_File& other) {
    mName = other.mName;
    mInfo = other.mInfo;
    return *this;
}

boolean_t ZAV_File::RemoveFile() { return ZAV_Bool(zav_os::DeleteOneFile(mName.GetSystemString()) == 0); }
