#include "gettext_file.h"

#include <cstdint>
#include <cstring>

namespace {

/// The header is the translation of the empty text; it names the encoding.
std::string CheckHeader(const std::string& header) {
    const char* const label = "charset=";
    const size_t at = header.find(label);
    if (at == std::string::npos) return std::string();
    const size_t begin = at + std::strlen(label);
    std::string charset = header.substr(begin, header.find_first_of(" \n;", begin) - begin);
    for (char& c : charset)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    const bool isKnown = charset == "UTF-8" || charset == "UTF8" || charset == "ASCII" ||
                         charset == "US-ASCII" || charset == "CHARSET";
    return isKnown ? std::string() : "the encoding is " + charset + ", wanted is UTF-8 (see msgconv)";
}

class PoReader {
public:
    PoReader(const std::string& text, std::vector<GettextEntry>& entries) : mText(text), mEntries(entries) {}

    std::string Read() {
        if (mText.compare(0, 3, "\xEF\xBB\xBF") == 0) mAt = 3;
        std::string problem;
        while (problem.empty() && mAt < mText.size()) {
            ++mLine;
            problem = ReadLine(NextLine());
        }
        if (problem.empty()) problem = Finish();
        return problem.empty() ? problem : "line " + std::to_string(mLine) + ": " + problem;
    }

private:
    std::string NextLine() {
        const size_t end = mText.find('\n', mAt);
        std::string line = mText.substr(mAt, end - mAt);
        mAt = end == std::string::npos ? mText.size() : end + 1;
        const size_t last = line.find_last_not_of(" \t\r");
        line.erase(last == std::string::npos ? 0 : last + 1);
        return line.erase(0, line.find_first_not_of(" \t"));
    }

    std::string ReadLine(const std::string& line) {
        if (line.empty()) return Finish();
        if (line[0] == '#') return ReadComment(line);
        if (line[0] == '"') return mTarget ? Append(line) : "a text without a keyword";
        return ReadKeyword(line);
    }

    std::string ReadComment(const std::string& line) {
        if (line[1] == '~') return std::string();
        // Comments stand before their entry, so one after a translation begins the next.
        const std::string problem = mHasTranslation ? Finish() : std::string();
        if (line[1] == ',' && line.find("fuzzy") != std::string::npos) mEntry.mIsFuzzy = true;
        return problem;
    }

    std::string ReadKeyword(const std::string& line) {
        const size_t end = line.find_first_of(" \t\"");
        const std::string keyword = line.substr(0, end);
        std::string problem;
        if ((keyword == "msgctxt" || keyword == "msgid") && mHasTranslation) problem = Finish();
        if (keyword == "msgctxt") {
            mTarget = &mEntry.mContext;
        } else if (keyword == "msgid") {
            mTarget = &mEntry.mSource;
            mHasSource = true;
        } else if (keyword == "msgid_plural") {
            mTarget = &mEntry.mSourcePlural;
        } else if (keyword.compare(0, 6, "msgstr") == 0 && mHasSource) {
            if (!StartTranslation(keyword)) return "plural forms are not in their order";
        } else {
            return "unexpected \"" + keyword + "\"";
        }
        const size_t text = line.find('"');
        if (text == std::string::npos) return "a keyword without a text";
        return problem.empty() ? Append(line.substr(text)) : problem;
    }

    bool StartTranslation(const std::string& keyword) {
        std::vector<std::string>& texts = mEntry.mTranslations;
        if (keyword != "msgstr" && keyword != "msgstr[" + std::to_string(texts.size()) + "]") return false;
        texts.emplace_back();
        mTarget = &texts.back();
        mHasTranslation = true;
        return true;
    }

    std::string Append(const std::string& quoted) {
        size_t at = 1;
        for (; at < quoted.size() && quoted[at] != '"'; ++at) {
            if (quoted[at] != '\\')
                *mTarget += quoted[at];
            else if (++at < quoted.size())
                at += AppendEscape(quoted, at);
        }
        return at + 1 == quoted.size() && quoted[0] == '"' ? std::string()
                                                           : "a text that does not end in its line";
    }

