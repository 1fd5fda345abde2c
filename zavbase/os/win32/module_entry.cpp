#include <zavbase/os/module_entry.h>

#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_THREAD_DETACH) zav_os::OnThreadEnd();
    return zav_os::OnModuleEvent(reason);
}
