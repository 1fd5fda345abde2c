#include <zavbase/os/error.h>

#include <cerrno>
#include <cstring>

namespace zav_os {

uint32_t LastError() { return static_cast<uint32_t>(errno); }

bool ErrorText(uint32_t code, char* text, size_t size) {
    // The C library has a text for every number; for the numbers it does not know, that text is
    // "Unknown error N", and there the answer is no.
    if (code > INT32_MAX || !strerrordesc_np(static_cast<int>(code))) return false;
    const char* known = strerrordesc_np(static_cast<int>(code));
    size_t length = std::strlen(known);
    if (length >= size) return false;
    std::memcpy(text, known, length + 1);
    return true;
}

} // namespace zav_os
