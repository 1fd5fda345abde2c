#include <zavbase/os/module_entry.h>

#include <windows.h>

namespace {

constinit bool unloading = false;

// Made before all other static objects of the library, so it goes after them; and those go after DllMain.
struct LastObject {
    ~LastObject() {
        if (unloading) zav_os::OnModuleUnload();
    }
};
__attribute__((init_priority(101))) LastObject lastObject;

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
    if (reason == DLL_THREAD_DETACH) zav_os::OnThreadEnd();
    unloading = reason == DLL_PROCESS_DETACH && processEnds == nullptr;
    return zav_os::OnModuleEvent(reason);
}
