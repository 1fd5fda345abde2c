#include "exact.h"

#include <charconv>
#include <cmath>
#include <memory>
#include <sstream>

#include <zavbase/values/uval_text.h>
#include <zavbase/values/uval_types.h>

#include "../support/harmless.h"

namespace {

template <class... Number>
std::string Digits(Number... number) {
    char digits[40];
    return std::string(digits, std::to_chars(digits, digits + sizeof digits, number...).ptr);
}

std::string DoubleText(double number) {
    const bool isWhole = std::fabs(number) < 1e18 && std::trunc(number) == number;
    return isWhole ? Digits(static_cast<long long>(number)) : Digits(number, std::chars_format::general, 15);
}

long CountOf(const ZAV_UVal& value) { return value.GetDimension() > 0 ? value.GetDimension() : 1; }

std::string Shown(ZAV_UVal& value, long index) {
    const size_t longest = 60;
    std::string text = ElementText(value, index);
    if (text.size() > longest) text = text.substr(0, longest) + "...";
    return Harmless(text);
}

/// How the elements of two values of one type and size differ; empty when they do not.
std::string ElementDifferences(ZAV_UVal& wanted, ZAV_UVal& found) {
    std::string first;
    unsigned long more = 0;
    for (long i = 0; i < CountOf(wanted); ++i) {
        if (ElementText(wanted, i) == ElementText(found, i)) continue;
        if (!first.empty()) {
            ++more;
            continue;
        }
        if (wanted.GetDimension() > 0) first = "element " + std::to_string(i) + ", ";
        first += Shown(wanted, i) + " becomes " + Shown(found, i);
    }
    return more > 0 ? first + ", and " + std::to_string(more) + " more" : first;
}

std::string WhyMissing(const ZAV_AssocUVal& entry, const char* key) {
    if (!*key) return "an empty key";
    if (std::string(key).find(ZAV_DictPath::GetSeparator()) != std::string::npos)
        return "the key holds the separator and becomes a path";
    return entry.Value() ? "the entry goes" : "it has no value";
}

/// Two dictionaries to be compared, and where they are.
struct Pair {
    ZAV_UValDict *mWanted, *mFound;
    std::string mPath;
};

std::string Compare(ZAV_UVal* wanted, ZAV_UVal* found, const std::string& path, std::vector<Pair>& open) {
    if (!wanted || !found) return wanted == found ? "" : "its value goes";
    if (wanted->GetType() != found->GetType() || wanted->GetDimension() != found->GetDimension())
        return "becomes a value of another kind";
    if (wanted->GetType() != UVAL_DICT) return ElementDifferences(*wanted, *found);
    open.push_back({static_cast<ZAV_UValDict*>(wanted), static_cast<ZAV_UValDict*>(found), path});
    return "";
}

} // namespace

std::string ElementText(ZAV_UVal& value, long index) {
    switch (value.GetType()) {
    case UVAL_FLOAT:
        return Digits(value.GetFloatValue(index));
    case UVAL_DOUBLE:
        return DoubleText(value.GetDoubleValue(index));
    case UVAL_ULONG:
        return Digits(value.GetULongValue(index));
    default:
        ZAV_String text;
        value.GetStrValue(text, index);
        return std::string(text.Ptr(), text.Size());
    }
}

std::string PathBelow(const std::string& path, const std::string& key) {
    const size_t longest = 400;
    std::string below = path.empty() ? key : path + ZAV_DictPath::GetSeparator() + key;
    if (below.size() > longest) below = "..." + below.substr(below.size() - longest);
    return below;
}

std::vector<std::string> Differences(ZAV_UValDict& wanted, ZAV_UValDict& found) {
    std::vector<std::string> lines;
    std::vector<Pair> open = {{&wanted, &found, ""}};
    while (!open.empty()) {
        const Pair pair = open.back();
        open.pop_back();
        for (ZAV_AssocUVal* e = pair.mWanted->GetNextAssoc(nullptr); e; e = e->GetNext()) {
            const std::string path = PathBelow(pair.mPath, e->Key());
            ZAV_AssocUVal* const same = pair.mFound->AssocAt(e->Key());
            const std::string what =
                same ? Compare(e->Value(), same->Value(), path, open) : WhyMissing(*e, e->Key());
            if (!what.empty()) lines.push_back(Harmless(path) + ": " + what);
        }
    }
    return lines;
}

std::vector<std::string> TextLosses(ZAV_UValDict& dict) {
    std::stringstream text;
    text.exceptions(std::ios::badbit); // a lack of memory comes through
    ZAV_WriteUValTxt(text, &dict, 0);
    ZAV_UVal* read = nullptr;
    ZAV_ReadUValTxt(text, read);
    const std::unique_ptr<ZAV_UVal> owner(read);
    return Differences(dict, static_cast<ZAV_UValDict&>(*read));
}
