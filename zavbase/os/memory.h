#ifndef ZAVBASE_OS_MEMORY_H
#define ZAVBASE_OS_MEMORY_H

#include <cstddef>

namespace zav_os {

/// Says of a block that was just allocated, and is not written to yet, that all of it will be used at random
/// places: where the system can, it backs the block with large pages. A hint for blocks of some megabytes; of
/// smaller ones it does nothing.
void AdviseRandomUse(void* block, std::size_t size);

} // namespace zav_os

#endif
