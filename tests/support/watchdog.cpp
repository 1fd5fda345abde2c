#include "tests/support/watchdog.h"

#include <cstdio>
#include <cstdlib>

namespace {

const char* const showStacks =
    "gdb -nx -batch -p $PPID -ex 'thread apply all backtrace 20' 2>/dev/null | grep '^Thread\\|^#' >&2";

std::chrono::seconds Limit() {
    const char* const limit = std::getenv("ZAVBASE_TEST_LIMIT");
    return std::chrono::seconds(limit ? std::atoi(limit) : 120);
}

} // namespace

Watchdog::Watchdog() : mLimit(Limit()) {
    if (mLimit.count() > 0) mThread = std::thread([this] { Run(); });
}

Watchdog::~Watchdog() {
    {
        const std::lock_guard<std::mutex> hold(mMutex);
        mEnds = true;
    }
    mChanged.notify_one();
    if (mThread.joinable()) mThread.join();
}

void Watchdog::Set(const std::string& name, bool watches) {
    {
        const std::lock_guard<std::mutex> hold(mMutex);
        mName = name;
        mWatches = watches;
        ++mCase;
    }
    mChanged.notify_one();
}

void Watchdog::Run() {
    std::unique_lock<std::mutex> hold(mMutex);
    while (!mEnds) {
        const unsigned before = mCase;
        const auto changed = [this, before] { return mEnds || mCase != before; };
        if (!mWatches)
            mChanged.wait(hold, changed);
        else if (!mChanged.wait_for(hold, mLimit, changed))
            Bark();
    }
}

void Watchdog::Bark() const {
    std::fprintf(stderr, "\nwatchdog: %s still runs after %d s\n", mName.c_str(),
                 static_cast<int>(mLimit.count()));
    // The shell's parent is this process. Without a debugger the name must do.
    if (WATCHDOG_HAS_DEBUGGER && std::system(showStacks) != 0) std::fprintf(stderr, "watchdog: no stacks\n");
    std::fflush(stderr);
    std::abort();
}
