#include <zavbase/os/error.h>

#include <windows.h>

namespace zav_os {

uint32_t LastError() { return GetLastError(); }

bool ErrorText(uint32_t code, char* text, size_t size) {
    return FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code, 0, text, static_cast<DWORD>(size),
                          nullptr) != 0;
}

} // namespace zav_os
