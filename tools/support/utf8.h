#ifndef ZAVTOOLS_UTF8_H
#define ZAVTOOLS_UTF8_H

#include <cstddef>
#include <string>

/// The length of the well-formed UTF-8 sequence at `at`; 0 if there is none there. Surrogates, overlong
/// sequences and numbers beyond the last character are not well-formed.
size_t Utf8Length(const std::string& text, size_t at);
/// Whether all of the text is well-formed.
bool IsUtf8(const std::string& text);
void AppendUtf8(std::string& text, unsigned long code);

#endif
