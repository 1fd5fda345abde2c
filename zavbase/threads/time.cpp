#include <zavbase/threads/time.h>

#include <zavbase/os/clock.h>

ZAV_ThreadError ZAV_Sleep(unsigned int seconds) {
    const uint32_t milliseconds = static_cast<uint32_t>(seconds) * 1000;
    // All ones would sleep for ever.
    zav_os::Sleep(milliseconds == 0xFFFFFFFF ? 0xFFFFFFFE : milliseconds);
    return ZAV_ThreadError(0);
}

ZAV_ThreadError ZAV_MilliSleep(unsigned long milliseconds) {
    zav_os::Sleep(static_cast<uint32_t>(milliseconds));
    return ZAV_ThreadError(0);
}

unsigned long ZAV_CurrentTime() { return zav_os::TickCount(); }

unsigned long ZAV_ElapsedTime(unsigned long start, unsigned long now) {
    const uint32_t from = static_cast<uint32_t>(start);
    uint32_t to = static_cast<uint32_t>(now);
    if (to == 0) to = zav_os::TickCount();
    return to >= from ? to - from : to - from - 1;
}
