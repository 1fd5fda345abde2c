#ifndef ZAVBASE_FOUNDATION_EXPORT_H
#define ZAVBASE_FOUNDATION_EXPORT_H

/// ZAV_API marks what the shared library exports. ZAVBASE_BUILDING is defined while the library itself is
/// compiled, and by programs that link its objects directly; ZAVBASE_STATIC for and by the static library, whose
/// CMake target and pkg-config file say so. ZAV_LOCAL takes a nested class of an exported
/// class out of the export; on Windows nested classes are out anyway.
#if defined(_WIN32)
#if defined(ZAVBASE_STATIC)
#define ZAV_API
#elif defined(ZAVBASE_BUILDING)
#define ZAV_API __declspec(dllexport)
#else
#define ZAV_API __declspec(dllimport)
#endif
#define ZAV_LOCAL
#else
#define ZAV_API __attribute__((visibility("default")))
#define ZAV_LOCAL __attribute__((visibility("hidden")))
#endif

/// How the system's locks are made. ZAV_LOCKS_ARE_WORDS is 1 where a lock is a word in memory, which the
/// calling code itself takes and gives back as long as nobody waits, and 0 where it is a kernel object.
#if defined(_WIN32)
#define ZAV_LOCKS_ARE_WORDS 0
#else
#define ZAV_LOCKS_ARE_WORDS 1
#endif

#endif
