#include <zavbase/values/uval_text_reader_internal.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include <zavbase/foundation/tracer.h>
#include <zavbase/values/dict_path.h>
#include <zavbase/values/nesting_internal.h>
#include <zavbase/values/uval_text.h>
#include <zavbase/values/uval_types.h>
#include <zavbase/values/value_dict.h>

namespace zav_text {

const char* const HIERARCHY_ERROR = "Error in object hierarchy";

namespace {

const char PAIR_ERROR[] = "Error in attribute/value pairs of dictionary";
const char PAIR_COUNT_ERROR[] = "Attribute/value pairs in dictionary do not match";
const char DICT_MARK_ERROR[] = "<< >> pairs do not match";
const char ARRAY_TYPE_ERROR[] = "Illegal type in array";
const char EMPTY_ARRAY_ERROR[] = "Empty arrays are not supported";
const char ARRAY_MARK_ERROR[] = "[ ] pairs do not match";

// A pointer written as a number: the text form writes only zeros, a hand-written file may hold an address.
void* PointerFrom(int32_t number) {
    return reinterpret_cast<void*>(static_cast<uintptr_t>(static_cast<uint32_t>(number)));
}

void StoreInteger(ZAV_UVal& value, ZAV_UValType type, int32_t number, long index) {
    if (type == UVAL_PTR)
        value.SetPtrValue(PointerFrom(number), index);
    else
        value.SetLongValue(number, index);
}

void StoreString(ZAV_UVal& value, ZAV_UValType type, const char* text, size_t length, long index) {
    unsigned int size = static_cast<unsigned int>(length);
    if (type == UVAL_STRING)
        static_cast<ZAV_UValString&>(value).GetValuePtr(index)->Append(text, size);
    else if (type == UVAL_UTFSTRING)
        static_cast<ZAV_UValUTFString&>(value).GetValuePtr(index)->Append(text, size);
    else
        value.SetStrValue(ZAV_String(text, size), index);
}

// The entry of a plain key is stored without making a path of it.
bool IsOneKey(const char* key, size_t length) {
    return length > 0 && !std::memchr(key, ZAV_DictPath::GetSeparator(), length) &&
           !std::memchr(key, '\0', length);
}

} // namespace

Reader::Reader(const char* text, size_t size, Place origin)
    : mTokens(text + MarkSize(text, size), size - MarkSize(text, size)), mText(text + MarkSize(text, size)),
      mTextEnd(text + size), mTokenStart(mText), mOrigin(origin), mDictMark(NO_MARK), mArrayMark(NO_MARK),
      mOpenDicts(0), mNestingLimit(ZAV_GetUValNestingLimit()) {}

Reader::~Reader() {
    for (const Item& item : mItems)
        if (item.mKind == ITEM_VALUE) delete item.mValue;
}

ZAV_UVal* Reader::Read() {
    ClearTextError();
    while (Take(mTokens.Next())) {
    }
    if (mItems.size() != 1 || mItems[0].mKind != ITEM_VALUE) Fail(HIERARCHY_ERROR);
    ZAV_UVal* result = mItems[0].mValue;
    mItems.clear();
    return result;
}

void Reader::Fail(const char* message) {
    FailReading(message, mOrigin.After(mText, mTokenStart), mTokenStart, mTextEnd);
}

bool Reader::Take(const Token& token) {
    mTokenStart = token.mStart;
    switch (token.mKind) {
    case TOKEN_END:
        return false;
    case TOKEN_INTEGER:
    case TOKEN_REAL:
    case TOKEN_STRING:
        if (InArray())
            PushRaw(token);
        else
            TakeScalar(token);
        return true;
    case TOKEN_NAME: {
        Item& item = Push(ITEM_NAME);
        item.mText = token.mText;
        item.mLength = static_cast<uint32_t>(token.mLength);
        return true;
    }
    case TOKEN_DICT:
        PushMark(ITEM_DICT);
        return true;
    case TOKEN_ARRAY:
        PushMark(ITEM_ARRAY);
        return true;
    case TOKEN_DICT_END:
        CloseDict();
        return true;
    case TOKEN_ARRAY_END:
        CloseArray();
        return true;
    case TOKEN_INVALID:
        break;
    }
    Fail(HIERARCHY_ERROR);
}

Reader::Item& Reader::Push(ItemKind kind) {
    mItems.push_back(Item{kind, 0, {}});
    return mItems.back();
}

void Reader::PushValue(ZAV_UVal* value, uint32_t depth) {
    Item& item = Push(ITEM_VALUE);
    item.mLength = depth;
    item.mValue = value;
}

void Reader::PushMark(ItemKind kind) {
    if (kind == ITEM_DICT && ++mOpenDicts > mNestingLimit && mNestingLimit) Fail(HIERARCHY_ERROR);
    size_t& mark = kind == ITEM_DICT ? mDictMark : mArrayMark;
    size_t outer = mark;
    mark = mItems.size();
    Push(kind).mOuterMark = outer;
}

// In an array the elements wait for the array's type; a keyword behind one of them has no effect.
void Reader::PushRaw(const Token& token) {
    if (token.mKind == TOKEN_INTEGER) {
        Push(ITEM_INTEGER).mInteger = token.mInteger;
    } else if (token.mKind == TOKEN_REAL) {
        Push(ITEM_REAL).mReal = token.mReal;
    } else {
        Item& item = Push(token.mDecoded ? ITEM_DECODED : ITEM_STRING);
        item.mLength = static_cast<uint32_t>(token.mLength);
        item.mText = token.mText;
        if (token.mDecoded) {
            item.mDecodedAt = mDecoded.size();
            mDecoded.append(token.mText, token.mLength);
        }
    }
    mTokens.TakeKeyword();
}

void Reader::TakeScalar(const Token& token) {
    TokenKind kind = token.mKind;
    int keyword = mTokens.TakeKeyword();
    ZAV_UValType type = keyword == NO_KEYWORD ? DefaultType(kind) : TypeOfKeyword(keyword);
    std::unique_ptr<ZAV_UVal> value(ZAV_NewUVal(type));
    if (kind == TOKEN_INTEGER)
        StoreInteger(*value, type, token.mInteger, 0);
    else if (kind == TOKEN_REAL)
        value->SetDoubleValue(token.mReal, 0);
    else
        StoreString(*value, type, token.mText, token.mLength, 0);
    PushValue(value.get(), 0);
    value.release();
}

// Takes the innermost mark of its kind and what stands on it from the stack; the values there have found
// their owner, and no mark of the other kind is among them.
void Reader::CloseMark(size_t& mark) {
    size_t closed = mark;
    mark = mItems[closed].mOuterMark;
    mItems.resize(closed);
}

void Reader::CloseArray() {
    int keyword = mTokens.TakeKeyword();
    size_t mark = mArrayMark;
    if (mark == NO_MARK) Fail(ARRAY_MARK_ERROR);
    if (mark + 1 == mItems.size()) Fail(EMPTY_ARRAY_ERROR);
    ZAV_UValType type = ArrayType(mark, keyword);
    size_t count = mItems.size() - mark - 1;
    std::unique_ptr<ZAV_UVal> value(ZAV_NewUVal(type, static_cast<long>(count)));
    bool filled = (type == UVAL_LONG && FillNumbers<ZAV_UValLong, ITEM_INTEGER>(*value, mark + 1)) ||
                  (type == UVAL_DOUBLE && FillNumbers<ZAV_UValDouble, ITEM_REAL>(*value, mark + 1));
    for (size_t i = 0; !filled && i < count; ++i)
        StoreElement(*value, type, mItems[mark + 1 + i], static_cast<long>(i));
    CloseMark(mArrayMark);
    if (mArrayMark == NO_MARK) mDecoded.clear();
    PushValue(value.get(), 0);
    value.release();
}

ZAV_UValType Reader::ArrayType(size_t mark, int keyword) {
    for (size_t i = mark + 1; i < mItems.size(); ++i)
        if (mItems[i].mKind > ITEM_DECODED) Fail(ARRAY_TYPE_ERROR);
    if (keyword != NO_KEYWORD) return TypeOfKeyword(keyword);
    ItemKind first = mItems[mark + 1].mKind;
    return first == ITEM_INTEGER ? UVAL_LONG : first == ITEM_REAL ? UVAL_DOUBLE : UVAL_STRING;
}

// The quick way for arrays of one kind; false, with some elements stored, when there are others among them.
template <class Typed, Reader::ItemKind kind>
bool Reader::FillNumbers(ZAV_UVal& value, size_t first) const {
    auto* element = static_cast<Typed&>(value).GetValuePtr(0);
    size_t count = static_cast<size_t>(value.GetDimension());
    if (count != mItems.size() - first) return false;
    for (size_t i = 0; i < count; ++i) {
        const Item& item = mItems[first + i];
        if (item.mKind != kind) return false;
        if constexpr (kind == ITEM_INTEGER)
            element[i] = item.mInteger;
        else
            element[i] = item.mReal;
    }
    return true;
}

void Reader::StoreElement(ZAV_UVal& value, ZAV_UValType type, const Item& item, long index) {
    // An array of pointers is not defined at first, and ignores reals.
    if (item.mKind == ITEM_INTEGER || type == UVAL_PTR)
        StoreInteger(value, type, item.mKind == ITEM_INTEGER ? item.mInteger : 0, index);
    if (item.mKind == ITEM_INTEGER) return;
    if (item.mKind == ITEM_REAL)
        value.SetDoubleValue(item.mReal, index);
    else
        StoreString(value, type, TextOf(item), item.mLength, index);
}

const char* Reader::TextOf(const Item& item) const {
    return item.mKind == ITEM_DECODED ? mDecoded.data() + item.mDecodedAt : item.mText;
}

void Reader::CloseDict() {
    size_t mark = mDictMark;
    if (mark == NO_MARK) Fail(DICT_MARK_ERROR);
    if ((mItems.size() - mark) % 2 == 0) Fail(PAIR_COUNT_ERROR);
    std::unique_ptr<ZAV_UValDict> dict;
    uint32_t depth = 0;
    if (HasPlainKeys(mark + 1)) {
        for (size_t i = mark + 1; i < mItems.size(); i += 2)
            depth = (std::max)(depth, CheckedDepth(mItems[i + 1], 0));
        dict = MakePlainDict(mark + 1);
    } else {
        dict.reset(new ZAV_UValDict(16));
        for (size_t i = mark + 1; i < mItems.size(); i += 2)
            depth = (std::max)(depth, StorePair(*dict, mItems[i], mItems[i + 1]));
        for (size_t i = mark + 1; i < mItems.size(); i += 2)
            if (mItems[i].mKind == ITEM_VALUE) delete mItems[i].mValue;
    }
    CloseMark(mDictMark);
    --mOpenDicts;
    PushValue(dict.get(), depth + 1);
    dict.release();
}

// Whether all pairs from this item on are a name that is one key, and a value: no path is to be walked, and
// nothing can be wrong with them.
bool Reader::HasPlainKeys(size_t first) const {
    char separator = ZAV_DictPath::GetSeparator();
    for (size_t i = first; i < mItems.size(); i += 2) {
        const Item& key = mItems[i];
        if (key.mKind != ITEM_NAME || mItems[i + 1].mKind != ITEM_VALUE || key.mLength == 0) return false;
        if (std::memchr(key.mText, separator, key.mLength)) return false;
    }
    return true;
}

std::unique_ptr<ZAV_UValDict> Reader::MakePlainDict(size_t first) {
    ZAV_UValDict::Chain chain;
    for (size_t i = first; i < mItems.size(); i += 2) {
        mItems[i + 1].mKind = ITEM_NAME; // the chain takes it
        chain.Append(mItems[i].mText, mItems[i].mLength, mItems[i + 1].mValue);
    }
    bool allNew;
    return mFiller.Make(chain, &allNew);
}

// How deep dictionaries nest in an entry whose key puts so many levels around its value.
uint32_t Reader::CheckedDepth(const Item& value, uint32_t levels) {
    uint32_t depth = value.mLength + levels;
    if (depth >= mNestingLimit && mNestingLimit) Fail(HIERARCHY_ERROR);
    return depth;
}

// Moves one value into the dictionary and returns how deep dictionaries nest in its entry.
uint32_t Reader::StorePair(ZAV_UValDict& dict, const Item& key, Item& value) {
    const char* text = key.mText;
    size_t length = key.mLength;
    if (key.mKind == ITEM_VALUE && key.mValue->GetFamily() == UVAL_FAMILY_STRING) {
        // Both string classes keep a ZAV_String; of an array the first element counts.
        const ZAV_String& name = key.mValue->GetType() == UVAL_STRING
                                     ? static_cast<ZAV_UValString*>(key.mValue)->GetValue(0)
                                     : static_cast<ZAV_UValUTFString*>(key.mValue)->GetValue(0);
        text = name.Ptr();
        length = name.Size();
    } else if (key.mKind != ITEM_NAME) {
        Fail(PAIR_ERROR);
    }
    if (value.mKind != ITEM_VALUE) Fail(PAIR_ERROR);
    uint32_t depth = CheckedDepth(value, ZAV_LevelsOfKey(text, length));
    ZAV_UVal* owned = value.mValue;
    value.mKind = ITEM_NAME; // the dictionary owns it, or has deleted it
    if (IsOneKey(text, length)) {
        dict.SetEntry(text, static_cast<unsigned int>(length), owned);
    } else {
        dict.SetUVal(ZAV_DictPath(ZAV_String(text, static_cast<unsigned int>(length))), owned);
    }
    return depth;
}

} // namespace zav_text
