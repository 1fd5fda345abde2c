#include <zavbase/platform/file.h>

#include <zavbase/foundation/exception_context.h>
#include <zavbase/os/file.h>

ZAV_DEFINE_CLASS(ZAV_File, ZAV_Object)

namespace {

const unsigned short openWriteError = 4, writeError = 7;

void Check(uint32_t error, unsigned short code, const char* path) {
    if (error == 0) return;
    ZAV_ExceptionContext known;
    known.mPath = path;
    ZAV_ThrowFileException(code, error, known);
}

} // namespace

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

void ZAV_ReplaceFile(const ZAV_SystemString& name, const void* bytes, size_t size) {
    const char* const path = name.GetSystemString().Ptr();
    zav_os::FileReplacement file;
    Check(file.Open(path), openWriteError, path);
    Check(file.Write(bytes, size), writeError, path);
    Check(file.Commit(), writeError, path);
}
