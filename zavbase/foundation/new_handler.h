#ifndef ZAVBASE_FOUNDATION_NEW_HANDLER_H
#define ZAVBASE_FOUNDATION_NEW_HANDLER_H

#include <new>

#include <zavbase/foundation/types.h>

/// What happens when `new` fails, anywhere in the process. From the moment the library is loaded: its
/// 256-byte reserve is freed, the user is told (a message box on Windows, standard error elsewhere) and the
/// process ends at once, with status 0. After SetNewHandler: `new` throws a dummyalloc. There is no way back.
///
/// A `malloc` that fails does not come here: the run-time libraries in use have no such mode.

/// Thrown by value when `new` fails after SetNewHandler. It is a std::bad_alloc, which is the only thing that
/// the language lets a failing `new` throw, and what the non-throwing `new` turns into null.
class ZAV_API dummyalloc : public std::bad_alloc {
public:
    dummyalloc() noexcept;
    dummyalloc(const dummyalloc&) noexcept;
    dummyalloc& operator=(const dummyalloc&) noexcept;
    ~dummyalloc() override;
    const char* what() const noexcept override; ///< "Memory allocation failure"
};

extern "C" ZAV_API void SetNewHandler(void);

#endif
