#include <zavbase/values/value_dict.h>

#include <memory>
#include <utility>
#include <vector>

#include <zavbase/values/value_dict_internal.h>

namespace {
ZAV_UValDict* AsDict(ZAV_UVal* value) {
    return ZAV_IsDict(value) ? static_cast<ZAV_UValDict*>(value) : nullptr;
}
} // namespace

/// One pair of dictionaries that are being merged, with the next entry to look at. Entries that arrive behind
/// mLast while the merging goes on were not there at the call.
struct ZAV_LOCAL ZAV_UValDict::MergeLevel {
    MergeLevel(ZAV_UValDict& from, ZAV_UValDict& to)
        : mFrom(&from), mTo(&to), mNext(from.mFirst), mLast(from.mLast) {}

    ZAV_AssocUVal* Take() {
        ZAV_AssocUVal* entry = mNext;
        mNext = !entry || entry == mLast ? nullptr : entry->mNext;
        return entry;
    }

    ZAV_UValDict* mFrom;
    ZAV_UValDict* mTo;
    ZAV_AssocUVal* mNext;
    ZAV_AssocUVal* mLast;
};

/// Moves what `from` holds into `to`, which does not lie inside `from`. `from` may lie inside `to` and be
/// replaced on the way: what is replaced is deleted only at the end, hung on the entries that were moved.
void ZAV_UValDict::Merge(ZAV_UValDict& from, ZAV_UValDict& to) {
    if (!to.mFirst && !to.mCaseInsensitive) {
        from.MoveAllInto(to);
        return;
    }
    ZAV_AssocUVal* replaced = nullptr;
    std::vector<MergeLevel> levels{MergeLevel(from, to)};
    while (!levels.empty()) {
        MergeLevel& level = levels.back();
        ZAV_AssocUVal* entry = level.Take();
        if (!entry) {
            levels.pop_back();
            continue;
        }
        if (!entry->mValue) continue;
        ZAV_AssocUVal* there = level.mTo->AssocAt(entry->mKey, entry->mKeyLength);
        if (there && AsDict(entry->mValue) && AsDict(there->mValue)) {
            levels.emplace_back(*AsDict(entry->mValue), *AsDict(there->mValue));
            continue;
        }
        level.mFrom->Unlink(entry);
        if (there) {
            std::swap(entry->mValue, there->mValue);
            entry->mNext = replaced;
            replaced = entry;
        } else {
            level.mTo->Adopt(entry);
        }
    }
    DestroyEntries(replaced);
}

/// Merging into an empty dictionary in which case counts: no lookups, and the table is emptied at once.
void ZAV_UValDict::MoveAllInto(ZAV_UValDict& empty) {
    ZAV_AssocUVal* chain = TakeAll();
    while (chain) {
        ZAV_AssocUVal* entry = chain;
        chain = entry->mNext;
        (entry->mValue ? empty : *this).Adopt(entry);
    }
}

/// Whether `sought` is this dictionary or lies inside it.
bool ZAV_UValDict::Holds(const ZAV_UValDict* sought) const {
    std::vector<const ZAV_UValDict*> dicts{this};
    while (!dicts.empty()) {
        const ZAV_UValDict* dict = dicts.back();
        if (dict == sought) return true;
        dicts.pop_back();
        for (const ZAV_AssocUVal* e = dict->mFirst; e; e = e->mNext)
            if (const ZAV_UValDict* inner = AsDict(e->mValue)) dicts.push_back(inner);
    }
    return false;
}

ZAV_UVal* ZAV_UValDict::CopyUValTo(const ZAV_DictPath& path, ZAV_UValDict* dest) const {
    ZAV_UVal* value = GetUVal(path);
    if (!value || !dest) return nullptr;
    if (dest == this) return value;
    std::unique_ptr<ZAV_UVal> copy(value->DeepCopy());
    ZAV_UVal* there = dest->GetUVal(path);
    if (!AsDict(copy.get()) || !AsDict(there)) return dest->SetUVal(path, copy.release());
    Merge(*AsDict(copy.get()), *AsDict(there));
    return there;
}

void ZAV_UValDict::CopyTo(ZAV_UValDict* dest) const {
    if (!dest || dest == this) return;
    ZAV_UValDict copy(*this);
    Merge(copy, *dest);
}

ZAV_UVal* ZAV_UValDict::MoveUValTo(const ZAV_DictPath& path, ZAV_UValDict* dest) {
    ZAV_UValDict* owner = nullptr;
    ZAV_AssocUVal* entry = FindUValPath(KeyWalk(path), false, &owner);
    ZAV_UVal* value = entry ? entry->mValue : nullptr;
    if (!value || !dest) return nullptr;
    if (dest == this) return value;
    if (AsDict(value) && AsDict(value)->Holds(dest)) return CopyUValTo(path, dest);
    ZAV_AssocUVal* there = dest->FindUValPath(KeyWalk(path), true);
    if (!there) return nullptr;
    if (AsDict(value) && AsDict(there->mValue)) {
        ZAV_UVal* merged = there->mValue;
        Merge(*AsDict(value), *AsDict(merged));
        return merged;
    }
    owner->Unlink(entry);
    std::swap(entry->mValue, there->mValue);
    DestroyEntries(entry);
    return value;
}

void ZAV_UValDict::MoveTo(ZAV_UValDict* dest) {
    if (!dest || dest == this) return;
    ZAV_AssocUVal* holder = mFirst;
    while (holder && !(AsDict(holder->mValue) && AsDict(holder->mValue)->Holds(dest))) holder = holder->mNext;
    if (!holder) {
        Merge(*this, *dest);
        return;
    }
    // The entry that holds the destination cannot go into it. It stands aside, as an entry without a value,
    // while the others go; then its copy follows.
    ZAV_UValDict copies(1);
    copies.SetEntry(holder->mKey, holder->mKeyLength, holder->mValue->DeepCopy());
    ZAV_UVal* aside = holder->Value(nullptr);
    Merge(*this, *dest);
    holder->Value(aside);
    Merge(copies, *dest);
}
