#include <zavbase/values/uval_text.h>

#include <algorithm>
#include <cmath>
#include <ostream>
#include <string>
#include <vector>

#include <zavbase/strings/number_text_internal.h>
#include <zavbase/values/nesting_internal.h>
#include <zavbase/values/uval_text_token_internal.h>
#include <zavbase/values/uval_types.h>
#include <zavbase/values/value_dict_fill_internal.h>
#include <zavbase/values/value_dict_internal.h>

namespace zav_text {

namespace {

// Rounds x * 10^6 to an integer, half to even, exactly; x is 0 <= x < 1. The product is computed as
// high + low without error (each factor split in halves whose products are exact).
uint32_t Millionths(double x) {
    constexpr double split = 134217729.0, factor = 1e6;
    double product = x * factor;
    double t = split * x;
    double upper = t - (t - x);
    double error = (upper * factor - product) + (x - upper) * factor;
    double whole = std::floor(product);
    double rest = product - whole;
    bool up = rest > 0.5 || (rest == 0.5 && (error > 0 || (error == 0 && std::fmod(whole, 2.0) != 0)));
    // The product may have been rounded up to a whole number or to a half from below.
    return static_cast<uint32_t>(whole) + (up ? 1 : 0);
}

template <class Unsigned>
char* PutDigits(char* end, Unsigned value, int least) {
    do {
        *--end = static_cast<char>('0' + value % 10);
        value /= 10;
        --least;
    } while (value || least > 0);
    return end;
}

// Collects text and hands it to the stream in large pieces.
class Output {
public:
    /// Before the first piece that is not the last, `gate` (if it is not null) is asked to fit the limit.
    Output(std::ostream& os, const ZAV_UValDict* gate, unsigned long limit)
        : mStream(os), mGate(gate), mLimit(limit) {
        mText.reserve(PIECE + 512);
    }
    /// To be called at the end.
    void FlushLast() {
        mGate = nullptr;
        Flush();
    }
    /// Nothing more is handed on.
    void Refuse() { mIsRefused = true; }
    bool IsRefused() const { return mIsRefused; }
    void Char(char c) { mText.push_back(c); }
    void Text(const char* text, size_t length) { mText.append(text, length); }
    template <size_t N>
    void Literal(const char (&text)[N]) {
        mText.append(text, N - 1);
    }
    void Indent(int n);
    void Integer(int32_t value);
    void Real(double value, int decimals);
    void Quoted(const char* text, size_t length);
    void Key(const char* key, size_t length);
    void FlushLarge() {
        if (mText.size() >= PIECE) Flush();
    }

private:
    static constexpr size_t PIECE = 32768;
    void Flush();
    void Escaped(unsigned char c);

