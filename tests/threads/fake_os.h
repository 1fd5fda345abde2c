#ifndef ZAVBASE_TESTS_THREADS_FAKE_OS_H
#define ZAVBASE_TESTS_THREADS_FAKE_OS_H

#include <cstdint>
#include <vector>

/// What the replaced system calls answer and were asked. No thread is ever started.
struct FakeOS {
    uint32_t lastError = 0;
    uintptr_t startHandle = 0;
    uint32_t startId = 0;
    uint32_t waitFails = 0; ///< the error of a wait; 0: it succeeds
    int anySlot = -1;
    uint32_t callerId = 77;
    uint32_t ticks = 0;

    unsigned stackSize = 0;
    std::vector<uint32_t> slept, anyIds;
    std::vector<uintptr_t> closed;
};
extern FakeOS theOS;

#endif
