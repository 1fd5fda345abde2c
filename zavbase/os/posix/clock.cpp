#include <zavbase/os/clock.h>

#include <cerrno>
#include <sched.h>
#include <time.h>
#include <unistd.h>

namespace zav_os {

uint32_t TickCount() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint32_t>(static_cast<uint64_t>(now.tv_sec) * 1000 +
                                 static_cast<uint64_t>(now.tv_nsec) / 1000000);
}

void Sleep(uint32_t milliseconds) {
    if (milliseconds == 0) {
        sched_yield();
        return;
    }
    while (milliseconds == 0xFFFFFFFF) pause();
    timespec left = {static_cast<time_t>(milliseconds / 1000),
                     static_cast<long>(milliseconds % 1000) * 1000000};
    while (clock_nanosleep(CLOCK_MONOTONIC, 0, &left, &left) == EINTR) {
    }
}

} // namespace zav_os