    std::ostream& mStream;
    const ZAV_UValDict* mGate;
    unsigned long mLimit;
    bool mIsRefused = false;
    std::string mText;
};

void Output::Flush() {
    if (mGate && !ZAV_FitsNesting(*mGate, mLimit, true)) Refuse();
    mGate = nullptr;
    if (!mIsRefused) mStream.write(mText.data(), static_cast<std::streamsize>(mText.size()));
    mText.clear();
}

void Output::Indent(int n) {
    for (; n > 0; n -= 4096) {
        mText.append(2 * static_cast<size_t>((std::min)(n, 4096)), ' ');
        FlushLarge();
    }
}

void Output::Integer(int32_t value) {
    char digits[12];
    char* end = digits + sizeof digits;
    bool negative = value < 0;
    char* start =
        PutDigits(end, negative ? 0u - static_cast<uint32_t>(value) : static_cast<uint32_t>(value), 1);
    if (negative) *--start = '-';
    mText.append(start, end);
}

void Output::Real(double value, int decimals) {
    double size = std::fabs(value);
    if (decimals != 6 || !(size < 9e9)) {
        char digits[zav_number::kRealRoom];
        mText.append(digits, zav_number::FormatFixedForFile(digits, value, decimals));
        return;
    }
    uint64_t whole = static_cast<uint64_t>(size);
    uint32_t millionths = Millionths(size - static_cast<double>(whole));
    if (millionths == 1000000) ++whole, millionths = 0;
    char digits[24];
    char* end = digits + sizeof digits;
    char* start = PutDigits(end, millionths, 6);
    *--start = '.';
    start =
        whole <= 0xFFFFFFFF ? PutDigits(start, static_cast<uint32_t>(whole), 1) : PutDigits(start, whole, 1);
    if (std::signbit(value)) *--start = '-';
    mText.append(start, end);
}

void Output::Escaped(unsigned char c) {
    mText.push_back('\\');
    switch (c) {
    case '\t':
        mText.push_back('t');
        break;
    case '\n':
        mText.push_back('n');
        break;
    case '\f':
        mText.push_back('f');
        break;
    case '\r':
        mText.push_back('r');
        break;
    case '(':
    case ')':
    case '\\':
        mText.push_back(static_cast<char>(c));
        break;
    default:
        mText.push_back(static_cast<char>('0' + (c >> 6)));
        mText.push_back(static_cast<char>('0' + ((c >> 3) & 7)));
        mText.push_back(static_cast<char>('0' + (c & 7)));
    }
}

void Output::Quoted(const char* text, size_t length) {
    const char* end = text + length;
    mText.push_back('(');
    while (text < end) {
        const char* plain = text;
        while (text < end && !gChars.Is(*text, CHAR_ESCAPED)) ++text;
        mText.append(plain, text);
        if (text < end) Escaped(static_cast<unsigned char>(*text++));
    }
    mText.append(") ", 2);
}

void Output::Key(const char* key, size_t length) {
    bool isName = std::none_of(key, key + length, [](char c) { return gChars.Is(c, CHAR_QUOTED); });
    if (!isName) return Quoted(key, length);
    mText.push_back('/');
    mText.append(key, length);
}

typedef ZAV_UValDict::Fields Fields;

// Writes a tree without recursion: open dictionaries wait on a stack of their own.
class Writer {
public:
    Writer(std::ostream& os, int indent, const ZAV_UValDict* gate)
        : mStream(os), mLimit(ZAV_GetUValNestingLimit()), mOut(os, gate, mLimit), mIndent(indent) {
        std::streamsize decimals = os.precision();
        mDecimals = decimals < 0 ? 6 : static_cast<int>((std::min<std::streamsize>)(decimals, 40));
    }
    /// Sets the fail bit, and returns false, for what nests too deep.
    bool Write(ZAV_UVal& value);

private:
    void Open(ZAV_UValDict& dict, unsigned long depth);
    unsigned long DepthOf(const ZAV_AssocUVal& entry, unsigned long dictDepth);
    void WriteNext();
    void WriteValue(ZAV_UVal& value);
    template <class PutElement>
    void WriteNumbers(ZAV_UVal& value, PutElement put);
    void WriteIntegers(ZAV_UVal& value);
    void WriteReals(ZAV_UVal& value);
    void WriteStrings(ZAV_UVal& value);
    template <class TextOf>
    void WriteTexts(ZAV_UVal& value, TextOf textOf);
    void WritePointers(ZAV_UVal& value);
    void WriteKeyword(ZAV_UValType type);

    struct Level {
        ZAV_AssocUVal* mNext; // the entry to be written next
        unsigned long mDepth; // as the reader will count it, 1 at the top
    };

