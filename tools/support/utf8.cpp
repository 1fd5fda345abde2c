#include "utf8.h"

namespace {

unsigned Byte(const std::string& text, size_t at) { return static_cast<unsigned char>(text[at]); }

} // namespace

size_t Utf8Length(const std::string& text, size_t at) {
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

bool IsUtf8(const std::string& text) {
    size_t length = 0;
    for (size_t at = 0; at < text.size(); at += length)
        if ((length = Utf8Length(text, at)) == 0) return false;
    return true;
}

void AppendUtf8(std::string& text, unsigned long code) {
    if (code < 0x80) {
        text += static_cast<char>(code);
        return;
    }
    int more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    static const unsigned char lead[] = {0, 0xC0, 0xE0, 0xF0};
    text += static_cast<char>(lead[more] | (code >> (6 * more)));
    while (more-- > 0) text += static_cast<char>(0x80 | ((code >> (6 * more)) & 0x3F));
}
