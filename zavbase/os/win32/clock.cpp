#include <zavbase/os/clock.h>

#include <windows.h>

namespace zav_os {

uint32_t TickCount() { return GetTickCount(); }

void Sleep(uint32_t milliseconds) { ::Sleep(milliseconds); }

} // namespace zav_os
