#ifndef ZAVBASE_STRINGS_RUNE_H
#define ZAVBASE_STRINGS_RUNE_H

#include <zavbase/foundation/export.h>

/// A character code of the Basic Multilingual Plane; in UTF-8 it takes one to three bytes. Surrogate values
/// are runes like any other.
typedef unsigned short Rune;

/// Functions on UTF-8 text and its conversion to 16-bit runes and Latin-1. Texts are NUL-terminated unless a
/// length is given. They keep no state and may be called from any thread.
///
/// What does not decode yields the error rune 0x80 and counts as one byte. The scanning functions (utflen,
/// utfrune, utfrrune, isutfstr, utfbytepos, utfnsize, utfrunepos) take each byte below 0xA0 as a character by
/// itself, so the bytes 0x80 to 0x9F pass although UTF-8 has no such character.
extern "C" {

/// Decodes one rune and returns the bytes used, 1 to 3. Sequences of four bytes, over-long ones and stray
/// continuation bytes fail: *r is 0x80, the result 1.
ZAV_API int chartorune(Rune* r, const char* s);
/// Encodes one rune and returns the bytes written, 1 to 3; no terminator.
ZAV_API int runetochar(char* s, const Rune* r);
/// The bytes runetochar writes for `r`.
ZAV_API int runelen(long r);
/// Whether the first `n` bytes hold a whole rune.
ZAV_API int fullrune(const char* s, int n);

/// The number of runes up to the NUL.
ZAV_API int utflen(const char* s);
/// The first and the last position of rune `c`, or null; the NUL itself can be looked for.
ZAV_API char* utfrune(const char* s, long c);
ZAV_API char* utfrrune(const char* s, long c);
/// The first position of text `s2`, or null.
ZAV_API char* utfutf(const char* s1, const char* s2);
/// The length of the rune at `s`, or 0 when it does not decode.
ZAV_API int isutf(const char* s);
/// Whether every byte from 0xA0 up belongs to a sequence that decodes; true for a null pointer.
ZAV_API int isutfstr(const char* s);
/// The byte offset of rune number `n`, or the length of a text that ends before; 0 for null.
ZAV_API int utfbytepos(const char* s, unsigned n);
/// The bytes that the first `n` runes take, fewer when the text ends before; 0 for null.
ZAV_API int utfnsize(const char* s, unsigned n);
/// The number of the rune that starts at `byteOffset` (the end of the text counts as one); -1 when none
/// starts there.
ZAV_API int utfrunepos(const char* s, unsigned byteOffset);

/// The conversions write at most `dstSize` units. They stop at a NUL in the source, or after `srcLen` source
/// units; a `srcLen` of 4294967295 (-1) leaves the end to the NUL. The result is 0; -2 when something was
/// replaced by "?"; -1 when `dst` was too small, which then holds what went in, without terminator (a source
/// that ends with its NUL needs room for it, too). Otherwise the result is terminated if there is room.
/// *count, if given, receives the units written, without the terminator. A null `src` or a `dstSize` below 1
/// gives an empty result and 0.
ZAV_API int UTFtoUnicode(Rune* dst, int dstSize, const char* src, unsigned srcLen, unsigned* count);
/// Runes above 255 and 0x80 become "?".
ZAV_API int UTFtoLatin1(char* dst, int dstSize, const char* src, unsigned srcLen, unsigned* count);
ZAV_API int UnicodetoLatin1(char* dst, int dstSize, const Rune* src, unsigned srcLen, unsigned* count);
/// These two want room for 3 bytes before each rune.
ZAV_API int UTFfromUnicode(char* dst, int dstSize, const Rune* src, int srcLen, int* count);
ZAV_API int UTFfromLatin1(char* dst, unsigned dstSize, const char* src, unsigned srcLen, unsigned* count);
ZAV_API int UnicodefromLatin1(Rune* dst, int dstSize, const char* src, int srcLen, unsigned* count);
}

#endif
