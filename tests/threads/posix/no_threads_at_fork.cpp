// For the test whose threads are no threads of the system: a fork finds none.
#include <zavbase/os/posix/thread_end.h>

namespace zav_os {

void ThreadsBeforeFork() noexcept {}
void ThreadsAfterFork(bool) noexcept {}

} // namespace zav_os
