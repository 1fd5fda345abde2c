#ifndef ZAVBASE_FOUNDATION_EXPORT_H
#define ZAVBASE_FOUNDATION_EXPORT_H

/// ZAV_API marks what the shared library exports. ZAVBASE_BUILDING is defined while the library itself is
/// compiled, and by programs that link its objects directly.
#if defined(_WIN32)
#if defined(ZAVBASE_BUILDING)
#define ZAV_API __declspec(dllexport)
#else
#define ZAV_API __declspec(dllimport)
#endif
#else
#define ZAV_API __attribute__((visibility("default")))
#endif

#endif
