#include <zavbase/foundation/pooled.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include <zavbase/foundation/block_depot_internal.h>
#include <zavbase/os/memory.h>

// Each thread has two magazines a size class: arrays of free blocks. It takes from and gives to the current
// one; when that runs empty or full the spare steps in, and only when the spare cannot is a whole magazine
// filled or emptied at the depot, under its lock. So blocks that travel from a producing to a consuming
// thread come back 64 at a time.
namespace {

// The sizes of values, entries and events with a number or two, and what lies between.
const std::uint32_t kSizes[] = {32, 48, 64, 112, 128};
const std::size_t kClasses = sizeof kSizes / sizeof *kSizes;
const std::size_t kLargest = kSizes[kClasses - 1];
const std::size_t kStep = 16;
const unsigned char kClassOfSteps[kLargest / kStep + 1] = {0, 0, 0, 1, 2, 3, 3, 3, 4};
const unsigned kMagazineSize = 64;
const unsigned kAhead = 3; // blocks that the processor is told of before they are needed

std::size_t ClassOf(std::size_t size) { return kClassOfSteps[(size + kStep - 1) / kStep]; }

struct Magazine {
    unsigned count = 0;
    void* blocks[kMagazineSize];
};

struct ThreadCache {
    Magazine* current[kClasses];
    Magazine* spare[kClasses];
    bool ended; // the thread's end was told: nothing may be left here any more
};
static_assert(sizeof(ThreadCache) <= zav_os::kThreadBlockSize);

constinit ThreadCache theNoCache = {}; // has no magazines; a new thread's until it needs one
thread_local constinit ThreadCache* tCache = &theNoCache;

// Never destroyed: objects may outlive static ones.
ZAV_BlockDepot& Depot(std::size_t c) {
    static ZAV_BlockDepot* const depots[kClasses] = {
        new ZAV_BlockDepot(kSizes[0]), new ZAV_BlockDepot(kSizes[1]), new ZAV_BlockDepot(kSizes[2]),
        new ZAV_BlockDepot(kSizes[3]), new ZAV_BlockDepot(kSizes[4])};
    return *depots[c];
}

void Empty(std::size_t c, Magazine& magazine) {
    Depot(c).Put(magazine.blocks, magazine.count);
    magazine.count = 0;
}

// The blocks are taken from the end; so the lowest address goes there.
void Fill(std::size_t c, Magazine& magazine) {
    magazine.count = Depot(c).Take(magazine.blocks, kMagazineSize);
    std::reverse(magazine.blocks, magazine.blocks + magazine.count);
}

// Takes a magazine of the thread's away; it may be none.
void GiveBack(std::size_t c, Magazine*& magazine) {
    if (magazine == nullptr) return;
    Empty(c, *magazine);
    delete magazine;
    magazine = nullptr;
}

// Gives what an ending thread holds back. Blocks that destructors of its thread-local objects use later do
// not stay with the thread.
void EndCache(void* block) {
    ThreadCache& cache = *static_cast<ThreadCache*>(block);
    cache.ended = true;
    for (std::size_t c = 0; c < kClasses; ++c) {
        GiveBack(c, cache.current[c]);
        GiveBack(c, cache.spare[c]);
    }
}

ThreadCache& OwnCache() {
    if (tCache == &theNoCache) {
        void* block = zav_os::ThreadBlock(EndCache);
        if (block == nullptr) throw std::bad_alloc();
        tCache = static_cast<ThreadCache*>(block);
    }
    return *tCache;
}

// The spare one in place of the current; made if there is none yet.
Magazine*& NextMagazine(ThreadCache& cache, std::size_t c) {
    std::swap(cache.current[c], cache.spare[c]);
    if (cache.current[c] == nullptr) cache.current[c] = new Magazine;
    return cache.current[c];
}

void* AllocateSlow(std::size_t c) {
    ThreadCache& cache = OwnCache();
    Magazine*& current = NextMagazine(cache, c);
    if (current->count == 0) Fill(c, *current);
    void* block = current->blocks[--current->count];
    if (cache.ended) GiveBack(c, current);
    return block;
}

void ReleaseSlow(std::size_t c, void* block) noexcept {
    try {
        ThreadCache& cache = OwnCache();
        Magazine*& current = NextMagazine(cache, c);
        if (current->count == kMagazineSize) Empty(c, *current);
        current->blocks[current->count++] = block;
        if (cache.ended) GiveBack(c, current);
    } catch (...) { // no memory for a magazine
        Depot(c).Put(&block, 1);
    }
}

#if defined(__SANITIZE_ADDRESS__)
const bool kPooled = false; // so that the sanitizer sees a use of a destroyed object
#else
const bool kPooled = true;
#endif

} // namespace

void* ZAV_Pooled::operator new(std::size_t size) {
    if (!kPooled || size > kLargest) return ::operator new(size);
    const std::size_t c = ClassOf(size);
    Magazine* current = tCache->current[c];
    if (current == nullptr || current->count == 0) return AllocateSlow(c);
    const unsigned rest = --current->count;
    if (rest >= kAhead) __builtin_prefetch(current->blocks[rest - kAhead], 1);
    return current->blocks[rest];
}

void ZAV_Pooled::operator delete(void* block, std::size_t size) noexcept {
    if (block == nullptr) return;
    if (!kPooled || size > kLargest) return ::operator delete(block);
    const std::size_t c = ClassOf(size);
    Magazine* current = tCache->current[c];
    if (current != nullptr && current->count != kMagazineSize)
        current->blocks[current->count++] = block;
    else
        ReleaseSlow(c, block);
}
