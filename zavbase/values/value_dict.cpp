#include <zavbase/values/value_dict.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <ostream>
#include <string>
#include <vector>

#include <zavbase/collections/set_access_internal.h>
#include <zavbase/foundation/tracer.h>
#include <zavbase/values/dict_help_internal.h>
#include <zavbase/values/uval_types.h>
#include <zavbase/values/value_dict_internal.h>

ZAV_DEFINE_CLASS(ZAV_UValDict, ZAV_UVal)

namespace {

/// Counts removals of entries, in all dictionaries. A place remembered by GetKey holds as long as it stands.
constinit std::atomic<std::size_t> theRemovals{0};

/// Where this thread's last GetKey was, so that a loop over all keys does not walk the list again for each.
struct KeyCursor {
    bool IsAt(const ZAV_UValDict* dict) const {
        return mDict == dict && mRemovals == theRemovals.load(std::memory_order_relaxed);
    }
    /// The number of an entry of the dictionary, if it is known; else -1.
    int IndexOf(const ZAV_UValDict* dict, const ZAV_AssocUVal* entry) const {
        return IsAt(dict) && mEntry == entry ? mIndex : -1;
    }

    const ZAV_UValDict* mDict;
    std::size_t mRemovals;
    int mIndex;
    const ZAV_AssocUVal* mEntry;
};
constexpr int LONG_WAY = 8; // from the cursor, in entries
thread_local constinit KeyCursor theKeyCursor{nullptr, 0, 0, nullptr};

unsigned int KeyLength(const char* key) {
    return key ? static_cast<unsigned int>(strnlen(key, ZAV_AssocUVal::kMaxKeyLength)) : 0;
}

/// A dictionary of the library's own class. One of a host's class copies itself.
bool IsPlainDict(const ZAV_UVal* value) { return value && ZAV_IsExactly<ZAV_UValDict>(*value); }

} // namespace

/// Keys that collide differ in their last bytes, so these are compared first. The bytes behind a stored key
/// are NUL, so its length need not be looked up.
inline ZAV_AssocUVal* ZAV_UValDict::KeyWalk::Find(const ZAV_UValDict& dict, const char* key,
                                                  unsigned int length) {
    length = (std::min)(length, static_cast<unsigned int>(ZAV_AssocUVal::kMaxKeyLength));
    ZAV_CltObject* found;
    if (const ZAV_SetIndex* index = ZAV_SetAccess::Index(dict.mSet)) {
        const zav_strong::KeyView view = {key, length, ZAV_EntryKind, 0};
        found = index->Find(ZAV_SetIndex::Sought(view)).mElement;
    } else {
        found = ZAV_SetAccess::Probe(dict.mSet, ZAV_EntryHash(key, length), [=](const ZAV_CltObject* o) {
            const char* stored = static_cast<const ZAV_AssocUVal*>(o)->mKey;
            if (stored[length] != '\0') return false;
            return length == 0 ||
                   (stored[length - 1] == key[length - 1] && std::memcmp(stored, key, length) == 0);
        });
    }
    if (found || !dict.mCaseInsensitive) return static_cast<ZAV_AssocUVal*>(found);
    return dict.FindIgnoringCase(key, length);
}

ZAV_UValDict::ZAV_UValDict(unsigned int capacity)
    : ZAV_UVal(UVAL_DICT, UVAL_FAMILY_DICT), mSet(capacity), mFirst(nullptr), mLast(nullptr),
      mCaseInsensitive(B_FALSE) {
    mNrItemsToPrint = 0;
}

ZAV_UValDict::ZAV_UValDict(const ZAV_UValDict& other) : ZAV_UValDict(other.mSet.Capacity()) {
    CopyEntriesOf(other);
}

ZAV_UValDict::~ZAV_UValDict() {
    ZAV_DictHelp::Drop(mSet);
    Clear();
}

ZAV_UValDict& ZAV_UValDict::operator=(const ZAV_UValDict& other) {
    if (this == &other) return *this;
    ZAV_UValDict copy(other);
    ZAV_AssocUVal* old = TakeAll();
    AdoptAll(copy.TakeAll());
    mCaseInsensitive = copy.mCaseInsensitive;
    DestroyEntries(old);
    return *this;
}

