#include <zavbase/os/memory.h>

#include <zavbase/os/lock.h>
#include <zavbase/os/module_entry.h>

#include <windows.h>

#include <mutex>
#include <new>

namespace zav_os {

namespace {

struct Block {
    alignas(16) unsigned char bytes[kThreadBlockSize];
    Block* next;
    Block* previous;
};

constinit Lock blocksLock;
constinit Block* blocks = nullptr; // of all threads
typedef void (*AtEnd)(void*);
constinit AtEnd blockEnd = nullptr;

// What a thread has in place of its block when its end was told.
constinit Block theEnded = {};

// The system's own slots: thread_local memory may be gone when the module is told of a thread's end.
constinit std::atomic<DWORD> theSlot{TLS_OUT_OF_INDEXES};
constinit bool theSlotIsGone = false;

DWORD BlockSlot() {
    if (theSlot == TLS_OUT_OF_INDEXES && !theSlotIsGone) {
        DWORD none = TLS_OUT_OF_INDEXES;
        const DWORD slot = TlsAlloc();
        if (!theSlot.compare_exchange_strong(none, slot)) TlsFree(slot);
    }
    return theSlot;
}

// Null without memory.
Block* AddBlock(DWORD slot, void (*atEnd)(void*)) {
    Block* block = new (std::nothrow) Block{};
    if (block == nullptr || !TlsSetValue(slot, block)) {
        delete block;
        return nullptr;
    }
    const std::lock_guard<Lock> guard(blocksLock);
    blockEnd = atEnd;
    block->next = blocks;
    if (blocks != nullptr) blocks->previous = block;
    blocks = block;
    return block;
}

// Under the lock.
void Unlist(Block& block) {
    (block.previous != nullptr ? block.previous->next : blocks) = block.next;
    if (block.next != nullptr) block.next->previous = block.previous;
}

} // namespace

// Large pages need a privilege here that programs do not have.
void AdviseRandomUse(void*, std::size_t) {}

void* ThreadBlock(void (*atEnd)(void*)) noexcept {
    const DWORD error = GetLastError(); // the reading of a slot clears it
    const DWORD slot = BlockSlot();
    Block* block = nullptr;
    if (slot != TLS_OUT_OF_INDEXES) {
        block = static_cast<Block*>(TlsGetValue(slot));
        if (block == nullptr) block = AddBlock(slot, atEnd);
    }
    SetLastError(error);
    return block != nullptr && block != &theEnded ? block->bytes : nullptr;
}

void OnThreadEnd() {
    const DWORD slot = BlockSlot();
    if (slot == TLS_OUT_OF_INDEXES) return;
    Block* block = static_cast<Block*>(TlsGetValue(slot));
    TlsSetValue(slot, &theEnded);
    if (block == nullptr || block == &theEnded) return;
    {
        const std::lock_guard<Lock> guard(blocksLock);
        Unlist(*block);
    }
    blockEnd(block->bytes);
    delete block;
}

void EndThreadBlocks() noexcept {
    theSlotIsGone = true;
    const DWORD slot = theSlot.exchange(TLS_OUT_OF_INDEXES);
    const std::lock_guard<Lock> guard(blocksLock);
    while (Block* block = blocks) {
        Unlist(*block);
        blockEnd(block->bytes);
        delete block;
    }
    if (slot != TLS_OUT_OF_INDEXES) TlsFree(slot);
}

} // namespace zav_os
