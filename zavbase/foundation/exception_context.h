#ifndef ZAVBASE_FOUNDATION_EXCEPTION_CONTEXT_H
#define ZAVBASE_FOUNDATION_EXCEPTION_CONTEXT_H

#include <zavbase/foundation/exception.h>

class ZAV_I18nResource;
class ZAV_String;

/// What an exception is about: the file, the place in it, the reason. The classes themselves tell only what
/// kind of failure it was ("File exception: InvalidFile"); this is kept beside them.
///
///     try {
///         dict.ReadFile("settings.zav");
///     } catch (ZAV_Exception* e) {
///         std::cerr << ZAV_ExceptionLine(e) << "\n";
///         e->Delete();
///     }
///
/// writes
///
///     settings.zav:12:5: File exception: InvalidFile: [ ] pairs do not match (found "]")
///
/// The library tells it of all exceptions that it throws for files, modules, locks and parameters; a host may
/// for its own. It ends with the exception object, whether that is on the heap, on the stack or a member, and
/// on whatever thread that happens. A copy of an exception has a copy, and assigning replaces it. Different
/// exceptions may be used by different threads at once.
struct ZAV_ExceptionContext {
    const char* mPath = "";   ///< the file, module or lock as the caller named it; empty when there is none
    const char* mReason = ""; ///< what was wrong, as one phrase; empty when the system's number tells it
    const char* mFound = "";  ///< what stood at the place, cut and made printable
    long mLine = 0;           ///< in a text, from 1; 0 when there is no such place
    long mColumn = 0;         ///< in bytes from 1
    long long mOffset = -1;   ///< in a binary file, in bytes from 0; -1 when there is no such place
    zav_ulong32 mOsError = 0; ///< the system's error number, also where the exception's own field is 0
};

/// What is known of an exception, which may be null; without anything known all fields are as above. Texts
/// are never null. Valid until the exception is destroyed, assigned to or added to.
ZAV_API const ZAV_ExceptionContext& ZAV_GetExceptionContext(const ZAV_Exception* e);

/// Adds to what is known of an exception. What is known already stays, since who comes first is nearest to
/// the failure; line and column go together. The texts are copied, a null one counts as empty. Nothing
/// happens when `e` is null or the memory exception, or when memory is short: this never throws.
ZAV_API void ZAV_AddExceptionContext(const ZAV_Exception* e, const ZAV_ExceptionContext& known) noexcept;

/// Throws a new ZAV_FileException* of which `known` is told; a null pointer when it cannot be allocated.
[[noreturn]] ZAV_API void ZAV_ThrowFileException(unsigned short code, unsigned long osError,
                                                 const ZAV_ExceptionContext& known);

/// One line for a user, without a line end and without control characters: the place, what ToString tells,
/// the message of a ZAV_ErrorException and its sub-errors, the reason or else the system's text for the
/// error number; each as far as it is known. Null, which is thrown when there is no memory for an exception,
/// reads "Out of memory". Messages are formatted in language `lang` of `resources`; without resources in the
/// library's English, or, if it does not know them, with identifier and arguments. (The result is a class of
/// strings/byte_string.h.)
ZAV_API ZAV_String ZAV_ExceptionLine(const ZAV_Exception* e, const char* lang = nullptr,
                                     ZAV_I18nResource* resources = nullptr);

#endif