ZAV_UValDict* ZAV_UValDict::DeepCopy() { return new (std::nothrow) ZAV_UValDict(*this); }

/// Copies the entries into this empty dictionary, level by level, for the tree may be deeper than the stack.
void ZAV_UValDict::CopyEntriesOf(const ZAV_UValDict& other) {
    std::vector<std::pair<const ZAV_UValDict*, ZAV_UValDict*>> levels{{&other, this}};
    while (!levels.empty()) {
        const auto [from, to] = levels.back();
        levels.pop_back();
        to->mCaseInsensitive = from->mCaseInsensitive;
        for (const ZAV_AssocUVal* e = from->mFirst; e; e = e->mNext) {
            ZAV_UVal* value = nullptr;
            if (IsPlainDict(e->mValue)) {
                const ZAV_UValDict* dict = static_cast<const ZAV_UValDict*>(e->mValue);
                levels.emplace_back(dict, new ZAV_UValDict(dict->mSet.Capacity()));
                value = levels.back().second;
            } else if (e->mValue) {
                value = e->mValue->DeepCopy();
            }
            to->AddEntry(e->mKey, e->mKeyLength, value);
        }
    }
}

ZAV_AssocUVal* ZAV_UValDict::FindUValPath(KeyWalk keys, bool create, ZAV_UValDict** owner) {
    ZAV_UValDict* dict = this;
    while (keys.Next()) {
        ZAV_AssocUVal* entry = KeyWalk::Find(*dict, keys.mKey, keys.mLength);
        if (!entry) {
            if (!create) return nullptr;
            entry = dict->AddEntry(keys.mKey, keys.mLength, keys.AtEnd() ? nullptr : new ZAV_UValDict(16));
        }
        if (keys.AtEnd()) {
            if (owner) *owner = dict;
            return entry;
        }
        if (!ZAV_IsDict(entry->mValue)) return nullptr;
        dict = static_cast<ZAV_UValDict*>(entry->mValue);
    }
    return nullptr;
}

ZAV_UVal* ZAV_UValDict::ValueAt(KeyWalk keys) const {
    const ZAV_AssocUVal* entry = const_cast<ZAV_UValDict*>(this)->FindUValPath(keys, false);
    return entry ? entry->mValue : nullptr;
}

ZAV_UVal* ZAV_UValDict::GetUVal(const ZAV_DictPath& path) const { return ValueAt(KeyWalk(path)); }
ZAV_UVal* ZAV_UValDict::GetUVal(const char* path) const { return ValueAt(KeyWalk(path)); }
ZAV_UVal* ZAV_UValDict::GetUVal(const ZAV_String& path) const { return ValueAt(KeyWalk(path.Ptr())); }

ZAV_UVal* ZAV_UValDict::StoreAt(KeyWalk keys, ZAV_UVal* uval) {
    ZAV_AssocUVal* entry = FindUValPath(keys, true);
    if (entry) return Replace(entry, uval);
    ZAV_BASE_TRACE(0x10, "SetUVal: uVal about to be deleted to avoid memory leaks (you shouldn't come here)");
    delete uval;
    return nullptr;
}

ZAV_UVal* ZAV_UValDict::SetUVal(const ZAV_DictPath& path, ZAV_UVal* uval) {
    return StoreAt(KeyWalk(path), uval);
}
ZAV_UVal* ZAV_UValDict::SetUVal(const char* path, ZAV_UVal* uval) { return StoreAt(KeyWalk(path), uval); }
ZAV_UVal* ZAV_UValDict::SetUVal(const ZAV_String& path, ZAV_UVal* uval) {
    return StoreAt(KeyWalk(path.Ptr()), uval);
}

ZAV_UVal* ZAV_UValDict::Replace(ZAV_AssocUVal* entry, ZAV_UVal* uval) {
    ZAV_UVal* old = entry->mValue;
    entry->mValue = uval;
    if (old != uval) delete old;
    return uval;
}

