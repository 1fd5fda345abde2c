#include <zavbase/values/assoc_uval.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <ostream>

#include <zavbase/collections/strong_hash_internal.h>
#include <zavbase/values/key_fold_internal.h>
#include <zavbase/values/uval.h>
#include <zavbase/values/value_dict_internal.h>

ZAV_DEFINE_CLASS(ZAV_AssocUVal, ZAV_CltObject)

namespace {

const char* BytesOfEntry(const ZAV_CltObject* o, uint32_t* length) {
    const ZAV_AssocUVal* entry = static_cast<const ZAV_AssocUVal*>(o);
    *length = entry->KeyLength();
    return entry->ZAV_AssocUVal::Key();
}

/// Hash() misses the last bytes of a key, so that numbered keys collide; this lets sets find them all the
/// same.
uint16_t RegisterEntries() {
    zav_strong::RegisterKeyClass(typeid(ZAV_AssocUVal), &BytesOfEntry);
    zav_strong::KeyView view{};
    const ZAV_AssocUVal sample("", nullptr);
    zav_strong::View(&sample, view);
    return view.mKind;
}

} // namespace

const uint16_t ZAV_EntryKind = RegisterEntries();

ZAV_AssocUVal::ZAV_AssocUVal(const char* key, ZAV_UVal* value)
    : mValue(value), mPrev(nullptr), mNext(nullptr) {
    SetKey(key, kMaxKeyLength);
}

ZAV_AssocUVal::ZAV_AssocUVal(const char* key, unsigned int length, ZAV_UVal* value)
    : mValue(value), mPrev(nullptr), mNext(nullptr) {
    SetKey(key, length);
}

ZAV_AssocUVal::ZAV_AssocUVal(const ZAV_AssocUVal& other)
    : ZAV_CltObject(other), ZAV_Pooled(), mValue(other.mValue), mPrev(nullptr), mNext(nullptr) {
    SetKey(other.mKey, other.mKeyLength);
}

ZAV_AssocUVal::~ZAV_AssocUVal() = default;

ZAV_AssocUVal& ZAV_AssocUVal::operator=(const ZAV_AssocUVal& other) {
    if (this != &other) SetKey(other.mKey, other.mKeyLength);
    mValue = other.mValue;
    return *this;
}

void ZAV_AssocUVal::PrintOn(std::ostream& os) {
    os << mKey << " => ";
    if (mValue)
        mValue->PrintOn(os);
    else
        os << "<NULL>";
}

boolean_t ZAV_AssocUVal::IsEqual(const ZAV_CltObject* o) {
    if (!o || !o->IsMemberOf(GetRuntimeClass())) return B_FALSE;
    const ZAV_AssocUVal* other = static_cast<const ZAV_AssocUVal*>(o);
    return ZAV_Bool(mKeyLength == other->mKeyLength && std::memcmp(mKey, other->mKey, mKeyLength) == 0);
}

int ZAV_AssocUVal::Compare(const ZAV_CltObject* o) const {
    return std::strcmp(mKey, static_cast<const ZAV_AssocUVal*>(o)->mKey);
}

unsigned int ZAV_AssocUVal::Hash() const { return ZAV_EntryHash(mKey, mKeyLength); }

ZAV_CltObject* ZAV_AssocUVal::ShallowCopy() const { return new (std::nothrow) ZAV_AssocUVal(*this); }

const char* ZAV_AssocUVal::Key() const { return mKey; }

const char* ZAV_AssocUVal::Key(const char* key) {
    SetKey(key, kMaxKeyLength);
    return mKey;
}

ZAV_UVal* ZAV_AssocUVal::Value() const { return mValue; }

ZAV_UVal* ZAV_AssocUVal::Value(ZAV_UVal* value) {
    std::swap(mValue, value);
    return value;
}

/// Takes at most `length` bytes, up to a NUL, and fills up with NUL. `key` may lie inside the entry's own
/// key.
void ZAV_AssocUVal::SetKey(const char* key, unsigned int length) {
    // It stands in a dictionary, with others. (Smaller ones have no help that goes by the key.)
    if (mPrev || mNext) ZAV_KeyFold::NoteKeyChange();
    length = key ? (std::min)(length, static_cast<unsigned int>(kMaxKeyLength)) : 0;
    mKeyLength = static_cast<uint32_t>(strnlen(key ? key : "", length));
    if (mKeyLength > 0) std::memmove(mKey, key, mKeyLength);
    std::memset(mKey + mKeyLength, 0, sizeof mKey - mKeyLength);
}