    std::ostream& mStream;
    unsigned long mLimit;
    Output mOut;
    int mIndent; // of the innermost open dictionary
    int mDecimals;
    std::vector<Level> mOpen;
};

// A host's class may have a type that the form does not know, or claim to be a dictionary.
bool IsWritable(const ZAV_UVal& value) {
    return value.GetType() > UVAL_DICT ? value.GetType() <= UVAL_PTR : ZAV_IsDict(&value);
}

bool Writer::Write(ZAV_UVal& value) {
    if (ZAV_IsDict(&value))
        Open(static_cast<ZAV_UValDict&>(value), 1);
    else
        WriteValue(value);
    while (!mOpen.empty() && !mOut.IsRefused()) WriteNext();
    if (mOut.IsRefused()) mStream.setstate(std::ios::failbit);
    mOut.FlushLast();
    return !mOut.IsRefused();
}

void Writer::Open(ZAV_UValDict& dict, unsigned long depth) {
    if (mLimit && depth > mLimit) mOut.Refuse();
    if (mIndent != 0) {
        mOut.Char('\n');
        mOut.Indent(mIndent);
    }
    mOut.Literal("<<\n");
    mOpen.push_back({Fields::First(dict), depth});
}

// The depth of what the entry holds, if that is not a dictionary itself.
unsigned long Writer::DepthOf(const ZAV_AssocUVal& entry, unsigned long dictDepth) {
    const unsigned long depth = dictDepth + ZAV_LevelsOfKey(Fields::Key(entry), entry.KeyLength());
    if (mLimit && depth > mLimit) mOut.Refuse();
    return depth;
}

// The next line of the innermost open dictionary: an entry or its end.
void Writer::WriteNext() {
    Level& level = mOpen.back();
    ZAV_AssocUVal* entry = level.mNext;
    if (!entry) {
        mOpen.pop_back();
        mOut.Indent(mIndent--);
        mOut.Literal(">>");
        if (!mOpen.empty()) mOut.Char('\n');
        return;
    }
    level.mNext = Fields::Next(*entry);
    ZAV_UVal* value = Fields::Value(*entry);
    if (!value || !IsWritable(*value)) return;
    const unsigned long depth = DepthOf(*entry, level.mDepth);
    mOut.Indent(mIndent);
    mOut.Key(Fields::Key(*entry), entry->KeyLength());
    mOut.Char(' ');
    if (ZAV_IsDict(value)) {
        ++mIndent;
        Open(static_cast<ZAV_UValDict&>(*value), depth + 1);
    } else {
        WriteValue(*value);
        mOut.Char('\n');
    }
    mOut.FlushLarge();
}

void Writer::WriteValue(ZAV_UVal& value) {
    switch (value.GetType()) {
    case UVAL_CHAR:
    case UVAL_UCHAR:
    case UVAL_SHORT:
    case UVAL_USHORT:
    case UVAL_LONG:
    case UVAL_ULONG:
        WriteIntegers(value);
        break;
    case UVAL_FLOAT:
    case UVAL_DOUBLE:
        WriteReals(value);
        break;
    case UVAL_STRING:
    case UVAL_UTFSTRING:
        WriteStrings(value);
        break;
    case UVAL_PTR:
        WritePointers(value);
        break;
    default:
        break;
    }
}

void Writer::WriteKeyword(ZAV_UValType type) {
    mOut.Char(' ');
    const char* keyword = gKeywords[type - UVAL_CHAR];
    mOut.Text(keyword, std::char_traits<char>::length(keyword));
}

template <class PutElement>
void Writer::WriteNumbers(ZAV_UVal& value, PutElement put) {
    long count = value.GetDimension();
    if (count < 1) return put(0);
    mOut.Literal("[ ");
    for (long i = 0; i < count; ++i) {
        put(i);
        mOut.Char(' ');
        mOut.FlushLarge();
    }
    mOut.Literal(" ]");
}

void Writer::WriteIntegers(ZAV_UVal& value) {
    WriteNumbers(value, [&](long i) { mOut.Integer(static_cast<int32_t>(value.GetLongValue(i))); });
    if (value.GetType() != UVAL_LONG) WriteKeyword(value.GetType());
}

void Writer::WriteReals(ZAV_UVal& value) {
    mStream.setf(std::ios::fixed, std::ios::floatfield);
    WriteNumbers(value, [&](long i) { mOut.Real(value.GetDoubleValue(i), mDecimals); });
    if (value.GetType() == UVAL_FLOAT) WriteKeyword(UVAL_FLOAT);
}

template <class Typed>
const ZAV_String& StoredText(ZAV_UVal& value, long i) {
    return static_cast<Typed&>(value).GetValue(i);
}

ZAV_String AskedText(ZAV_UVal& value, long i) {
    ZAV_String text;
    value.GetStrValue(text, i);
    return text;
}

void Writer::WriteStrings(ZAV_UVal& value) {
    if (ZAV_IsExactly<ZAV_UValString>(value)) {
        WriteTexts(value, StoredText<ZAV_UValString>);
    } else if (ZAV_IsExactly<ZAV_UValUTFString>(value)) {
        WriteTexts(value, StoredText<ZAV_UValUTFString>);
    } else {
        WriteTexts(value, AskedText);
    }
    if (value.GetType() == UVAL_UTFSTRING) WriteKeyword(UVAL_UTFSTRING);
}

template <class TextOf>
void Writer::WriteTexts(ZAV_UVal& value, TextOf textOf) {
    long count = value.GetDimension();
    if (count > 0) mOut.Literal("[ ");
    for (long i = 0; i < count || i == 0; ++i) {
        const ZAV_String& text = textOf(value, i);
        mOut.Quoted(text.Ptr(), text.Size());
        mOut.FlushLarge();
    }
    if (count > 0) mOut.Char(']');
}

void Writer::WritePointers(ZAV_UVal& value) {
    long count = value.GetDimension();
    if (count > 0) mOut.Literal("[ ");
    for (long i = 0; i < count || i == 0; ++i) {
        mOut.Literal("0 ");
        mOut.FlushLarge();
    }
    if (count > 0) mOut.Literal(" ]");
    WriteKeyword(UVAL_PTR);
}

} // namespace

bool WriteTree(std::ostream& os, ZAV_UVal& value, int indent, bool checkFirst) {
    const bool hasGate = checkFirst && ZAV_IsDict(&value);
    return Writer(os, indent, hasGate ? static_cast<ZAV_UValDict*>(&value) : nullptr).Write(value);
}

} // namespace zav_text

std::ostream& ZAV_Indent(std::ostream& os, int n) {
    for (; n > 0; --n) os.write("  ", 2);
    return os;
}

std::ostream& ZAV_WriteUValTxt(std::ostream& os, const ZAV_UVal* value, int indent) {
    // Accessors are not const, so that host classes keep overriding them; they change nothing.
    if (value) zav_text::WriteTree(os, const_cast<ZAV_UVal&>(*value), indent, true);
    return os;
}
