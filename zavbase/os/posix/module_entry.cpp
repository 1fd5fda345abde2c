#include <zavbase/os/module_entry.h>

namespace {

__attribute__((constructor)) void Attach() { zav_os::OnModuleEvent(1); }
__attribute__((destructor)) void Detach() { zav_os::OnModuleEvent(0); }

} // namespace
