#include <gtest/gtest.h>

#include <clocale>

#include <tests/support/printed.h>
#include <tests/support/trace_capture.h>
#include <zavbase/zavbase.h>

namespace {

const char kEuro[] = "\xE2\x82\xAC";

// The lines of the tracer BASE at level 1, and the code pages configured by name.
class TextEncoding : public testing::Test {
protected:
    TextEncoding() {
        ZAV_UValDict dict;
        for (const long page : {1251L, 1252L, 850L, 932L, 28605L, 65001L, 99999L}) {
            const std::string path = "ZAV:TEXTENCODING:" + std::to_string(page);
            dict.DefineUVal(path.c_str(), UVAL_LONG)->SetLongValue(page, 0);
        }
        ZAV_ConfigInit(dict);
    }
    ~TextEncoding() override { ZAV_ConfigCleanup(); }
    std::string trace() {
        const std::string lines = mTrace.Text();
        mTrace.Clear();
        return lines;
    }
    ZAV_TextEncodingConverter page(const char* name) {
        ZAV_TextEncodingConverter converter;
        EXPECT_EQ(converter.Initialize(name), 0);
        return converter;
    }

    TraceCapture mTrace{1};
};

TEST_F(TextEncoding, CodePagesConvertBothWays) {
    // 81 is left free by its code page.
    const char* const rows[][3] = {{"1252", "\x80\xE9\x41", "\xE2\x82\xAC\xC3\xA9\x41"},
                                   {"1252", "\x81", "\xC2\x81"},
                                   {"850", "\x82\xC4", "\xC3\xA9\xE2\x94\x80"},
                                   {"1251", "\xCF\xF0", "\xD0\x9F\xD1\x80"},
                                   {"28605", "\xA4", "\xE2\x82\xAC"},
                                   {"932", "\x83\x41\x5C", "\xE3\x82\xA2\x5C"},
                                   {"65001", "\xC3\xA9", "\xC3\xA9"}};
    for (const auto& [name, text, utf] : rows) {
        char out[32];
        EXPECT_EQ(page(name).Text2Utf(text, out, sizeof out), 0) << name;
        EXPECT_STREQ(out, utf) << name;
        EXPECT_EQ(page(name).Utf2Text(utf, out, sizeof out), 0) << name;
        EXPECT_STREQ(out, text) << name;
    }
    // What has a near equivalent in the code page does not count as replaced.
    const unsigned short similar[] = {0xFF21, 0x101, 0x17B, 0};
    for (const char* name : {"1252", "850", "1251"}) {
        char out[8];
        EXPECT_EQ(page(name).Ucs2Text(similar, out, sizeof out, nullptr), 0) << name;
        EXPECT_STREQ(out, "AaZ") << name;
    }
    EXPECT_EQ(trace(), "");
}

TEST_F(TextEncoding, WhatTheCodePageLacksIsReplacedAndReported) {
    const unsigned short ucs[] = {'a', 0x20AC, 0x4E00, 0xD800, 0};
    const std::pair<const char*, std::string> rows[] = {
        {"1252", "a\x80??"}, {"850", "a???"}, {"65001", "a\xE2\x82\xAC\xE4\xB8\x80?"}};
    for (const auto& [name, text] : rows) {
        char out[32];
        long count = -1;
        EXPECT_EQ(page(name).Ucs2Text(ucs, out, sizeof out, &count), -1);
        EXPECT_EQ(out, text);
        EXPECT_EQ(count, static_cast<long>(text.size()));
        EXPECT_EQ(trace(), "ERROR : WideCharToMultiByte() failure :fallback was used\n");
    }
}

TEST_F(TextEncoding, RoomIsCountedWithTheTerminator) {
    ZAV_TextEncodingConverter converter = page("1252");
    unsigned short ucs[4] = {9, 9, 9, 9};
    char text[4];
    long count = -1;
    EXPECT_TRUE(converter.Text2Ucs("abc", ucs, 4, &count) == 0 && count == 3 && ucs[2] == 'c' && ucs[3] == 0);
    EXPECT_EQ(converter.Ucs2Text(ucs, text, 4, &count), 0);
    EXPECT_STREQ(text, "abc");
    EXPECT_TRUE(converter.Text2Ucs("abc", ucs, 3, &count) == -1 && count == 0 && ucs[0] == 0);
    ucs[0] = 'a';
    EXPECT_TRUE(converter.Ucs2Text(ucs, text, 3, &count) == -1 && count == 0 && text[0] == 0);
    EXPECT_EQ(trace(), "ERROR : TECConvertText() failure :122\nERROR : WideCharToMultiByte() failure :122\n");

    EXPECT_EQ(ZAV_TextEncodingConverter::Utf2Ucs("abc", ucs, 3, &count), -1);
    EXPECT_TRUE(ucs[1] == 'b' && ucs[2] == 0) << "what went in, terminated";
    EXPECT_TRUE(converter.Utf2Ucs("\xFF", ucs, 3, &count) == -1 && count == 1 && ucs[0] == '?');
    EXPECT_TRUE(converter.Ucs2Utf(ucs, text, 2, &count) == -1 && text[0] == 0);
    EXPECT_EQ(trace(), "ERROR : UTFtoUnicode failure :-1\nERROR : UTFtoUnicode failure :-2\n"
                       "ERROR : UnicodeTuUTF failure :-1\n");
    EXPECT_EQ(converter.Text2Utf("abc", text, 0), -1);
}

TEST_F(TextEncoding, NothingConvertsWithoutACodePage) {
    ZAV_TextEncodingConverter none;
    char out[8] = "x";
    EXPECT_EQ(none.Text2Utf("", out, sizeof out) + none.Utf2Text("", out, sizeof out), 0) << "nothing to do";
    EXPECT_EQ(none.Text2Utf("abc", out, sizeof out), -1);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(none.Utf2Text("abc", out, sizeof out), -1);
    EXPECT_EQ(trace(), "ERROR : mCodePage < 0\nERROR : mCodePage < 0\n");
    EXPECT_EQ(page("99999").Utf2Text("abc", out, sizeof out), -1) << "an unknown code page";
    EXPECT_EQ(trace(), "ERROR : WideCharToMultiByte() failure :87\n");
    // Names that are not configured and locales without a number leave the platform's default.
    const std::string old = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "C");
    for (const char* name : {"unknown", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(page(name).Utf2Text("abc", out, sizeof out), 0);
        EXPECT_STREQ(out, "abc");
    }
    std::setlocale(LC_ALL, old.c_str());
}

TEST_F(TextEncoding, SystemStringsMakeTheirUtfFormOnceAText) {
    const ZAV_SystemString before(kEuro, B_TRUE);
    EXPECT_TRUE(before.GetSystemString().IsEmpty()) << "no code page yet";
    EXPECT_EQ(trace(), "ERROR : mCodePage < 0\n");

    ZAV_SystemString::Initialize("1252");
    ZAV_SystemString s("\x80uro");
    ZAV_UTFString& utf = s.GetUtfString();
    EXPECT_TRUE(utf == (std::string(kEuro) + "uro").c_str());
    EXPECT_EQ(&s.GetUtfString(), &utf);
    EXPECT_EQ(s.Set(utf), 0) << "the source dies in the call";
    EXPECT_STREQ(s.GetSystemString(), "\x80uro");
    EXPECT_EQ(s.Set("\xD0\x9F!", B_TRUE), -1);
    EXPECT_STREQ(s.GetSystemString(), "?!");
    EXPECT_STREQ(s.GetUtfString(), "?!");
    EXPECT_EQ(s.Set(ZAV_UTFString(kEuro)), 0);
    EXPECT_STREQ(ZAV_SystemString(s).GetUtfString(), kEuro);
    s = s;
    EXPECT_EQ(Printed(s) + Printed(ZAV_SystemString(nullptr, B_FALSE)), "\x80");
}

} // namespace
