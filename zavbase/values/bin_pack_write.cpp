#include <zavbase/values/bin_pack_dict_internal.h>

#include <cstring>

#include <zavbase/values/uval_types.h>
#include <zavbase/values/value_dict.h>

namespace zav_pack {

namespace {

template <class Typed>
Elements Of(ZAV_UVal& value, int kind) {
    long dimension = value.GetDimension();
    return {kind, dimension > 0 ? static_cast<unsigned int>(dimension) : 1,
            static_cast<Typed&>(value).GetValuePtr(0)};
}

unsigned char* PutNumber(unsigned char* out, unsigned int value) {
    out[0] = BINPACK_16;
    uint16_t number = static_cast<uint16_t>(value);
    std::memcpy(out + 1, &number, sizeof number);
    return out + 3;
}

unsigned char* PutHeader(unsigned char* out, int kind, unsigned int count) {
    *out++ = static_cast<unsigned char>(count == 1 ? kind : kind | 0x10);
    if (count == 1) return out;
    for (int shift = 24; shift >= 0; shift -= 8) *out++ = static_cast<unsigned char>(count >> shift);
    return out;
}

const ZAV_String& TextOf(ZAV_UVal& value, long index) {
    if (value.GetType() == UVAL_STRING) return static_cast<ZAV_UValString&>(value).GetValue(index);
    return static_cast<ZAV_UValUTFString&>(value).GetValue(index);
}

long ElementCount(ZAV_UVal& value) { return value.GetDimension() > 0 ? value.GetDimension() : 1; }

} // namespace

int KindOf(ZAV_UValType number) {
    static constexpr int kinds[] = {BINPACK_CHAR, BINPACK_CHAR, BINPACK_16,    BINPACK_16,
                                    BINPACK_32,   BINPACK_32,   BINPACK_FLOAT, BINPACK_DOUBLE};
    return kinds[number - UVAL_CHAR];
}

Elements ElementsOf(ZAV_UVal& number) {
    int kind = KindOf(number.GetType());
    switch (number.GetType()) {
    case UVAL_CHAR:
        return Of<ZAV_UValChar>(number, kind);
    case UVAL_UCHAR:
        return Of<ZAV_UValUChar>(number, kind);
    case UVAL_SHORT:
        return Of<ZAV_UValShort>(number, kind);
    case UVAL_USHORT:
        return Of<ZAV_UValUShort>(number, kind);
    case UVAL_LONG:
        return Of<ZAV_UValLong>(number, kind);
    case UVAL_ULONG:
        return Of<ZAV_UValULong>(number, kind);
    case UVAL_FLOAT:
        return Of<ZAV_UValFloat>(number, kind);
    default:
        return Of<ZAV_UValDouble>(number, kind);
    }
}

} // namespace zav_pack

using namespace zav_pack;
typedef ZAV_UValDict::Fields Fields;

ZAV_BinPackUValDict::Writer::Writer(ZAV_UValDict& dict, bool checkFirst)
    : mTop(dict), mKey(nullptr), mTexts(nullptr), mTextsLeft(0), mPointers(0), mCheckAll(checkFirst) {
    mPieceLeft = ZAV_BinPackBuffer(mPiece, static_cast<unsigned long>(PutDict(mPiece, dict) - mPiece));
}

void ZAV_BinPackUValDict::Writer::CheckDict(ZAV_UValDict& dict, const char* key) {
    if (dict.GetSize() > MOST_ENTRIES) Refuse("a dictionary of more than 65535 entries", key);
}

void ZAV_BinPackUValDict::Writer::CheckText(const ZAV_String& text, const char* key) {
    if (text.Size() > MOST_TEXT) Refuse("a text of more than 65534 bytes", key);
}

void ZAV_BinPackUValDict::Writer::CheckValue(ZAV_UVal& value, unsigned long& pointers, const char* key) {
    ZAV_UValType type = value.GetType();
    if (type < UVAL_DICT || type > UVAL_PTR) Refuse("a value that has no binary form", key);
    if (type == UVAL_PTR) pointers += static_cast<unsigned long>(value.GetDimension());
    if (pointers > ZAV_BINPACK_MAX_POINTERS) Refuse("too many pointers", key);
}

