#include "definitions.h"

#include <cstdint>
#include <cstdio>

namespace {

const size_t longestKey = 64;

void Collect(const std::string& prefix, ZAV_UValDict& dict, Definitions& found) {
    for (ZAV_AssocUVal* e = dict.GetNextAssoc(nullptr); e; e = dict.GetNextAssoc(e)) {
        const std::string id = prefix + e->Key();
        ZAV_UVal* value = e->Value();
        if (value && value->GetType() == UVAL_DICT)
            Collect(id + ZAV_DictPath::GetSeparator(), static_cast<ZAV_UValDict&>(*value), found);
        else if (value && value->GetFamily() == UVAL_FAMILY_STRING && value->GetDimension() == 0)
            found.mTexts[id] = value->GetCStringValue(0);
        else
            found.mOthers.insert(id);
    }
}

std::multiset<std::string> Tags(const std::string& text) {
    std::multiset<std::string> tags;
    size_t end = 0;
    for (size_t at = text.find("<<"); at != std::string::npos; at = text.find("<<", end)) {
        end = text.find(">>", at);
        if (end == std::string::npos) break;
        end += 2;
        tags.insert(text.substr(at, end - at));
    }
    return tags;
}

std::string Joined(const std::multiset<std::string>& tags) {
    std::string text;
    for (const std::string& tag : tags) text += " " + tag;
    return text.empty() ? " none" : text;
}

} // namespace

Definitions Flatten(ZAV_UValDict& dict) {
    Definitions found;
    Collect(std::string(), dict, found);
    return found;
}

std::vector<std::string> Compare(const Definitions& wanted, const Definitions& language) {
    std::vector<std::string> findings;
    for (const auto& [id, text] : wanted.mTexts) {
        const auto translation = language.mTexts.find(id);
        if (translation != language.mTexts.end()) {
            const auto tags = Tags(text), theirs = Tags(translation->second);
            if (tags != theirs)
                findings.push_back("tags differ: " + id + ": wanted" + Joined(tags) + ", found" +
                                   Joined(theirs));
        } else if (!language.mOthers.count(id)) {
            findings.push_back("missing: " + id);
        }
    }
    for (const std::string& id : language.mOthers) findings.push_back("not a text: " + id);
    for (const auto& [id, text] : language.mTexts)
        if (!wanted.mTexts.count(id)) findings.push_back("unknown: " + id);
    return findings;
}

std::string IdentifierOf(const std::string& context, const std::string& source) {
    bool isPlain =
        context.empty() && !source.empty() && source.size() <= longestKey && source.compare(0, 3, "+++") != 0;
    // The separator would make it a path, whichever one the reading host has set.
    for (const char c : source)
        isPlain = isPlain && c >= ' ' && c < 0x7F && c != ':' && c != ZAV_DictPath::GetSeparator();
    if (isPlain) return source;
    uint64_t hash = 14695981039346656037u;
    for (const char c : context + '\4' + source)
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
    char id[24];
    std::snprintf(id, sizeof id, "PO_%08lX%08lX", static_cast<unsigned long>(hash >> 32),
                  static_cast<unsigned long>(hash & 0xFFFFFFFFu));
    return id;
}
