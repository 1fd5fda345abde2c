#ifndef ZAVBASE_FOUNDATION_TYPES_H
#define ZAVBASE_FOUNDATION_TYPES_H

#include <climits>
#include <cstdint>
#include <iosfwd>

#include <zavbase/foundation/export.h>

/// The library's boolean: every predicate returns it, and any non-zero value counts as true. The underlying
/// type is fixed, so that a value other than the two enumerators is well defined.
enum boolean_t : int { B_FALSE = 0, B_TRUE = 1 };

/// The boolean_t of a C++ condition.
inline boolean_t ZAV_Bool(bool condition) { return condition ? B_TRUE : B_FALSE; }

/// Writes "B_TRUE" for any non-zero value and "B_FALSE" for zero.
ZAV_API std::ostream& operator<<(std::ostream& os, boolean_t b);

/// The element types of 32-bit integer buffers, stored in 4 bytes on every platform. Where long has 32 bits
/// they are long, so that buffers of long fit without a cast; elsewhere they are int32_t and uint32_t.
#if LONG_MAX == 2147483647
typedef long zav_long32;
typedef unsigned long zav_ulong32;
#else
typedef int32_t zav_long32;
typedef uint32_t zav_ulong32;
#endif

#endif
