#include "harmless.h"

#include <cstdio>

namespace {

unsigned Byte(const std::string& text, size_t at) { return static_cast<unsigned char>(text[at]); }

/// The length of the well-formed UTF-8 sequence at `at`; 0 if there is none.
size_t SequenceLength(const std::string& text, size_t at) {
    const unsigned lead = Byte(text, at);
    const size_t length = lead < 0x80   ? 1
                          : lead < 0xC2 ? 0
                          : lead < 0xE0 ? 2
                          : lead < 0xF0 ? 3
                          : lead < 0xF5 ? 4
                                        : 0;
    if (length == 0 || text.size() - at < length) return 0;
    for (size_t i = 1; i < length; ++i)
        if ((Byte(text, at + i) & 0xC0) != 0x80) return 0;
    // Sequences that are longer than they need to be, halves of pairs, and numbers beyond the last character.
    const unsigned next = length > 1 ? Byte(text, at + 1) : 0;
    const bool bad = (lead == 0xE0 && next < 0xA0) || (lead == 0xED && next > 0x9F) ||
                     (lead == 0xF0 && next < 0x90) || (lead == 0xF4 && next > 0x8F);
    return bad ? 0 : length;
}

bool IsControl(const std::string& text, size_t at) {
    const unsigned byte = Byte(text, at);
    return byte < 0x20 || byte == 0x7F || (byte == 0xC2 && Byte(text, at + 1) < 0xA0);
}

} // namespace

std::string Harmless(const std::string& text, bool keepLines) {
    std::string result;
    for (size_t at = 0; at < text.size();) {
        const size_t length = SequenceLength(text, at);
        const bool stays =
            length > 0 && (!IsControl(text, at) || (keepLines && (text[at] == '\n' || text[at] == '\t')));
        if (stays) {
            result.append(text, at, length);
            at += length;
            continue;
        }
        char escape[5];
        std::snprintf(escape, sizeof escape, "\\%03o", Byte(text, at));
        result += escape;
        ++at;
    }
    return result;
}
