#ifndef ZAVCONF_EXACT_H
#define ZAVCONF_EXACT_H

#include <string>
#include <vector>

#include <zavbase/values/value_dict.h>

/// The element in full: unsigned longs without sign, whole doubles with all their digits, other doubles with
/// 15, which is what reading a decimal text keeps.
std::string ElementText(ZAV_UVal& value, long index);

/// The path of an entry under another, for people: of a very long one the end.
std::string PathBelow(const std::string& path, const std::string& key);

/// The entries of `wanted` that `found` lacks or has otherwise, one line each: path and what became of it.
std::vector<std::string> Differences(ZAV_UValDict& wanted, ZAV_UValDict& found);

/// What the dictionary would lose on its way through the text form, one line an entry.
std::vector<std::string> TextLosses(ZAV_UValDict& dict);

#endif
