#include <zavbase/os/memory.h>

#include <cstdint>
#include <sys/mman.h>

namespace zav_os {

namespace {

alignas(16) thread_local constinit unsigned char ownBlock[kThreadBlockSize] = {};

struct BlockEnd {
    ~BlockEnd() { atEnd(ownBlock); }
    void (*const atEnd)(void*);
};

} // namespace

void AdviseRandomUse(void* block, std::size_t size) {
#ifdef MADV_HUGEPAGE
    const std::uintptr_t large = 2u << 20, start = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t first = (start + large - 1) & ~(large - 1), end = (start + size) & ~(large - 1);
    // Only whole large pages: what shares a page with the block's ends is not ours to speak for.
    if (first < end) madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
#else
    static_cast<void>(block);
    static_cast<void>(size);
#endif
}

void* ThreadBlock(void (*atEnd)(void*)) noexcept {
    static const thread_local BlockEnd end{atEnd};
    static_cast<void>(end);
    return ownBlock;
}

} // namespace zav_os
