#include <zavbase/foundation/spin_lock_internal.h>

#include <zavbase/os/clock.h>

namespace {

const int kLooks = 10;
const int kYields = 1000;

} // namespace

void ZAV_SpinLock::LockHeld() {
    for (int looks = 0; !try_lock(); ++looks) Pause(looks);
}

// The holder may have been interrupted. Letting others run is enough unless this thread is of a higher
// priority than the holder: then the holder gets the processor only while this one sleeps.
void ZAV_SpinLock::Pause(int looks) {
    if (looks > kLooks + kYields)
        zav_os::Sleep(1);
    else if (looks > kLooks)
        zav_os::Sleep(0);
}
