#ifndef ZAVBASE_FOUNDATION_POOLED_H
#define ZAVBASE_FOUNDATION_POOLED_H

#include <cstddef>
#include <new>

#include <zavbase/foundation/export.h>

/// Base of classes whose objects are made and destroyed by the million, perhaps on different threads: events,
/// values and the entries of their dictionaries, keys and associations. Blocks of up to 128 bytes come from a
/// store of the process, of which each thread keeps a few at hand, and go back to it when the object is
/// destroyed on whichever thread; larger ones come from the heap. The base has no data. The store holds as
/// much as the largest number of such objects ever alive needed. When the library is unloaded from a running
/// process, it gives that back to the heap, but for slabs of two megabytes of which an object is still alive.
class ZAV_API ZAV_Pooled {
public:
    static void* operator new(std::size_t size);
    static void operator delete(void* block, std::size_t size) noexcept;

    static void* operator new(std::size_t size, std::align_val_t align) {
        return ::operator new(size, align);
    }
    static void operator delete(void* block, std::size_t, std::align_val_t align) noexcept {
        ::operator delete(block, align);
    }

    /// Null when there is no memory.
    static void* operator new(std::size_t size, const std::nothrow_t&) noexcept;
    /// Called when a constructor throws. Without the size, the block cannot be put back; it is lost.
    static void operator delete(void*, const std::nothrow_t&) noexcept {}

    /// In place, as always.
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void*, void*) noexcept {}
};

#endif