ZAV_UVal* ZAV_UValDict::DefineUVal(const ZAV_DictPath& path, ZAV_UValType type, long dimension,
                                   void* buffer) {
    if (type == UVAL_DICT) return DefineUValDict(path);
    ZAV_UVal* uval = ZAV_NewUVal(type, dimension, buffer);
    return uval ? SetUVal(path, uval) : nullptr;
}

ZAV_UValDict* ZAV_UValDict::DefineUValDict(const ZAV_DictPath& path) {
    ZAV_AssocUVal* entry = FindUValPath(KeyWalk(path), true);
    if (!entry) return nullptr;
    if (!entry->mValue) entry->mValue = new ZAV_UValDict(16);
    return ZAV_IsDict(entry->mValue) ? static_cast<ZAV_UValDict*>(entry->mValue) : nullptr;
}

void ZAV_UValDict::RemoveUVal(const ZAV_DictPath& path) {
    ZAV_UValDict* owner = nullptr;
    ZAV_AssocUVal* entry = FindUValPath(KeyWalk(path), false, &owner);
    if (!entry) return;
    owner->Unlink(entry);
    DestroyEntries(entry);
}

ZAV_UValType ZAV_UValDict::GetUValType(const ZAV_DictPath& path) const {
    const ZAV_UVal* value = GetUVal(path);
    return value ? value->GetType() : static_cast<ZAV_UValType>(0);
}

long ZAV_UValDict::GetUValDimension(const ZAV_DictPath& path) const {
    const ZAV_UVal* value = GetUVal(path);
    return value ? value->GetDimension() : -1;
}

const char* ZAV_UValDict::GetKey(int i) const {
    const int size = static_cast<int>(GetSize());
    if (i < 0 || i >= size) return nullptr;
    KeyCursor& cursor = theKeyCursor;
    const std::size_t removals = theRemovals.load(std::memory_order_relaxed);
    if (!cursor.IsAt(this) || i < cursor.mIndex / 2) cursor = {this, removals, 0, mFirst};
    if (size - 1 - i < std::abs(i - cursor.mIndex)) cursor = {this, removals, size - 1, mLast};
    if (ZAV_DictHelp* help = std::abs(i - cursor.mIndex) > LONG_WAY ? ZAV_DictHelp::Of(mSet) : nullptr)
        if (const ZAV_AssocUVal* entry = help->mOrder.At(*this, static_cast<uint32_t>(i)))
            cursor = {this, removals, i, entry};
    for (; cursor.mIndex < i; ++cursor.mIndex) cursor.mEntry = cursor.mEntry->mNext;
    for (; cursor.mIndex > i; --cursor.mIndex) cursor.mEntry = cursor.mEntry->mPrev;
    return cursor.mEntry->mKey;
}

ZAV_AssocUVal* ZAV_UValDict::GetNextAssoc(const ZAV_AssocUVal* entry) const {
    return entry ? entry->mNext : mFirst;
}

ZAV_AssocUVal* ZAV_UValDict::AssocAt(const char* key) const {
    return AssocAt(key ? key : "", KeyLength(key));
}

ZAV_AssocUVal* ZAV_UValDict::AssocAt(const char* key, unsigned int length) const {
    return KeyWalk::Find(*this, key, length);
}

ZAV_AssocUVal* ZAV_UValDict::FindIgnoringCase(const char* key, unsigned int length) const {
    ZAV_DictHelp* help = GetSize() > ZAV_DictHelp::MOST_WALKED ? ZAV_DictHelp::Of(mSet) : nullptr;
    return help ? help->mFold.Find(*this, mSet, key, length) : ZAV_WalkIgnoringCase(mSet, key, length);
}

ZAV_UVal* ZAV_UValDict::SetEntry(const char* key, ZAV_UVal* uval) {
    return SetEntry(key, KeyLength(key), uval);
}

ZAV_UVal* ZAV_UValDict::SetEntry(const char* key, unsigned int length, ZAV_UVal* uval) {
    ZAV_AssocUVal* entry = AssocAt(key, length);
    return entry ? Replace(entry, uval) : AddEntry(key, length, uval)->mValue;
}

void ZAV_UValDict::RemoveEntry(const char* key) {
    ZAV_AssocUVal* entry = AssocAt(key);
    if (!entry) return;
    Unlink(entry);
    DestroyEntries(entry);
}

