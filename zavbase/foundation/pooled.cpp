#include <zavbase/foundation/pooled.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>

#include <zavbase/foundation/block_depot_internal.h>
#include <zavbase/foundation/process_hooks_internal.h>
#include <zavbase/os/memory.h>

// Each thread has two magazines a size class: arrays of free blocks. It takes from and gives to the current
// one; when that runs empty or full the spare steps in, and only when the spare cannot is a whole magazine
// filled or emptied at the depot, under its lock. So blocks that travel from a producing to a consuming
// thread come back 64 at a time.
namespace {

// The sizes of values, entries and events with a number or two, and what lies between.
constexpr std::uint32_t kSizes[] = {32, 48, 64, 112, 128};
constexpr std::size_t kClasses = sizeof kSizes / sizeof *kSizes;
constexpr std::size_t kLargest = kSizes[kClasses - 1];
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
};
static_assert(sizeof(ThreadCache) <= zav_os::kThreadBlockSize);

// Has no magazines: that of a new thread until it needs one, and of an ending one that gave its own back.
constinit ThreadCache theNoCache = {};
thread_local constinit ThreadCache* tCache = &theNoCache;

// Built by the compiler and never destroyed: objects may be made before static ones, and outlive them.
constinit ZAV_BlockDepot theDepots[kClasses] = {ZAV_BlockDepot(kSizes[0]), ZAV_BlockDepot(kSizes[1]),
                                                ZAV_BlockDepot(kSizes[2]), ZAV_BlockDepot(kSizes[3]),
                                                ZAV_BlockDepot(kSizes[4])};

void Empty(std::size_t c, Magazine& magazine) {
    theDepots[c].Put(magazine.blocks, magazine.count);
    magazine.count = 0;
}

// The blocks are taken from the end; so the lowest address goes there. The magazine was empty, but a
// new-handler that gave objects back may have filled it meanwhile.
void Fill(std::size_t c, Magazine& magazine) {
    void* blocks[kMagazineSize];
    const unsigned count = theDepots[c].Take(blocks, kMagazineSize);
    if (magazine.count != 0) return theDepots[c].Put(blocks, count);
    std::reverse_copy(blocks, blocks + count, magazine.blocks);
    magazine.count = count;
}

// Takes a magazine of the thread's away; it may be none.
void GiveBack(std::size_t c, Magazine*& magazine) {
    if (magazine == nullptr) return;
    Empty(c, *magazine);
    delete magazine;
    magazine = nullptr;
}

// Gives what an ending thread holds back. What its later destructors make and destroy does not stay with it.
void EndCache(void* block) {
    ThreadCache& cache = *static_cast<ThreadCache*>(block);
    if (tCache == &cache) tCache = &theNoCache;
    for (std::size_t c = 0; c < kClasses; ++c) {
        GiveBack(c, cache.current[c]);
        GiveBack(c, cache.spare[c]);
    }
}

// Null without memory, and when the thread's end was told.
ThreadCache* OwnCache() {
    if (tCache == &theNoCache) {
        void* block = zav_os::ThreadBlock(EndCache);
        if (block == nullptr) return nullptr;
        tCache = static_cast<ThreadCache*>(block);
    }
    return tCache;
}

// The spare one in place of the current; made if there is none yet.
Magazine& NextMagazine(ThreadCache& cache, std::size_t c) {
    std::swap(cache.current[c], cache.spare[c]);
    if (cache.current[c] == nullptr) {
        std::unique_ptr<Magazine> made(new Magazine);
        if (cache.current[c] == nullptr)
            cache.current[c] = made.release(); // a new-handler may have been here
    }
    return *cache.current[c];
}

bool CanTake(const Magazine* magazine) { return magazine != nullptr && magazine->count != 0; }
bool CanGive(const Magazine* magazine) { return magazine != nullptr && magazine->count != kMagazineSize; }

void* AllocateSlow(std::size_t c) {
    void* block;
    if (ThreadCache* cache = OwnCache()) {
        while (!CanTake(cache->current[c])) {
            Magazine& next = NextMagazine(*cache, c);
            if (next.count == 0) Fill(c, next);
        }
        Magazine& current = *cache->current[c];
        block = current.blocks[--current.count];
    } else {
        theDepots[c].Take(&block, 1);
    }
    return block;
}

void ReleaseSlow(std::size_t c, void* block) noexcept {
    try {
        if (ThreadCache* cache = OwnCache()) {
            while (!CanGive(cache->current[c])) {
                Magazine& next = NextMagazine(*cache, c);
                if (next.count == kMagazineSize) Empty(c, next);
            }
            Magazine& current = *cache->current[c];
            current.blocks[current.count++] = block;
            return;
        }
    } catch (...) { // no memory for a magazine
    }
    theDepots[c].Put(&block, 1);
}

void LockDepots() {
    for (ZAV_BlockDepot& depot : theDepots) depot.lock();
}

void UnlockDepots(bool) {
    for (ZAV_BlockDepot& depot : theDepots) depot.unlock();
}

void GiveAllBack() {
    zav_os::EndThreadBlocks();
    for (ZAV_BlockDepot& depot : theDepots) depot.GiveBackSlabs();
}

ZAV_ProcessHooks hooks(ZAV_ProcessHooks::kBlocks, LockDepots, UnlockDepots, GiveAllBack);

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
    if (!CanTake(current)) return AllocateSlow(c);
    const unsigned rest = --current->count;
    if (rest >= kAhead) __builtin_prefetch(current->blocks[rest - kAhead], 1);
    return current->blocks[rest];
}

// Not in the header, which hosts without exceptions include, too.
void* ZAV_Pooled::operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return operator new(size);
    } catch (...) {
        return nullptr;
    }
}

void ZAV_Pooled::operator delete(void* block, std::size_t size) noexcept {
    if (block == nullptr) return;
    if (!kPooled || size > kLargest) return ::operator delete(block);
    const std::size_t c = ClassOf(size);
    Magazine* current = tCache->current[c];
    if (CanGive(current))
        current->blocks[current->count++] = block;
    else
        ReleaseSlow(c, block);
}
