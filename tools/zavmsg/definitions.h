#ifndef ZAVMSG_DEFINITIONS_H
#define ZAVMSG_DEFINITIONS_H

#include <map>
#include <set>
#include <string>
#include <vector>

#include <zavbase/values/value_dict.h>

/// The entries of a dictionary of messages by their whole identifier; those that are no texts, or several,
/// are apart.
struct Definitions {
    std::map<std::string, std::string> mTexts;
    std::set<std::string> mOthers;
};

Definitions Flatten(ZAV_UValDict& dict);

/// What is wrong with a language, one finding a line: identifiers that the definitions have and the language
/// lacks or the other way round, tags that differ (each must occur as often), entries that are no texts.
std::vector<std::string> Compare(const Definitions& wanted, const Definitions& language);

/// The identifier for a gettext message: its source text if that can be one, otherwise "PO_" and a number
/// made from the context and the source. Never depends on other messages of the file.
std::string IdentifierOf(const std::string& context, const std::string& source);

#endif
