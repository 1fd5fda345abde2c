#include <zavbase/foundation/new_handler.h>

#include <gtest/gtest.h>

// Without SetNewHandler a failed allocation says so and ends the process with status 0. (Where that is a
// message box, this test would wait for somebody to close it, and is left out.)
TEST(FatalDeathTest, TheDefaultPolicyEndsTheProcess) {
    EXPECT_EXIT(std::get_new_handler()(), ::testing::ExitedWithCode(0),
                "^Fatal Error: Memory Allocation Error, program will abort!\n$");
}
