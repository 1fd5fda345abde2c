#ifndef ZAVBASE_STRINGS_TEXT_LENGTH_INTERNAL_H
#define ZAVBASE_STRINGS_TEXT_LENGTH_INTERNAL_H

#include <cstdint>

/// The lengths of texts have 32 bits. A longer text is never cut: it is refused as memory that cannot be had,
/// so that the program's policy for that decides.
namespace zav_text {

/// Asks the allocator for what it cannot give.
[[noreturn]] void Refuse();
/// `n`, if it has 32 bits.
inline unsigned Checked(uint64_t n) {
    if (n > UINT32_MAX) Refuse();
    return static_cast<unsigned>(n);
}
/// strlen, checked; 0 for null.
unsigned LengthOf(const char* p);

} // namespace zav_text

#endif
