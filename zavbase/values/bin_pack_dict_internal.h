#ifndef ZAVBASE_VALUES_BIN_PACK_DICT_INTERNAL_H
#define ZAVBASE_VALUES_BIN_PACK_DICT_INTERNAL_H

#include <string>
#include <vector>

#include <zavbase/values/bin_pack.h>
#include <zavbase/values/value_dict_fill_internal.h>

namespace zav_pack {

constexpr unsigned int MOST_ENTRIES = 0xFFFF;  ///< of a dictionary
constexpr unsigned int MOST_TEXT = 0xFFFF - 1; ///< bytes of a text; its NUL is counted in the file

/// Throws a ZAV_BinPackException* that tells its reason and, if it is not null, the key of the entry.
[[noreturn]] void Refuse(const char* reason, const char* key = nullptr);

/// The elements of a number value as they lie in memory, or, of a host's object, as they are put into `room`;
/// the inline scalar of a scalar.
struct Elements {
    int mKind;
    unsigned int mCount;
    void* mData;
};
Elements ElementsOf(ZAV_UVal& number, std::string& room);

/// The atom kind of a number type.
int KindOf(ZAV_UValType number);

} // namespace zav_pack

/// Puts a tree piece by piece. A piece is what belongs to one entry up to its elements, made in one go (right
/// in the caller's buffer when it has room); elements are copied from where they are.
class ZAV_LOCAL ZAV_BinPackUValDict::Writer {
public:
    Writer(ZAV_UValDict& dict, bool checkFirst, unsigned long nestingLimit);
    int Put(unsigned char** cursor, const unsigned char* limit);

private:
    struct Level {
        ZAV_AssocUVal* mNext; // to be put next, never null
        unsigned long mDepth; // 1 at the top
    };
    static constexpr size_t MOST_PIECE = 128; // bytes of a piece: key, type, dimension, header and a scalar

    void CheckAll() const;
    static void CheckDict(ZAV_UValDict& dict, const char* key);
    static void CheckText(const ZAV_String& text, const char* key);
    static void CheckValue(ZAV_UVal& value, unsigned long& pointers, const char* key);

    int PutSome(unsigned char** cursor, const unsigned char* limit);
    bool IsDone() const { return mOpen.empty() && mTextsLeft == 0; }
    unsigned char* MakePiece(unsigned char* out);
    unsigned char* PutEntry(unsigned char* out, ZAV_AssocUVal& entry, unsigned long depth);
    unsigned char* PutDict(unsigned char* out, ZAV_UValDict& dict, unsigned long depth);
    unsigned char* PutValue(unsigned char* out, ZAV_UVal& value);
    unsigned char* PutText(unsigned char* out);

    ZAV_UValDict& mTop;
    unsigned long mNestingLimit; // 0 for none
    std::vector<Level> mOpen;    // the dictionaries that have entries left
    const char* mKey;            // of the entry put last; null before the first
    ZAV_UVal* mTexts;            // the string value of which elements are left
    long mTextsLeft;
    unsigned long mPointers;   // elements of pointer arrays so far
    bool mCheckAll;            // before the first bytes are given away
    std::string mHostElements; // of an object of a host's own class, while they are put
    ZAV_String mHostText;
    unsigned char mPiece[MOST_PIECE];
    ZAV_BinPackBuffer mPieceLeft;
    ZAV_BinPackBuffer mElementsLeft;
};

/// Builds a tree atom by atom: what atom comes next, with its kind and count, is known from those before. An
/// atom that the caller's buffer holds in part is collected until it is whole.
class ZAV_LOCAL ZAV_BinPackUValDict::Reader {
public:
    explicit Reader(ZAV_UValDict& dict);
    int Get(const unsigned char** cursor, const unsigned char* limit);
    long long AtomAt() const { return mAtomAt; } ///< how many bytes came before the expected atom

private:
    enum Step { ENTRY_COUNT, KEY_LENGTH, KEY, TYPE, DIMENSION, NUMBERS, TEXT_LENGTH, TEXT, DONE };
    struct Level {
        ZAV_UValDict* mDict;
        unsigned int mEntriesLeft;
        ZAV_UValDict::Chain mEntries; // put into the dictionary when all are there
    };

    void Expect(Step step, int kind, uint32_t count);
    static size_t HeaderSize(unsigned char first) { return first & 0x10 ? 5 : 1; }
    uint64_t AtomSize(const unsigned char* atom, size_t have) const;
    bool Collect(const unsigned char** cursor, const unsigned char* limit);

    void Take(const unsigned char* elements);
    void TakeEntryCount(unsigned int count);
    void TakeKey(const unsigned char* text);
    void TakeType(unsigned int type);
    void TakeDimension(int32_t dimension);
    void TakeNumbers(const unsigned char* elements);
    void TakeText(const unsigned char* text);
    void StoreTexts();
    void StoreEntry(ZAV_UVal* value);
    void FillLevel(Level& level);
    void NextEntry();

    Step mStep;
    long long mAtomAt;
    int mKind;
    uint32_t mCount;
    std::vector<unsigned char> mCollected;

    std::vector<Level> mLevels;
    unsigned long mNestingLimit;
    ZAV_UValDict* mOpened; // the dictionary whose entry count comes next
    char mKey[65];
    unsigned int mKeyLength;
    ZAV_UValType mType;
    int32_t mDimension;
    unsigned long mPointers; // elements of pointer arrays so far
    int32_t mTextsLeft;
    std::string mTexts; // the texts of an array, one after the other, and their lengths
    std::vector<unsigned int> mTextLengths;
    ZAV_UValDict::Filler mFiller;
};

#endif
