#include <zavbase/foundation/error.h>

#include <zavbase/foundation/tracer.h>
#include <zavbase/values/dict_path.h>

#include <memory>
#include <new>

constinit const char* const ERR_BASE_PARAMETER_SPEC = "ERR_BASE_PARAMETER_SPEC";
constinit const char* const ERR_BASE_PARAMETER_VAL = "ERR_BASE_PARAMETER_VAL";
constinit const char* const ERR_BASE_INVALID_MODULE = "ERR_BASE_INVALID_MODULE";
constinit const char* const ERR_BASE_INVALID_FILENAME = "ERR_BASE_INVALID_FILENAME";
constinit const char* const ERR_BASE_INVALID_FILETYPE = "ERR_BASE_INVALID_FILETYPE";
constinit const char* const ERR_BASE_INVALID_FILECONTENT = "ERR_BASE_INVALID_FILECONTENT";
constinit const char* const ERR_BASE_INTERNAL = "ERR_BASE_INTERNAL";
constinit const char* const ERR_BASE_MEMORYALLOC = "ERR_BASE_MEMORYALLOC";
constinit const char* const ERR_BASE_FILEOPENRD = "ERR_BASE_FILEOPENRD";
constinit const char* const ERR_BASE_FILEOPENWR = "ERR_BASE_FILEOPENWR";
constinit const char* const ERR_BASE_FILEREAD = "ERR_BASE_FILEREAD";
constinit const char* const ERR_BASE_FILEWRITE = "ERR_BASE_FILEWRITE";
constinit const char* const ERR_BASE_FILECLOSE = "ERR_BASE_FILECLOSE";
constinit const char* const ERR_BASE_FILEINVALID = "ERR_BASE_FILEINVALID";
constinit const char* const ERR_BASE_FILETYPE_UVALBIN = "ERR_BASE_FILETYPE_UVALBIN";

ZAV_DEFINE_CLASS(ZAV_Error, ZAV_I18nMsg)
ZAV_DEFINE_CLASS(ZAV_ErrorException, ZAV_Exception)

ZAV_Error::ZAV_Error() {}
ZAV_Error::ZAV_Error(const ZAV_UTFString& id) : ZAV_I18nMsg(id) {}
ZAV_Error::ZAV_Error(const ZAV_Error& other) = default;
ZAV_Error& ZAV_Error::operator=(const ZAV_Error& other) = default;
ZAV_Error::~ZAV_Error() {}

ZAV_ErrorException::ZAV_ErrorException() {}
ZAV_ErrorException::ZAV_ErrorException(const ZAV_Error& error) : mError(error) {}
ZAV_ErrorException::ZAV_ErrorException(const ZAV_ErrorException& other) = default;
ZAV_ErrorException::~ZAV_ErrorException() {}

ZAV_String& ZAV_ErrorException::ToString(ZAV_String& s) const {
    s += "Error exception: ";
    return s;
}

void ZAV_ThrowErrorException(const ZAV_Error& error) { throw new (std::nothrow) ZAV_ErrorException(error); }

void ZAV_ThrowInternalError(const ZAV_Error& error) {
    std::unique_ptr<ZAV_ErrorException> exception(new (std::nothrow) ZAV_ErrorException);
    if (!exception) throw exception.release();
    exception->mError.Set(ZAV_UTFString(ERR_BASE_INTERNAL));
    exception->mError.AddArg("<<detail>>", error, ZAV_I18N_SUBERROR);
    ZAV_BASE_TRACE(0x1, exception.get());
    throw exception.release();
}

void ZAV_ThrowParamSpecError(const ZAV_DictPath& path, const char* text) {
    ZAV_String name;
    if (text) name = ZAV_String(text) + ":";
    name += static_cast<ZAV_String>(path);
    ZAV_Error error{ZAV_UTFString(ERR_BASE_PARAMETER_SPEC)};
    error.AddArg("<<paramname>>", ZAV_UTFString(name), ZAV_I18N_STRING);
    ZAV_ThrowInternalError(error);
}
