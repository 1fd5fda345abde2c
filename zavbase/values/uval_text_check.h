#ifndef ZAVBASE_VALUES_UVAL_TEXT_CHECK_H
#define ZAVBASE_VALUES_UVAL_TEXT_CHECK_H

#include <iosfwd>

#include <zavbase/foundation/export.h>
#include <zavbase/foundation/types.h>

/// For programs that check or edit texts of values (uval_text.h) which people write by hand: what the reader
/// accepts although hardly anybody means it, and where in the text an entry stands.
///
/// The functions share no state; a remark or a place holds no pointer into the text.

class ZAV_DictPath;
class ZAV_String;
class ZAV_UVal;

enum ZAV_UValTextRemarkKind : int {
    UVAL_REMARK_NUMBER_TAIL = 1,  ///< "5," "5%" "10x" "0x1F" "5..3" "1-2": only its beginning is read
    UVAL_REMARK_NO_NUMBER = 2,    ///< "-x" "-" ".": read as 0
    UVAL_REMARK_NUMBER_RANGE = 3, ///< 99999999999, 300 zavuchar, 2.5 zavshort, 1e400: changed to fit its type
    UVAL_REMARK_TYPE = 4,         ///< (x) zavlong, 5 zavstring, [ 1 (x) ], a keyword inside an array
    UVAL_REMARK_KEY_CUT = 5,      ///< a key of more than 64 bytes, or one with a NUL
    UVAL_REMARK_KEY_TWICE = 6,    ///< what stood under this key before is replaced
    UVAL_REMARK_KEY_EMPTY = 7,    ///< an entry under an empty key is dropped; one in a path stays
    UVAL_REMARK_KEY_BLOCKED = 8   ///< /a 5 /a:b 6: the path leads through a value, the entry is dropped
};

struct ZAV_UValTextRemark {
    ZAV_UValTextRemarkKind mKind;
    long mLine;           ///< from 1, as in ZAV_UValTextError
    long mColumn;         ///< in bytes from 1
    unsigned long mStart; ///< the word, string or name remarked on, in bytes from where reading began
    unsigned long mEnd;   ///< one byte behind it
    const char* mMessage; ///< a sentence without its full stop; a literal
    char mFound[48];      ///< what stands there, cut and made printable
};

/// Called for each remark, in the order of the text (what concerns an array's numbers at its end). `context`
/// is what the caller gave.
typedef void (*ZAV_UValTextRemarkFunc)(void* context, const ZAV_UValTextRemark& remark);

/// ZAV_ReadUValTxt(is, result), which then calls `tell` for all that a person hardly meant. Malformed text is
/// reported as there, without remarks. What the writer writes gives no remark, but for keys that a text
/// cannot hold: empty ones, and those that read back as paths to another entry.
ZAV_API void ZAV_CheckUValTxt(std::istream& is, ZAV_UVal*& result, ZAV_UValTextRemarkFunc tell,
                              void* context);

/// Where an entry stands: offsets in bytes from the beginning of the text, each range up to its end.
struct ZAV_UValTextEntry {
    unsigned long mKeyStart; ///< at the "/" or "("; the same as mKeyEnd for the top, which has no key
    unsigned long mKeyEnd;
    unsigned long mValueStart;
    unsigned long mValueEnd; ///< behind a type keyword; the ">>" of a dictionary are the two bytes before it
};

/// Finds the entry that reading `text` puts at `path`; of several the one that counts. An empty path is the
/// value at the top. B_FALSE, with `entry` all 0, when there is none, for a dictionary that only paths such
/// as /a:b make, and for a text that reading would refuse.
ZAV_API boolean_t ZAV_FindUValTxtEntry(const ZAV_String& text, const ZAV_DictPath& path,
                                       ZAV_UValTextEntry& entry);

#endif
