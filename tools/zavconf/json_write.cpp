#include "json.h"

#include <charconv>
#include <cmath>
#include <ostream>
#include <string>
#include <vector>

#include <zavbase/values/uval_types.h>

#include "../support/harmless.h"
#include "../support/utf8.h"
#include "exact.h"

namespace {

class Writer {
public:
    explicit Writer(std::ostream& os) : mStream(os) {}
    std::vector<std::string> Write(ZAV_UValDict& dict);

private:
    struct Level {
        std::string mPath; // for people
        ZAV_AssocUVal* mNext;
        bool mIsArray;
        bool mIsFirst;
    };
    void Open(ZAV_UValDict& dict, const std::string& path);
    void WriteValue(ZAV_UVal& value, const std::string& path);
    void WriteElement(ZAV_UVal& value, long index, const std::string& path);
    void WriteText(const char* text, size_t length);
    template <class Number>
    void WriteNumber(Number number, const std::string& path);
    void NewLine() { mStream << '\n' << std::string(2 * mLevels.size(), ' '); }

    std::ostream& mStream;
    std::vector<Level> mLevels;
    std::vector<std::string> mLosses;
};

bool IsArray(ZAV_UValDict& dict) {
    if (dict.GetSize() == 0) return false;
    unsigned long index = 0;
    for (ZAV_AssocUVal* entry = dict.GetNextAssoc(nullptr); entry; entry = entry->GetNext())
        if (std::to_string(index++) != entry->Key()) return false;
    return true;
}

std::vector<std::string> Writer::Write(ZAV_UValDict& dict) {
    Open(dict, "");
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
        const std::string path = PathBelow(level.mPath, entry->Key());
        if (!value)
            mStream << "null";
        else if (value->GetType() == UVAL_DICT)
            Open(static_cast<ZAV_UValDict&>(*value), path);
        else
            WriteValue(*value, path);
    }
    mStream << '\n';
    return mLosses;
}

void Writer::Open(ZAV_UValDict& dict, const std::string& path) {
    bool isArray = IsArray(dict);
    mLevels.push_back(Level{path, dict.GetNextAssoc(nullptr), isArray, true});
    mStream << (isArray ? '[' : '{');
}

void Writer::WriteValue(ZAV_UVal& value, const std::string& path) {
    long count = value.GetDimension();
    if (count < 1) return WriteElement(value, 0, path);
    for (long i = 0; i < count; ++i) {
        mStream << (i == 0 ? "[" : ", ");
        WriteElement(value, i, path);
    }
    mStream << ']';
}

void Writer::WriteElement(ZAV_UVal& value, long index, const std::string& path) {
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
        return WriteNumber(value.GetFloatValue(index), path);
    case UVAL_DOUBLE:
        return WriteNumber(value.GetDoubleValue(index), path);
    case UVAL_ULONG:
        return WriteNumber(value.GetULongValue(index), path);
    case UVAL_PTR:
        mStream << "null";
        return;
    default:
        return WriteNumber(value.GetLongValue(index), path);
    }
}

template <class Number>
void Writer::WriteNumber(Number number, const std::string& path) {
    if (!std::isfinite(static_cast<double>(number))) {
        mLosses.push_back(Harmless(path) + ": no finite number, becomes null");
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
    const bool isUtf8 = IsUtf8(std::string(text, length));
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

std::vector<std::string> WriteJson(std::ostream& os, ZAV_UValDict& dict) { return Writer(os).Write(dict); }
