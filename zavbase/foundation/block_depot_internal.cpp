#include <zavbase/foundation/block_depot_internal.h>

#include <algorithm>
#include <bit>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

#include <zavbase/os/memory.h>

/// The memory for one more slab, and for a larger table when one is wanted, got from the heap without the
/// lock and given back there if it was not used.
struct ZAV_BlockDepot::Stock {
    explicit Stock(std::size_t size)
        : table(size != 0 ? new Slab[size] : nullptr), tableSize(size), pages(new Page[kPages]()),
          start(static_cast<char*>(::operator new(kSlabSize, std::align_val_t(kSlabSize)))) {}
    ~Stock() {
        if (start != nullptr) FreeSlab(start);
    }
    Stock(const Stock&) = delete;
    Stock& operator=(const Stock&) = delete;

    static void FreeSlab(char* start) { ::operator delete(start, std::align_val_t(kSlabSize)); }

    std::unique_ptr<Slab[]> table;
    std::size_t tableSize;
    std::unique_ptr<Page[]> pages;
    char* start;
};

unsigned ZAV_BlockDepot::Take(void** blocks, unsigned most) {
    std::unique_lock<zav_os::Lock> guard(mLock);
    while (mOpen == nullptr && !OpenFreshPage()) {
        const std::size_t tableSize = TableSizeForOneMore();
        guard.unlock();
        Stock stock(tableSize);
        guard.lock();
        if (mOpen == nullptr && mFreshPages == 0) AddSlab(stock);
        guard.unlock(); // what is left of the stock goes back to the heap, without the lock again
        guard.lock();
    }
    unsigned count = 0;
    while (count < most && mOpen != nullptr) {
        Page& page = *mOpen;
        count += TakeFrom(page, blocks + count, most - count);
        if ((page.free[0] | page.free[1]) == 0) mOpen = page.next;
    }
    return count;
}

unsigned ZAV_BlockDepot::TakeFrom(Page& page, void** blocks, unsigned most) const {
    unsigned count = 0;
    for (unsigned word = 0; word < 2; ++word) {
        std::uint64_t& free = page.free[word];
        for (; free != 0 && count < most; free &= free - 1) {
            const unsigned index = word * 64 + static_cast<unsigned>(std::countr_zero(free));
            blocks[count++] = page.start + std::size_t{index} * mSize;
        }
    }
    return count;
}

void ZAV_BlockDepot::Put(void* const* blocks, unsigned count) noexcept {
    const std::lock_guard<zav_os::Lock> guard(mLock);
    for (unsigned i = 0; i < count; ++i) {
        const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(blocks[i]);
        Page& page = PlaceOf(address >> kSlabBits).pages[(address >> kPageBits) % kPages];
        if ((page.free[0] | page.free[1]) == 0) {
            page.next = mOpen;
            mOpen = &page;
        }
        const std::uint32_t offset = static_cast<std::uint32_t>(address) % (1u << kPageBits);
        const std::uint32_t index = offset * mInverse >> kInverseBits;
        page.free[index / 64] |= std::uint64_t{1} << index % 64;
    }
}

// Either the slab's or the empty one where it would be.
ZAV_BlockDepot::Slab& ZAV_BlockDepot::PlaceOf(std::uintptr_t number) const {
    std::size_t i = static_cast<std::size_t>(number * 0x9E3779B1u) & (mTableSize - 1);
    while (mTable[i].number != number && mTable[i].number != 0) i = (i + 1) & (mTableSize - 1);
    return mTable[i];
}

std::uint64_t ZAV_BlockDepot::AllFree(unsigned word) const {
    const unsigned blocks = (1u << kPageBits) / mSize, before = word * 64;
    if (blocks <= before) return 0;
    return blocks - before < 64 ? (std::uint64_t{1} << (blocks - before)) - 1 : ~std::uint64_t{0};
}

bool ZAV_BlockDepot::OpenFreshPage() {
    if (mFreshPages == 0) return false;
    Page& page = *mFresh++;
    --mFreshPages;
    page.free[0] = AllFree(0);
    page.free[1] = AllFree(1);
    page.next = nullptr;
    mOpen = &page;
    return true;
}

// At most half of the table is in use.
std::size_t ZAV_BlockDepot::TableSizeForOneMore() const {
    if (2 * (mSlabs + 1) <= mTableSize) return 0;
    return mTableSize != 0 ? 2 * mTableSize : 8;
}

// Unless another thread added so many meanwhile that the table of the stock is too small.
void ZAV_BlockDepot::AddSlab(Stock& stock) {
    if (stock.tableSize > mTableSize) AdoptTable(stock);
    if (TableSizeForOneMore() != 0) return;
    if (mSlabs != 0) zav_os::AdviseRandomUse(stock.start, kSlabSize); // who needs little gets small pieces
    for (unsigned i = 0; i < kPages; ++i) stock.pages[i].start = stock.start + (std::size_t{i} << kPageBits);
    const std::uintptr_t number = reinterpret_cast<std::uintptr_t>(stock.start) >> kSlabBits;
    mFresh = stock.pages.get();
    mFreshPages = kPages;
    PlaceOf(number) = {number, stock.pages.release()};
    stock.start = nullptr;
    ++mSlabs;
}

void ZAV_BlockDepot::AdoptTable(Stock& stock) {
    std::unique_ptr<Slab[]> old(mTable);
    const std::size_t oldSize = mTableSize;
    mTable = stock.table.release();
    mTableSize = stock.tableSize;
    for (std::size_t i = 0; i < oldSize; ++i)
        if (old[i].number != 0) PlaceOf(old[i].number) = old[i];
    stock.table = std::move(old);
}

bool ZAV_BlockDepot::IsUnused(const Page& page) const {
    const bool fresh = &page >= mFresh && &page < mFresh + mFreshPages;
    return fresh || (page.free[0] == AllFree(0) && page.free[1] == AllFree(1));
}

bool ZAV_BlockDepot::IsUnused(const Slab& slab) const {
    return std::all_of(slab.pages, slab.pages + kPages, [this](const Page& page) { return IsUnused(page); });
}

// The place of a slab that went stays taken, as others may have been put behind it.
void ZAV_BlockDepot::GiveBackSlabs() noexcept {
    const std::lock_guard<zav_os::Lock> guard(mLock);
    mOpen = nullptr;
    bool kept = false;
    for (std::size_t i = 0; i < mTableSize; ++i) {
        Slab& slab = mTable[i];
        if (slab.pages == nullptr) continue;
        if (IsUnused(slab)) {
            if (mFresh == slab.pages + kPages - mFreshPages) mFreshPages = 0;
            Stock::FreeSlab(slab.pages->start);
            delete[] std::exchange(slab.pages, nullptr);
            continue;
        }
        kept = true;
        for (Page* page = slab.pages; page != slab.pages + kPages; ++page) {
            if ((page->free[0] | page->free[1]) != 0) page->next = std::exchange(mOpen, page);
        }
    }
    if (kept) return;
    delete[] std::exchange(mTable, nullptr);
    mTableSize = mSlabs = 0;
}
