#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include "tests/support/file_support.h"
#include "tests/support/on_threads.h"
#include "tests/support/trace_capture.h"

namespace {

// A folder of language files.
class I18nResource : public ::testing::Test {
protected:
    void Write(const std::string& lang, const std::string& text) {
        PutFile(mFolder.Path("texts." + lang), text);
    }
    static std::string Get(ZAV_I18nResource& resource, const char* id, const char* lang) {
        return resource.GetResource(ZAV_UTFString(id), ZAV_String(lang)).Ptr();
    }
    // What reading a language is reported with, by a resource that knows nothing else.
    std::string Report(ZAV_I18nResource& resource, const char* lang) {
        TraceCapture capture(0x1);
        EXPECT_EQ("ID", Get(resource, "ID", lang));
        return capture.Text().empty() ? "" : capture.Lines().back();
    }

    TestFolder mFolder;
    ZAV_SystemString mBase{mFolder.Path("texts").c_str()};
};

} // namespace

TEST_F(I18nResource, FallsBackFromLanguageToDefaultsToIdentifier) {
    Write("nl", "\xEF\xBB\xBF<< /BOTH (nederlands) /NUMBER 5 zavlong /group << /IN (binnen) >> /BAD (caf\xE9)"
                "   /UTF (\xE2\x82\xAC) zavutfstring /LIST [ (eerste) (tweede) ] >>");
    ZAV_UValDict defs;
    for (const char* id : {"BOTH", "NUMBER", "DEFAULT", "group:DEEP"}) ZAV_I18nDef2Dict(&defs, id, "default");
    ZAV_I18nResource resource(mBase);
    EXPECT_EQ("BOTH", Get(resource, "BOTH", ""));
    resource.SetDefaultDefs(&defs);

    struct {
        const char *mId, *mLang, *mText;
    } const rows[] = {
        {"BOTH", "nl", "nederlands"},  {"BOTH", "", "default"},       {"NUMBER", "nl", "default"},
        {"DEFAULT", "nl", "default"},  {"group:IN", "nl", "binnen"},  {"group:DEEP", "nl", "default"},
        {"group", "nl", "group"},      {"UTF", "nl", "\xE2\x82\xAC"}, {"BAD", "nl", "caf#"},
        {"LIST", "nl", "eerste"},      {"NOWHERE", "nl", "NOWHERE"},  {"", "nl", ""},
        {"BOTH:", "nl", "nederlands"}, {"BOTH:x", "nl", "BOTH:x"},    {"BOTH", "%$@#", "default"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.mText, Get(resource, row.mId, row.mLang)) << row.mId << row.mLang;

    const ZAV_UTFString known("BOTH"), unknown("NOWHERE");
    EXPECT_EQ(&unknown, &resource.GetResource(unknown, "nl"));
    EXPECT_EQ(&resource.GetResource(known, "nl"), &resource.GetResource(known, "nl"));
}

TEST_F(I18nResource, CutsKeysAndFollowsTheSeparatorInForce) {
    const std::string key(64, 'k');
    ZAV_UValDict defs;
    ZAV_I18nDef2Dict(&defs, (key + "tail").c_str(), "text");
    ZAV_I18nDef2Dict(&defs, "a/b", "one key");
    ZAV_I18nResource resource;
    resource.SetDefaultDefs(&defs);
    for (const char* tail : {"", "tail", "other"}) EXPECT_EQ("text", Get(resource, (key + tail).c_str(), ""));
    EXPECT_EQ("one key", Get(resource, "a/b", ""));
    ZAV_DictPath::SetSeparator('/');
    EXPECT_EQ("a/b", Get(resource, "a/b", ""));
    ZAV_DictPath::SetSeparator(':');
}

// What an entry becomes when later definitions replace it, or add to its dictionary.
TEST_F(I18nResource, DefinitionsMayComeOneByOne) {
    ZAV_I18nResource resource;
    const auto add = [&](const char* text) {
        std::istringstream is(text);
        ZAV_UVal* defs = nullptr;
        ZAV_ReadUValTxt(is, defs);
        resource.SetDefaultDefs(defs);
        delete defs;
    };
    add("<< /a (1) /b (2) /g:c (3) /g:d (4) >>");
    add("<< /a << /x (5) >> /g:d (6) /b 7 >>");
    add("<< /g:e:f (8) /h (9) >>");
    const std::pair<const char*, const char*> rows[] = {{"a", "a"},   {"a:x", "5"}, {"b", "b"},
                                                        {"g:c", "3"}, {"g:d", "6"}, {"g:e:f", "8"},
                                                        {"h", "9"},   {"g", "g"}};
    for (const auto& [id, text] : rows) EXPECT_EQ(text, Get(resource, id, "")) << id;
}

TEST_F(I18nResource, AFileThatFailsIsReportedOnceAndNotReadAgain) {
    const std::string failure = "Error reading I18n file '" + mFolder.Path("texts.fr") + "'";
    ZAV_I18nResource resource(mBase);
    EXPECT_EQ(failure, Report(resource, "fr"));
    Write("fr", "<< /ID (texte) >>");
    EXPECT_EQ("", Report(resource, "fr"));
    for (const char* text : {"<< /ID (half >>", "<< /ID (a)", "5", "\x03\x10", "(a) (b)", ""}) {
        Write("fr", text);
        ZAV_I18nResource broken(mBase);
        EXPECT_EQ(failure, Report(broken, "fr")) << text;
    }
}

TEST_F(I18nResource, CopiesShareWhatWasReadAndReadOnAlone) {
    Write("nl", "<< /ID (nederlands) >>");
    Write("de", "<< /ID (deutsch) >>");
    const ZAV_UTFString id("ID");
    auto original = std::make_unique<ZAV_I18nResource>(mBase);
    const ZAV_UTFString* text = &original->GetResource(id, "nl");
    ZAV_UValDict defs;
    ZAV_I18nDef2Dict(&defs, "DEF", "1");
    original->SetDefaultDefs(&defs);

    ZAV_I18nResource copy(*original), assigned;
    Get(assigned, "x", "de");
    assigned = copy;
    assigned = *&assigned;
    EXPECT_EQ(text, &copy.GetResource(id, "nl"));
    ZAV_I18nDef2Dict(&defs, "DEF", "2");
    original->SetDefaultDefs(&defs);
    EXPECT_EQ("2", Get(copy, "DEF", ""));
    EXPECT_NE(&original->GetResource(id, "de"), &copy.GetResource(id, "de"));
    original.reset();
    EXPECT_EQ(text, &assigned.GetResource(id, "nl"));
    EXPECT_STREQ("nederlands", text->Ptr());
}

TEST_F(I18nResource, ManyMayReadWhatWasReadOnce) {
    Write("nl", "<< /TOP (boven) >>");
    ZAV_I18nResource resource(mBase);
    EXPECT_EQ("boven", Get(resource, "TOP", "nl"));
    OnThreads(4, [&](int) {
        for (int i = 0; i < 100; ++i) EXPECT_EQ("boven", Get(resource, "TOP", "nl"));
    });
}

TEST_F(I18nResource, TellsPlainCodes) {
    for (const char* code : {"en", "nl_BE", "sr@latin", "de_DE.UTF-8", "x"})
        EXPECT_TRUE(ZAV_IsPlainLangCode(code)) << code;
    for (const char* code :
         {"", "../x", "a/b", "a\\b", "a..b", ".en", "en.", "%$@#", "a b", "a:b", "caf\xC3\xA9"})
        EXPECT_FALSE(ZAV_IsPlainLangCode(code)) << code;
    EXPECT_FALSE(ZAV_IsPlainLangCode(ZAV_String("en\0x", 4)));
    EXPECT_FALSE(ZAV_IsPlainLangCode(ZAV_String('a', 65)));
}
