#ifndef ZAVBASE_STRINGS_RUNE_INTERNAL_H
#define ZAVBASE_STRINGS_RUNE_INTERNAL_H

#include <cstddef>

/// utflen and isutfstr, and the same on a counted range, in which a NUL is a character like any other and a
/// sequence cut off by the end does not decode.
namespace zav_utf {

size_t CountRunes(const char* s);
size_t CountRunes(const char* s, size_t n);
bool IsValid(const char* s);
bool IsValid(const char* s, size_t n);
/// Whether byte `at` of the range is the second or third byte of a rune.
bool IsInsideRune(const char* s, size_t n, size_t at);

} // namespace zav_utf

#endif
