#include <zavbase/os/memory.h>

#include <zavbase/os/module_entry.h>

#include <windows.h>

#include <new>

namespace zav_os {

namespace {

struct Block {
    alignas(16) unsigned char bytes[kThreadBlockSize];
    void (*atEnd)(void*);
};

// The system's own slots: thread_local memory may be gone when the module is told of a thread's end.
DWORD BlockSlot() {
    static const DWORD slot = TlsAlloc();
    return slot;
}

} // namespace

// Large pages need a privilege here that programs do not have.
void AdviseRandomUse(void*, std::size_t) {}

void* ThreadBlock(void (*atEnd)(void*)) noexcept {
    const DWORD error = GetLastError(); // the reading of a slot clears it
    Block* block = static_cast<Block*>(TlsGetValue(BlockSlot()));
    if (block == nullptr) {
        block = new (std::nothrow) Block{};
        if (block != nullptr && !TlsSetValue(BlockSlot(), block)) {
            delete block;
            block = nullptr;
        }
        if (block != nullptr) block->atEnd = atEnd;
    }
    SetLastError(error);
    return block != nullptr ? block->bytes : nullptr;
}

void OnThreadEnd() {
    Block* block = static_cast<Block*>(TlsGetValue(BlockSlot()));
    if (block == nullptr) return;
    TlsSetValue(BlockSlot(), nullptr);
    block->atEnd(block->bytes);
    delete block;
}

} // namespace zav_os
