#include <zavbase/os/module_entry.h>

namespace {

// The unloading of a library calls its destructor functions before it destroys the static objects; the end of
// the process does that the other way round. So the object that goes last knows which of the two it is.
constinit bool unloading = false;

struct LastObject {
    ~LastObject() {
        if (unloading) zav_os::OnModuleUnload();
    }
};
__attribute__((init_priority(101))) LastObject lastObject;

__attribute__((constructor)) void Attach() { zav_os::OnModuleEvent(1); }
__attribute__((destructor)) void Detach() {
    zav_os::OnModuleEvent(0);
    unloading = true;
}

} // namespace
