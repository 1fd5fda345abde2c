#include "tools/zavmsg/definitions.h"
#include "tools/zavmsg/gettext_file.h"

#include <gtest/gtest.h>

#include <zavbase/zavbase.h>

#include "tests/support/file_support.h"

namespace {

const char* const sample = R"(# A comment
msgid ""
msgstr ""
"Content-Type: text/plain; charset=utf-8\n"

#. For the menu
#: main.c:1
msgctxt "menu"
msgid "Open"
msgstr "\303\226ffnen"
#, fuzzy
#| msgid "old"
msgid "tab\there \"quoted\" \\ \x"
msgstr ""
"first\n"
  "second"
msgid "%d file"
msgid_plural "%d files"
msgstr[0] "eine"
msgstr[1] "viele"

#~ msgid "gone"
#~ msgstr "weg"
)";

/// What is wrong, or the entries.
std::string Read(const std::string& bytes) {
    std::vector<GettextEntry> entries;
    std::string text = ReadGettext(bytes, entries);
    if (!text.empty()) return text;
    for (const GettextEntry& e : entries) {
        text += e.mContext + "|" + e.mSource + "|" + e.mSourcePlural + "|" + (e.mIsFuzzy ? "fuzzy" : "");
        for (const std::string& t : e.mTranslations) text += "|" + t;
        text += "\n";
    }
    return text;
}

/// The compiled form of one message, in either byte order.
std::string Compiled(bool isBig, const std::string& source, const std::string& translation) {
    const std::string texts = source + '\0' + translation + '\0';
    const auto s = static_cast<uint32_t>(source.size()), t = static_cast<uint32_t>(translation.size());
    const uint32_t words[] = {0x950412DE, 0, 1, 28, 36, 0, 0, s, 44, t, 45 + s};
    std::string bytes;
    for (const uint32_t word : words)
        for (int i = 0; i < 4; ++i) bytes += static_cast<char>(word >> 8 * (isBig ? 3 - i : i));
    return bytes + texts;
}

} // namespace

TEST(Gettext, ReadsContextsPluralsEscapesAndMarks) {
    EXPECT_EQ("menu|Open|||\303\226ffnen\n"
              "|tab\there \"quoted\" \\ x||fuzzy|first\nsecond\n"
              "|%d file|%d files||eine|viele\n",
              Read(sample));
}

TEST(Gettext, SaysWhatIsWrongAndWhere) {
    const std::pair<const char*, const char*> rows[] = {
        {"", ""},
        {"msgid \"a\"\n\nmsgid \"b\"\n", "line 2: a message without msgstr"},
        {"msgstr \"a\"\n", "line 1: unexpected \"msgstr\""},
        {"msgid \"a\\\"", "line 1: a text that does not end in its line"},
        {"\"a\"\n", "line 1: a text without a keyword"},
        {"msgid \"a\"\nmsgstr[1] \"b\"\n", "line 2: plural forms are not in their order"},
        {"msgid \"\"\nmsgstr \"charset=KOI8-R\\n\"\n",
         "line 2: the encoding is KOI8-R, wanted is UTF-8 (see msgconv)"},
    };
    for (const auto& [text, problem] : rows) EXPECT_EQ(problem, Read(text));
    // Any truncation is read or refused.
    const std::string whole = sample;
    for (size_t size = 0; size < whole.size(); ++size) Read(std::string(whole, 0, size));
}

TEST(Gettext, ReadsTheCompiledFormInBothByteOrders) {
    for (const bool isBig : {false, true}) {
        const std::string bytes =
            Compiled(isBig, std::string("menu\4one\0many", 13), std::string("eins\0viele", 10));
        EXPECT_EQ("menu|one|many||eins|viele\n", Read(bytes));
        for (size_t size = 4; size + 1 < bytes.size(); ++size) {
            const std::string problem = Read(std::string(bytes, 0, size));
            EXPECT_TRUE(problem == "cut short" || problem == "entry 0 lies outside the file") << size;
        }
        for (size_t at = 4; at < 44; ++at) {
            std::string flipped = bytes;
            flipped[at] = static_cast<char>(~flipped[at]);
            Read(flipped);
        }
    }
}

TEST(Definitions, SourceTextsBecomeIdentifiersWhereTheyCan) {
    const std::string longest(64, 'x'), longer(65, 'x');
    for (const char* source : {"Open file", longest.c_str()}) EXPECT_EQ(source, IdentifierOf("", source));
    std::set<std::string> made = {IdentifierOf("menu", "Open file"), IdentifierOf("edit", "Open file")};
    for (const char* source : {"a:b", "+++a", "two\nlines", "caf\303\251", "", longer.c_str()})
        made.insert(IdentifierOf("", source));
    EXPECT_EQ(8u, made.size());
    for (const std::string& id : made) EXPECT_EQ(0u, id.find("PO_")) << id;
}

TEST(Definitions, DifferencesAreNamed) {
    ZAV_UValDict wanted(16), language(16);
    const char* const texts[][3] = {{"same", "<<a>> of <<b>>", "<<b>>: <<a>>"},
                                    {"twice", "<<a>><<a>>", "<<a>>"},
                                    {"group:in", "x", "y"},
                                    {"open", "<<a", "<<a>>"},
                                    {"gone", "x", nullptr},
                                    {"new", nullptr, "x"},
                                    {"number", "x", nullptr}};
    for (const auto& [id, text, translation] : texts) {
        if (text) ZAV_I18nDef2Dict(&wanted, id, text);
        if (translation) ZAV_I18nDef2Dict(&language, id, translation);
    }
    language.DefineUVal("number", UVAL_LONG);
    const std::vector<std::string> expected = {"missing: gone", "tags differ: open: wanted none, found <<a>>",
                                               "tags differ: twice: wanted <<a>> <<a>>, found <<a>>",
                                               "not a text: number", "unknown: new"};
    EXPECT_EQ(expected, Compare(Flatten(wanted), Flatten(language)));
}

/// Country names in every language that the package iso-codes brings, where it is installed.
TEST(Gettext, RealTranslationsFormatInEveryLanguage) {
    const TestFolder folder;
    std::error_code none;
    int languages = 0;
    for (const auto& locale : std::filesystem::directory_iterator("/usr/share/locale", none)) {
        const std::string language = locale.path().filename().string();
        std::vector<GettextEntry> entries;
        const std::string bytes = FileText((locale.path() / "LC_MESSAGES/iso_3166-1.mo").string());
        if (bytes.empty()) continue;
        ASSERT_EQ("", ReadGettext(bytes, entries)) << language;
        std::map<std::string, std::string> countries;
        for (const GettextEntry& e : entries)
            countries[IdentifierOf(e.mContext, e.mSource)] = e.mTranslations[0];
        EXPECT_EQ(entries.size(), countries.size()) << language;
        ZAV_UValDict texts(16);
        for (const auto& [id, name] : countries) ZAV_I18nDef2Dict(&texts, id.c_str(), name.c_str());
        texts.WriteTextFile(folder.Path("texts." + language).c_str());
        ZAV_I18nResource resource(folder.Path("texts").c_str());
        for (const auto& [id, name] : countries) {
            ZAV_I18nMsg message("(<<country>>)");
            message.AddArg("<<country>>", ZAV_I18nMsg(id.c_str()), ZAV_I18N_TAG);
            EXPECT_EQ("(" + name + ")", message.Format(language.c_str(), &resource, nullptr).Ptr())
                << language;
        }
        ++languages;
    }
    if (languages == 0) GTEST_SKIP() << "iso-codes is not installed";
    EXPECT_GE(languages, 20);
}
