#include <zavbase/foundation/pooled.h>

#include <mutex>

// Each thread has two magazines a size class: lists of free blocks. It takes from and gives to the current one;
// when that runs empty or full the spare steps in, and only when the spare cannot does a whole magazine go from
// or to the depot, under its lock. So blocks that travel from a producing to a consuming thread come back 64 at
// a time.
namespace {

const std::size_t kGrain = 16;
const std::size_t kClasses = 8;
const unsigned kMagazineSize = 64;

struct Block {
    Block* next;
    Block* nextMagazine;  // in the first block of a magazine that lies in the depot
};

struct Magazine {
    Block* first = nullptr;
    unsigned count = 0;

    void Push(Block* block)
    {
        block->next = first;
        first = block;
        ++count;
    }
    Block* Pop()
    {
        Block* block = first;
        first = block->next;
        --count;
        return block;
    }
};

struct Depot {
    std::mutex lock;
    Block* magazines = nullptr;  // full ones
    Magazine loose;              // what ending threads left over
};

struct ThreadCache {
    Magazine current[kClasses];
    Magazine spare[kClasses];
    bool janitorCalled = false;
    bool ended = false;  // the thread's janitor has run: nothing may be left here any more
};

constinit Depot theDepots[kClasses];
thread_local constinit ThreadCache tCache;

void PutMagazine(std::size_t c, Magazine& magazine)
{
    std::lock_guard<std::mutex> guard(theDepots[c].lock);
    magazine.first->nextMagazine = theDepots[c].magazines;
    theDepots[c].magazines = magazine.first;
    magazine = Magazine();
}

void PutLoose(std::size_t c, Magazine& magazine)
{
    std::lock_guard<std::mutex> guard(theDepots[c].lock);
    while (magazine.count != 0) theDepots[c].loose.Push(magazine.Pop());
}

// Gives what an ending thread holds back. Blocks freed later, by destructors of other thread-local objects, go
// straight to the depot.
struct Janitor {
    ~Janitor()
    {
        tCache.ended = true;
        for (std::size_t c = 0; c < kClasses; ++c) {
            PutLoose(c, tCache.current[c]);
            PutLoose(c, tCache.spare[c]);
        }
    }
    void Attend() { tCache.janitorCalled = true; }
};

// Kept apart from the cache, so that the fast path does not ask whether it has been constructed.
void CallJanitor()
{
    static thread_local Janitor janitor;
    janitor.Attend();
}

Magazine NewMagazine(std::size_t c)
{
    const std::size_t size = (c + 1) * kGrain;
    char* chunk = static_cast<char*>(::operator new(size * kMagazineSize));
    Magazine magazine;
    for (std::size_t i = kMagazineSize; i-- > 0;) magazine.Push(reinterpret_cast<Block*>(chunk + i * size));
    return magazine;
}

Magazine TakeMagazine(std::size_t c)
{
    Magazine magazine;
    {
        std::lock_guard<std::mutex> guard(theDepots[c].lock);
        if (Block* first = theDepots[c].magazines) {
            theDepots[c].magazines = first->nextMagazine;
            magazine.first = first;
            magazine.count = kMagazineSize;
            return magazine;
        }
        while (magazine.count < kMagazineSize && theDepots[c].loose.count != 0)
            magazine.Push(theDepots[c].loose.Pop());
    }
    return magazine.count != 0 ? magazine : NewMagazine(c);
}

void* AllocateSlow(std::size_t c)
{
    ThreadCache& cache = tCache;
    if (!cache.janitorCalled) CallJanitor();
    Magazine& current = cache.current[c];
    if (cache.spare[c].count != 0) {
        current = cache.spare[c];
        cache.spare[c] = Magazine();
    } else {
        current = TakeMagazine(c);
    }
    Block* block = current.Pop();
    if (cache.ended) PutLoose(c, current);
    return block;
}

void ReleaseSlow(std::size_t c, Block* block)
{
    ThreadCache& cache = tCache;
    if (!cache.janitorCalled) CallJanitor();
    if (cache.current[c].count == kMagazineSize) {
        if (cache.spare[c].count != 0) PutMagazine(c, cache.spare[c]);
        cache.spare[c] = cache.current[c];
        cache.current[c] = Magazine();
    }
    cache.current[c].Push(block);
    if (cache.ended) PutLoose(c, cache.current[c]);
}

#if defined(__SANITIZE_ADDRESS__)
const bool kPooled = false;  // so that the sanitizer sees a use of a destroyed object
#else
const bool kPooled = true;
#endif

} // namespace

void* ZAV_Pooled::operator new(std::size_t size)
{
    const std::size_t c = (size - 1) / kGrain;
    if (!kPooled || c >= kClasses) return ::operator new(size);
    Magazine& current = tCache.current[c];
    return current.count != 0 ? current.Pop() : AllocateSlow(c);
}

void ZAV_Pooled::operator delete(void* block, std::size_t size) noexcept
{
    if (block == nullptr) return;
    const std::size_t c = (size - 1) / kGrain;
    if (!kPooled || c >= kClasses) return ::operator delete(block);
    ThreadCache& cache = tCache;
    if (cache.current[c].count == kMagazineSize || cache.current[c].count == 0)
        return ReleaseSlow(c, static_cast<Block*>(block));
    cache.current[c].Push(static_cast<Block*>(block));
}
