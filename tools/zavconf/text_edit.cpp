#include "text_edit.h"

#include <algorithm>
#include <cstring>
#include <sstream>

#include <zavbase/values/uval_text.h>
#include <zavbase/values/uval_text_check.h>
#include <zavbase/values/uval_types.h>

namespace {

bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsInName(char c) { return c > ' ' && c < 0x7F && !std::strchr("()<>[]{}", c); }

bool Find(const std::string& text, const ZAV_DictPath& path, ZAV_UValTextEntry& entry) {
    return ZAV_FindUValTxtEntry(ZAV_String(text.data(), static_cast<unsigned int>(text.size())), path, entry);
}

/// The keys of the path from number `first` on, as one key of the text.
std::string KeyText(const ZAV_DictPath& path, int first) {
    std::string text;
    const char* key = nullptr;
    for (int i = 0; i < path.Size(); ++i) {
        key = path.NextKey(key);
        if (i > first) text += ZAV_DictPath::GetSeparator();
        if (i >= first) text += key;
    }
    if (std::all_of(text.begin(), text.end(), IsInName)) return "/" + text;
    ZAV_UValString value;
    value.SetStrValue(ZAV_String(text.data(), static_cast<unsigned int>(text.size())), 0);
    std::ostringstream quoted;
    ZAV_WriteUValTxt(quoted, &value, 0);
    return quoted.str();
}

/// Where the line of `at` begins, if only blanks stand before; otherwise `at`.
size_t LineStart(const std::string& text, size_t at) {
    size_t start = at;
    while (start > 0 && (text[start - 1] == ' ' || text[start - 1] == '\t')) --start;
    return start == 0 || text[start - 1] == '\n' || text[start - 1] == '\r' ? start : at;
}

/// On a line of its own, indented like the end of the dictionary, when that stands so too.
std::string InsertBefore(const std::string& text, size_t end, const std::string& entry) {
    const size_t line = LineStart(text, end);
    const char before = text[line - 1];
    if (before != '\n' && before != '\r')
        return text.substr(0, end) + (IsBlank(before) ? "" : " ") + entry + " " + text.substr(end);
    const std::string lineEnd = before == '\n' && text[line - 2] == '\r' ? "\r\n" : std::string(1, before);
    return text.substr(0, line) + text.substr(line, end - line) + entry + lineEnd + text.substr(line);
}

} // namespace

std::string ReplaceInText(const std::string& text, const ZAV_DictPath& path, const std::string& value) {
    ZAV_UValTextEntry entry;
    if (!Find(text, path, entry)) return std::string();
    const bool touchesKey = !IsBlank(text[entry.mValueStart - 1]),
               touchesNext = !IsBlank(text[entry.mValueEnd]);
    return text.substr(0, entry.mValueStart) + (touchesKey ? " " : "") + value + (touchesNext ? " " : "") +
           text.substr(entry.mValueEnd);
}

std::string AppendToText(const std::string& text, const ZAV_DictPath& path, int outer,
                         const std::string& value) {
    ZAV_DictPath around(path);
    while (around.Size() > outer) --around;
    ZAV_UValTextEntry dict;
    if (!Find(text, around, dict) || text.compare(dict.mValueEnd - 2, 2, ">>") != 0) return std::string();
    return InsertBefore(text, dict.mValueEnd - 2, KeyText(path, outer) + " " + value);
}
