#include <zavbase/foundation/pooled.h>

#include <bit>
#include <mutex>
#include <utility>

#include <zavbase/os/memory.h>

// Each thread has two magazines a size class: arrays of free blocks. It takes from and gives to the current
// one; when that runs empty or full the spare steps in, and only when the spare cannot does a whole magazine
// go from or to the depot, under its lock. So blocks that travel from a producing to a consuming thread come
// back 64 at a time. Free blocks themselves are not written to: most have left the processor's cache.
namespace {

// The sizes of values, entries and events with a number or two, and what lies between.
const std::size_t kSizes[] = {32, 48, 64, 112, 128};
const std::size_t kClasses = sizeof kSizes / sizeof *kSizes;
const std::size_t kLargest = kSizes[kClasses - 1];
const std::size_t kStep = 16;
const unsigned char kClassOfSteps[kLargest / kStep + 1] = {0, 0, 0, 1, 2, 3, 3, 3, 4};
const std::size_t kCacheLine = 64;
const unsigned kMagazineSize = 64;
const std::size_t kFirstSlab = kLargest * kMagazineSize, kLargestSlab = 2 << 20;
const unsigned kAhead = 3; // blocks that the processor is told of before they are needed

std::size_t ClassOf(std::size_t size) { return kClassOfSteps[(size + kStep - 1) / kStep]; }

struct Magazine {
    Magazine* next;
    unsigned count;
    void* blocks[kMagazineSize];
};

// What is handed out for the first time; slabs grow with what is in use already.
struct Slab {
    char* next = nullptr;
    std::size_t left = 0;
    std::size_t size = 0;
};

struct Depot {
    std::mutex lock;
    Slab slab;
    Magazine* filled = nullptr; // most of them full; those of ended threads may be less so
    Magazine* empty = nullptr;
};

struct ThreadCache {
    Magazine* current[kClasses];
    Magazine* spare[kClasses];
    bool ended; // the thread's end was told: nothing may be left here any more
};
static_assert(sizeof(ThreadCache) <= zav_os::kThreadBlockSize);

constinit Depot theDepots[kClasses];
constinit ThreadCache theNoCache = {}; // has no magazines; a new thread's until it needs one
thread_local constinit ThreadCache* tCache = &theNoCache;

void Put(Magazine*& list, Magazine* magazine) {
    magazine->next = list;
    list = magazine;
}

Magazine* Take(Magazine*& list) {
    Magazine* magazine = list;
    if (magazine != nullptr) list = magazine->next;
    return magazine;
}

// Takes a magazine of the thread's away; it may be none.
void GiveBack(std::size_t c, Magazine*& magazine) {
    if (magazine == nullptr) return;
    Depot& depot = theDepots[c];
    std::lock_guard<std::mutex> guard(depot.lock);
    Put(magazine->count != 0 ? depot.filled : depot.empty, magazine);
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

Magazine* TakeEmpty(std::size_t c) {
    {
        std::lock_guard<std::mutex> guard(theDepots[c].lock);
        if (Magazine* magazine = Take(theDepots[c].empty)) return magazine;
    }
    Magazine* magazine = new Magazine;
    magazine->count = 0;
    return magazine;
}

void NewSlab(Slab& slab) {
    const std::size_t size = slab.size < kFirstSlab     ? kFirstSlab
                             : slab.size < kLargestSlab ? 2 * slab.size
                                                        : slab.size;
    const std::size_t align = size < kLargestSlab ? kCacheLine : kLargestSlab;
    slab.next = static_cast<char*>(::operator new(size, std::align_val_t(align)));
    slab.left = slab.size = size;
    zav_os::AdviseRandomUse(slab.next, size);
}

void Fill(std::size_t c, Magazine* magazine) {
    const std::size_t size = kSizes[c];
    char* first;
    {
        Depot& depot = theDepots[c];
        std::lock_guard<std::mutex> guard(depot.lock);
        if (depot.slab.left < size * kMagazineSize) NewSlab(depot.slab);
        first = depot.slab.next;
        depot.slab.next += size * kMagazineSize;
        depot.slab.left -= size * kMagazineSize;
    }
    for (std::size_t i = kMagazineSize; i-- > 0;) magazine->blocks[magazine->count++] = first + i * size;
}

Magazine* TakeFilled(std::size_t c) {
    std::lock_guard<std::mutex> guard(theDepots[c].lock);
    return Take(theDepots[c].filled);
}

void* AllocateSlow(std::size_t c) {
    ThreadCache& cache = OwnCache();
    std::swap(cache.current[c], cache.spare[c]);
    Magazine*& current = cache.current[c];
    if (current == nullptr || current->count == 0) {
        if (Magazine* filled = TakeFilled(c)) {
            GiveBack(c, current);
            current = filled;
        } else {
            if (current == nullptr) current = TakeEmpty(c);
            Fill(c, current);
        }
    }
    void* block = current->blocks[--current->count];
    if (cache.ended) GiveBack(c, current);
    return block;
}

// When there is no memory for another magazine, the block is not used again.
void ReleaseSlow(std::size_t c, void* block) noexcept try {
    ThreadCache& cache = OwnCache();
    std::swap(cache.current[c], cache.spare[c]);
    Magazine*& current = cache.current[c];
    if (current == nullptr || current->count == kMagazineSize) {
        GiveBack(c, current);
        current = TakeEmpty(c);
    }
    current->blocks[current->count++] = block;
    if (cache.ended) GiveBack(c, current);
} catch (...) {
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