ZAV_AssocUVal* ZAV_UValDict::AddEntry(const char* key, unsigned int length, ZAV_UVal* uval) {
    ZAV_AssocUVal* entry = new ZAV_AssocUVal(key, length, uval);
    Adopt(entry);
    return entry;
}

/// Puts an entry whose key is not yet there into the table and at the end of the list.
void ZAV_UValDict::Adopt(ZAV_AssocUVal* entry) {
    mSet.Add(entry);
    entry->mPrev = mLast;
    entry->mNext = nullptr;
    (mLast ? mLast->mNext : mFirst) = entry;
    mLast = entry;
    if (ZAV_DictHelp* help = ZAV_DictHelp::IfAny(mSet)) help->mFold.Add(*entry);
}

void ZAV_UValDict::AdoptAll(ZAV_AssocUVal* chain) {
    while (chain) {
        ZAV_AssocUVal* entry = chain;
        chain = entry->mNext;
        Adopt(entry);
    }
}

/// Takes an entry out; it is then a chain of one.
void ZAV_UValDict::Unlink(ZAV_AssocUVal* entry) {
    const int index = theKeyCursor.IndexOf(this, entry);
    theRemovals.fetch_add(1, std::memory_order_relaxed);
    mSet.Remove(entry);
    if (ZAV_DictHelp* help = ZAV_DictHelp::IfAny(mSet)) {
        help->mFold.Remove(*entry, GetSize());
        help->mOrder.Remove(*entry, index);
    }
    (entry->mPrev ? entry->mPrev->mNext : mFirst) = entry->mNext;
    (entry->mNext ? entry->mNext->mPrev : mLast) = entry->mPrev;
    entry->mPrev = entry->mNext = nullptr;
}

/// Takes all entries out, as a chain in their order.
ZAV_AssocUVal* ZAV_UValDict::TakeAll() {
    ZAV_AssocUVal* chain = mFirst;
    if (chain) {
        theRemovals.fetch_add(1, std::memory_order_relaxed);
        if (ZAV_DictHelp* help = ZAV_DictHelp::IfAny(mSet)) help->Clear();
        mSet.Clear();
        mFirst = mLast = nullptr;
    }
    return chain;
}

/// Deletes the entries of a chain and their values. The entries of a dictionary are put in front of the chain
/// before it is deleted, so that depth costs neither stack nor memory.
void ZAV_UValDict::DestroyEntries(ZAV_AssocUVal* chain) {
    while (chain) {
        ZAV_AssocUVal* entry = chain;
        chain = entry->mNext;
        if (ZAV_IsDict(entry->mValue)) {
            ZAV_UValDict* dict = static_cast<ZAV_UValDict*>(entry->mValue);
            if (ZAV_AssocUVal* last = dict->mLast) {
                last->mNext = chain;
                chain = dict->TakeAll();
            }
        }
        delete entry->mValue;
        delete entry;
    }
}

void ZAV_UValDict::Clear() { DestroyEntries(TakeAll()); }

void ZAV_UValDict::PrintDict(std::ostream& os, const char* prefix) {
    static const char level[] = "    |";
    std::string indent = std::string(prefix ? prefix : "") + level;
    std::vector<const ZAV_AssocUVal*> parents;
    const ZAV_AssocUVal* entry = mFirst;
    while (entry || !parents.empty()) {
        if (!entry) {
            entry = parents.back()->mNext;
            parents.pop_back();
            indent.resize(indent.size() - (sizeof level - 1));
            continue;
        }
        os << indent << "- " << entry->mKey;
        if (ZAV_IsDict(entry->mValue)) {
            os << '\n';
            parents.push_back(entry);
            indent += level;
            entry = static_cast<const ZAV_UValDict*>(entry->mValue)->mFirst;
            continue;
        }
        if (entry->mValue) {
            os << " => ";
            entry->mValue->PrintOn(os);
            os << '\n';
        } else {
            os << "<NULL>\n";
        }
        entry = entry->mNext;
    }
}

void ZAV_UValDict::PrintOn(std::ostream& os) { PrintDict(os, ""); }
