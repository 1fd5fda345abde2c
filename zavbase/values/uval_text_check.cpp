#include <zavbase/values/uval_text_check_internal.h>

#include <cfloat>
#include <cmath>

#include <zavbase/foundation/exception.h>
#include <zavbase/strings/byte_string.h>
#include <zavbase/values/assoc_uval.h>
#include <zavbase/values/dict_path.h>

namespace zav_text {

namespace {

const char* SkipDigits(const char* p) {
    while (gChars.Is(*p, CHAR_DIGIT)) ++p;
    return p;
}

bool IsTextType(ZAV_UValType type) { return type == UVAL_STRING || type == UVAL_UTFSTRING; }

bool IsNumberToken(TokenKind kind) { return kind == TOKEN_INTEGER || kind == TOKEN_REAL; }

// The range that a type takes from a text; unsigned numbers of 32 bits are written with a sign.
bool Fits(double value, ZAV_UValType type) {
    struct Range {
        double mLeast, mMost;
    };
    static constexpr Range ranges[] = {{-128, 127},
                                       {0, 255},
                                       {-32768, 32767},
                                       {0, 65535},
                                       {-2147483648.0, 2147483647.0},
                                       {-2147483648.0, 4294967295.0}};
    // An integer goes through 32 bits on its way to a real.
    const Range& range = ranges[type == UVAL_PTR ? 5 : type > UVAL_ULONG ? 4 : type - UVAL_CHAR];
    return value >= range.mLeast && value <= range.mMost;
}

} // namespace

EntryTree::Node EntryTree::Make(bool isDict) {
    mNodes.emplace_back().mIsDict = isDict;
    return static_cast<Node>(mNodes.size() - 1);
}

EntryTree::Node EntryTree::Put(Node dict, std::string_view key, bool isDict, unsigned* findings) {
    *findings = 0;
    if (size_t nul = key.find('\0'); nul != key.npos) {
        *findings |= KEY_CUT_NUL;
        key = key.substr(0, nul);
    }
    if (key.empty()) *findings |= EMPTY;
    while (!key.empty()) {
        const size_t length = (std::min)(key.find(ZAV_DictPath::GetSeparator()), key.size());
        std::string level(key.substr(0, length));
        key.remove_prefix((std::min)(length + 1, key.size()));
        if (length > ZAV_AssocUVal::kMaxKeyLength) {
            *findings |= KEY_CUT_LONG;
            level.resize(ZAV_AssocUVal::kMaxKeyLength);
        }
        if (length == 0) *findings |= EMPTY_LEVEL;
        const auto [child, isNew] = mChildren.try_emplace({dict, std::move(level)}, NONE);
        if (key.empty()) {
            if (!isNew) *findings |= TWICE;
            return child->second = Make(isDict);
        }
        if (isNew) child->second = Make(true);
        dict = child->second;
        if (!mNodes[dict].mIsDict) {
            *findings |= BLOCKED;
            break;
        }
    }
    return NONE;
}

EntryTree::Node EntryTree::Find(const ZAV_DictPath& path) const {
    Node node = TOP;
    const char* key = nullptr;
    for (long i = 0; i < path.Size(); ++i) {
        key = path.NextKey(key);
        const auto child =
            mChildren.find({node, std::string(key, strnlen(key, ZAV_AssocUVal::kMaxKeyLength))});
        if (child == mChildren.end()) return NONE;
        node = child->second;
    }
    return node;
}

Inspector::Inspector(const char* text, size_t size, ZAV_UValTextRemarkFunc tell, void* context)
    : mTokens(text + MarkSize(text, size), size - MarkSize(text, size)), mText(text), mTell(tell),
      mContext(context), mPlaceAt(text + MarkSize(text, size)), mArray(nullptr) {}

void Inspector::Inspect() {
    for (;;) {
        const Token& token = mTokens.Next();
        if (token.mKind == TOKEN_END) return;
        Take(token);
    }
}

void Inspector::Take(const Token& token) {
    switch (token.mKind) {
    case TOKEN_NAME:
        return TakeItem({token.mText, token.mLength}, token.mStart, mTokens.Cursor());
    case TOKEN_DICT:
        return OpenDict(token.mStart);
    case TOKEN_DICT_END:
        return CloseDict();
    case TOKEN_ARRAY:
        mArray = token.mStart;
        return mElements.clear();
    case TOKEN_ARRAY_END:
        return TakeArrayEnd();
    default:
        TakeScalar(token);
    }
}

void Inspector::TakeScalar(const Token& token) {
    Scalar scalar = {token.mKind, token.mStart, mTokens.Cursor(), false};
    const int keyword = mTokens.TakeKeyword();
    const bool isText = token.mKind == TOKEN_STRING;
    const std::string_view text = isText ? std::string_view(token.mText, token.mLength) : std::string_view();
    if (mArray) {
        if (mElements.empty()) mFirstText = text;
        scalar.mHasKeyword = keyword != NO_KEYWORD;
        mElements.push_back(scalar);
        return;
    }
    TakeItem(text, scalar.mStart, keyword == NO_KEYWORD ? scalar.mEnd : mTokens.Cursor());
    CheckScalar(scalar, keyword == NO_KEYWORD ? DefaultType(token.mKind) : TypeOfKeyword(keyword));
}

void Inspector::TakeArrayEnd() {
    const char* end = mTokens.Cursor();
    const int keyword = mTokens.TakeKeyword();
    TakeItem(mFirstText, mArray, keyword == NO_KEYWORD ? end : mTokens.Cursor());
    mArray = nullptr;
    const ZAV_UValType type =
        keyword == NO_KEYWORD ? DefaultType(mElements[0].mKind) : TypeOfKeyword(keyword);
    for (const Scalar& element : mElements) CheckScalar(element, type);
}

// A name, scalar or array, as key or value of the innermost dictionary. `text` is what it is as a key.
void Inspector::TakeItem(std::string_view text, const char* start, const char* end) {
    if (mDicts.empty()) {
        mTree.PlaceOf(EntryTree::TOP) = {0, 0, OffsetOf(start), OffsetOf(end)};
        return;
    }
    Dict& dict = mDicts.back();
    if (dict.mWantsValue) {
        PutEntry(false, start, end);
        return;
    }
    dict.mKey = text;
    dict.mKeyStart = start;
    dict.mKeyEnd = end;
    dict.mWantsValue = true;
}

// Gives the value to the key that waits for it in the innermost dictionary.
EntryTree::Node Inspector::PutEntry(bool isDict, const char* start, const char* end) {
    Dict& dict = mDicts.back();
    dict.mWantsValue = false;
    unsigned findings = 0;
    const EntryTree::Node node = mTree.Put(dict.mNode, dict.mKey, isDict, &findings);
    if (node != EntryTree::NONE)
        mTree.PlaceOf(node) = {OffsetOf(dict.mKeyStart), OffsetOf(dict.mKeyEnd), OffsetOf(start),
                               OffsetOf(end)};
    if (findings) TellFindings(findings, dict.mKeyStart, dict.mKeyEnd);
    return node;
}

void Inspector::OpenDict(const char* start) {
    EntryTree::Node node = EntryTree::TOP;
    if (mDicts.empty())
        mTree.PlaceOf(node).mValueStart = OffsetOf(start);
    else if ((node = PutEntry(true, start, start)) == EntryTree::NONE)
        node = mTree.Loose();
    mDicts.push_back({node, false, {}, nullptr, nullptr});
}

void Inspector::CloseDict() {
    mTree.PlaceOf(mDicts.back().mNode).mValueEnd = OffsetOf(mTokens.Cursor());
    mDicts.pop_back();
}

void Inspector::CheckScalar(const Scalar& scalar, ZAV_UValType type) {
    const auto tell = [&](const char* message) {
        Tell(UVAL_REMARK_TYPE, message, scalar.mStart, scalar.mEnd);
    };
    if (scalar.mHasKeyword) tell("A type keyword inside an array has no effect");
    if (IsNumberToken(scalar.mKind) && IsTextType(type))
        tell("A number where the type wants a string is dropped");
    else if (scalar.mKind == TOKEN_REAL && type == UVAL_PTR)
        tell("A real where the type wants a pointer is dropped");
    else if (scalar.mKind == TOKEN_STRING && !IsTextType(type))
        tell("A string where the type wants a number");
    else if (scalar.mKind == TOKEN_INTEGER)
        CheckInteger(scalar, type);
    else if (scalar.mKind == TOKEN_REAL)
        CheckReal(scalar, type);
}

void Inspector::CheckInteger(const Scalar& scalar, ZAV_UValType type) {
    const char* first = *scalar.mStart == '-' ? scalar.mStart + 1 : scalar.mStart;
    const char* end = SkipDigits(first);
    double value = 0;
    for (const char* p = first; p < end; ++p) value = value * 10 + (*p - '0');
    TellNumber(scalar, end > first, end, Fits(first > scalar.mStart ? -value : value, type));
}

void Inspector::CheckReal(const Scalar& scalar, ZAV_UValType type) {
    const char* first = *scalar.mStart == '-' ? scalar.mStart + 1 : scalar.mStart;
    const char* p = SkipDigits(first);
    const bool isPoint = *p == '.';
    const char* mantissaEnd = isPoint ? SkipDigits(p + 1) : p;
    const bool hasDigits = mantissaEnd - first > (isPoint ? 1 : 0);
    const char* end = mantissaEnd;
    if (*end == 'e' || *end == 'E') {
        const char* digits = end[1] == '+' || end[1] == '-' ? end + 2 : end + 1;
        if (SkipDigits(digits) > digits) end = SkipDigits(digits);
    }
    const double value = ZAV_atof(scalar.mStart, '.');
    bool fits;
    if (type <= UVAL_ULONG)
        fits = value == std::trunc(value) && Fits(value, type);
    else // an infinity is written as 1e999
        fits = std::fabs(value) <= (type == UVAL_FLOAT ? static_cast<double>(FLT_MAX) : DBL_MAX) ||
               std::string_view(first, static_cast<size_t>(scalar.mEnd - first)) == "1e999";
    TellNumber(scalar, hasDigits, end, fits);
}

// A number of which [mStart, end) is read.
void Inspector::TellNumber(const Scalar& scalar, bool hasDigits, const char* end, bool fits) {
    if (!hasDigits)
        Tell(UVAL_REMARK_NO_NUMBER, "No number, read as 0", scalar.mStart, scalar.mEnd);
    else if (end < scalar.mEnd)
        Tell(UVAL_REMARK_NUMBER_TAIL, "Only the beginning of the word is a number", scalar.mStart,
             scalar.mEnd);
    else if (!fits)
        Tell(UVAL_REMARK_NUMBER_RANGE, "The number does not fit its type", scalar.mStart, scalar.mEnd);
}

void Inspector::TellFindings(unsigned findings, const char* start, const char* end) {
    static const struct {
        unsigned mFinding;
        ZAV_UValTextRemarkKind mKind;
        const char* mMessage;
    } rows[] = {
        {EntryTree::KEY_CUT_LONG, UVAL_REMARK_KEY_CUT, "A key of more than 64 bytes is cut"},
        {EntryTree::KEY_CUT_NUL, UVAL_REMARK_KEY_CUT, "A key is cut at its NUL"},
        {EntryTree::EMPTY, UVAL_REMARK_KEY_EMPTY, "An entry under an empty key is dropped"},
        {EntryTree::EMPTY_LEVEL, UVAL_REMARK_KEY_EMPTY, "An empty key in a path"},
        {EntryTree::TWICE, UVAL_REMARK_KEY_TWICE, "The key is there already, the value before is lost"},
        {EntryTree::BLOCKED, UVAL_REMARK_KEY_BLOCKED,
         "The path leads through a value that is no dictionary, the entry is dropped"}};
    for (const auto& row : rows)
        if (findings & row.mFinding) Tell(row.mKind, row.mMessage, start, end);
}

void Inspector::Tell(ZAV_UValTextRemarkKind kind, const char* message, const char* start, const char* end) {
    if (!mTell) return;
    mPlace = mPlace.After(mPlaceAt, start);
    mPlaceAt = start;
    ZAV_UValTextRemark remark = {kind, mPlace.mLine, mPlace.mColumn, OffsetOf(start), OffsetOf(end), message,
                                 {}};
    CopyFound(remark.mFound, start, end);
    mTell(mContext, remark);
}

} // namespace zav_text

boolean_t ZAV_FindUValTxtEntry(const ZAV_String& text, const ZAV_DictPath& path, ZAV_UValTextEntry& entry) {
    entry = {0, 0, 0, 0};
    bool isReadable = false;
    ZAV_TRY {
        delete zav_text::Reader(text.Ptr(), text.Size()).Read();
        isReadable = true;
    }
    ZAV_CATCH(ZAV_FileException, e) {}
    ZAV_CATCH_END
    if (!isReadable) return B_FALSE;
    zav_text::Inspector inspector(text.Ptr(), text.Size(), nullptr, nullptr);
    inspector.Inspect();
    const zav_text::EntryTree::Node node = inspector.Entries().Find(path);
    if (node != zav_text::EntryTree::NONE) entry = inspector.Entries().PlaceOf(node);
    return ZAV_Bool(entry.mValueEnd > 0);
}
