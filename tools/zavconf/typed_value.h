#ifndef ZAVCONF_TYPED_VALUE_H
#define ZAVCONF_TYPED_VALUE_H

#include <string>

/// The text form of a value typed on a command line, without blanks around it. `type` is the name of a type
/// (long, double, string ...), or empty: then the value says itself what it is. It is a number when all of it
/// is one, or one followed by a keyword of the text form; it is taken for text form when it begins with "(",
/// "[" or "<<"; anything else is a string. Throws a ToolFailure of TOOL_TROUBLE for a number that the type
/// does not hold, an unknown type, and a UTF string that cannot be one.
std::string TypedValue(const std::string& typed, const std::string& type);

#endif
