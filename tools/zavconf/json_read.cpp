#include "json.h"

#include <charconv>
#include <cstring>
#include <vector>

#include <zavbase/strings/rune.h>
#include <zavbase/values/uval_text.h>
#include <zavbase/values/uval_types.h>

namespace {

struct SyntaxError {
    const char* mText;
};

struct Scalar {
    enum Kind { LONG, ULONG, REAL, TEXT, TRUTH, NOTHING } mKind = NOTHING;
    double mNumber = 0;
    std::string mText;
};

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

void AppendUtf8(std::string& text, unsigned long code) {
    if (code < 0x80) {
        text += static_cast<char>(code);
        return;
    }
    int more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    static const unsigned char lead[] = {0, 0xC0, 0xE0, 0xF0};
    text += static_cast<char>(lead[more] | (code >> (6 * more)));
    while (more-- > 0) text += static_cast<char>(0x80 | ((code >> (6 * more)) & 0x3F));
}

bool FitsUtfString(const std::string& text) {
    return std::strlen(text.c_str()) == text.size() && isutfstr(text.c_str());
}

// The cursor over the text and what JSON's scalars look like.
class Scanner {
public:
    explicit Scanner(const std::string& text) : mCursor(text.c_str()), mEnd(mCursor + text.size()) {}

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
    std::string Text();
    Scalar Value();

private:
    bool Word(const char* word);
    unsigned long Hex4();
    void Escape(std::string& text);
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

void Scanner::Escape(std::string& text) {
    static const char letters[] = "\"\\/bfnrt", bytes[] = "\"\\/\b\f\n\r\t";
    char c = *mCursor++;
    if (c == 'u') {
        unsigned long code = Hex4();
        if (code >= 0xD800 && code < 0xDC00 && Word("\\u"))
            code = 0x10000 + ((code & 0x3FF) << 10) + (Hex4() & 0x3FF);
        return AppendUtf8(text, code);
    }
    const char* at = c ? std::strchr(letters, c) : nullptr;
    if (!at) throw SyntaxError{"unknown escape"};
    text += bytes[at - letters];
}

std::string Scanner::Text() {
    Need('"', "text expected");
    std::string text;
    for (;;) {
        const char* plain = mCursor;
        while (mCursor < mEnd && *mCursor != '"' && *mCursor != '\\' &&
               static_cast<unsigned char>(*mCursor) >= 0x20)
            ++mCursor;
        text.append(plain, mCursor);
        if (mCursor == mEnd) throw SyntaxError{"text without end"};
        char c = *mCursor++;
        if (c == '"') return text;
        if (c != '\\') throw SyntaxError{"control character in a text"};
        Escape(text);
    }
}

Scalar Scanner::Number() {
    Scalar scalar;
    const char* start = mCursor;
    const char* digits = *start == '-' ? start + 1 : start;
    if (digits == mEnd || *digits < '0' || *digits > '9') throw SyntaxError{"value expected"};
    auto result = std::from_chars(start, mEnd, scalar.mNumber);
    if (result.ec != std::errc()) throw SyntaxError{"number out of range"};
    mCursor = result.ptr;
    bool isInteger = std::string(start, mCursor).find_first_of(".eE") == std::string::npos;
    if (isInteger && scalar.mNumber >= -2147483648.0 && scalar.mNumber <= 2147483647.0)
        scalar.mKind = Scalar::LONG;
    else if (isInteger && scalar.mNumber > 0 && scalar.mNumber <= 4294967295.0)
        scalar.mKind = Scalar::ULONG;
    else
        scalar.mKind = Scalar::REAL;
    return scalar;
}

Scalar Scanner::Value() {
    Scalar scalar;
    if (Peek() == '"') {
        scalar.mKind = Scalar::TEXT;
        scalar.mText = Text();
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
    ZAV_UVal* value = ZAV_NewUVal(CommonType(scalars), isArray ? static_cast<long>(scalars.size()) : 0);
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
        std::vector<Scalar> mScalars; // of an array
        unsigned long mCount;
    };

    void Open(const std::string& key);
    void Close();
    void TakeMember();
    void TakeValue(const std::string& key);
    void StoreEntry(ZAV_UValDict& dict, const std::string& key, ZAV_UVal* value);
    ZAV_UValDict& DictOf(size_t level);

    Scanner mScan;
    JsonResult& mResult;
    std::vector<Level> mLevels;
};

void Builder::Run() {
    if (mScan.Peek() != '{' && mScan.Peek() != '[') throw SyntaxError{"object or array expected"};
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
    std::string key = mScan.Text();
    mScan.Need(':', "colon expected");
    TakeValue(key);
}

void Builder::TakeValue(const std::string& key) {
    if (mScan.Peek() == '{' || mScan.Peek() == '[') return Open(key);
    Level& level = mLevels.back();
    std::vector<Scalar> scalar(1, mScan.Value());
    if (level.mIsArray && !level.mDict) {
        level.mScalars.push_back(std::move(scalar[0]));
        return;
    }
    StoreEntry(*level.mDict, key, MakeValue(scalar, false));
}

void Builder::Open(const std::string& key) {
    unsigned long limit = ZAV_GetUValNestingLimit();
    if (limit && mLevels.size() >= limit) throw SyntaxError{"nested too deeply"};
    bool isArray = mScan.Skip('[');
    if (!isArray) mScan.Skip('{');
    bool isTop = mLevels.empty();
    // An array shows what it is when it ends, but one that holds another, or an object, is a dictionary.
    if (!isTop) DictOf(mLevels.size() - 1);
    mLevels.push_back(Level{isTop ? mResult.mDict.get() : nullptr, isArray, key, {}, 0});
    if (!isArray) DictOf(mLevels.size() - 1);
}

// The level's dictionary, which is made on the first call, with the scalars that came before.
ZAV_UValDict& Builder::DictOf(size_t index) {
    Level& level = mLevels[index];
    if (level.mDict) return *level.mDict;
    level.mDict = new ZAV_UValDict(16);
    StoreEntry(*mLevels[index - 1].mDict, level.mKey, level.mDict);
    for (size_t i = 0; i < level.mScalars.size(); ++i)
        StoreEntry(*level.mDict, std::to_string(i),
                   MakeValue(std::vector<Scalar>(1, level.mScalars[i]), false));
    level.mScalars.clear();
    return *level.mDict;
}

void Builder::Close() {
    Level& level = mLevels.back();
    bool isValue = !level.mScalars.empty() && CommonType(level.mScalars) != UVAL_DICT;
    if (isValue)
        StoreEntry(DictOf(mLevels.size() - 2), level.mKey, MakeValue(level.mScalars, true));
    else
        DictOf(mLevels.size() - 1);
    mLevels.pop_back();
}

void Builder::StoreEntry(ZAV_UValDict& dict, const std::string& key, ZAV_UVal* value) {
    if (key.size() > 64 || key.find('\0') != std::string::npos) ++mResult.mCutKeys;
    unsigned int before = dict.GetSize();
    dict.SetEntry(key.c_str(), value);
    if (dict.GetSize() == before) ++mResult.mLostEntries;
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
        for (const char* p = text.c_str(); p < builder.Position(); ++p) {
            ++result.mColumn;
            if (*p == '\n') ++result.mLine, result.mColumn = 1;
        }
    }
    return result;
}
