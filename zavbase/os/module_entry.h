#ifndef ZAVBASE_OS_MODULE_ENTRY_H
#define ZAVBASE_OS_MODULE_ENTRY_H

namespace zav_os {

/// What the library does when the system loads it (reason 1) or unloads it (reason 0); other reasons are
/// ignored. Defined by the library, called by the module entry of each platform. Always returns 1.
int OnModuleEvent(unsigned reason);

/// Gives back what the library holds for the whole process. Defined by the library; called when the library
/// is unloaded from a process that goes on, after its static objects were destroyed, and not when the process
/// ends: threads may run to the very end then.
void OnModuleUnload();

/// Where the module entry is told of the end of each thread: ends the thread's block.
void OnThreadEnd();

} // namespace zav_os

#endif
