#ifndef ZAVBASE_VALUES_UVAL_TEXT_H
#define ZAVBASE_VALUES_UVAL_TEXT_H

#include <iosfwd>

#include <zavbase/strings/byte_string.h>

/// The readable text form of values, used for settings, language files and the lock-pool file.
///
///     % the instrument's own settings
///     <<
///     /width 640                          a long; "640 zavshort" would be a short
///     /ratio 1.5                          a double
///     /name (red \(dark\))                a string
///     /sizes [ 1 2 3 ] zavushort          an array
///     /colour << /code 7 zavuchar >>      a dictionary in the dictionary
///     /limits:low -5                      the key is a path: entry "low" of the dictionary "limits"
///     >>
///
/// Names begin with "/" and run to the next blank or one of ( ) < > [ ] { }; a key that needs other
/// characters is written as a string. Strings know \t \n \f \r \( \) \\ and \ooo (octal), and parentheses
/// that match need no backslash. "%" where a token would start begins a comment up to the end of the line.
/// The keywords that fix a type are zavchar zavuchar zavshort zavushort zavlong zavulong zavfloat zavdouble
/// zavstring zavutfstring zavptr. A word made of digits and "-" is an integer, modulo 2^32; another word that
/// begins with a digit, "-" or "." is a real. A text may begin with a byte-order mark (UTF-8), which is
/// passed over; elsewhere one is an error, but in a string, name or comment. ZAV_CheckUValTxt
/// (uval_text_check.h) tells what was read although hardly anybody means it.
///
/// What the form does not keep: reals have six decimals (or the stream's precision), pointers become null, an
/// entry under an empty key is dropped on reading, entries without value, or with one of an unknown type, are
/// not written. An infinity is
/// written as 1e999 or -1e999, which reads back; not-a-number as zero. The binary file (bin_pack.h) keeps
/// all.
///
/// The functions share no state but the nesting limit; the last-error record belongs to the calling thread.

class ZAV_UVal;

/// Writes `n` times two blanks; nothing when n <= 0.
ZAV_API std::ostream& ZAV_Indent(std::ostream& os, int n);

/// Writes one value, without a line end after it; a dictionary below the top (indent > 0) begins on a line of
/// its own. Numbers take nothing from the stream but its precision; reals leave it in fixed notation. A null
/// `value` writes nothing, nor does one of a type that is none of the library's. A value of a host's own
/// class is written as its virtual accessors tell it. Failures are left in the stream's state; a tree that
/// nests deeper than the limit below, and so could not be read, only sets the fail bit.
ZAV_API std::ostream& ZAV_WriteUValTxt(std::ostream& os, const ZAV_UVal* value, int indent = 0);

/// Reads the one value that the rest of the stream holds (normally a dictionary) and stores it, owned by the
/// caller, in `result`. Malformed text writes its message to the tracer "BASE" (level 0x1), leaves `result`
/// null and throws a ZAV_FileException* of code 2; ZAV_GetUValTextError() then tells the place.
ZAV_API void ZAV_ReadUValTxt(std::istream& is, ZAV_UVal*& result);

/// Reads the dictionary called `name`: the first key of that name, at any depth, that is followed by "<<".
/// Reading stops behind its ">>", where the stream is left. If there is none, the stream is at its end, a
/// line is traced, and `result` is null. With an empty name the same as the reading above.
ZAV_API void ZAV_ReadUValTxt(std::istream& is, ZAV_UVal*& result, ZAV_String name);

/// Where and why the calling thread's last reading of a text or a value file failed.
struct ZAV_UValTextError {
    long mLine;   ///< from 1, counted from where reading began; 0 when it succeeded or failed without a place
    long mColumn; ///< in bytes from 1
    const char* mMessage; ///< the traced text, a literal; never null
    char mFound[48];      ///< what stood there, cut and made printable; "end of input" at the end
};

/// Valid until the thread reads another text or value file.
ZAV_API const ZAV_UValTextError& ZAV_GetUValTextError();

/// How deep dictionaries in a text or binary file may nest; a path key counts each of its levels. Deeper
/// input is refused as malformed ("Error in object hierarchy"), and deeper trees are not written. 10000 at
/// first; 0 means no limit: reading, copying and destroying need no more stack then, but the text of a tree
/// grows with the square of its depth.
ZAV_API void ZAV_SetUValNestingLimit(unsigned long levels);
ZAV_API unsigned long ZAV_GetUValNestingLimit();

#endif
