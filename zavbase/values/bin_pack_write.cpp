#include <zavbase/values/bin_pack_dict_internal.h>

#include <climits>
#include <cstring>

#include <zavbase/values/nesting_internal.h>
#include <zavbase/values/uval_types.h>
#include <zavbase/values/value_dict_internal.h>

namespace zav_pack {

namespace {

// The family is not asked: a host's class could give one that does not suit the type.
bool IsNumber(ZAV_UValType type) { return type >= UVAL_CHAR && type <= UVAL_DOUBLE; }
bool IsText(ZAV_UValType type) { return type == UVAL_STRING || type == UVAL_UTFSTRING; }

long ElementCount(ZAV_UVal& value) { return value.GetDimension() > 0 ? value.GetDimension() : 1; }

// The elements as they lie in memory where the object really is the library's; else asked for one by one.
template <class Typed, class Element, class Asked>
Elements Of(ZAV_UVal& value, Asked (ZAV_UVal::*get)(long), std::string& room) {
    const size_t count = static_cast<size_t>(ElementCount(value));
    Elements elements = {KindOf(value.GetType()), static_cast<unsigned int>(count), nullptr};
    if (ZAV_IsExactly<Typed>(value)) {
        elements.mData = static_cast<Typed&>(value).GetValuePtr(0);
        return elements;
    }
    room.resize(count * sizeof(Element));
    for (size_t i = 0; i < count; ++i) {
        const Element element = static_cast<Element>((value.*get)(static_cast<long>(i)));
        std::memcpy(&room[i * sizeof element], &element, sizeof element);
    }
    elements.mData = room.data();
    return elements;
}

// So many that their bytes can be counted; a long of 32 bits holds no more.
long MostElements(ZAV_UValType number) {
    return static_cast<long>(LONG_MAX / static_cast<long>(ZAV_BinPackElementSize(KindOf(number))));
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

// The text where it is, or, of a host's object, in `room`.
const ZAV_String& TextOf(ZAV_UVal& value, long index, ZAV_String& room) {
    if (ZAV_IsExactly<ZAV_UValString>(value)) return static_cast<ZAV_UValString&>(value).GetValue(index);
    if (ZAV_IsExactly<ZAV_UValUTFString>(value))
        return static_cast<ZAV_UValUTFString&>(value).GetValue(index);
    room = ZAV_String();
    value.GetStrValue(room, index);
    return room;
}

} // namespace

int KindOf(ZAV_UValType number) {
    static constexpr int kinds[] = {BINPACK_CHAR, BINPACK_CHAR, BINPACK_16,    BINPACK_16,
                                    BINPACK_32,   BINPACK_32,   BINPACK_FLOAT, BINPACK_DOUBLE};
    return kinds[number - UVAL_CHAR];
}

Elements ElementsOf(ZAV_UVal& number, std::string& room) {
    switch (number.GetType()) {
    case UVAL_CHAR:
        return Of<ZAV_UValChar, char>(number, &ZAV_UVal::GetCharValue, room);
    case UVAL_UCHAR:
        return Of<ZAV_UValUChar, unsigned char>(number, &ZAV_UVal::GetUCharValue, room);
    case UVAL_SHORT:
        return Of<ZAV_UValShort, short>(number, &ZAV_UVal::GetShortValue, room);
    case UVAL_USHORT:
        return Of<ZAV_UValUShort, unsigned short>(number, &ZAV_UVal::GetUShortValue, room);
    case UVAL_LONG:
        return Of<ZAV_UValLong, int32_t>(number, &ZAV_UVal::GetLongValue, room);
    case UVAL_ULONG:
        return Of<ZAV_UValULong, uint32_t>(number, &ZAV_UVal::GetULongValue, room);
    case UVAL_FLOAT:
        return Of<ZAV_UValFloat, float>(number, &ZAV_UVal::GetFloatValue, room);
    default:
        return Of<ZAV_UValDouble, double>(number, &ZAV_UVal::GetDoubleValue, room);
    }
}

} // namespace zav_pack

using namespace zav_pack;
typedef ZAV_UValDict::Fields Fields;

ZAV_BinPackUValDict::Writer::Writer(ZAV_UValDict& dict, bool checkFirst, unsigned long nestingLimit)
    : mTop(dict), mNestingLimit(nestingLimit), mKey(nullptr), mTexts(nullptr), mTextsLeft(0), mPointers(0),
      mCheckAll(checkFirst) {
    mPieceLeft = ZAV_BinPackBuffer(mPiece, static_cast<unsigned long>(PutDict(mPiece, dict, 1) - mPiece));
}

void ZAV_BinPackUValDict::Writer::CheckDict(ZAV_UValDict& dict, const char* key) {
    if (dict.GetSize() > MOST_ENTRIES) Refuse("a dictionary of more than 65535 entries", key);
}

void ZAV_BinPackUValDict::Writer::CheckText(const ZAV_String& text, const char* key) {
    if (text.Size() > MOST_TEXT) Refuse("a text of more than 65534 bytes", key);
}

void ZAV_BinPackUValDict::Writer::CheckValue(ZAV_UVal& value, unsigned long& pointers, const char* key) {
    ZAV_UValType type = value.GetType();
    const bool isKnown = type == UVAL_DICT ? ZAV_IsDict(&value) : type > UVAL_DICT && type <= UVAL_PTR;
    if (!isKnown || value.GetDimension() < 0) Refuse("a value that has no binary form", key);
    if (IsNumber(type) && ElementCount(value) > MostElements(type)) Refuse("an array too large", key);
    if (type == UVAL_PTR) pointers += static_cast<unsigned long>(value.GetDimension());
    if (pointers > ZAV_BINPACK_MAX_POINTERS) Refuse("too many pointers", key);
}

void ZAV_BinPackUValDict::Writer::CheckAll() const {
    if (!ZAV_FitsNesting(mTop, mNestingLimit, false)) Refuse(ZAV_TOO_DEEP);
    unsigned long pointers = 0;
    std::vector<ZAV_UValDict*> dicts(1, &mTop);
    CheckDict(mTop, nullptr);
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
            if (!IsText(value->GetType())) continue;
            ZAV_String room;
            for (long i = 0; i < ElementCount(*value); ++i) CheckText(TextOf(*value, i, room), key);
        }
    }
}

