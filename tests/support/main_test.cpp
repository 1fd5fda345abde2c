// Tests that fail on purpose; CMakeLists.txt says with which words.

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <vector>

TEST(Hang, IsNamed) {
    std::timed_mutex mutex;
    const std::lock_guard<std::timed_mutex> hold(mutex);
    while (!mutex.try_lock_for(std::chrono::hours(1))) {}
}

TEST(Memory, AllOfItIsAFailure) {
    std::vector<std::unique_ptr<char[]>> all;
    for (size_t i = 0; i < 100000; ++i) all.emplace_back(new char[1 << 20]);
}
