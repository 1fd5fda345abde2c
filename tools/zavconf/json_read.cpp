#include "json.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <new>
#include <vector>

#include <zavbase/strings/rune.h>
#include <zavbase/values/uval_text.h>
#include <zavbase/values/uval_types.h>

#include "../support/harmless.h"
#include "../support/utf8.h"
#include "exact.h"

namespace {

struct SyntaxError {
    const char* mText;
};

struct Scalar {
    enum Kind { LONG, ULONG, REAL, TEXT, TRUTH, NOTHING } mKind = NOTHING;
    double mNumber = 0;
    std::string mText;
    std::string mLoss; // what of it could not be kept
};

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool FitsUtfString(const std::string& text) {
    return std::strlen(text.c_str()) == text.size() && isutfstr(text.c_str());
}

// The cursor over the text and what JSON's scalars look like.
class Scanner {
public:
    explicit Scanner(const std::string& text) : mCursor(text.c_str()), mEnd(mCursor + text.size()) {
        Word("\xEF\xBB\xBF"); // a byte-order mark
    }

    const char* Position() const { return mCursor; }
    char Peek() {
        while (mCursor < mEnd && IsBlank(*mCursor)) ++mCursor;
        return *mCursor;
    }
    bool AtEnd() { return Peek() == '\0' && mCursor == mEnd; }
    bool Skip(char c) {
        if (Peek() != c) return false;
        ++mCursor;
        return true;
    }
    void Need(char c, const char* error) {
        if (!Skip(c)) throw SyntaxError{error};
    }
    /// Whether lone halves of surrogate pairs were replaced is told in `replaced`.
    std::string Text(bool& replaced);
    Scalar Value();

private:
    bool Word(const char* word);
    unsigned long Hex4();
    void Escape(std::string& text, bool& replaced);
    void EscapedCode(std::string& text, bool& replaced);
    size_t Digits();
    Scalar Number();

