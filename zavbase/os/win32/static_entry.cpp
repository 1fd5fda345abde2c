// What the DLL has at its beginning and end, for hosts that link the static library. Programs link with
// "-u zavbase_static_entry", since nothing else would take this file out of the archive.
#include <zavbase/os/module_entry.h>

#include <windows.h>

extern "C" void SetNewHandler(void);

namespace {

__attribute__((constructor)) void Attach() { zav_os::OnModuleEvent(1); }
__attribute__((destructor)) void Detach() { zav_os::OnModuleEvent(0); }

// The loader's list for a program, which has no DllMain.
void NTAPI OnThread(PVOID, DWORD reason, PVOID) {
    if (reason == DLL_THREAD_DETACH) zav_os::OnThreadEnd();
}

} // namespace

extern "C" {
extern const PIMAGE_TLS_CALLBACK zavbase_static_thread_entry;
__attribute__((section(".CRT$XLY"), used)) const PIMAGE_TLS_CALLBACK zavbase_static_thread_entry = OnThread;

/// Takes the policy for failed allocations along, which is in force in every host.
extern void (*const zavbase_static_entry)();
void (*const zavbase_static_entry)() = SetNewHandler;
}
