#ifndef ZAVBASE_OS_ERROR_H
#define ZAVBASE_OS_ERROR_H

#include <cstddef>
#include <cstdint>

namespace zav_os {

/// The calling thread's last error number of the operating system.
uint32_t LastError();

/// Stores the system's text for `code` in `text` (at most `size` bytes with its NUL). Returns false, with
/// `text` unspecified, when there is no such text or it does not fit.
bool ErrorText(uint32_t code, char* text, size_t size);

} // namespace zav_os

#endif
