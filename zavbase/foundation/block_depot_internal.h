#ifndef ZAVBASE_FOUNDATION_BLOCK_DEPOT_INTERNAL_H
#define ZAVBASE_FOUNDATION_BLOCK_DEPOT_INTERNAL_H

#include <cstddef>
#include <cstdint>

#include <zavbase/os/lock.h>

/// Memory blocks of one size, for all threads; cut from slabs that are kept until the library is unloaded.
///
/// It hands out neighbours: the free blocks of one small page in the order of their addresses, then those of
/// another. So memory that was given back in whatever order is used again as if it were fresh, and the
/// processor fetches ahead of its use. Free blocks themselves are not written to: most have left the
/// processor's cache. Which are free is a bit each, beside the slab.
class ZAV_BlockDepot {
public:
    /// `size` is a multiple of 16, from 32 on, well below the size of a page.
    explicit constexpr ZAV_BlockDepot(std::uint32_t size)
        : mSize(size), mInverse((1u << kInverseBits) / size + 1) {}
    ZAV_BlockDepot(const ZAV_BlockDepot&) = delete;
    ZAV_BlockDepot& operator=(const ZAV_BlockDepot&) = delete;

    /// Stores up to `most` blocks and gives their number, at least one. Throws std::bad_alloc. The process's
    /// new-handler may be called, and may use the depot.
    unsigned Take(void** blocks, unsigned most);
    void Put(void* const* blocks, unsigned count) noexcept;
    /// Gives the slabs of which no block is in use back to the heap. The depot stays usable.
    void GiveBackSlabs() noexcept;

    /// All of the above wait meanwhile: for a fork.
    void lock() { mLock.lock(); }
    void unlock() { mLock.unlock(); }

private:
    static const unsigned kPageBits = 12, kSlabBits = 21;
    static const unsigned kPages = 1u << (kSlabBits - kPageBits); // of a slab
    static constexpr std::size_t kSlabSize = std::size_t{1} << kSlabBits;
    static const unsigned kInverseBits = 20;

    struct Page {
        std::uint64_t free[2]; // a bit for each block
        char* start;
        Page* next; // when it has free blocks
    };
    struct Slab {
        std::uintptr_t number = 0; // its address without the low bits; 0 where there is none
        Page* pages = nullptr;     // null when the slab was given back
    };

    struct Stock;

    bool OpenFreshPage();
    void AddSlab(Stock& stock);
    void AdoptTable(Stock& stock);
    std::size_t TableSizeForOneMore() const;
    Slab& PlaceOf(std::uintptr_t number) const;
    unsigned TakeFrom(Page& page, void** blocks, unsigned most) const;
    std::uint64_t AllFree(unsigned word) const;
    bool IsUnused(const Page& page) const;
    bool IsUnused(const Slab& slab) const;

    const std::uint32_t mSize, mInverse;
    zav_os::Lock mLock;
    Page* mOpen = nullptr;  // the pages that have free blocks
    Page* mFresh = nullptr; // those of the last slab that were never opened
    unsigned mFreshPages = 0;
    Slab* mTable = nullptr;     // open addressing, at most half full
    std::size_t mTableSize = 0; // a power of two
    std::size_t mSlabs = 0;
};

#endif
