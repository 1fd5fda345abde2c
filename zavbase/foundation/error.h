#ifndef ZAVBASE_FOUNDATION_ERROR_H
#define ZAVBASE_FOUNDATION_ERROR_H

#include <zavbase/foundation/exception.h>
#include <zavbase/i18n/i18n_msg.h>

class ZAV_DictPath;

/// An error is a message: an identifier, such as one of those below, and the arguments that fill the tags of
/// its text. It is formatted late, in the language of the reader (ZAV_I18nMsg::Format).
class ZAV_API ZAV_Error : public ZAV_I18nMsg {
    ZAV_DECLARE_CLASS(ZAV_Error)
public:
    ZAV_Error();
    ZAV_Error(const ZAV_UTFString& id);
    ZAV_Error(const ZAV_Error& other);
    ZAV_Error& operator=(const ZAV_Error& other);
    ~ZAV_Error() override;
};

/// An exception that carries an error. Its description is only "Error exception: "; the message is in mError.
class ZAV_API ZAV_ErrorException : public ZAV_Exception {
    ZAV_DECLARE_CLASS(ZAV_ErrorException)
public:
    ZAV_ErrorException();
    explicit ZAV_ErrorException(const ZAV_Error& error);
    ZAV_ErrorException(const ZAV_ErrorException& other);
    ZAV_ErrorException& operator=(const ZAV_ErrorException&) = default;
    ~ZAV_ErrorException() override;
    ZAV_String& ToString(ZAV_String& s) const override;

    ZAV_Error mError;
};

/// Throws a ZAV_ErrorException* with a copy of the error; a null pointer when it cannot be allocated.
[[noreturn]] ZAV_API void ZAV_ThrowErrorException(const ZAV_Error& error);
/// Traces and throws the error ERR_BASE_INTERNAL with `error` as its "<<detail>>".
[[noreturn]] ZAV_API void ZAV_ThrowInternalError(const ZAV_Error& error);
/// Throws an internal error whose detail is ERR_BASE_PARAMETER_SPEC. The "<<paramname>>" of that is `text`
/// and ":" (nothing if `text` is null), then the path with its closing separator.
[[noreturn]] ZAV_API void ZAV_ThrowParamSpecError(const ZAV_DictPath& path, const char* text);

/// The library's message identifiers; the text of each is its own name. Their English messages come from
/// ZAV_Base_GetI18nDefs.
extern ZAV_API const char* const ERR_BASE_PARAMETER_SPEC; ///< <<paramname>>
extern ZAV_API const char* const ERR_BASE_PARAMETER_VAL;  ///< <<paramname>>, <<paramvalue>>
extern ZAV_API const char* const ERR_BASE_INVALID_MODULE;
extern ZAV_API const char* const ERR_BASE_INVALID_FILENAME;
extern ZAV_API const char* const ERR_BASE_INVALID_FILETYPE;
extern ZAV_API const char* const ERR_BASE_INVALID_FILECONTENT;
extern ZAV_API const char* const ERR_BASE_INTERNAL; ///< <<detail>>: a sub-error
extern ZAV_API const char* const ERR_BASE_MEMORYALLOC;
extern ZAV_API const char* const ERR_BASE_FILEOPENRD; ///< this and the next five: <<filetype>>, <<filename>>
extern ZAV_API const char* const ERR_BASE_FILEOPENWR;
extern ZAV_API const char* const ERR_BASE_FILEREAD;
extern ZAV_API const char* const ERR_BASE_FILEWRITE;
extern ZAV_API const char* const ERR_BASE_FILECLOSE;
extern ZAV_API const char* const ERR_BASE_FILEINVALID;
extern ZAV_API const char* const ERR_BASE_FILETYPE_UVALBIN; ///< names a file type, for <<filetype>>

#endif
