#include <zavbase/os/memory.h>

#include <cstdint>
#include <sys/mman.h>

namespace zav_os {

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

} // namespace zav_os
