#ifndef ZAVBASE_TESTS_THREADS_PLATFORM_H
#define ZAVBASE_TESTS_THREADS_PLATFORM_H

#include <cstddef>
#include <vector>

// What differs between the platforms.

/// The open handles, or descriptors and threads, of this process.
size_t SystemObjects();

/// How the system ends the calling thread by unwinding its stack.
extern const std::vector<void (*)()> kUnwindings;

/// What repetitions are multiplied by.
extern const int kEffort;

#endif
