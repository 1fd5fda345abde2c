#ifndef ZAVBASE_FOUNDATION_EXCEPTION_INTERNAL_H
#define ZAVBASE_FOUNDATION_EXCEPTION_INTERNAL_H

#include <new>

#include <zavbase/foundation/exception_context.h>

/// The head of the calling thread's chain of handler scopes: the place named by ZAV_SetThreadLinkHead, or
/// else one that the thread has of its own.
ZAV_EXCEPTION_LINK*& ZAV_CurrentLinkHead();

/// From now on the calling thread's chain hangs on `*head`; null goes back to the thread's own place. A
/// thread object calls this as its thread begins and ends, outside of any handler scope. `*head` must outlive
/// it.
void ZAV_SetThreadLinkHead(ZAV_EXCEPTION_LINK** head);

/// For the exception's own construction, assignment and destruction: what is known of it goes, or becomes
/// what is known of `from`.
void ZAV_DropExceptionContext(const ZAV_Exception* e) noexcept;
void ZAV_CopyExceptionContext(const ZAV_Exception* to, const ZAV_Exception* from) noexcept;

/// What ZAV_ThrowMemoryException throws.
ZAV_MemoryException* ZAV_StaticMemoryException();

/// Throws a new exception of which `known` is told; a null pointer when it cannot be allocated.
template <class Exception, class... Arguments>
[[noreturn]] void ZAV_ThrowKnown(const ZAV_ExceptionContext& known, const Arguments&... arguments) {
    Exception* exception = new (std::nothrow) Exception(arguments...);
    ZAV_AddExceptionContext(exception, known);
    throw exception;
}

#endif
