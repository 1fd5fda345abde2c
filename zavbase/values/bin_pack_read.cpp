#include <zavbase/values/bin_pack_dict_internal.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include <zavbase/foundation/exception_context.h>
#include <zavbase/values/nesting_internal.h>
#include <zavbase/values/uval_text.h>
#include <zavbase/values/uval_types.h>
#include <zavbase/values/value_dict.h>

using namespace zav_pack;

namespace {

const char UNEXPECTED[] = "another atom than expected";
const char SAME_KEY[] = "a key that comes twice";
const char TOO_LARGE[] = "an array larger than memory";

template <class Number>
Number Load(const unsigned char* bytes) {
    Number number;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

void StoreText(ZAV_UVal& value, ZAV_UValType type, const char* text, unsigned int length, long index) {
    if (type == UVAL_STRING)
        static_cast<ZAV_UValString&>(value).GetValuePtr(index)->Append(text, length);
    else
        static_cast<ZAV_UValUTFString&>(value).GetValuePtr(index)->Append(text, length);
}

} // namespace

ZAV_BinPackUValDict::Reader::Reader(ZAV_UValDict& dict)
    : mAtomAt(0), mNestingLimit(ZAV_GetUValNestingLimit()), mOpened(&dict), mKey(), mKeyLength(0),
      mType(UVAL_DICT), mDimension(0), mPointers(0), mTextsLeft(0) {
    Expect(ENTRY_COUNT, BINPACK_16, 1);
}

void ZAV_BinPackUValDict::Reader::Expect(Step step, int kind, uint32_t count) {
    mStep = step;
    mKind = kind;
    mCount = count;
}

// The size of the expected atom, of which `have` bytes are there; as much of it as they tell. A header that
// differs from the expected one ends the reading.
uint64_t ZAV_BinPackUValDict::Reader::AtomSize(const unsigned char* atom, size_t have) const {
    if (have == 0) return 1;
    int header = mCount == 1 ? mKind : mKind | 0x10;
    if (atom[0] != header) Refuse(UNEXPECTED);
    size_t headerSize = HeaderSize(atom[0]);
    if (have < headerSize) return headerSize;
    if (headerSize == 5) {
        uint32_t count = 0;
        for (int i = 1; i < 5; ++i) count = count << 8 | atom[i];
        if (count != mCount) Refuse(UNEXPECTED);
    }
    return headerSize + static_cast<uint64_t>(mCount) * ZAV_BinPackElementSize(mKind);
}

int ZAV_BinPackUValDict::Reader::Get(const unsigned char** cursor, const unsigned char* limit) {
    while (mStep != DONE) {
        if (!mCollected.empty()) {
            if (!Collect(cursor, limit)) return 1;
            std::vector<unsigned char> atom;
            atom.swap(mCollected);
            Take(atom.data() + HeaderSize(atom[0]));
            mAtomAt += static_cast<long long>(atom.size());
            continue;
        }
        const unsigned char* atom = *cursor;
        size_t have = static_cast<size_t>(limit - atom);
        uint64_t size = AtomSize(atom, have);
        if (size > have) {
            mCollected.assign(atom, limit);
            *cursor = limit;
            return 1;
        }
        *cursor += size;
        Take(atom + HeaderSize(atom[0]));
        mAtomAt += static_cast<long long>(size);
    }
    return 0;
}

// Adds to the atom collected in part; true when it is whole.
bool ZAV_BinPackUValDict::Reader::Collect(const unsigned char** cursor, const unsigned char* limit) {
    for (;;) {
        uint64_t size = AtomSize(mCollected.data(), mCollected.size());
        if (size == mCollected.size()) return true;
        if (*cursor == limit) return false;
        uint64_t step = (std::min)(size - mCollected.size(), static_cast<uint64_t>(limit - *cursor));
        mCollected.insert(mCollected.end(), *cursor, *cursor + step);
        *cursor += step;
    }
}

void ZAV_BinPackUValDict::Reader::Take(const unsigned char* elements) {
    switch (mStep) {
    case ENTRY_COUNT:
        TakeEntryCount(Load<uint16_t>(elements));
        break;
    case KEY_LENGTH: {
        unsigned int length = Load<uint16_t>(elements);
        if (length < 1 || length > sizeof mKey) Refuse("a key of no possible length");
        Expect(KEY, BINPACK_BLOCK, length);
        break;
    }
    case KEY:
        TakeKey(elements);
        break;
    case TYPE:
        TakeType(Load<uint16_t>(elements));
        break;
    case DIMENSION:
        TakeDimension(Load<int32_t>(elements));
        break;
    case NUMBERS:
        TakeNumbers(elements);
        break;
    case TEXT_LENGTH: {
        unsigned int length = Load<uint16_t>(elements);
        if (length < 1) Refuse("a text without its end");
        Expect(TEXT, BINPACK_BLOCK, length);
        break;
    }
    case TEXT:
        TakeText(elements);
        break;
    case DONE:
        break;
    }
}

void ZAV_BinPackUValDict::Reader::TakeEntryCount(unsigned int count) {
    if (mNestingLimit && mLevels.size() >= mNestingLimit) Refuse(ZAV_TOO_DEEP);
    mLevels.push_back(Level{mOpened, count, {}});
    NextEntry();
}

// A key that comes twice was never written by us. One that the caller's dictionary has already is replaced.
void ZAV_BinPackUValDict::Reader::FillLevel(Level& level) {
    if (level.mDict->GetSize() == 0) {
        if (!mFiller.Fill(*level.mDict, level.mEntries)) Refuse(SAME_KEY);
        return;
    }
    ZAV_UValDict read(16);
    if (!mFiller.Fill(read, level.mEntries)) Refuse(SAME_KEY);
    for (ZAV_AssocUVal* entry = read.GetNextAssoc(nullptr); entry; entry = read.GetNextAssoc(entry))
        level.mDict->SetEntry(entry->Key(), entry->Value(nullptr));
}

void ZAV_BinPackUValDict::Reader::NextEntry() {
    while (!mLevels.empty() && mLevels.back().mEntriesLeft == 0) {
        FillLevel(mLevels.back());
        mLevels.pop_back();
    }
    if (mLevels.empty()) {
        mStep = DONE;
        return;
    }
    --mLevels.back().mEntriesLeft;
    Expect(KEY_LENGTH, BINPACK_16, 1);
}

// A text ends with its only NUL.
void ZAV_BinPackUValDict::Reader::TakeKey(const unsigned char* text) {
    if (std::memchr(text, 0, mCount) != text + mCount - 1)
        Refuse("a key that does not end with its only NUL");
    std::memcpy(mKey, text, mCount);
    mKeyLength = mCount - 1;
    Expect(TYPE, BINPACK_16, 1);
}

// Takes `value`, which may be null.
void ZAV_BinPackUValDict::Reader::StoreEntry(ZAV_UVal* value) {
    mLevels.back().mEntries.Append(mKey, mKeyLength, value);
}

void ZAV_BinPackUValDict::Reader::TakeType(unsigned int type) {
    if (type > UVAL_PTR) Refuse("an unknown type");
    mType = static_cast<ZAV_UValType>(type);
    if (type == 0) {
        StoreEntry(nullptr);
        NextEntry();
    } else if (type == UVAL_DICT) {
        StoreEntry(mOpened = new ZAV_UValDict(16));
        Expect(ENTRY_COUNT, BINPACK_16, 1);
    } else {
        Expect(DIMENSION, BINPACK_32, 1);
    }
}

void ZAV_BinPackUValDict::Reader::TakeDimension(int32_t dimension) {
    if (dimension < 0) Refuse("a negative dimension");
    mDimension = dimension;
    int32_t count = dimension > 0 ? dimension : 1;
    if (mType == UVAL_PTR) {
        mPointers += static_cast<unsigned long>(dimension);
        if (mPointers > ZAV_BINPACK_MAX_POINTERS) Refuse("too many pointers");
        std::unique_ptr<ZAV_UVal> value(ZAV_NewUVal(UVAL_PTR, dimension));
        std::fill_n(static_cast<ZAV_UValPtr&>(*value).GetValuePtr(0), value->GetDimension(), nullptr);
        StoreEntry(value.release());
        NextEntry();
    } else if (mType == UVAL_STRING || mType == UVAL_UTFSTRING) {
        mTextsLeft = count;
        Expect(TEXT_LENGTH, BINPACK_16, 1);
    } else {
        Expect(NUMBERS, KindOf(mType), static_cast<uint32_t>(count));
    }
}

void ZAV_BinPackUValDict::Reader::TakeNumbers(const unsigned char* bytes) {
    std::unique_ptr<ZAV_UVal> value(ZAV_NewUVal(mType, mDimension));
    std::string none;
    Elements elements = ElementsOf(*value, none);
    if (elements.mCount != mCount) Refuse(TOO_LARGE);
    std::memcpy(elements.mData, bytes, static_cast<size_t>(mCount) * ZAV_BinPackElementSize(mKind));
    StoreEntry(value.release());
    NextEntry();
}

void ZAV_BinPackUValDict::Reader::TakeText(const unsigned char* text) {
    unsigned int length = mCount - 1;
    if (text[length] != 0) Refuse("a text without its end");
    mTexts.append(reinterpret_cast<const char*>(text), length);
    mTextLengths.push_back(length);
    if (--mTextsLeft > 0) return Expect(TEXT_LENGTH, BINPACK_16, 1);
    StoreTexts();
    NextEntry();
}

// An array is made when all its texts are there, so that a claimed dimension takes no memory.
void ZAV_BinPackUValDict::Reader::StoreTexts() {
    std::unique_ptr<ZAV_UVal> value(ZAV_NewUVal(mType, mDimension));
    if (value->GetDimension() != mDimension) Refuse(TOO_LARGE);
    const char* text = mTexts.data();
    for (size_t i = 0; i < mTextLengths.size(); ++i) {
        StoreText(*value, mType, text, mTextLengths[i], static_cast<long>(i));
        text += mTextLengths[i];
    }
    mTexts.clear();
    mTextLengths.clear();
    StoreEntry(value.release());
}

ZAV_BinPackUValDict::ZAV_BinPackUValDict(ZAV_UValDict& dict, boolean_t checkFirst)
    : mDict(dict), mCheckFirst(checkFirst), mWriter(nullptr), mReader(nullptr) {}

ZAV_BinPackUValDict::ZAV_BinPackUValDict(ZAV_UValDict& dict, boolean_t checkFirst, unsigned long nestingLimit)
    : ZAV_BinPackUValDict(dict, checkFirst) {
    mWriter = new Writer(dict, checkFirst != B_FALSE, nestingLimit);
}

ZAV_BinPackUValDict::~ZAV_BinPackUValDict() {
    delete mWriter;
    delete mReader;
}

int ZAV_BinPackUValDict::Put(unsigned char** cursor, const unsigned char* limit) {
    if (!mWriter) mWriter = new Writer(mDict, mCheckFirst != B_FALSE, 0);
    return mWriter->Put(cursor, limit);
}

int ZAV_BinPackUValDict::Get(const unsigned char** cursor, const unsigned char* limit) {
    if (!mReader) mReader = new Reader(mDict);
    try {
        return mReader->Get(cursor, limit);
    } catch (ZAV_BinPackException* e) {
        ZAV_ExceptionContext known;
        known.mOffset = mReader->AtomAt();
        ZAV_AddExceptionContext(e, known);
        throw;
    }
}

int ZAV_BinPackUValDict::Get(unsigned char** cursor, const unsigned char* limit) {
    return Get(const_cast<const unsigned char**>(cursor), limit);
}
