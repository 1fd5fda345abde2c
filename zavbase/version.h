#ifndef ZAVBASE_VERSION_H
#define ZAVBASE_VERSION_H

#include <zavbase/foundation/export.h>

/// The version of these headers. A new major version may break what was compiled before; a new minor version adds;
/// a new patch version mends. CMakeLists.txt reads the three numbers here.
#define ZAV_VERSION_MAJOR 1
#define ZAV_VERSION_MINOR 0
#define ZAV_VERSION_PATCH 0

/// A version as one number that grows with it: 1.2.3 is 1002003. Works in #if, too.
#define ZAV_VERSION_NUMBER(major, minor, patch) ((major)*1000000 + (minor)*1000 + (patch))
#define ZAV_VERSION ZAV_VERSION_NUMBER(ZAV_VERSION_MAJOR, ZAV_VERSION_MINOR, ZAV_VERSION_PATCH)

/// Whether these headers are of this version or a later one: `#if ZAV_VERSION_AT_LEAST(1, 1, 0)`.
#define ZAV_VERSION_AT_LEAST(major, minor, patch) (ZAV_VERSION >= ZAV_VERSION_NUMBER(major, minor, patch))

/// The version of the library that runs, as such a number; another one than ZAV_VERSION when it was replaced since
/// the program was compiled. Any thread may call it at any time.
extern "C" ZAV_API long ZAV_RuntimeVersion(void);

#endif
