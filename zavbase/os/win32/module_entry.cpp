#include <zavbase/os/module_entry.h>

#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) { return zav_os::OnModuleEvent(reason); }
