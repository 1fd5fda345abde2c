#ifndef ZAVBASE_VALUES_UVAL_TEXT_READER_INTERNAL_H
#define ZAVBASE_VALUES_UVAL_TEXT_READER_INTERNAL_H

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <vector>

#include <zavbase/values/uval.h>
#include <zavbase/values/uval_text_token_internal.h>
#include <zavbase/values/value_dict_fill_internal.h>

namespace zav_text {

/// Positions and lengths of a text have 32 bits.
constexpr size_t MOST_BYTES = 0x7FFFFFFF;

/// A place in a text, for the error record.
struct Place {
    long mLine = 1;
    long mColumn = 1;
    void Pass(char c);
    /// The place behind [text, to) when the text begins here.
    Place After(const char* text, const char* to) const;

private:
    bool mAfterReturn = false; // CR LF is one line end
};

/// Builds a value from a text: a stack machine over the tokens. It does not recurse, and takes memory in
/// proportion to the text. Used for one text.
class Reader {
public:
    /// `text` must be followed by a NUL that `size` does not count, and stays the caller's; it begins at
    /// `origin` for the error record.
    Reader(const char* text, size_t size, Place origin = Place());
    ~Reader();
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /// The text's one value, which is then the caller's. Malformed text is reported as ZAV_ReadUValTxt says.
    ZAV_UVal* Read();

private:
    enum ItemKind : unsigned char {
        ITEM_INTEGER,
        ITEM_REAL,
        ITEM_STRING,  // a string in an array, as it stands in the text
        ITEM_DECODED, // one that had escapes: its text is in mDecoded
        ITEM_NAME,
        ITEM_DICT,  // the mark of an open dictionary
        ITEM_ARRAY, // the mark of an open array
        ITEM_VALUE
    };
    struct Item {
        ItemKind mKind;
        uint32_t mLength; // of a text; how deep dictionaries nest in a value
        union {
            int32_t mInteger;
            double mReal;
            const char* mText;
            size_t mDecodedAt;
            ZAV_UVal* mValue;
            size_t mOuterMark; // of a mark: the index of the one of its kind around it
        };
    };
    typedef std::vector<Item>::iterator ItemRef;
    static constexpr size_t NO_MARK = static_cast<size_t>(-1);

    bool Take(const Token& token);
    void TakeScalar(const Token& token);
    void PushRaw(const Token& token);
    void PushMark(ItemKind kind);
    void PushValue(ZAV_UVal* value, uint32_t depth);
    Item& Push(ItemKind kind);
    void CloseMark(size_t& mark);

    void CloseArray();
    ZAV_UValType ArrayType(size_t mark, int keyword);
    void StoreElement(ZAV_UVal& value, ZAV_UValType type, const Item& item, long index);
    template <class Typed, ItemKind kind>
    bool FillNumbers(ZAV_UVal& value, size_t first) const;

    void CloseDict();
    bool HasPlainKeys(size_t first) const;
    std::unique_ptr<ZAV_UValDict> MakePlainDict(size_t first);
    uint32_t CheckedDepth(const Item& value, uint32_t levels);
    uint32_t StorePair(ZAV_UValDict& dict, const Item& key, Item& value);

    bool InArray() const { return mArrayMark != NO_MARK && (mDictMark == NO_MARK || mDictMark < mArrayMark); }
    const char* TextOf(const Item& item) const;
    [[noreturn]] void Fail(const char* message);

    Tokeniser mTokens;
    const char* mText;
    const char* mTextEnd;
    const char* mTokenStart; // where the current token begins
    Place mOrigin;
    std::vector<Item> mItems;
    std::string mDecoded; // texts of the open arrays' ITEM_DECODED
    // The innermost open marks: each kind has its own, so that an end finds the one it closes at once.
    size_t mDictMark;
    size_t mArrayMark;
    unsigned long mOpenDicts;
    unsigned long mNestingLimit;
    ZAV_UValDict::Filler mFiller;
};

/// Cuts the dictionary called `name` out of a stream, from its "<<" to its ">>", and stores it in `text` with
/// its place; the stream then stands behind it. Returns false, with the stream at its end, when there is
/// none. A dictionary that the stream ends in is cut there.
bool FindDictionary(std::istream& is, const char* name, size_t length, std::string& text, Place& place);

/// Notes that reading went well, or failed at `place`, where `found` stood.
void ClearTextError();
void SetTextError(const char* message, Place place, const char* found, const char* foundEnd);

/// Copies the word at `found`, at most as long as there is room; other bytes than printable ones as "?".
void CopyFound(char (&to)[48], const char* found, const char* end);

/// Traces and notes that reading failed for `message`, and throws.
[[noreturn]] void FailReading(const char* message, Place place, const char* found, const char* foundEnd);

extern const char* const HIERARCHY_ERROR;

} // namespace zav_text

#endif
