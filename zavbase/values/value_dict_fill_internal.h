#ifndef ZAVBASE_VALUES_VALUE_DICT_FILL_INTERNAL_H
#define ZAVBASE_VALUES_VALUE_DICT_FILL_INTERNAL_H

#include <cstdint>
#include <memory>
#include <vector>

#include <zavbase/values/value_dict.h>

/// Entries that are in no dictionary yet, in their order. Owns them and their values.
struct ZAV_LOCAL ZAV_UValDict::Chain {
    Chain() : mFirst(nullptr), mLast(nullptr), mCount(0) {}
    Chain(Chain&& other) noexcept;
    Chain& operator=(Chain&& other) noexcept;
    ~Chain();

    /// Takes `value`, which may be null, also when it throws for want of memory.
    void Append(const char* key, unsigned int length, ZAV_UVal* value);
    uint32_t Count() const { return mCount; }

private:
    friend struct Filler;
    ZAV_AssocUVal* Release();

    ZAV_AssocUVal* mFirst;
    ZAV_AssocUVal* mLast;
    uint32_t mCount;
};

/// The fields of an entry without a call; for who walks millions of them.
struct ZAV_LOCAL ZAV_UValDict::Fields {
    static const char* Key(const ZAV_AssocUVal& entry) { return entry.mKey; }
    static ZAV_UVal* Value(const ZAV_AssocUVal& entry) { return entry.mValue; }
    static ZAV_AssocUVal* First(const ZAV_UValDict& dict) { return dict.mFirst; }
    /// Fetches ahead what comes after the entry, its links first: memory is slower than any of this.
    static ZAV_AssocUVal* Next(const ZAV_AssocUVal& entry) {
        if (const ZAV_AssocUVal* next = entry.mNext) {
            __builtin_prefetch(next->mValue);
            if (next->mNext) {
                __builtin_prefetch(&next->mNext->mNext);
                __builtin_prefetch(next->mNext);
            }
        }
        return entry.mNext;
    }
};

/// Puts many entries at once into a dictionary. The result is what SetEntry would make of them one after
/// the other, slot for slot; but the table's growth is played through on numbers, and only the last table is
/// made. Keep one for many dictionaries: it keeps its memory.
struct ZAV_LOCAL ZAV_UValDict::Filler {
    /// Empties the chain. False if a key was there already or came twice; the later value is then the one
    /// that stays.
    bool Fill(ZAV_UValDict& dict, Chain& chain);
    /// The same into a new dictionary, at first of capacity 16, which is the caller's.
    std::unique_ptr<ZAV_UValDict> Make(Chain& chain, bool* allNew);

private:
    static constexpr uint32_t NONE = 0xFFFFFFFF;
    static constexpr uint32_t LONGEST_PROBE = 48;

    static constexpr uint32_t NEW_BITS = 5; // of the table of a new dictionary

    void TakeHashes(const Chain& chain);
    void Store(ZAV_UValDict& dict, Chain& chain);
    bool Play(uint32_t nbits);
    bool Place(uint32_t entry, bool isNew);
    bool Grow();
    bool IsTwice(uint32_t a, uint32_t b) const;
    static bool FillOneByOne(ZAV_UValDict& dict, ZAV_AssocUVal* first);

    std::vector<ZAV_AssocUVal*> mEntries;
    std::vector<uint32_t> mHashes; // of the entries
    std::vector<uint32_t> mSlots;  // the table: numbers of entries, or NONE
    std::vector<uint32_t> mOld;
    uint32_t mNbits = 0;
};

#endif
