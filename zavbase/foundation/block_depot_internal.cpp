#include <zavbase/foundation/block_depot_internal.h>

#include <bit>
#include <memory>
#include <new>

#include <zavbase/os/memory.h>

unsigned ZAV_BlockDepot::Take(void** blocks, unsigned most) {
    std::lock_guard<std::mutex> guard(mLock);
    if (mOpen == nullptr) OpenFreshPage();
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
    std::lock_guard<std::mutex> guard(mLock);
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

void ZAV_BlockDepot::OpenFreshPage() {
    if (mFreshPages == 0) AddSlab();
    Page& page = *mFresh++;
    --mFreshPages;
    const unsigned blocks = (1u << kPageBits) / mSize;
    page.free[0] = blocks < 64 ? (std::uint64_t{1} << blocks) - 1 : ~std::uint64_t{0};
    page.free[1] =
        blocks < 128 ? (std::uint64_t{1} << (blocks > 64 ? blocks - 64 : 0)) - 1 : ~std::uint64_t{0};
    page.next = nullptr;
    mOpen = &page;
}

// What can fail comes first.
void ZAV_BlockDepot::AddSlab() {
    if (2 * (mSlabs + 1) > mTableSize) GrowTable();
    std::unique_ptr<Page[]> pages(new Page[kPages]());
    const std::size_t size = std::size_t{1} << kSlabBits;
    char* start = static_cast<char*>(::operator new(size, std::align_val_t(size)));
    if (mSlabs != 0) zav_os::AdviseRandomUse(start, size); // who needs little gets it in small pieces
    for (unsigned i = 0; i < kPages; ++i) pages[i].start = start + (std::size_t{i} << kPageBits);
    const std::uintptr_t number = reinterpret_cast<std::uintptr_t>(start) >> kSlabBits;
    mFresh = pages.get();
    mFreshPages = kPages;
    PlaceOf(number) = {number, pages.release()};
    ++mSlabs;
}

void ZAV_BlockDepot::GrowTable() {
    Slab* const old = mTable;
    const std::size_t oldSize = mTableSize, size = oldSize != 0 ? 2 * oldSize : 8;
    mTable = new Slab[size];
    mTableSize = size;
    for (std::size_t i = 0; i < oldSize; ++i)
        if (old[i].number != 0) PlaceOf(old[i].number) = old[i];
    delete[] old;
}
