#include <zavbase/values/key_fold_internal.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <new>

#include <zavbase/collections/set_access_internal.h>

namespace {

constinit std::atomic<uint32_t> theKeyChanges{0};

const char* KeyOf(const ZAV_AssocUVal& entry) { return entry.ZAV_AssocUVal::Key(); }

} // namespace

char ZAV_UpperCase(char c) {
    return std::islower(static_cast<unsigned char>(c)) ? static_cast<char>(c - 32) : c;
}

ZAV_AssocUVal* ZAV_WalkIgnoringCase(const ZAV_Set& table, const char* key, uint32_t length) {
    return static_cast<ZAV_AssocUVal*>(ZAV_SetAccess::First(table, [=](const ZAV_CltObject* o) {
        const ZAV_AssocUVal& entry = *static_cast<const ZAV_AssocUVal*>(o);
        return entry.KeyLength() == length && std::equal(key, key + length, KeyOf(entry), [](char x, char y) {
                   return ZAV_UpperCase(x) == ZAV_UpperCase(y);
               });
    }));
}

void ZAV_KeyFold::NoteKeyChange() { theKeyChanges.fetch_add(1, std::memory_order_relaxed); }

ZAV_AssocUVal* ZAV_KeyFold::Find(const ZAV_UValDict& dict, const ZAV_Set& table, const char* key,
                                 uint32_t length) {
    std::lock_guard<std::mutex> guard(mLock);
    try {
        if (!IsCurrent(key, length)) Build(dict);
        const Groups::iterator found = mGroups.find(Fold(key, length));
        ++mSteps;
        if (found == mGroups.end()) return nullptr;
        if (ZAV_AssocUVal* first = FirstOf(found->second, table)) return first;
    } catch (const std::bad_alloc&) {
        mIsBuilt = false;
    }
    return ZAV_WalkIgnoringCase(table, key, length);
}

// Two bytes are equal without regard to case when they are the same or one is the other less 32. So only the
// rules for the bytes of the key and those 32 off matter to what is equal to it.
bool ZAV_KeyFold::IsCurrent(const char* key, uint32_t length) const {
    if (!mIsBuilt || mKeyChanges != theKeyChanges.load(std::memory_order_relaxed)) return false;
    const auto isSame = [this](int c) { return mUpper[c & 0xFF] == ZAV_UpperCase(static_cast<char>(c)); };
    return std::all_of(key, key + length,
                       [&](char c) { return isSame(c) && isSame(c - 32) && isSame(c + 32); });
}

void ZAV_KeyFold::Build(const ZAV_UValDict& dict) {
    mIsBuilt = false;
    mGroups.clear();
    mKeyChanges = theKeyChanges.load(std::memory_order_relaxed);
    for (int c = 0; c < 256; ++c) mUpper[c] = ZAV_UpperCase(static_cast<char>(c));
    mGroups.reserve(dict.GetSize());
    for (ZAV_AssocUVal* entry = dict.GetNextAssoc(nullptr); entry; entry = entry->GetNext()) Insert(*entry);
    mIsBuilt = true;
}

std::string ZAV_KeyFold::Fold(const char* key, uint32_t length) const {
    std::string folded(key, length);
    for (char& c : folded) c = mUpper[static_cast<unsigned char>(c)];
    return folded;
}

void ZAV_KeyFold::Insert(ZAV_AssocUVal& entry) {
    ++mSteps;
    Group& group = mGroups[Fold(KeyOf(entry), entry.KeyLength())];
    if (!group.mFirst && !group.mAll) {
        group.mFirst = &entry;
        return;
    }
    if (!group.mAll) {
        group.mAll.reset(new std::unordered_set<ZAV_AssocUVal*>);
        group.mAll->insert(group.mFirst);
    }
    group.mAll->insert(&entry);
    group.mFirst = nullptr;
}

// Null when an entry is not where its key belongs, because the key was changed.
ZAV_AssocUVal* ZAV_KeyFold::FirstOf(Group& group, const ZAV_Set& table) {
    const uint32_t moves = ZAV_SetAccess::Moves(table);
    if (!group.mAll || (group.mFirst && group.mMoves == moves)) return group.mFirst;
    uint32_t lowest = ZAV_SetAccess::NO_SLOT;
    group.mFirst = nullptr;
    for (ZAV_AssocUVal* entry : *group.mAll) {
        ++mSteps;
        const uint32_t slot = ZAV_SetAccess::SlotOf(table, entry);
        if (slot == ZAV_SetAccess::NO_SLOT) return group.mFirst = nullptr;
        if (slot < lowest) lowest = slot, group.mFirst = entry;
    }
    group.mMoves = moves;
    return group.mFirst;
}

void ZAV_KeyFold::Add(ZAV_AssocUVal& entry) {
    if (!mIsBuilt) return;
    try {
        Insert(entry);
    } catch (const std::bad_alloc&) {
        Clear();
    }
}

// Nobody tells when the key of an only entry changes.
void ZAV_KeyFold::Remove(ZAV_AssocUVal& entry, uint32_t others) {
    if (!mIsBuilt) return;
    const bool isChanged = others < 2 || mKeyChanges != theKeyChanges.load(std::memory_order_relaxed);
    Groups::iterator found = mGroups.end();
    try {
        if (!isChanged) found = mGroups.find(Fold(KeyOf(entry), entry.KeyLength()));
    } catch (const std::bad_alloc&) {
    }
    if (found == mGroups.end()) return Clear();
    Group& group = found->second;
    if (!group.mAll || group.mAll->size() == 1) {
        mGroups.erase(found);
        return;
    }
    group.mAll->erase(&entry);
    group.mFirst = nullptr;
}

void ZAV_KeyFold::Clear() {
    mGroups.clear();
    mIsBuilt = false;
}
