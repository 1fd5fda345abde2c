#ifndef ZAVBASE_STRINGS_CHAR_CLASS_INTERNAL_H
#define ZAVBASE_STRINGS_CHAR_CLASS_INTERNAL_H

#include <cctype>

/// What the locale says of a byte. In UTF-8 a byte from 0x80 up is part of a rune and of no class: one-byte
/// locales know many of them as blanks and letters.
namespace zav_text {

/// The bytes below are asked about.
constexpr int kAllBytes = 0x100, kAscii = 0x80;

inline bool IsSpace(int c, int below = kAllBytes) { return c < below && std::isspace(c) != 0; }

/// The length of the white space at the start of a NUL-terminated text.
inline unsigned LeadingSpace(const char* text, int below) {
    unsigned n = 0;
    while (IsSpace(static_cast<unsigned char>(text[n]), below)) ++n;
    return n;
}

/// The length without the white space at the end.
inline unsigned TrimmedLength(const char* text, unsigned length, int below) {
    while (length > 0 && IsSpace(static_cast<unsigned char>(text[length - 1]), below)) --length;
    return length;
}

inline void ToLower(char* p, unsigned n, int below) {
    for (char* end = p + n; p != end; ++p) {
        const int c = static_cast<unsigned char>(*p);
        if (c < below && std::isupper(c)) *p = static_cast<char>(*p + 32);
    }
}

inline void ToUpper(char* p, unsigned n, int below) {
    for (char* end = p + n; p != end; ++p) {
        const int c = static_cast<unsigned char>(*p);
        if (c < below && std::islower(c)) *p = static_cast<char>(*p - 32);
    }
}

} // namespace zav_text

#endif
