#include <zavbase/os/memory.h>

namespace zav_os {

// Large pages need a privilege here that programs do not have.
void AdviseRandomUse(void*, std::size_t) {}

} // namespace zav_os