void ZAV_BinPackUValDict::Writer::CheckAll(ZAV_UValDict& top) {
    unsigned long pointers = 0;
    std::vector<ZAV_UValDict*> dicts(1, &top);
    CheckDict(top, nullptr);
    while (!dicts.empty()) {
        ZAV_UValDict* dict = dicts.back();
        dicts.pop_back();
        for (ZAV_AssocUVal* entry = Fields::First(*dict); entry; entry = Fields::Next(*entry)) {
            ZAV_UVal* value = Fields::Value(*entry);
            if (!value) continue;
            const char* key = Fields::Key(*entry);
            CheckValue(*value, pointers, key);
            if (value->GetType() == UVAL_DICT) {
                dicts.push_back(static_cast<ZAV_UValDict*>(value));
                CheckDict(*dicts.back(), key);
            }
            if (value->GetFamily() != UVAL_FAMILY_STRING) continue;
            for (long i = 0; i < ElementCount(*value); ++i) CheckText(TextOf(*value, i), key);
        }
    }
}

// A tree that fits into the first buffer is checked while it is put, for nothing is given away before the
// end.
int ZAV_BinPackUValDict::Writer::Put(unsigned char** cursor, const unsigned char* limit) {
    if (!mCheckAll) return PutSome(cursor, limit);
    unsigned char* at = *cursor;
    int more = PutSome(&at, limit);
    if (more) CheckAll(mTop);
    mCheckAll = false;
    *cursor = at;
    return more;
}

int ZAV_BinPackUValDict::Writer::PutSome(unsigned char** cursor, const unsigned char* limit) {
    for (;;) {
        if (mPieceLeft.Put(cursor, limit) || mElementsLeft.Put(cursor, limit)) return 1;
        if (IsDone()) return 0;
        if (static_cast<size_t>(limit - *cursor) >= MOST_PIECE) {
            *cursor = MakePiece(*cursor);
        } else {
            unsigned char* end = MakePiece(mPiece);
            mPieceLeft = ZAV_BinPackBuffer(mPiece, static_cast<unsigned long>(end - mPiece));
        }
    }
}

unsigned char* ZAV_BinPackUValDict::Writer::MakePiece(unsigned char* out) {
    if (mTextsLeft > 0) return PutText(out);
    ZAV_AssocUVal& entry = *mNext.back();
    mNext.back() = Fields::Next(entry);
    if (!mNext.back()) mNext.pop_back();
    return PutEntry(out, entry);
}

unsigned char* ZAV_BinPackUValDict::Writer::PutEntry(unsigned char* out, ZAV_AssocUVal& entry) {
    unsigned int length = entry.KeyLength() + 1;
    out = PutHeader(PutNumber(out, length), BINPACK_BLOCK, length);
    mKey = Fields::Key(entry);
    std::memcpy(out, mKey, length);
    out += length;
    ZAV_UVal* value = Fields::Value(entry);
    if (!value) return PutNumber(out, 0);
    CheckValue(*value, mPointers, mKey);
    out = PutNumber(out, static_cast<unsigned int>(value->GetType()));
    if (value->GetType() == UVAL_DICT) return PutDict(out, static_cast<ZAV_UValDict&>(*value));
    return PutValue(out, *value);
}

unsigned char* ZAV_BinPackUValDict::Writer::PutDict(unsigned char* out, ZAV_UValDict& dict) {
    CheckDict(dict, mKey);
    if (ZAV_AssocUVal* first = Fields::First(dict)) mNext.push_back(first);
    return PutNumber(out, dict.GetSize());
}

unsigned char* ZAV_BinPackUValDict::Writer::PutValue(unsigned char* out, ZAV_UVal& value) {
    int32_t dimension = static_cast<int32_t>(value.GetDimension());
    *out++ = BINPACK_32;
    std::memcpy(out, &dimension, sizeof dimension);
    out += sizeof dimension;
    if (value.GetFamily() == UVAL_FAMILY_PTR) return out;
    if (value.GetFamily() == UVAL_FAMILY_STRING) {
        mTexts = &value;
        mTextsLeft = ElementCount(value);
        return out;
    }
    Elements elements = ElementsOf(value);
    out = PutHeader(out, elements.mKind, elements.mCount);
    size_t size = static_cast<size_t>(elements.mCount) * ZAV_BinPackElementSize(elements.mKind);
    if (size > sizeof(double)) {
        mElementsLeft = ZAV_BinPackBuffer(elements.mData, static_cast<unsigned long>(size));
        return out;
    }
    std::memcpy(out, elements.mData, size);
    return out + size;
}

unsigned char* ZAV_BinPackUValDict::Writer::PutText(unsigned char* out) {
    const ZAV_String& text = TextOf(*mTexts, ElementCount(*mTexts) - mTextsLeft--);
    CheckText(text, mKey);
    unsigned int length = text.Size() + 1;
    mElementsLeft = ZAV_BinPackBuffer(const_cast<char*>(text.Ptr()), length);
    return PutHeader(PutNumber(out, length), BINPACK_BLOCK, length);
}
