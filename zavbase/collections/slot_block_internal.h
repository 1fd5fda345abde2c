#ifndef ZAVBASE_COLLECTIONS_SLOT_BLOCK_INTERNAL_H
#define ZAVBASE_COLLECTIONS_SLOT_BLOCK_INTERNAL_H

#include <algorithm>

#include <zavbase/collections/nil_internal.h>

class ZAV_SetIndex;

/// The heap block behind an array of slots. A hidden header in front of the first slot holds what the array
/// object has no field for: the room that is really there, and the helps of a hashed table. Slots are reached
/// by the pointer to the first.
namespace zav_slots {

struct Header {
    uint32_t mRoom;       ///< slots allocated, at least the array's length
    uint32_t mNoIndex;    ///< not 0 while a hashed table is to do without a side index
    ZAV_SetIndex* mIndex; ///< of a hashed table, or null; belongs to the set
    void* mHelper;        ///< of the owner of a hashed table, or null; goes with the set from table to table
    uint32_t mMoves;      ///< counts what may have moved elements from one slot of a hashed table to another
};

inline Header& HeaderOf(ZAV_CltObject** slots) { return *(reinterpret_cast<Header*>(slots) - 1); }

/// A block for `room` slots, of which the first `n` hold the nil object. Running out of memory is treated as
/// operator new does: by the new-handler.
ZAV_CltObject** Allocate(uint32_t n, uint32_t room);
/// The same block with another room, moved if it must be; keeps the slots that fit. The slots beyond them are
/// the caller's to fill.
ZAV_CltObject** Reallocate(ZAV_CltObject** slots, uint32_t room);
void Free(ZAV_CltObject** slots);
inline void FillNil(ZAV_CltObject** first, ZAV_CltObject** last) { std::fill(first, last, ZAV_Nil()); }

/// Sorts by the elements' Compare, ascending; null counts as the nil object. Any Compare at all is safe. When
/// a Compare throws, the order is as before.
void Sort(ZAV_CltObject** slots, uint32_t n);

} // namespace zav_slots

#endif
