#include <tests/threads/platform.h>

#include <filesystem>
#include <iterator>
#include <pthread.h>

static size_t Entries(const char* folder) {
    const std::filesystem::directory_iterator begin(folder);
    return static_cast<size_t>(std::distance(begin, std::filesystem::directory_iterator()));
}

size_t SystemObjects() { return Entries("/proc/self/fd") + Entries("/proc/self/task"); }

const std::vector<void (*)()> kUnwindings = {[] { pthread_exit(nullptr); },
                                             [] {
                                                 pthread_cancel(pthread_self());
                                                 pthread_testcancel();
                                             }};

const int kEffort = 10;
