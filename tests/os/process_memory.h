#ifndef ZAVBASE_TESTS_OS_PROCESS_MEMORY_H
#define ZAVBASE_TESTS_OS_PROCESS_MEMORY_H

#include <cstddef>

/// The bytes of memory that this process has of the system for itself.
size_t ProcessMemory();

#endif
