#ifndef ZAVCONF_TEXT_EDIT_H
#define ZAVCONF_TEXT_EDIT_H

#include <string>

#include <zavbase/values/dict_path.h>

// Changes to a valid text form of a dictionary that leave all other bytes as they are. `value` is in text
// form too. An empty result means that the text has no such place.

/// The entry that is at `path` gets other bytes for its value.
std::string ReplaceInText(const std::string& text, const ZAV_DictPath& path, const std::string& value);

/// A new entry is put last into the dictionary that the first `outer` keys of the path lead to.
std::string AppendToText(const std::string& text, const ZAV_DictPath& path, int outer,
                         const std::string& value);

#endif
