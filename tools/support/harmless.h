#ifndef ZAVTOOLS_HARMLESS_H
#define ZAVTOOLS_HARMLESS_H

#include <string>

/// The text with everything that could steer a terminal written as "\ooo": control characters, the upper
/// control characters of UTF-8 and bytes that are no UTF-8. Line ends and tabs stay if `keepLines` is set; a
/// backslash stays as it is.
std::string Harmless(const std::string& text, bool keepLines = false);

#endif
