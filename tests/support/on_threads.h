#ifndef ZAVBASE_TESTS_SUPPORT_ON_THREADS_H
#define ZAVBASE_TESTS_SUPPORT_ON_THREADS_H

#include <thread>
#include <vector>

/// Calls `work` with 0, 1, .. on as many threads at once, and waits for them.
template <class Work>
void OnThreads(int count, Work work) {
    std::vector<std::jthread> threads;
    for (int t = 0; t < count; ++t) threads.emplace_back([&work, t] { work(t); });
}

#endif
