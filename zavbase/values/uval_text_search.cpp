#include <zavbase/values/uval_text_reader_internal.h>

#include <istream>
#include <streambuf>

namespace zav_text {

namespace {

// Cuts a stream into just as much as the search needs to know: where names, strings and marks are. It takes
// no byte more than it has to, so that the stream can be left behind the dictionary.
class StreamLexer {
public:
    enum Kind { END, KEY, OPEN, CLOSE, OTHER };

    explicit StreamLexer(std::streambuf& source) : mSource(source) {}

    /// At the start of the text: passes over a byte-order mark.
    void SkipMark();
    Kind Next();
    /// Of a KEY: the name or the decoded string.
    const std::string& Key() const { return mKey; }
    /// From now on all bytes taken are appended to `text`.
    void CopyTo(std::string* text) { mCopy = text; }
    size_t Copied() const { return mCopy ? mCopy->size() : 0; }
    Place TokenPlace() const { return mTokenPlace; }

private:
    typedef std::char_traits<char> Traits;
    static bool IsEnd(int c) { return c == Traits::eof(); }
    int Peek() { return mSource.sgetc(); }
    char Take();
    bool AtWordEnd();
    void SkipBlanks();
    void TakeWord();
    bool TakeString();

    std::streambuf& mSource;
    std::string mKey;
    std::string* mCopy = nullptr;
    Place mPlace;
    Place mTokenPlace;
};

char StreamLexer::Take() {
    char c = Traits::to_char_type(mSource.sbumpc());
    mPlace.Pass(c);
    if (mCopy) mCopy->push_back(c);
    return c;
}

// A word that begins like the mark is no key.
void StreamLexer::SkipMark() {
    const char* mark = BYTE_ORDER_MARK;
    while (*mark && Peek() == Traits::to_int_type(*mark)) Take(), ++mark;
    if (*mark && mark != BYTE_ORDER_MARK) return TakeWord();
    mPlace = Place();
}

bool StreamLexer::AtWordEnd() {
    int c = Peek();
    return IsEnd(c) || gChars.Is(Traits::to_char_type(c), CHAR_BLANK | CHAR_DELIMITER);
}

void StreamLexer::SkipBlanks() {
    for (int c = Peek(); !IsEnd(c); c = Peek()) {
        if (c == '%')
            while (!IsEnd(c) && c != '\n' && c != '\r') Take(), c = Peek();
        else if (gChars.Is(Traits::to_char_type(c), CHAR_BLANK))
            Take();
        else
            break;
    }
}

void StreamLexer::TakeWord() {
    mKey.clear();
    while (!AtWordEnd()) mKey.push_back(Take());
}

// The opening parenthesis is taken. False when the stream ends in the string.
bool StreamLexer::TakeString() {
    mKey.clear();
    int depth = 1;
    for (int c = Peek(); !IsEnd(c); c = Peek()) {
        char taken = Take();
        if (taken == '\\') {
            // Three bytes are the most that an escape can have; an octal one ends before the first other
            // byte.
            char escape[4] = {};
            int size = 0;
            do {
                if (IsEnd(Peek())) return false;
                escape[size++] = Take();
            } while (size < 3 && escape[0] >= '0' && escape[0] <= '7' && Peek() >= '0' && Peek() <= '7');
            const char* p = escape;
            mKey.push_back(Unescape(p));
            continue;
        }
        if (taken == '(') ++depth;
        if (taken == ')' && --depth == 0) return true;
        mKey.push_back(taken);
    }
    return false;
}

StreamLexer::Kind StreamLexer::Next() {
    SkipBlanks();
    mTokenPlace = mPlace;
    int c = Peek();
    if (IsEnd(c)) return END;
    if (c == '/') {
        Take();
        TakeWord();
        return KEY;
    }
    if (c == '(') {
        Take();
        return TakeString() ? KEY : END;
    }
    if (c == '<' || c == '>') {
        Take();
        if (Peek() != c) return OTHER;
        Take();
        return c == '<' ? OPEN : CLOSE;
    }
    TakeWord();
    if (mKey.empty()) Take();
    return OTHER;
}

// The "<<" is taken and copied; copies the rest of the dictionary.
void TakeDictionary(StreamLexer& lexer) {
    for (unsigned long open = 1; open > 0 && lexer.Copied() <= MOST_BYTES;) {
        StreamLexer::Kind kind = lexer.Next();
        if (kind == StreamLexer::OPEN) ++open;
        if (kind == StreamLexer::CLOSE) --open;
        if (kind == StreamLexer::END) return;
    }
}

} // namespace

bool FindDictionary(std::istream& is, const char* name, size_t length, std::string& text, Place& place) {
    if (!is.good() || !is.rdbuf()) return false;
    StreamLexer lexer(*is.rdbuf());
    lexer.SkipMark();
    bool named = false;
    for (StreamLexer::Kind kind = lexer.Next(); kind != StreamLexer::END; kind = lexer.Next()) {
        if (named && kind == StreamLexer::OPEN) {
            place = lexer.TokenPlace();
            text = "<<";
            lexer.CopyTo(&text);
            TakeDictionary(lexer);
            return true;
        }
        named = kind == StreamLexer::KEY && lexer.Key().compare(0, std::string::npos, name, length) == 0;
    }
    is.setstate(std::ios::eofbit);
    return false;
}

} // namespace zav_text
