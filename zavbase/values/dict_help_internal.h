#ifndef ZAVBASE_VALUES_DICT_HELP_INTERNAL_H
#define ZAVBASE_VALUES_DICT_HELP_INTERNAL_H

#include <vector>

#include <zavbase/values/key_fold_internal.h>

/// The entries of a dictionary by their number, as far as they were asked for: asked in any order, and while
/// other dictionaries are looked through, each is found at once. Several threads may ask at once.
class ZAV_LOCAL ZAV_KeyOrder {
public:
    /// Entry `i` of the dictionary, which has as many; null without memory.
    const ZAV_AssocUVal* At(const ZAV_UValDict& dict, uint32_t i);
    /// An entry has left the dictionary, whose number was `index`, or is not known (-1) unless it was asked
    /// for last. It and those behind it are dropped, or all.
    void Remove(const ZAV_AssocUVal& entry, int index);
    void Clear() { mEntries.clear(); }

    /// How many entries were looked at so far.
    uint64_t Steps() const { return mSteps; }

private:
    std::mutex mLock;
    std::vector<const ZAV_AssocUVal*> mEntries; // the first ones
    uint32_t mLast = 0;                         // asked for last
    uint64_t mSteps = 0;
};

/// What a dictionary keeps beside its table, because its class has no fields for it. Made when it is first
/// needed.
struct ZAV_LOCAL ZAV_DictHelp {
    /// Dictionaries up to this size do without.
    static constexpr uint32_t MOST_WALKED = 16;

    /// The help of the dictionary with this table, made if there is none; null without memory.
    static ZAV_DictHelp* Of(const ZAV_Set& table);
    /// The help, if there is one.
    static ZAV_DictHelp* IfAny(const ZAV_Set& table);
    static void Drop(const ZAV_Set& table);

    void Clear();

    ZAV_KeyFold mFold;
    ZAV_KeyOrder mOrder;
};

#endif
