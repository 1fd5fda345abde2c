#ifndef ZAVBASE_OS_MEMORY_H
#define ZAVBASE_OS_MEMORY_H

#include <cstddef>

namespace zav_os {

/// Says of a block that was just allocated, and is not written to yet, that all of it will be used at random
/// places: where the system can, it backs the block with large pages. A hint for blocks of some megabytes; of
/// smaller ones it does nothing.
void AdviseRandomUse(void* block, std::size_t size);

/// Zeroed memory of the calling thread, the same with each call; null without memory. When the thread ends,
/// `atEnd` is called there with it. What the thread still does after that may find the memory as `atEnd` left
/// it, or fresh memory whose end is not told.
const unsigned kThreadBlockSize = 128;
void* ThreadBlock(void (*atEnd)(void*)) noexcept;

} // namespace zav_os

#endif
