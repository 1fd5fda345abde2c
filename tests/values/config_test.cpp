#include <gtest/gtest.h>

#include <tests/support/file_support.h>
#include <tests/support/trace_capture.h>
#include <tests/values/text_support.h>

namespace {

class Config : public testing::Test {
protected:
    Config() {
        ZAV_ConfigInit(*DictOf("<< /A:S << /number 2.5 /text (YES) /list [ (no) (Yes) () ] zavutfstring"
                               " /nul (a\\000b) >> >>"));
    }
    ~Config() override { ZAV_ConfigCleanup(); }
};

TEST_F(Config, DefaultsAndTheirTraceLines) {
    TraceCapture trace;
    EXPECT_EQ(2.5F, ZAV_ConfigGet("A:S", "", "number", 0.0F));
    EXPECT_EQ("", trace.Text());
    EXPECT_EQ(5L, ZAV_ConfigGet("A", "S", "text", 5L));
    EXPECT_STREQ("d", ZAV_ConfigGet("A", "", "X", "d"));
    EXPECT_EQ(nullptr, ZAV_ConfigGet("", "", nullptr));
    ZAV_ConfigCleanup();
    EXPECT_EQ(5L, ZAV_ConfigGet("A", "S", "number", 5L));
    EXPECT_EQ(nullptr, ZAV_ConfigGet());
    EXPECT_EQ("Variable A:S:text: has not the right type\nVariable A:X: not configured\n"
              "Variable  not configured\nConfiguration variables have not been initialised yet !!\n",
              trace.Text());
}

TEST_F(Config, NaturalCallsCompile) {
    const int i = ZAV_ConfigGet("A", "S", "number", 5);
    const std::size_t n = ZAV_ConfigGet("A", "S", "number", std::size_t{5});
    const unsigned u = ZAV_ConfigGet("A", "S", "number", 0u);
    EXPECT_TRUE(i == 2 && n == 2 && u == 2 && ZAV_ConfigGet("A", "S", "number", B_FALSE) == B_TRUE);
    EXPECT_EQ(2L, ZAV_ConfigGet("A", "S", "number", 5L));
    EXPECT_EQ(2.5, ZAV_ConfigGet("A", "S", "number", 0.0));
    EXPECT_EQ(nullptr, ZAV_ConfigGet("A", "S", "none", nullptr));
    EXPECT_NE(nullptr, ZAV_ConfigGet(ZAV_String("A"), ZAV_String("S"), "list"));
}

TEST_F(Config, TextsAndTheirElements) {
    const std::pair<const char*, int> dimensions[] = {{"text", 1}, {"list", 3}, {"number", 0}};
    for (const auto& [name, n] : dimensions) EXPECT_EQ(n, ZAV_ConfigGetDimension("A", "S", name));
    EXPECT_STREQ("YES", ZAV_ConfigGetAt("A", "S", "text", 0, "d"));
    EXPECT_STREQ("d", ZAV_ConfigGetAt("A", "S", "text", 1, "d"));
    for (long outside : {3, -1}) EXPECT_STREQ("d", ZAV_ConfigGetAt("A", "S", "list", outside, "d"));
    ZAV_String s;
    ZAV_UTFString u;
    ZAV_ConfigGetAt("A", "S", "list", 1, "d", &s);
    ZAV_ConfigGetAt("A", "S", "number", 1, "d", &u);
    EXPECT_TRUE(s == "Yes" && u == "d");
    ZAV_ConfigGet("A", "S", "text", nullptr, &u);
    ZAV_ConfigGet("A", "S", "none", nullptr, &s);
    EXPECT_TRUE(u == "YES" && s == "");
    EXPECT_TRUE(ZAV_IsConfigured("A", "S", "text", "yes") && ZAV_IsConfigured("A", "S", "list", "yEs"));
    EXPECT_FALSE(ZAV_IsConfigured("A", "S", "list", "ye") || ZAV_IsConfigured("A", "S", "number", "2"));

    EXPECT_FALSE(ZAV_IsConfigured("A", "S", "nul", "A") || ZAV_IsConfigured("A", "S", "text", nullptr));
    EXPECT_TRUE(ZAV_IsConfigured("A", "S", "list", nullptr)) << "no text is the empty text";

    TraceCapture trace(0x01);
    ZAV_SystemString out("before");
    ZAV_ConfigGet("A", "S", "number", "deflt", &out);
    EXPECT_TRUE(out.GetSystemString() == "before") << "left alone by what is no string";
    EXPECT_EQ("", trace.Text());
    ZAV_ConfigGet("A", "S", "none", ZAV_String("deflt"), &out);
    EXPECT_TRUE(out.GetSystemString() == "deflt");
    ZAV_ConfigGet("A", "S", "text", "deflt", &out);
    EXPECT_TRUE(out.GetSystemString() == "YES");
}

TEST_F(Config, AReplacementMayComeFromTheConfigurationItself) {
    ZAV_ConfigInit(*ZAV_ConfigGet());
    ZAV_ConfigInit(static_cast<ZAV_UValDict&>(*ZAV_ConfigGet("A", "", "")));
    EXPECT_EQ(2L, ZAV_ConfigGet("S", "number", "", 0L));
}

TEST_F(Config, FilesAreMergedWholeOrNotAtAll) {
    ZAV_ConfigCleanup();
    TestFolder folder;
    const std::string good = folder.Path("good"), more = folder.Path("more"), bad = folder.Path("bad");
    PutFile(good, "<< /A << /x 1 /y 2 >> >>");
    PutFile(more, "<< /A << /y 3 >> /B:z 4 >>");
    PutFile(bad, "<< /A << /x 9 >> /C ] >>");
    for (const char* before : {"", "    |- A\n    |    |- x => (Long)1\n    |    |- y => (Long)2\n"}) {
        TraceCapture trace(0x0C);
        EXPECT_EQ(2, FileCodeOf([&] { ZAV_ConfigInit(ZAV_SystemString(bad.c_str())); }));
        EXPECT_EQ(0u, trace.Text().find("ERROR ZAV_ConfigInit(" + bad + ") :"));
        EXPECT_EQ(before, Printed(*ZAV_ConfigGet()));
        ZAV_ConfigInit(good.c_str());
    }
    TraceCapture trace(0x08);
    ZAV_ConfigInit(more.c_str());
    EXPECT_EQ(Printed(*DictOf("<< /A << /x 1 /y 3 >> /B:z 4 >>")) + "\n", trace.Text());
}

} // namespace
