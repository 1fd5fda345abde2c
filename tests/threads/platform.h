#ifndef ZAVBASE_TESTS_THREADS_PLATFORM_H
#define ZAVBASE_TESTS_THREADS_PLATFORM_H

#include <cstddef>

// What differs between the platforms.

/// The open handles, or descriptors and threads, of this process.
size_t SystemObjects();

/// What repetitions are multiplied by.
extern const int kEffort;

#endif
