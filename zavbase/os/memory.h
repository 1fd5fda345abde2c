#ifndef ZAVBASE_OS_MEMORY_H
#define ZAVBASE_OS_MEMORY_H

#include <cstddef>

namespace zav_os {

/// Says of a block that was just allocated, and is not written to yet, that all of it will be used at random
/// places: where the system can, it backs the block with large pages. A hint for blocks of some megabytes; of
/// smaller ones it does nothing.
void AdviseRandomUse(void* block, std::size_t size);

/// Zeroed memory of the calling thread, the same with each call. When the thread ends, `atEnd` is called
/// there with it, and it is gone when that returns. The thread has none after that, however late in its end
/// it asks: null then, and without memory. There is one `atEnd` for all threads.
const unsigned kThreadBlockSize = 128;
void* ThreadBlock(void (*atEnd)(void*)) noexcept;

/// For the unloading of the library: calls `atEnd` for every thread that has such memory, all on the calling
/// thread, and gives back what the system keeps for it. No thread gets any after that.
void EndThreadBlocks() noexcept;

} // namespace zav_os

#endif