    const char* mCursor;
    const char* mEnd;
};

bool Scanner::Word(const char* word) {
    size_t length = std::strlen(word);
    if (static_cast<size_t>(mEnd - mCursor) < length || std::memcmp(mCursor, word, length) != 0) return false;
    mCursor += length;
    return true;
}

unsigned long Scanner::Hex4() {
    unsigned long code = 0;
    if (mEnd - mCursor < 4 || std::from_chars(mCursor, mCursor + 4, code, 16).ptr != mCursor + 4)
        throw SyntaxError{"four hexadecimal digits expected"};
    mCursor += 4;
    return code;
}

void Scanner::Escape(std::string& text, bool& replaced) {
    static const char letters[] = "\"\\/bfnrt", bytes[] = "\"\\/\b\f\n\r\t";
    if (mCursor == mEnd) throw SyntaxError{"text without end"};
    if (*mCursor == 'u') return EscapedCode(text, replaced);
    const char* at = *mCursor ? std::strchr(letters, *mCursor) : nullptr;
    if (!at) throw SyntaxError{"unknown escape"};
    text += bytes[at - letters];
    ++mCursor;
}

// Beyond U+FFFF a character is written as two halves. One half alone is no character.
void Scanner::EscapedCode(std::string& text, bool& replaced) {
    ++mCursor;
    unsigned long code = Hex4();
    if (code >= 0xD800 && code < 0xDC00 && Word("\\u")) {
        const unsigned long second = Hex4();
        if (second >= 0xDC00 && second < 0xE000)
            return AppendUtf8(text, 0x10000 + ((code & 0x3FF) << 10) + (second & 0x3FF));
        mCursor -= 6;
    }
    const bool isHalf = code >= 0xD800 && code < 0xE000;
    replaced = replaced || isHalf;
    AppendUtf8(text, isHalf ? 0xFFFD : code);
}

std::string Scanner::Text(bool& replaced) {
    Need('"', "text expected");
    std::string text;
    for (;;) {
        const char* plain = mCursor;
        while (mCursor < mEnd && *mCursor != '"' && *mCursor != '\\' &&
               static_cast<unsigned char>(*mCursor) >= 0x20)
            ++mCursor;
        const std::string piece(plain, mCursor);
        if (!IsUtf8(piece)) throw SyntaxError{"text is not UTF-8"};
        text += piece;
        if (mCursor == mEnd) throw SyntaxError{"text without end"};
        char c = *mCursor++;
        if (c == '"') return text;
        if (c != '\\') throw SyntaxError{"control character in a text"};
        Escape(text, replaced);
    }
}

size_t Scanner::Digits() {
    const char* start = mCursor;
    while (mCursor < mEnd && *mCursor >= '0' && *mCursor <= '9') ++mCursor;
    return static_cast<size_t>(mCursor - start);
}

// Why an integer, which is beyond 32 bits, is not what the double holds; empty when it is.
std::string IntegerLoss(const char* start, const char* end, double number) {
    const std::string digits(*start == '-' ? start + 1 : start, end);
    unsigned long long exact = 0;
    const bool fits = std::from_chars(digits.data(), digits.data() + digits.size(), exact).ec == std::errc();
    const double limit = 18446744073709551616.0;
    const double size = std::fabs(number);
    if (fits && size < limit && static_cast<unsigned long long>(size) == exact) return std::string();
    return std::string(start, end) + " is rounded to a double";
}

Scalar Scanner::Number() {
    const char* const start = mCursor;
    const bool isNegative = Word("-");
    const char first = *mCursor;
    const size_t digits = Digits();
    if (digits == 0) throw SyntaxError{isNegative ? "digit expected" : "value expected"};
    if (first == '0' && digits > 1) throw SyntaxError{"number with a leading zero"};
    const bool hasFraction = Word(".");
    if (hasFraction && Digits() == 0) throw SyntaxError{"digit expected"};
    const bool hasExponent = Word("e") || Word("E");
    if (hasExponent && !Word("+")) Word("-");
    if (hasExponent && Digits() == 0) throw SyntaxError{"digit expected"};

    Scalar scalar;
    if (std::from_chars(start, mCursor, scalar.mNumber).ec != std::errc()) {
        mCursor = start;
        throw SyntaxError{"number out of range"};
    }
    scalar.mKind = Scalar::REAL;
    if (hasFraction || hasExponent) return scalar;
    if (scalar.mNumber >= -2147483648.0 && scalar.mNumber <= 2147483647.0)
        scalar.mKind = Scalar::LONG;
    else if (scalar.mNumber > 0 && scalar.mNumber <= 4294967295.0)
        scalar.mKind = Scalar::ULONG;
    else
        scalar.mLoss = IntegerLoss(start, mCursor, scalar.mNumber);
    return scalar;
}

Scalar Scanner::Value() {
    Scalar scalar;
    if (Peek() == '"') {
        scalar.mKind = Scalar::TEXT;
        bool replaced = false;
        scalar.mText = Text(replaced);
        if (replaced) scalar.mLoss = "half a surrogate pair becomes U+FFFD";
    } else if (Word("true")) {
        scalar.mKind = Scalar::TRUTH;
        scalar.mNumber = 1;
    } else if (Word("false")) {
        scalar.mKind = Scalar::TRUTH;
    } else if (!Word("null")) {
        scalar = Number();
    }
    return scalar;
}

// The value type for scalars of these kinds together; UVAL_DICT when there is none.
ZAV_UValType CommonType(const std::vector<Scalar>& scalars) {
    unsigned kinds = 0;
    bool fitUtf = true, negative = false;
    for (const Scalar& scalar : scalars) {
        kinds |= 1u << scalar.mKind;
        negative = negative || scalar.mNumber < 0;
        fitUtf = fitUtf && FitsUtfString(scalar.mText);
    }
    constexpr unsigned integers = 1u << Scalar::LONG | 1u << Scalar::ULONG;
    if (kinds == 1u << Scalar::LONG) return UVAL_LONG;
    if (kinds && (kinds & ~integers) == 0 && !negative) return UVAL_ULONG;
    if (kinds && (kinds & ~(integers | 1u << Scalar::REAL)) == 0) return UVAL_DOUBLE;
    if (kinds == 1u << Scalar::TEXT) return fitUtf ? UVAL_UTFSTRING : UVAL_STRING;
    if (kinds == 1u << Scalar::TRUTH) return UVAL_UCHAR;
    return kinds == 1u << Scalar::NOTHING ? UVAL_PTR : UVAL_DICT;
}

void Store(ZAV_UVal& value, const Scalar& scalar, long index) {
    ZAV_UValFamily family = value.GetFamily();
    if (family == UVAL_FAMILY_STRING)
        value.SetStrValue(ZAV_String(scalar.mText.data(), static_cast<unsigned int>(scalar.mText.size())),
                          index);
    else if (family == UVAL_FAMILY_PTR)
        value.SetPtrValue(nullptr, index);
    else if (value.GetType() == UVAL_ULONG)
        value.SetULongValue(static_cast<unsigned long>(scalar.mNumber), index);
    else
        value.SetDoubleValue(scalar.mNumber, index);
}

ZAV_UVal* MakeValue(const std::vector<Scalar>& scalars, bool isArray) {
    const long dimension = isArray ? static_cast<long>(scalars.size()) : 0;
    ZAV_UVal* value = ZAV_NewUVal(CommonType(scalars), dimension);
    if (value->GetDimension() != dimension) {
        delete value;
        throw std::bad_alloc();
    }
    for (size_t i = 0; i < scalars.size(); ++i) Store(*value, scalars[i], static_cast<long>(i));
    return value;
}

// Builds the tree; what is open waits on a stack, so that depth costs no call.
class Builder {
public:
    Builder(const std::string& text, JsonResult& result) : mScan(text), mResult(result) {}
    void Run();
    const char* Position() const { return mScan.Position(); }

private:
    struct Level {
        ZAV_UValDict* mDict; // where the entries go; of an array null while it holds only scalars
        bool mIsArray;
        std::string mKey;             // of this level in the one around it
        std::string mPath;            // for people
        std::vector<Scalar> mScalars; // of an array
        unsigned long mCount;
    };

