// What the shared library has at its beginning and end, for programs that link the static one. They link with
// "-u zavbase_static_entry", since nothing else would take this file out of the archive.
#include "module_entry.cpp"

extern "C" {
void SetNewHandler(void);

/// Takes the policy for failed allocations along, which is in force in every host.
extern void (*const zavbase_static_entry)();
void (*const zavbase_static_entry)() = SetNewHandler;
}
