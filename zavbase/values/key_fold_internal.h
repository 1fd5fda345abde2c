#ifndef ZAVBASE_VALUES_KEY_FOLD_INTERNAL_H
#define ZAVBASE_VALUES_KEY_FOLD_INTERNAL_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include <zavbase/values/value_dict.h>

/// Finds the entries of a dictionary without regard to case, where a walk over the table would look at all
/// entries for each key that is not there. What is found is what the walk finds: of several entries that
/// differ in case only, the one in the lowest slot, by the rules of case that hold at the call.
///
/// Filled when it is first needed, and anew when the locale's case rules or a key in a dictionary
/// have changed. Several threads may look up at once, as they may read the dictionary. Its memory is
/// optional: where there is none, the table is walked.
class ZAV_LOCAL ZAV_KeyFold {
public:
    /// To be called when the key of an entry in a dictionary with others has changed.
    static void NoteKeyChange();

    ZAV_AssocUVal* Find(const ZAV_UValDict& dict, const ZAV_Set& table, const char* key, uint32_t length);
    /// An entry has come into the dictionary, or left it with so many others in it.
    void Add(ZAV_AssocUVal& entry);
    void Remove(ZAV_AssocUVal& entry, uint32_t others);
    void Clear();

    /// How many entries were looked at so far.
    uint64_t Steps() const { return mSteps; }

private:
    /// The entries that differ in case only.
    struct Group {
        ZAV_AssocUVal* mFirst = nullptr; ///< the only one, or the one in the lowest slot at mMoves
        uint32_t mMoves = 0;
        std::unique_ptr<std::unordered_set<ZAV_AssocUVal*>> mAll; ///< if there are several
    };
    typedef std::unordered_map<std::string, Group> Groups;

    bool IsCurrent(const char* key, uint32_t length) const;
    void Build(const ZAV_UValDict& dict);
    std::string Fold(const char* key, uint32_t length) const;
    void Insert(ZAV_AssocUVal& entry);
    ZAV_AssocUVal* FirstOf(Group& group, const ZAV_Set& table);

    std::mutex mLock;
    bool mIsBuilt = false;
    uint32_t mKeyChanges = 0; // how many there had been when it was built
    char mUpper[256];         // the upper case of each byte at that time
    Groups mGroups;
    uint64_t mSteps = 0;
};

/// The upper case of a byte by the locale, as the text classes have it.
char ZAV_UpperCase(char c);
/// The entry that the walk over the table finds.
ZAV_AssocUVal* ZAV_WalkIgnoringCase(const ZAV_Set& table, const char* key, uint32_t length);

#endif