    /// Returns how many characters beyond the first the escape had.
    size_t AppendEscape(const std::string& quoted, size_t at) {
        static const char letters[] = "nrtbafv", meanings[] = "\n\r\t\b\a\f\v";
        const char c = quoted[at];
        if (const char* letter = std::strchr(letters, c)) {
            *mTarget += meanings[letter - letters];
            return 0;
        }
        if (c < '0' || c > '7') {
            *mTarget += c;
            return 0;
        }
        size_t digits = 0;
        unsigned value = 0;
        for (; digits < 3 && at + digits < quoted.size() && quoted[at + digits] >= '0' &&
               quoted[at + digits] <= '7';
             ++digits)
            value = value * 8 + static_cast<unsigned>(quoted[at + digits] - '0');
        *mTarget += static_cast<char>(value);
        return digits - 1;
    }

    std::string Finish() {
        std::string problem;
        if (mHasSource && !mHasTranslation)
            problem = "a message without msgstr";
        else if (mHasSource && mEntry.mSource.empty() && mEntry.mContext.empty())
            problem = CheckHeader(mEntry.mTranslations[0]);
        else if (mHasSource)
            mEntries.push_back(mEntry);
        mEntry = GettextEntry();
        mHasSource = mHasTranslation = false;
        mTarget = nullptr;
        return problem;
    }

    const std::string& mText;
    std::vector<GettextEntry>& mEntries;
    size_t mAt = 0;
    unsigned long mLine = 0;
    GettextEntry mEntry;
    std::string* mTarget = nullptr;
    bool mHasSource = false, mHasTranslation = false;
};

/// The compiled form: two tables of (length, offset), of the sources and of the translations, in either byte
/// order. A context stands before its source with a byte 4 between; plural forms are parted by NULs.
class MoReader {
public:
    MoReader(const std::string& bytes, std::vector<GettextEntry>& entries)
        : mBytes(bytes), mEntries(entries), mIsBig(bytes[0] == '\x95') {}

    std::string Read() {
        uint32_t count, sources, translations;
        if (!Word(8, count) || !Word(12, sources) || !Word(16, translations)) return "cut short";
        for (uint32_t i = 0; i < count; ++i) {
            std::string source, translation;
            if (!Text(sources + uint64_t(i) * 8, source) ||
                !Text(translations + uint64_t(i) * 8, translation))
                return "entry " + std::to_string(i) + " lies outside the file";
            if (source.empty()) {
                const std::string problem = CheckHeader(translation);
                if (!problem.empty()) return problem;
                continue;
            }
            mEntries.push_back(Entry(source, translation));
        }
        return std::string();
    }

    static bool Recognises(const std::string& bytes) {
        return bytes.compare(0, 4, "\xDE\x12\x04\x95") == 0 || bytes.compare(0, 4, "\x95\x04\x12\xDE") == 0;
    }

private:
    static GettextEntry Entry(const std::string& source, const std::string& translation) {
        GettextEntry entry;
        const size_t context = source.find('\4');
        if (context != std::string::npos) entry.mContext = source.substr(0, context);
        const std::vector<std::string> forms =
            Split(context == std::string::npos ? source : source.substr(context + 1));
        entry.mSource = forms[0];
        if (forms.size() > 1) entry.mSourcePlural = forms[1];
        entry.mTranslations = Split(translation);
        return entry;
    }

    static std::vector<std::string> Split(const std::string& text) {
        std::vector<std::string> parts;
        for (size_t at = 0;;) {
            const size_t end = text.find('\0', at);
            parts.push_back(text.substr(at, end - at));
            if (end == std::string::npos) return parts;
            at = end + 1;
        }
    }

    bool Word(uint64_t at, uint32_t& value) const {
        if (at + 4 > mBytes.size()) return false;
        value = 0;
        for (unsigned i = 0; i < 4; ++i) {
            const unsigned char byte = static_cast<unsigned char>(mBytes[static_cast<size_t>(at) + i]);
            value |= static_cast<uint32_t>(byte) << 8 * (mIsBig ? 3 - i : i);
        }
        return true;
    }

    bool Text(uint64_t at, std::string& text) const {
        uint32_t length, offset;
        if (!Word(at, length) || !Word(at + 4, offset) || uint64_t(offset) + length > mBytes.size())
            return false;
        text = mBytes.substr(offset, length);
        return true;
    }

    const std::string& mBytes;
    std::vector<GettextEntry>& mEntries;
    const bool mIsBig;
};

} // namespace

std::string ReadGettext(const std::string& bytes, std::vector<GettextEntry>& entries) {
    return MoReader::Recognises(bytes) ? MoReader(bytes, entries).Read() : PoReader(bytes, entries).Read();
}
