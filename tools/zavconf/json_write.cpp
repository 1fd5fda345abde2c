#include "json.h"

#include <charconv>
#include <cmath>
#include <ostream>
#include <string>
#include <vector>

#include <zavbase/values/uval_types.h>

namespace {

// The size of the UTF-8 sequence at `p`, 0 when there is none.
int SequenceSize(const char* p, const char* end) {
    unsigned char first = static_cast<unsigned char>(*p);
    int size = first < 0x80                    ? 1
               : first >= 0xC2 && first < 0xE0 ? 2
               : first >= 0xE0 && first < 0xF0 ? 3
               : first >= 0xF0 && first < 0xF5 ? 4
                                               : 0;
    if (size > end - p) return 0;
    for (int i = 1; i < size; ++i)
        if ((static_cast<unsigned char>(p[i]) & 0xC0) != 0x80) return 0;
    return size;
}

bool IsUtf8(const char* p, const char* end) {
    while (p < end) {
        int size = SequenceSize(p, end);
        if (size == 0) return false;
        p += size;
    }
    return true;
}

class Writer {
public:
    explicit Writer(std::ostream& os) : mStream(os) {}
    void Write(ZAV_UValDict& dict);

private:
    struct Level {
        ZAV_AssocUVal* mNext;
        bool mIsArray;
        bool mIsFirst;
    };
    void Open(ZAV_UValDict& dict);
    void WriteValue(ZAV_UVal& value);
    void WriteElement(ZAV_UVal& value, long index);
    void WriteText(const char* text, size_t length);
    template <class Number>
    void WriteNumber(Number number);
    void NewLine() { mStream << '\n' << std::string(2 * mLevels.size(), ' '); }

    std::ostream& mStream;
    std::vector<Level> mLevels;
};

bool IsArray(ZAV_UValDict& dict) {
    if (dict.GetSize() == 0) return false;
    unsigned long index = 0;
    for (ZAV_AssocUVal* entry = dict.GetNextAssoc(nullptr); entry; entry = entry->GetNext())
        if (std::to_string(index++) != entry->Key()) return false;
    return true;
}

void Writer::Write(ZAV_UValDict& dict) {
    Open(dict);
    while (!mLevels.empty()) {
        Level& level = mLevels.back();
        ZAV_AssocUVal* entry = level.mNext;
        if (!entry) {
            bool isArray = level.mIsArray, isEmpty = level.mIsFirst;
            mLevels.pop_back();
            if (!isEmpty) NewLine();
            mStream << (isArray ? ']' : '}');
            continue;
        }
        level.mNext = entry->GetNext();
        if (!level.mIsFirst) mStream << ',';
        level.mIsFirst = false;
        NewLine();
        if (!level.mIsArray) {
            WriteText(entry->Key(), entry->KeyLength());
            mStream << ": ";
        }
        ZAV_UVal* value = entry->Value();
        if (!value)
            mStream << "null";
        else if (value->GetType() == UVAL_DICT)
            Open(static_cast<ZAV_UValDict&>(*value));
        else
            WriteValue(*value);
    }
    mStream << '\n';
}

void Writer::Open(ZAV_UValDict& dict) {
    bool isArray = IsArray(dict);
    mLevels.push_back(Level{dict.GetNextAssoc(nullptr), isArray, true});
    mStream << (isArray ? '[' : '{');
}

void Writer::WriteValue(ZAV_UVal& value) {
    long count = value.GetDimension();
    if (count < 1) return WriteElement(value, 0);
    for (long i = 0; i < count; ++i) {
        mStream << (i == 0 ? "[" : ", ");
        WriteElement(value, i);
    }
    mStream << ']';
}

void Writer::WriteElement(ZAV_UVal& value, long index) {
    switch (value.GetType()) {
    case UVAL_STRING: {
        const ZAV_String& text = static_cast<ZAV_UValString&>(value).GetValue(index);
        return WriteText(text.Ptr(), text.Size());
    }
    case UVAL_UTFSTRING: {
        const ZAV_UTFString& text = static_cast<ZAV_UValUTFString&>(value).GetValue(index);
        return WriteText(text.Ptr(), text.Size());
    }
    case UVAL_FLOAT:
        return WriteNumber(value.GetFloatValue(index));
    case UVAL_DOUBLE:
        return WriteNumber(value.GetDoubleValue(index));
    case UVAL_ULONG:
        return WriteNumber(value.GetULongValue(index));
    case UVAL_PTR:
        mStream << "null";
        return;
    default:
        return WriteNumber(value.GetLongValue(index));
    }
}

template <class Number>
void Writer::WriteNumber(Number number) {
    if (!std::isfinite(static_cast<double>(number))) {
        mStream << "null";
        return;
    }
    char digits[40];
    auto result = std::to_chars(digits, digits + sizeof digits, number);
    mStream.write(digits, result.ptr - digits);
}

void Writer::WriteText(const char* text, size_t length) {
    static const char hex[] = "0123456789abcdef";
    const char* end = text + length;
    bool isUtf8 = IsUtf8(text, end);
    std::string out = "\"";
    for (; text < end; ++text) {
        unsigned char c = static_cast<unsigned char>(*text);
        if (c == '"' || c == '\\')
            (out += '\\') += *text;
        else if (c == '\n')
            out += "\\n";
        else if (c == '\t')
            out += "\\t";
        else if (c < 0x20 || (c >= 0x80 && !isUtf8))
            ((out += "\\u00") += hex[c >> 4]) += hex[c & 15];
        else
            out += *text;
    }
    mStream << out << '"';
}

} // namespace

void WriteJson(std::ostream& os, ZAV_UValDict& dict) { Writer(os).Write(dict); }
