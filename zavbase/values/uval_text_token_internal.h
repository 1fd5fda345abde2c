#ifndef ZAVBASE_VALUES_UVAL_TEXT_TOKEN_INTERNAL_H
#define ZAVBASE_VALUES_UVAL_TEXT_TOKEN_INTERNAL_H

#include <cstddef>
#include <cstdint>
#include <string>

#include <zavbase/values/uval.h>

namespace zav_text {

/// What a byte means where a token begins and where a word goes on.
enum CharClass : unsigned char {
    CHAR_BLANK = 1,     ///< separates tokens
    CHAR_DELIMITER = 2, ///< one of ( ) < > [ ] { }
    CHAR_STOP = 4,      ///< NUL: the end of the text, or a byte that no word may hold
    CHAR_DIGIT = 8,
    CHAR_IN_STRING = 16, ///< one of ( ) \ NUL: what a string must look at
    CHAR_QUOTED = 32,    ///< not allowed in a key that is written as a name
    CHAR_ESCAPED = 64    ///< written with a backslash in a string
};
constexpr unsigned char CHAR_ENDS_WORD = CHAR_BLANK | CHAR_DELIMITER | CHAR_STOP;

struct CharTable {
    unsigned char mClass[256];
    constexpr CharTable();
    constexpr bool Is(char c, unsigned char classes) const {
        return (mClass[static_cast<unsigned char>(c)] & classes) != 0;
    }
};

constexpr CharTable::CharTable() : mClass{} {
    for (int c = 0; c < 256; ++c)
        if (c < 0x20 || c > 0x7E) mClass[c] = CHAR_QUOTED | CHAR_ESCAPED;
    for (char c : {' ', '\t', '\n', '\v', '\f', '\r'})
        mClass[static_cast<unsigned char>(c)] |= CHAR_BLANK | CHAR_QUOTED;
    for (char c : {'(', ')', '<', '>', '[', ']', '{', '}'})
        mClass[static_cast<unsigned char>(c)] |= CHAR_DELIMITER | CHAR_QUOTED;
    for (char c = '0'; c <= '9'; ++c) mClass[static_cast<unsigned char>(c)] |= CHAR_DIGIT;
    for (char c : {'(', ')', '\\', '\0'}) mClass[static_cast<unsigned char>(c)] |= CHAR_IN_STRING;
    for (char c : {'(', ')', '\\'}) mClass[static_cast<unsigned char>(c)] |= CHAR_ESCAPED;
    mClass[0] |= CHAR_STOP;
}

inline constexpr CharTable gChars;

/// The value types' keywords, in the order of the types, from UVAL_CHAR on.
constexpr int KEYWORD_COUNT = 11;
extern const char* const gKeywords[KEYWORD_COUNT];
constexpr int NO_KEYWORD = -1;

enum TokenKind : unsigned char {
    TOKEN_END, ///< the text is at its end
    TOKEN_INTEGER,
    TOKEN_REAL,
    TOKEN_STRING,
    TOKEN_NAME,
    TOKEN_DICT,
    TOKEN_DICT_END,
    TOKEN_ARRAY,
    TOKEN_ARRAY_END,
    TOKEN_INVALID ///< no token: a stray keyword, an unknown word, a brace, a string without end
};

struct Token {
    TokenKind mKind = TOKEN_END;
    int32_t mInteger = 0;
    double mReal = 0;
    const char* mText =
        nullptr; ///< of a name or string, without "/" and parentheses; valid until the next token
    size_t mLength = 0;
    const char* mStart = nullptr; ///< where it begins in the text
    bool mDecoded = false;        ///< mText is not part of the text, because the string had escapes
};

/// Cuts a text into tokens. Holds no copy of it.
class Tokeniser {
public:
    /// `text` must be followed by a NUL, which `size` does not count.
    Tokeniser(const char* text, size_t size) : mCursor(text), mEnd(text + size) {}

    const Token& Next();

    /// Consumes the next token if it is a type keyword and returns the keyword's index, else NO_KEYWORD.
    int TakeKeyword();

    /// Behind what was taken last.
    const char* Cursor() const { return mCursor; }

private:
    void SkipBlanks();
    void ReadName();
    void ReadString();
    void ReadEscapedString(const char* from);
    void ReadMark(TokenKind kind);
    void ReadWord();
    bool ReadInteger();

    const char* mCursor;
    const char* mEnd;
    Token mToken;
    std::string mDecoded;
};

/// The byte that an escape stands for; `p` points behind the backslash and is moved behind the escape.
char Unescape(const char*& p);

inline constexpr char BYTE_ORDER_MARK[] = "\xEF\xBB\xBF";

/// The size of the byte-order mark that a text in UTF-8 may begin with; 0 without one.
size_t MarkSize(const char* text, size_t size);

/// The index of the keyword that the word [word, end) is, else NO_KEYWORD.
int FindKeyword(const char* word, const char* end);

/// The type that a keyword stands for, and the one of a number or string without a keyword.
inline ZAV_UValType TypeOfKeyword(int keyword) { return static_cast<ZAV_UValType>(UVAL_CHAR + keyword); }
inline ZAV_UValType DefaultType(TokenKind kind) {
    return kind == TOKEN_INTEGER ? UVAL_LONG : kind == TOKEN_REAL ? UVAL_DOUBLE : UVAL_STRING;
}

} // namespace zav_text

#endif
