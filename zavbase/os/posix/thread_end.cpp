#include <zavbase/os/posix/thread_end.h>

#include <pthread.h>

namespace zav_os {

namespace {

pthread_key_t key;
pthread_once_t keyOnce = PTHREAD_ONCE_INIT;
constinit bool keyMade = false;
constinit thread_local bool armed = false;

// The system calls this again for what was armed anew meanwhile, a few times.
void EndThread(void*) {
    armed = false;
    EndOwnBlock();
    AbandonWriteLocks();
}

void MakeKey() { keyMade = pthread_key_create(&key, EndThread) == 0; }

} // namespace

bool ArmThreadEnd() noexcept {
    if (armed) return true;
    pthread_once(&keyOnce, MakeKey);
    armed = keyMade && pthread_setspecific(key, &armed) == 0;
    return armed;
}

void DisarmThreadEnds() noexcept {
    if (keyMade) pthread_key_delete(key);
    keyMade = false;
}

} // namespace zav_os
