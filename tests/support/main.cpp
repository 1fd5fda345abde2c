// The main of every test program.

#include "tests/support/main.h"
#include "tests/support/watchdog.h"

#include <gtest/gtest.h>

std::new_handler theDefaultNewHandler = nullptr;

// Not by its header: this file goes with the shared library and with the library's objects.
extern "C" void SetNewHandler(void);

namespace {

class WatchedTests : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo& info) override {
        mWatchdog.Watch(std::string(info.test_suite_name()) + "." + info.name());
    }
    void OnTestEnd(const ::testing::TestInfo&) override { mWatchdog.Rest(); }

    Watchdog mWatchdog;
};

} // namespace

int main(int argc, char** argv) {
    theDefaultNewHandler = std::get_new_handler();
    SetNewHandler();
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::UnitTest::GetInstance()->listeners().Append(new WatchedTests);
    return RUN_ALL_TESTS();
}