    void Open(const std::string& key);
    void Close();
    void TakeMember();
    void TakeValue(const std::string& key);
    void StoreEntry(const Level& level, const std::string& key, ZAV_UVal* value);
    ZAV_UValDict& DictOf(size_t level);
    void Lose(const Level& level, const std::string& key, const std::string& what);

    Scanner mScan;
    JsonResult& mResult;
    std::vector<Level> mLevels;
};

void Builder::Run() {
    if (mScan.Peek() != '{' && mScan.Peek() != '[') {
        mScan.Value();
        if (!mScan.AtEnd()) throw SyntaxError{"text behind the end"};
        throw SyntaxError{"valid JSON, but a single value, which has no key to be stored under"};
    }
    mResult.mDict.reset(new ZAV_UValDict(16));
    Open("");
    while (!mLevels.empty()) {
        if (mScan.Skip(mLevels.back().mIsArray ? ']' : '}')) {
            Close();
            continue;
        }
        if (mLevels.back().mCount++ > 0) mScan.Need(',', "comma or end expected");
        if (mLevels.back().mIsArray)
            TakeValue(std::to_string(mLevels.back().mCount - 1));
        else
            TakeMember();
    }
    if (!mScan.AtEnd()) throw SyntaxError{"text behind the end"};
}

void Builder::TakeMember() {
    mScan.Peek();
    bool replaced = false;
    std::string key = mScan.Text(replaced);
    if (replaced) Lose(mLevels.back(), key, "half a surrogate pair in the key becomes U+FFFD");
    mScan.Need(':', "colon expected");
    TakeValue(key);
}

void Builder::TakeValue(const std::string& key) {
    if (mScan.Peek() == '{' || mScan.Peek() == '[') return Open(key);
    Level& level = mLevels.back();
    std::vector<Scalar> scalar(1, mScan.Value());
    if (!scalar[0].mLoss.empty()) Lose(level, key, scalar[0].mLoss);
    if (level.mIsArray && !level.mDict) {
        level.mScalars.push_back(std::move(scalar[0]));
        return;
    }
    StoreEntry(level, key, MakeValue(scalar, false));
}

void Builder::Open(const std::string& key) {
    unsigned long limit = ZAV_GetUValNestingLimit();
    if (limit && mLevels.size() >= limit) throw SyntaxError{"nested too deeply"};
    bool isArray = mScan.Skip('[');
    if (!isArray) mScan.Skip('{');
    bool isTop = mLevels.empty();
    // An array shows what it is when it ends, but one that holds another, or an object, is a dictionary.
    if (!isTop) DictOf(mLevels.size() - 1);
    const std::string path = isTop ? "" : PathBelow(mLevels.back().mPath, key);
    mLevels.push_back(Level{isTop ? mResult.mDict.get() : nullptr, isArray, key, path, {}, 0});
    if (!isArray) DictOf(mLevels.size() - 1);
}

// The level's dictionary, which is made on the first call, with the scalars that came before.
ZAV_UValDict& Builder::DictOf(size_t index) {
    Level& level = mLevels[index];
    if (level.mDict) return *level.mDict;
    level.mDict = new ZAV_UValDict(16);
    StoreEntry(mLevels[index - 1], level.mKey, level.mDict);
    for (size_t i = 0; i < level.mScalars.size(); ++i)
        StoreEntry(level, std::to_string(i), MakeValue(std::vector<Scalar>(1, level.mScalars[i]), false));
    level.mScalars.clear();
    return *level.mDict;
}

void Builder::Close() {
    Level& level = mLevels.back();
    if (level.mIsArray && level.mCount == 0) {
        const std::string name = mLevels.size() > 1 ? Harmless(level.mPath) : "the whole text";
        mResult.mLosses.push_back(name + ": an empty array becomes an empty dictionary");
    }
    bool isValue = !level.mScalars.empty() && CommonType(level.mScalars) != UVAL_DICT;
    DictOf(mLevels.size() - (isValue ? 2 : 1));
    if (isValue) StoreEntry(mLevels[mLevels.size() - 2], level.mKey, MakeValue(level.mScalars, true));
    mLevels.pop_back();
}

void Builder::StoreEntry(const Level& level, const std::string& key, ZAV_UVal* value) {
    const std::string kept = key.substr(0, (std::min)(key.find('\0'), size_t(64)));
    if (kept.size() < key.size()) Lose(level, key, "the key is cut to 64 bytes, or at a NUL");
    if (level.mDict->AssocAt(kept.c_str())) Lose(level, kept, "an earlier entry is replaced by a later one");
    level.mDict->SetEntry(kept.c_str(), value);
}

void Builder::Lose(const Level& level, const std::string& key, const std::string& what) {
    mResult.mLosses.push_back(Harmless(PathBelow(level.mPath, key)) + ": " + what);
}

} // namespace

JsonResult ReadJson(const std::string& text) {
    JsonResult result;
    Builder builder(text, result);
    try {
        builder.Run();
    } catch (const SyntaxError& error) {
        result.mDict.reset();
        result.mError = error.mText;
        result.mLine = result.mColumn = 1;
        const char* p = text.c_str() + (text.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0);
        for (; p < builder.Position(); ++p) {
            ++result.mColumn;
            if (*p == '\n') ++result.mLine, result.mColumn = 1;
        }
    }
    return result;
}
