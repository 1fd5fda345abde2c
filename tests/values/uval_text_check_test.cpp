#include "text_support.h"

#include <gtest/gtest.h>

#include "../support/file_support.h"

namespace {

// "line:column kind [what stands there]" of each remark.
std::string Remarks(const std::string& text) {
    std::istringstream is(text);
    std::ostringstream told;
    struct Context {
        const std::string& mText;
        std::ostringstream& mTold;
    } context{text, told};
    ZAV_UVal* value = nullptr;
    const auto tell = [](void* to, const ZAV_UValTextRemark& remark) {
        const Context& c = *static_cast<Context*>(to);
        c.mTold << remark.mLine << ':' << remark.mColumn << ' ' << remark.mKind << " ["
                << c.mText.substr(remark.mStart, remark.mEnd - remark.mStart) << "] ";
        EXPECT_TRUE(*remark.mMessage && *remark.mFound);
    };
    ZAV_CheckUValTxt(is, value, tell, &context);
    EXPECT_EQ(Printed(*UValOwner(value)), Printed(*ReadValue(text))) << text;
    return told.str();
}

TEST(UValTextCheck, TellsWhatIsReadButHardlyMeant) {
    const std::string k64(64, 'k');
    const std::pair<std::string, std::string> rows[] = {
        {"[ 5, 5% 10x 0x1F 5..3 1-2 5e 1.5e+ ] zavdouble",
         "1:3 1 [5,] 1:6 1 [5%] 1:9 1 [10x] 1:13 1 [0x1F] 1:18 1 [5..3] 1:23 1 [1-2] 1:27 1 [5e] "
         "1:30 1 [1.5e+] "},
        {"[ -1.e3 .5 -0 1E-2 5. ] zavdouble", ""},
        {"[ -x - . -.e5 --1 ]", "1:3 2 [-x] 1:6 2 [-] 1:8 2 [.] 1:10 2 [-.e5] 1:15 2 [--1] "},
        {"<<\n/a 99999999999 /b\r\n -2147483649 >>", "2:4 3 [99999999999] 3:2 3 [-2147483649] "},
        {"[ 4294967295 -2147483648 ] zavulong", ""},
        {"[ 255 256 -1 ] zavuchar", "1:7 3 [256] 1:11 3 [-1] "},
        {"[ -128 200 5.0 2.5 ] zavchar", "1:8 3 [200] 1:16 3 [2.5] "},
        {"[ 1e999 -1e999 1e39 ] zavfloat", "1:16 3 [1e39] "},
        {"[ 1e400 2147483648 ] zavdouble", "1:3 3 [1e400] 1:9 3 [2147483648] "},
        {"[ 1 (2) 3 zavchar ]", "1:5 4 [(2)] 1:9 4 [3] "},
        {"[ (a) 5 ]", "1:7 4 [5] "},
        {"[ 0 1.5 ] zavptr", "1:5 4 [1.5] "},
        {"\xef\xbb\xbf<< /a 5, >>", "1:7 1 [5,] "},
        {"<< /" + k64 + " 1 /" + k64 + "k 2, (a\\000b) 3 /b:" + k64 + "k 4 >>",
         "1:72 5 [/" + k64 + "k] 1:72 6 [/" + k64 + "k] 1:139 1 [2,] 1:142 5 [(a\\000b)] 1:153 5 [/b:" + k64 +
             "k] "},
        {"<< /a 1 /b << /a 2 >> /a 3 /b:c 4 /b:a 5 /b << >> /b:a 6 >>",
         "1:23 6 [/a] 1:35 6 [/b:a] 1:42 6 [/b] "},
        {"<< / 1 () << /x 5, >> /a::b 2 /: 3 /a: 4 >>", "1:4 7 [/] 1:8 7 [()] 1:17 1 [5,] 1:23 7 [/a::b] "
                                                        "1:31 7 [/:] 1:36 6 [/a:] "},
        {"<< /a 5 /a:b << /c 1- >> >>", "1:9 8 [/a:b] 1:20 1 [1-] "},
        {"<< [ (k) (l) ] 6 (u) zavutfstring 7 /k 8 >>", "1:37 6 [/k] "}};
    for (const auto& [text, told] : rows) EXPECT_EQ(Remarks(text), told) << text;
    const std::string written = FileText(ZAVBASE_TEST_DATA "/values.zav");
    EXPECT_EQ(Remarks(written), "15:1 7 [/] ");
}

// What the reader finds at a path and what stands at the place of its entry are the same.
TEST(UValTextCheck, FindsTheBytesOfAnEntry) {
    const std::string text =
        "\xef\xbb\xbf% c\n<< /a 1 /b:c [ 2 3 ]  zavshort /d << /e (x) /a 4%\n >> /a:x 9 /b:f 5\n"
        "  (my key)  << /g 6 /g 7 zavchar >> /" +
        std::string(70, 'k') + " 8 >> % end";
    const std::pair<const char*, std::string> rows[] = {{"a", "/a|1"},
                                                        {"b:c", "/b:c|[ 2 3 ]  zavshort"},
                                                        {"d", "/d|<< /e (x) /a 4%\n >>"},
                                                        {"d:a", "/a|4%"},
                                                        {"my key:g", "/g|7 zavchar"},
                                                        {"b", ""},
                                                        {"a:x", ""},
                                                        {"none", ""},
                                                        {"d:none", ""}};
    ZAV_UValTextEntry entry;
    const auto found = [&](const std::string& in, const ZAV_DictPath& path) -> std::string {
        if (!ZAV_FindUValTxtEntry(in.c_str(), path, entry)) return "";
        return in.substr(entry.mKeyStart, entry.mKeyEnd - entry.mKeyStart) + "|" +
               in.substr(entry.mValueStart, entry.mValueEnd - entry.mValueStart);
    };
    for (const auto& [path, bytes] : rows) EXPECT_EQ(found(text, path), bytes) << path;
    EXPECT_EQ(found(text, std::string(80, 'k').c_str()).substr(70), "k|8");
    EXPECT_EQ(found(text, ""), "|" + text.substr(7, text.size() - 13));
    EXPECT_EQ(found("% x\n5 zavchar", ""), "|5 zavchar");
    EXPECT_EQ(found("<< /a << /b 1 >> /a 2 >>", "a:b"), "") << "replaced";
    EXPECT_EQ(found("<< /a << /b 1 >> /a:b 2 >>", "a:b"), "/a:b|2");
    EXPECT_EQ(found("<< /a 1 ", "a"), "");
    EXPECT_EQ(ZAV_GetUValTextError().mColumn, 9);
}

} // namespace
