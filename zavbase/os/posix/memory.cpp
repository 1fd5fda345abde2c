#include <zavbase/os/memory.h>

#include <zavbase/os/lock.h>
#include <zavbase/os/posix/thread_end.h>

#include <cstdint>
#include <mutex>
#include <sys/mman.h>

namespace zav_os {

namespace {

struct Block {
    alignas(16) unsigned char bytes[kThreadBlockSize];
    Block* next;
    Block** place; // what refers to it in the list; like next, others change it under the lock
    bool listed;   // the thread has it; for the thread alone
    bool ended;
};

constinit thread_local Block ownBlock = {};

constinit Lock blocksLock;
constinit Block* blocks = nullptr; // of all threads
typedef void (*AtEnd)(void*);
constinit AtEnd blockEnd = nullptr;

void Enlist(Block& block) {
    block.next = blocks;
    block.place = &blocks;
    if (blocks != nullptr) blocks->place = &block.next;
    blocks = &block;
    block.listed = true;
}

void Unlist(Block& block) {
    *block.place = block.next;
    if (block.next != nullptr) block.next->place = block.place;
    block.listed = false;
    block.ended = true;
}

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
    if (ownBlock.listed) return ownBlock.bytes;
    if (ownBlock.ended || !ArmThreadEnd()) return nullptr;
    const std::lock_guard<Lock> guard(blocksLock);
    blockEnd = atEnd;
    Enlist(ownBlock);
    return ownBlock.bytes;
}

void EndOwnBlock() noexcept {
    if (!ownBlock.listed) return;
    {
        const std::lock_guard<Lock> guard(blocksLock);
        Unlist(ownBlock);
    }
    blockEnd(ownBlock.bytes);
}

void EndThreadBlocks() noexcept {
    DisarmThreadEnds();
    const std::lock_guard<Lock> guard(blocksLock);
    while (Block* block = blocks) {
        Unlist(*block);
        blockEnd(block->bytes);
    }
}

void BlocksBeforeFork() noexcept { blocksLock.lock(); }

// The memory of the other threads will be that of new ones.
void BlocksAfterFork(bool inChild) noexcept {
    if (inChild) {
        blocks = nullptr;
        if (ownBlock.listed) Enlist(ownBlock);
    }
    blocksLock.unlock();
}

} // namespace zav_os
