#include <zavbase/values/uval_text_token_internal.h>

#include <cstring>
#include <string_view>

#include <zavbase/strings/byte_string.h>

namespace zav_text {

const char* const gKeywords[KEYWORD_COUNT] = {"zavchar",   "zavuchar",     "zavshort", "zavushort",
                                              "zavlong",   "zavulong",     "zavfloat", "zavdouble",
                                              "zavstring", "zavutfstring", "zavptr"};

namespace {

const char* WordEnd(const char* p) {
    while (!gChars.Is(*p, CHAR_ENDS_WORD)) ++p;
    return p;
}

bool HoldsMark(const char* word, const char* end) {
    return std::string_view(word, static_cast<size_t>(end - word)).find(BYTE_ORDER_MARK) !=
           std::string_view::npos;
}

bool IsLineEnd(char c) { return c == '\n' || c == '\r'; }

} // namespace

size_t MarkSize(const char* text, size_t size) {
    const size_t mark = sizeof BYTE_ORDER_MARK - 1;
    return size >= mark && std::memcmp(text, BYTE_ORDER_MARK, mark) == 0 ? mark : 0;
}

int FindKeyword(const char* word, const char* end) {
    size_t length = static_cast<size_t>(end - word);
    if (length < 6 || std::memcmp(word, "zav", 3) != 0) return NO_KEYWORD;
    for (int i = 0; i < KEYWORD_COUNT; ++i)
        if (std::strlen(gKeywords[i]) == length && std::memcmp(gKeywords[i], word, length) == 0) return i;
    return NO_KEYWORD;
}

char Unescape(const char*& p) {
    char c = *p++;
    if (c >= '0' && c <= '7') {
        unsigned value = static_cast<unsigned>(c - '0');
        for (int digits = 1; digits < 3 && *p >= '0' && *p <= '7'; ++digits)
            value = value * 8 + static_cast<unsigned>(*p++ - '0');
        return static_cast<char>(value & 0xFF);
    }
    switch (c) {
    case 't':
        return '\t';
    case 'n':
        return '\n';
    case 'f':
        return '\f';
    case 'r':
        return '\r';
    default:
        return c;
    }
}

void Tokeniser::SkipBlanks() {
    const char* p = mCursor;
    for (;;) {
        while (gChars.Is(*p, CHAR_BLANK)) ++p;
        if (*p != '%') break;
        while (p < mEnd && !IsLineEnd(*p)) ++p;
    }
    mCursor = p;
}

int Tokeniser::TakeKeyword() {
    SkipBlanks();
    if (*mCursor != 'z') return NO_KEYWORD;
    const char* end = WordEnd(mCursor);
    int keyword = *end == '\0' && end < mEnd ? NO_KEYWORD : FindKeyword(mCursor, end);
    if (keyword != NO_KEYWORD) mCursor = end;
    return keyword;
}

const Token& Tokeniser::Next() {
    SkipBlanks();
    mToken.mStart = mCursor;
    switch (*mCursor) {
    case '/':
        ReadName();
        break;
    case '(':
        ReadString();
        break;
    case '<':
        ReadMark(TOKEN_DICT);
        break;
    case '>':
        ReadMark(TOKEN_DICT_END);
        break;
    case '[':
        mToken.mKind = TOKEN_ARRAY, ++mCursor;
        break;
    case ']':
        mToken.mKind = TOKEN_ARRAY_END, ++mCursor;
        break;
    case '\0':
        mToken.mKind = mCursor < mEnd ? TOKEN_INVALID : TOKEN_END;
        break;
    default:
        ReadWord();
    }
    return mToken;
}

void Tokeniser::ReadMark(TokenKind kind) {
    // A single "<" or ">" is no token.
    bool isDouble = mCursor[1] == mCursor[0];
    mToken.mKind = isDouble ? kind : TOKEN_INVALID;
    mCursor += isDouble ? 2 : 1;
}

void Tokeniser::ReadName() {
    const char* end = WordEnd(mCursor);
    bool holdsNul = *end == '\0' && end < mEnd;
    mToken.mKind = holdsNul ? TOKEN_INVALID : TOKEN_NAME;
    mToken.mText = mCursor + 1;
    mToken.mLength = static_cast<size_t>(end - mToken.mText);
    mToken.mDecoded = false;
    mCursor = end;
}

void Tokeniser::ReadString() {
    const char* start = mCursor + 1;
    const char* p = start;
    while (!gChars.Is(*p, CHAR_IN_STRING)) ++p;
    if (*p != ')') return ReadEscapedString(p);
    mToken.mKind = TOKEN_STRING;
    mToken.mText = start;
    mToken.mLength = static_cast<size_t>(p - start);
    mToken.mDecoded = false;
    mCursor = p + 1;
}

void Tokeniser::ReadEscapedString(const char* from) {
    mDecoded.assign(mCursor + 1, from);
    int depth = 1;
    const char* p = from;
    for (;;) {
        const char* plain = p;
        while (!gChars.Is(*p, CHAR_IN_STRING)) ++p;
        mDecoded.append(plain, p);
        if (p >= mEnd || (*p == '\\' && p + 1 >= mEnd)) break;
        char c = *p++;
        if (c == '\\')
            c = Unescape(p);
        else if (c == '(')
            ++depth;
        else if (c == ')' && --depth == 0)
            break;
        mDecoded.push_back(c);
    }
    mToken.mKind = depth == 0 ? TOKEN_STRING : TOKEN_INVALID;
    mToken.mText = mDecoded.data();
    mToken.mLength = mDecoded.size();
    mToken.mDecoded = true;
    mCursor = p;
}

// An integer is digits and "-"; its value is what comes before the second "-", modulo 2^32.
bool Tokeniser::ReadInteger() {
    const char* p = mCursor;
    bool negative = *p == '-';
    if (negative) ++p;
    uint32_t value = 0;
    while (gChars.Is(*p, CHAR_DIGIT)) value = value * 10 + static_cast<uint32_t>(*p++ - '0');
    while (*p == '-' || gChars.Is(*p, CHAR_DIGIT)) ++p;
    if (!gChars.Is(*p, CHAR_ENDS_WORD) || (*p == '\0' && p < mEnd)) return false;
    mToken.mKind = TOKEN_INTEGER;
    mToken.mInteger = static_cast<int32_t>(negative ? 0 - value : value);
    mCursor = p;
    return true;
}

void Tokeniser::ReadWord() {
    char first = *mCursor;
    bool isNumber = gChars.Is(first, CHAR_DIGIT) || first == '-' || first == '.';
    if (isNumber && ReadInteger()) return;
    const char* end = WordEnd(mCursor);
    bool holdsNul = *end == '\0' && end < mEnd;
    mToken.mKind = isNumber && !holdsNul && !HoldsMark(mCursor, end) ? TOKEN_REAL : TOKEN_INVALID;
    if (mToken.mKind == TOKEN_REAL) mToken.mReal = ZAV_atof(mCursor, '.');
    mCursor = end;
}

} // namespace zav_text
