#include <zavbase/collections/slot_block_internal.h>

#include <cstdlib>
#include <new>

namespace zav_slots {
namespace {

// realloc is what makes growing cheap: a large block is moved by its pages, not byte by byte. operator new
// has nothing like it, so its rules for running out of memory are kept here by hand.
Header* Resize(Header* old, size_t room) {
    const size_t most = (SIZE_MAX / 2 - sizeof(Header)) / sizeof(ZAV_CltObject*);
    for (;;) {
        void* p = room > most ? nullptr : std::realloc(old, sizeof(Header) + room * sizeof(ZAV_CltObject*));
        if (p) return static_cast<Header*>(p);
        std::new_handler handler = std::get_new_handler();
        if (!handler) throw std::bad_alloc();
        handler();
    }
}

ZAV_CltObject** SlotsOf(Header* h) { return reinterpret_cast<ZAV_CltObject**>(h + 1); }

} // namespace

ZAV_CltObject** Allocate(uint32_t n, uint32_t room) {
    Header* h = Resize(nullptr, room);
    *h = {room, 0, nullptr, nullptr, 0};
    FillNil(SlotsOf(h), SlotsOf(h) + n);
    return SlotsOf(h);
}

ZAV_CltObject** Reallocate(ZAV_CltObject** slots, uint32_t room) {
    Header* h = Resize(&HeaderOf(slots), room);
    h->mRoom = room;
    return SlotsOf(h);
}

void Free(ZAV_CltObject** slots) { std::free(&HeaderOf(slots)); }

} // namespace zav_slots
