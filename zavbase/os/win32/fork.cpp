#include <zavbase/os/fork.h>

namespace zav_os {

void AtFork(void (*)(), void (*)(bool)) {}

} // namespace zav_os
