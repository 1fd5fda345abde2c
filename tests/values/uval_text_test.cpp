#include "text_support.h"

#include <locale>

#include <gtest/gtest.h>

#include "../support/trace_capture.h"

namespace {

using namespace std::string_literals;

struct GroupingPunctuation : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(UValTextWriter, WritesEachKeyAndEscapeInItsForm) {
    ZAV_UValDict dict(16);
    dict.SetEntry("my key", ReadValue("5").release());
    dict.SetEntry("50%/d:x", ReadValue("[ 4294967295 1 ] zavulong").release());
    dict.SetEntry("none", nullptr);
    dict.SetEntry("f", ReadValue("[ 0.1 -2 ] zavfloat").release());
    dict.SetEntry("s", ReadValue("[ (\\t\\n\\f\\r\\(\\)\\\\) (\x1\\0\\013\x7f\xe9) ]").release());
    const char text[] = "<<\n(my key)  5\n/50%/d:x [ -1 1  ] zavulong\n/f [ 0.100000 -2.000000  ] zavfloat\n"
                        "/s [ (\\t\\n\\f\\r\\(\\)\\\\) (\\001\\000\\013\\177\\351) ]\n>>";
    EXPECT_EQ(Written(dict), text);
    std::ostringstream indented;
    ZAV_WriteUValTxt(indented, DictOf("<< /code 7 zavuchar >>").get(), 2);
    EXPECT_EQ(indented.str(), "\n    <<\n    /code 7 zavuchar\n    >>");
    EXPECT_EQ(Written(*ReadValue("[ 1e999 -1e999 0e999 ]")), "[ 1e999 -1e999 0.000000  ]") << "reads back";
}

TEST(UValTextWriter, TakesOnlyThePrecisionFromTheStream) {
    UValOwner value = ReadValue("<< /i [ 1234567 -1 ] /d 1234567.125 >>");
    std::ostringstream os;
    os.imbue(std::locale(std::locale::classic(), new GroupingPunctuation));
    os << std::hex << std::showpos << std::showbase << std::setfill('*') << std::setprecision(2)
       << std::setw(30);
    ZAV_WriteUValTxt(os, value.get(), 0);
    EXPECT_EQ(os.str(), "<<\n/i [ 1234567 -1  ]\n/d 1234567.12\n>>");
    EXPECT_EQ(os.flags() & std::ios::floatfield, std::ios::fixed);
    std::ostringstream broken;
    broken.setstate(std::ios::badbit);
    ZAV_WriteUValTxt(broken, value.get(), 0);
    EXPECT_EQ(broken.str(), "");
}

TEST(UValTextReader, TakesWhatThePeopleWrite) {
    const std::pair<std::string, std::string> rows[] = {
        {" -5 % note\r", "(Long)-5"},
        {"4294967295", "(Long)-1"},
        {"-", "(Long)0"},
        {"1-2", "(Long)1"},
        {"00000000000099999999999", "(Long)1215752191"},
        {"0.10000000000000000555111512", "(Double)0.1"},
        {"0x10", "(Double)0"},
        {"5abc", "(Double)5"},
        {"-inf", "(Double)-0"},
        {"2.9%zavshort\n", "(Double)2.9"},
        {"-2.9 %c\n zavshort", "(Short)-2"},
        {"0.1zavfloat", "(Double)0.1"},
        {"5 zavstring", "(String)"},
        {"(12) zavlong", "(Long)12"},
        {"(line\none)", "(String)line\none"},
        {"(a(b\\()c\\)d\\q\\\\)", "(String)a(b()c)dq\\"},
        {"(\\101\\60\\7778)", "(String)A0\3778"},
        {"[ 1 zavchar 2.5 ] zavdouble", "(Double#2) {1,2.5,}"},
        {"[(a)(\\142)()5]", "(String#4) {a,b,,,}"},
        {"[ 0 1.5 ] zavptr", "(Ptr#2) {0,0,}"},
        {"<<>>", ""},
        {"<< /a:b 1 /a:c 2 /a/b 3 /a 4 >>", "    |- a => (Long)4\n    |- a/b => (Long)3\n"},
        {"<< /a << /x 1 >> /a << /y 2 >> >>", "    |- a\n    |    |- y => (Long)2\n"},
        {"<< /a 5 /a:b 6 / 7 >>", "    |- a => (Long)5\n"},
        {"<< (my key) 5 [ (k) (l) ] 6 (u) zavutfstring 7 /%x 8 >>",
         "    |- my key => (Long)5\n    |- k => (Long)6\n    |- u => (Long)7\n    |- %x => (Long)8\n"},
        {"\xef\xbb\xbf<< /\xef\xbb\xbf (\xef\xbb\xbf) % \xef\xbb\xbf\n>>",
         "    |- \xef\xbb\xbf => (String)\xef\xbb\xbf\n"},
        {"<< /zavlong 5 zavlong % >>\n>>", "    |- zavlong => (Long)5\n"},
        {"<< /" + std::string(70, 'k') + " 1 >>", "    |- " + std::string(64, 'k') + " => (Long)1\n"}};
    for (const auto& [text, printed] : rows) {
        const UValOwner value = ReadValue(text);
        ASSERT_TRUE(value) << text;
        EXPECT_EQ(Printed(*value), printed) << text;
        EXPECT_EQ(ZAV_GetUValTextError().mLine, 0) << text;
    }
    EXPECT_EQ(static_cast<ZAV_UValString&>(*ReadValue("(a\\000b\0c)"s)).GetValue(0),
              ZAV_String("a\0b\0c", 5u));
}

TEST(UValTextReader, TellsWhatIsWrongAndWhere) {
    struct Row {
        std::string text;
        long line, column;
        const char* found;
    };
    const std::pair<const char*, std::vector<Row>> groups[] = {
        {"Error in object hierarchy",
         {{"", 1, 1, "end of input"},
          {"% only\n", 2, 1, "end of input"},
          {"5 6", 1, 4, "end of input"},
          {"<< /a 5", 1, 8, "end of input"},
          {"<<\r\n/a 5\r/b 6 {\n>>", 3, 6, "{"},
          {"5 zavlong% no comment", 1, 3, "zavlong%"},
          {"<< /a +5 >>", 1, 7, "+5"},
          {"<< /a hello >>", 1, 7, "hello"},
          {"<< zavlong 5 >>", 1, 4, "zavlong"},
          {"<< /a (b\n(c) >>", 1, 7, "(b"},
          {"(a\\", 1, 1, "(a\\"},
          {"5)", 1, 2, ")"},
          {"\xef\xbb\xbf\xef\xbb\xbf<< >>", 1, 1, "???"},
          {"<< /a 5\xef\xbb\xbf >>", 1, 7, "5???"},
          {"5 \xef\xbb\xbf", 1, 3, "???"},
          {"\xef\xbb<< >>", 1, 1, "??"},
          {"<< /a 5\0 >>"s, 1, 7, "5?"},
          {"<< /a\0b 5 >>"s, 1, 4, "/a?b"}}},
        {"<< >> pairs do not match", {{">>", 1, 1, ">>"}}},
        {"Attribute/value pairs in dictionary do not match",
         {{"<< /a >>", 1, 7, ">>"}, {"<< /a [ 5 >>", 1, 11, ">>"}}},
        {"Error in attribute/value pairs of dictionary",
         {{"<< 5 6 >>", 1, 8, ">>"},
          {"<< /a /b >>", 1, 10, ">>"},
          {"<< << >> 5 >>", 1, 12, ">>"},
          {"<< /a 5 [ 5 >>", 1, 13, ">>"}}},
        {"[ ] pairs do not match", {{"5 ]", 1, 3, "]"}}},
        {"Empty arrays are not supported", {{"[ ]", 1, 3, "]"}, {"<< /a [\n] zavlong >>", 2, 1, "]"}}},
        {"Illegal type in array",
         {{"[ [ 1 ] ]", 1, 9, "]"}, {"[ 1 << /a 2 >> ]", 1, 16, "]"}, {"[ << 5 ]", 1, 8, "]"}}}};
    for (const auto& [message, rows] : groups) {
        for (const Row& row : rows) {
            TraceCapture trace(0x1);
            EXPECT_FALSE(ReadValue(row.text)) << row.text;
            EXPECT_EQ(trace.Text(), message + "\n"s) << row.text;
            const ZAV_UValTextError& error = ZAV_GetUValTextError();
            EXPECT_STREQ(error.mMessage, message) << row.text;
            EXPECT_TRUE(error.mLine == row.line && error.mColumn == row.column) << row.text;
            EXPECT_STREQ(error.mFound, row.found) << row.text;
        }
    }
    std::istringstream is("5 6");
    ZAV_UVal* value = reinterpret_cast<ZAV_UVal*>(&is);
    EXPECT_EQ(FileCodeOf([&] { ZAV_ReadUValTxt(is, value); }), 2);
    EXPECT_EQ(value, nullptr);
}

// What a search in the stream finds; null when it finds nothing.
UValOwner Named(std::istream& is, const char* name) {
    ZAV_UVal* value = nullptr;
    ZAV_ReadUValTxt(is, value, name);
    return UValOwner(value);
}

TEST(UValTextReader, FindsANamedDictionaryAndLeavesTheStreamBehindIt) {
    const std::string text = "% /lamp << /no 0 >>\n<< /s (/lamp << >>) /lamp 5 /lampe << /no 1 >>\n"
                             " /deep << /lamp<< /on 1 % >>\n /t (>>\\() /in << >> >>REST";
    const char* const rows[][3] = {
        {"lamp", "    |- on => (Long)1\n    |- t => (String)>>(\n    |- in\n", "REST"},
        {"in", "", " >>REST"},
        {"lampe", "    |- no => (Long)1\n", "\n /deep"},
    };
    for (const auto& [name, printed, rest] : rows) {
        std::istringstream is(text);
        TraceCapture trace;
        const UValOwner value = Named(is, name);
        ASSERT_TRUE(value) << name;
        EXPECT_EQ(Printed(*value), printed);
        EXPECT_EQ(trace.Text(), std::string("ZAV_FindDictionaryInText: found dictionary ") + name + "\n");
        EXPECT_EQ(0u, std::string(std::istreambuf_iterator<char>(is), {}).find(rest));
    }
    std::istringstream quoted("<< (my\\040lamp) << /a 1 >> >>"), plain("7"), marked("\xef\xbb\xbf/lamp <<>>"),
        other("\xef\xbb/lamp <<>>");
    EXPECT_TRUE(Named(marked, "lamp") && !Named(other, "lamp"));
    EXPECT_TRUE(Named(quoted, "my lamp"));
    EXPECT_EQ(Named(plain, "")->GetLongValue(0), 7);
}

TEST(UValTextReader, TracesANameThatIsNotThereAndThrowsForABrokenOne) {
    for (const char* text : {"", "<< /lam << >> >>", "/lamp 5 <<", "(lamp", "% /lamp <<"}) {
        std::istringstream is(text);
        TraceCapture trace(0x1);
        EXPECT_FALSE(Named(is, "lamp")) << text;
        EXPECT_EQ(trace.Text(), "Dictionary lamp not found\n") << text;
    }
    std::istringstream cut("x\n  /lamp\n   << /a 5"), bad("\n /lamp << /a +5 >> >>");
    EXPECT_EQ(FileCodeOf([&] { Named(cut, "lamp"); }), 2);
    EXPECT_EQ(ZAV_GetUValTextError().mLine, 3);
    EXPECT_EQ(FileCodeOf([&] { Named(bad, "lamp"); }), 2);
    EXPECT_EQ(ZAV_GetUValTextError().mColumn, 14);
}

std::string Repeat(const char* text, size_t times) {
    std::string all;
    for (size_t i = 0; i < times; ++i) all += text;
    return all;
}

TEST(UValTextReader, KeepsToTheNestingLimit) {
    ZAV_SetUValNestingLimit(3);
    EXPECT_TRUE(ReadValue("<< /a << /b << /c 1 >> >> >>"));
    EXPECT_TRUE(ReadValue("<< /a << /b:c 1 >> >>"));
    for (const char* text : {"<< /a << /b << /c << >> >> >> >>", "<< /a << /b << /c:d 1 >> >> >>",
                             "<< /a:b:c:d 1 >>", "<< /a:b << /c << >> >> >>", "<< << << <<"})
        EXPECT_FALSE(ReadValue(text)) << text;
    ZAV_SetUValNestingLimit(10000);
    EXPECT_FALSE(ReadValue("<< /" + Repeat("a:", 500000) + "b 1 >>"));
}

// Neither the stack nor more than time in proportion: each of these is done in well under a second.
TEST(UValTextReader, ReadsAnyDepth) {
    const size_t levels = 200000;
    EXPECT_FALSE(ReadValue(Repeat("<<", 1000000)));
    ZAV_SetUValNestingLimit(0);
    EXPECT_FALSE(ReadValue(Repeat("<<", 1000000)));
    EXPECT_FALSE(ReadValue(Repeat("[", levels)));
    EXPECT_FALSE(ReadValue(Repeat("<</a[1]/b", 500000)));
    EXPECT_FALSE(ReadValue(Repeat("<</a[", levels) + Repeat("]>>", levels)));
    EXPECT_FALSE(ReadValue(Repeat("<</a ", levels) + "<< >>" + Repeat(">>", levels - 1)));
    EXPECT_FALSE(ReadValue(Repeat("<</a<<>>/b", levels) + Repeat(">>", levels)));
    const auto deep = DictOf(Repeat("<</a ", levels) + "1" + Repeat(">>", levels));
    ZAV_SetUValNestingLimit(10000);
    ASSERT_TRUE(deep);
    EXPECT_EQ(deep->GetSize(), 1u);
}

} // namespace
