#ifndef ZAVBASE_BENCHMARKS_SETTLE_ALLOCATOR_H
#define ZAVBASE_BENCHMARKS_SETTLE_ALLOCATOR_H

#include <cstddef>
#include <cstdlib>

/// The allocator puts off work on what was freed until a large block is wanted. Done here, it is not charged
/// to whoever comes next.
inline void SettleAllocator() {
    void* volatile block = std::malloc(std::size_t{1} << 20);
    std::free(block);
}

#endif
