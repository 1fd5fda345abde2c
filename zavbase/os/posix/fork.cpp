#include <zavbase/os/fork.h>

#include <pthread.h>

#include <zavbase/os/posix/thread_end.h>

namespace zav_os {

namespace {

void (*beforeFork)();
void (*afterFork)(bool inChild);

void Before() {
    beforeFork();
    ThreadsBeforeFork();
    BlocksBeforeFork();
}

void InParent() {
    BlocksAfterFork(false);
    ThreadsAfterFork(false);
    afterFork(false);
}

void InChild() {
    BlocksAfterFork(true);
    ThreadsAfterFork(true);
    afterFork(true);
}

} // namespace

void AtFork(void (*before)(), void (*after)(bool inChild)) {
    beforeFork = before;
    afterFork = after;
    pthread_atfork(Before, InParent, InChild);
}

} // namespace zav_os
