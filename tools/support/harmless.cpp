#include "harmless.h"

#include <cstdio>

#include "utf8.h"

namespace {

unsigned Byte(const std::string& text, size_t at) { return static_cast<unsigned char>(text[at]); }

bool IsControl(const std::string& text, size_t at) {
    const unsigned byte = Byte(text, at);
    return byte < 0x20 || byte == 0x7F || (byte == 0xC2 && Byte(text, at + 1) < 0xA0);
}

} // namespace

std::string Harmless(const std::string& text, bool keepLines) {
    std::string result;
    for (size_t at = 0; at < text.size();) {
        const size_t length = Utf8Length(text, at);
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
