#ifndef ZAVCONF_JSON_H
#define ZAVCONF_JSON_H

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include <zavbase/values/value_dict.h>

/// JSON to dictionaries. Objects are dictionaries. An array of numbers, of texts, of truth values or of nulls
/// is an array value; any other array (empty, mixed, of arrays or objects) is a dictionary with the keys "0",
/// "1", ... Integers are longs, those up to 4294967295 unsigned longs, larger ones and fractions doubles;
/// truth values are unsigned chars 1 and 0, null is a null pointer. Texts are UTF strings, or byte strings
/// where UTF strings have no room for a character (above U+FFFF). A byte-order mark is skipped. Half a
/// surrogate pair becomes U+FFFD; text that is not UTF-8 is refused, and so is a number beyond a double.
struct JsonResult {
    std::unique_ptr<ZAV_UValDict> mDict; ///< null when the text is not JSON
    long mLine = 0, mColumn = 0;         ///< where the error is
    std::string mError;
    std::vector<std::string> mLosses; ///< what could not be kept, one line each: path and what became of it
};
JsonResult ReadJson(const std::string& text);

/// The other way: a dictionary whose keys are "0", "1", ... in order becomes an array, and a byte string that
/// is not UTF-8 is taken as Latin-1. Infinities and not-a-number become null, which is returned as for
/// reading.
std::vector<std::string> WriteJson(std::ostream& os, ZAV_UValDict& dict);

#endif
