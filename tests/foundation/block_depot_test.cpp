#include <zavbase/foundation/block_depot_internal.h>

#include <cstdlib>
#include <functional>
#include <new>
#include <set>
#include <vector>

#include <gtest/gtest.h>

namespace {

int slabsAlive = 0;
std::function<void()> whileMoreIsGot; // what a new-handler might do

} // namespace

// Slabs are the only memory of these programs with an alignment of its own.
void* operator new(std::size_t size, std::align_val_t align) {
    if (std::function<void()> handler = std::exchange(whileMoreIsGot, nullptr)) handler();
    const std::size_t mask = static_cast<std::size_t>(align) - 1;
    void* whole = std::malloc(size + mask + sizeof(void*));
    if (whole == nullptr) throw std::bad_alloc();
    ++slabsAlive;
    void** block =
        reinterpret_cast<void**>((reinterpret_cast<std::uintptr_t>(whole) + sizeof(void*) + mask) & ~mask);
    block[-1] = whole;
    return block;
}
void operator delete(void* block, std::align_val_t) noexcept {
    --slabsAlive;
    std::free(static_cast<void**>(block)[-1]);
}
void operator delete(void* block, std::size_t, std::align_val_t align) noexcept {
    operator delete(block, align);
}

namespace {

std::set<void*> Take(ZAV_BlockDepot& depot, unsigned count) {
    std::set<void*> blocks;
    while (blocks.size() < count) {
        void* some[64];
        const unsigned got = depot.Take(some, std::min(64u, count - static_cast<unsigned>(blocks.size())));
        EXPECT_GE(got, 1u);
        for (unsigned i = 0; i < got; ++i) EXPECT_TRUE(blocks.insert(some[i]).second) << "handed out twice";
    }
    return blocks;
}

void Put(ZAV_BlockDepot& depot, const std::set<void*>& blocks) {
    for (void* block : blocks) depot.Put(&block, 1);
}

const unsigned kSlab = 512 * 4096; // bytes

TEST(BlockDepot, GivenBackBlocksAreUsedAgainBeforeFreshOnes) {
    for (const std::uint32_t size : {32u, 48u, 112u, 128u}) {
        ZAV_BlockDepot depot(size);
        const unsigned some = 3 * (4096 / size);
        const std::set<void*> first = Take(depot, some);
        Put(depot, first);
        EXPECT_EQ(Take(depot, some), first) << size;
        Put(depot, first);
        depot.GiveBackSlabs();
        EXPECT_EQ(slabsAlive, 0);
    }
}

// At the unloading: a slab with a block in use stays, and what is used after that still works.
TEST(BlockDepot, SlabsNotInUseGoBackToTheHeap) {
    ZAV_BlockDepot depot(128);
    const unsigned perSlab = kSlab / 128;
    std::set<void*> blocks = Take(depot, 5 * perSlab / 2); // two and a half
    EXPECT_EQ(slabsAlive, 3);
    std::set<void*> kept = {*blocks.begin()};
    blocks.erase(blocks.begin());
    Put(depot, blocks);
    depot.GiveBackSlabs();
    EXPECT_EQ(slabsAlive, 1);
    kept.merge(Take(depot, 9 * perSlab)); // the table grows
    EXPECT_EQ(kept.size(), 9 * perSlab + 1);
    EXPECT_EQ(slabsAlive, 10);
    Put(depot, kept);
    depot.GiveBackSlabs();
    EXPECT_EQ(slabsAlive, 0);
    kept = Take(depot, 1);
    Put(depot, kept);
    depot.GiveBackSlabs();
    EXPECT_EQ(slabsAlive, 0);
}

TEST(BlockDepot, ANewHandlerMayTakeAndGiveBack) {
    ZAV_BlockDepot depot(64);
    std::set<void*> inside;
    whileMoreIsGot = [&] {
        inside = Take(depot, 1);
        Put(depot, inside);
    };
    EXPECT_EQ(Take(depot, 1), inside);
    EXPECT_EQ(slabsAlive, 1);
    Put(depot, inside);
    depot.GiveBackSlabs();
}

} // namespace