// A tree that fits into the first buffer is checked while it is put, for nothing is given away before the
// end.
int ZAV_BinPackUValDict::Writer::Put(unsigned char** cursor, const unsigned char* limit) {
    if (!mCheckAll) return PutSome(cursor, limit);
    unsigned char* at = *cursor;
    int more = PutSome(&at, limit);
    if (more) CheckAll();
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
    Level& level = mOpen.back();
    ZAV_AssocUVal& entry = *level.mNext;
    const unsigned long depth = level.mDepth;
    level.mNext = Fields::Next(entry);
    if (!level.mNext) mOpen.pop_back();
    return PutEntry(out, entry, depth);
}

unsigned char* ZAV_BinPackUValDict::Writer::PutEntry(unsigned char* out, ZAV_AssocUVal& entry,
                                                     unsigned long depth) {
    unsigned int length = entry.KeyLength() + 1;
    out = PutHeader(PutNumber(out, length), BINPACK_BLOCK, length);
    mKey = Fields::Key(entry);
    std::memcpy(out, mKey, length);
    out += length;
    ZAV_UVal* value = Fields::Value(entry);
    if (!value) return PutNumber(out, 0);
    CheckValue(*value, mPointers, mKey);
    out = PutNumber(out, static_cast<unsigned int>(value->GetType()));
    if (value->GetType() == UVAL_DICT) return PutDict(out, static_cast<ZAV_UValDict&>(*value), depth + 1);
    return PutValue(out, *value);
}

unsigned char* ZAV_BinPackUValDict::Writer::PutDict(unsigned char* out, ZAV_UValDict& dict,
                                                    unsigned long depth) {
    CheckDict(dict, mKey);
    if (mNestingLimit && depth > mNestingLimit) Refuse(ZAV_TOO_DEEP, mKey);
    if (ZAV_AssocUVal* first = Fields::First(dict)) mOpen.push_back({first, depth});
    return PutNumber(out, dict.GetSize());
}

unsigned char* ZAV_BinPackUValDict::Writer::PutValue(unsigned char* out, ZAV_UVal& value) {
    int32_t dimension = static_cast<int32_t>(value.GetDimension());
    *out++ = BINPACK_32;
    std::memcpy(out, &dimension, sizeof dimension);
    out += sizeof dimension;
    if (value.GetType() == UVAL_PTR) return out;
    if (IsText(value.GetType())) {
        mTexts = &value;
        mTextsLeft = ElementCount(value);
        return out;
    }
    Elements elements = ElementsOf(value, mHostElements);
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
    const ZAV_String& text = TextOf(*mTexts, ElementCount(*mTexts) - mTextsLeft--, mHostText);
    CheckText(text, mKey);
    unsigned int length = text.Size() + 1;
    mElementsLeft = ZAV_BinPackBuffer(const_cast<char*>(text.Ptr()), length);
    return PutHeader(PutNumber(out, length), BINPACK_BLOCK, length);
}
