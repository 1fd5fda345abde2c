#include "../../tools/support/tool.h"
#include "../../tools/zavconf/json.h"
#include "../../tools/zavconf/typed_value.h"

#include <gtest/gtest.h>

#include "../support/printed.h"
#include <zavbase/values/uval_text.h>

namespace {

/// The dictionary as it prints itself, but without the margin; or where which error is.
std::string Listed(const std::string& json) {
    const JsonResult result = ReadJson(json);
    if (!result.mDict)
        return std::to_string(result.mLine) + ":" + std::to_string(result.mColumn) + ": " + result.mError;
    std::string text = "\n" + Printed(*result.mDict);
    for (size_t at; (at = text.find("\n    ")) != text.npos;) text.erase(at + 1, 4);
    return text.substr(1);
}

TEST(ZavconfJson, MapsEachKindOfValue) {
    const std::pair<const char*, const char*> rows[] = {
        {"{}", ""},
        {R"({"i":-2147483648,"u":4294967295,"d":4294967296,"r":1.5e2})",
         "|- i => (Long)-2147483648\n|- u => (ULong)4294967295\n|- d => (Double)4.29497e+09\n"
         "|- r => (Double)150\n"},
        {R"( { "t" : true , "f" : false , "n" : null } )",
         "|- t => (UChar)1\n|- f => (UChar)0\n|- n => (Ptr)0\n"},
        {R"({"s":"a\n\u00e9\"\/","x":"\ud83d\ude00"})",
         "|- s => (UTFString)a\n[e9]\"/\n|- x => (String)\xf0\x9f\x98\x80\n"},
        {R"({"l":[1,2],"m":[1,4294967295],"d":[1,2.5],"s":["a",""],"b":[true,false]})",
         "|- l => (Long#2) {1,2,}\n|- m => (ULong#2) {1,4294967295,}\n|- d => (Double#2) {1,2.5,}\n"
         "|- s => (UTFString#2) {a,,}\n|- b => (UChar#2) {1,0,}\n"},
        {R"({"e":[],"x":[1,"a"],"n":[[1,2],[]],"o":[0,{"k":1}]})",
         "|- e\n|- x\n|    |- 0 => (Long)1\n|    |- 1 => (UTFString)a\n|- n\n|    |- 0 => (Long#2) {1,2,}\n"
         "|    |- 1\n|- o\n|    |- 0 => (Long)0\n|    |- 1\n|    |    |- k => (Long)1\n"},
        {"[5,6]", "|- 0 => (Long)5\n|- 1 => (Long)6\n"},
    };
    for (const auto& [json, listed] : rows) EXPECT_EQ(Listed(json), listed) << json;
}

TEST(ZavconfJson, NamesWhatItCannotKeep) {
    const std::string longest(64, 'k');
    const std::pair<std::string, std::vector<std::string>> rows[] = {
        {"\xEF\xBB\xBF{\"a\":9007199254740992,\"b\":-18446744073709549568}", {}},
        {"{\"" + longest + "x\":1,\"" + longest + "\":2}",
         {longest + "x: the key is cut to 64 bytes, or at a NUL",
          longest + ": an earlier entry is replaced by a later one"}},
        {R"({"a":[[],9007199254740993,"\udc00x"]})",
         {"a:0: an empty array becomes an empty dictionary", "a:1: 9007199254740993 is rounded to a double",
          "a:2: half a surrogate pair becomes U+FFFD"}},
        {"[]", {"the whole text: an empty array becomes an empty dictionary"}},
    };
    for (const auto& [json, losses] : rows) EXPECT_EQ(ReadJson(json).mLosses, losses) << json;
    EXPECT_EQ(Listed(R"({"s":["\ud800\u0041\ud83d\ude00\udbff", "\ud83d\ue000"]})"),
              "|- s => (String#2) {\xEF\xBF\xBD"
              "A\xF0\x9F\x98\x80\xEF\xBF\xBD,\xEF\xBF\xBD\xEE\x80\x80,}\n");
}

TEST(ZavconfJson, RefusesWhatIsNotJson) {
    const std::pair<std::string, const char*> rows[] = {
        {"", "1:1: value expected"},
        {"{\"a\":1,\n \"b\" 2}", "2:6: colon expected"},
        {"[1 2]", "1:4: comma or end expected"},
        {"[1,]", "1:4: value expected"},
        {"[\"a", "1:4: text without end"},
        {"[\"\\x\"]", "1:4: unknown escape"},
        {"[\"\\u12\"]", "1:5: four hexadecimal digits expected"},
        {"[1e999]", "1:2: number out of range"},
        {"[1]]", "1:4: text behind the end"},
        {"{\"a\":[1", "1:8: comma or end expected"},
        {"[\"\n\"]", "2:1: control character in a text"},
        {std::string(1000000, '['), "1:10001: nested too deeply"},
        {" 5 ", "1:4: valid JSON, but a single value, which has no key to be stored under"},
        {"5 6", "1:3: text behind the end"},
        {"\xEF\xBB\xBF[x]", "1:2: value expected"},
        {"[1e-999]", "1:2: number out of range"},
    };
    for (const auto& [json, error] : rows) EXPECT_EQ(Listed(json), error) << json.substr(0, 20);
    using namespace std::string_literals;
    const std::string values[] = {"-01",
                                  "01",
                                  "-",
                                  "--1",
                                  "+1",
                                  ".5",
                                  "-.5",
                                  "2.",
                                  "2.e3",
                                  "0.e1",
                                  "1e",
                                  "1e+",
                                  "1E-",
                                  "1.5e",
                                  "0x1F",
                                  "1_0",
                                  "1,",
                                  "NaN",
                                  "Infinity",
                                  "-Infinity",
                                  "1 000",
                                  "\xEF\xBC\x91",
                                  "-x",
                                  "1.2.3",
                                  "1e2.5",
                                  "1-2",
                                  "nul",
                                  "True",
                                  "truex",
                                  "nullnull",
                                  "'a'",
                                  "\"a",
                                  "a\"",
                                  "\"\\x41\"",
                                  "\"\\u12G4\"",
                                  "\"\\u-123\"",
                                  "\"\\ud800\\u12\"",
                                  "\"\\",
                                  "\"\\\"",
                                  "\"\t\"",
                                  "\"\x01\"",
                                  "\"a\0b"s,
                                  "\0"s,
                                  "\"\xFF\"",
                                  "\"\xC0\xAF\"",
                                  "\"\xED\xA0\x80\"",
                                  "\"\xF4\x90\x80\x80\"",
                                  "\"\xE2\x82\"",
                                  "[",
                                  "]",
                                  "{",
                                  "}",
                                  "[1",
                                  "[,1]",
                                  "[1,,2]",
                                  "[1}",
                                  "{1:2}",
                                  "{\"a\"}",
                                  "{\"a\":}",
                                  "{\"a\" 1}",
                                  "{\"a\":1,}",
                                  "{,}",
                                  "{\"a\":1]",
                                  "{\"a\"::1}",
                                  "{a:1}",
                                  "[1]x",
                                  "/**/1",
                                  "1//",
                                  "\xEF\xBB\xBF"
                                  "1",
                                  "\f1",
                                  "\xC2\xA0"
                                  "1"};
    for (const std::string& value : values) EXPECT_FALSE(ReadJson("[" + value + "]").mDict) << value;
    EXPECT_FALSE(ReadJson("\xFF\xFE[\0]\0"s).mDict) << "UTF-16";
}

TEST(ZavconfTypedValue, IsANumberOnlyAsAWhole) {
    const char* const rows[][3] = {
        // value, type, text form; nothing for a refusal
        {"5", "", "5"},
        {"-007", "", "-007"},
        {"2.5e-3", "", "2.5e-3"},
        {".5", "", ".5"},
        {"192.168.1.1", "", "(192.168.1.1)"},
        {"2024-01-15", "", "(2024-01-15)"},
        {"10:30", "", "(10:30)"},
        {"-verbose", "", "(-verbose)"},
        {"-", "", "(-)"},
        {"0x1F", "", "(0x1F)"},
        {"5 %", "", "(5 %)"},
        {"", "", "()"},
        {"<b>", "", "(<b>)"},
        {"5 zavx", "", "(5 zavx)"},
        {"5 zavshort", "", "5 zavshort"},
        {"70000 zavshort", "", nullptr},
        {"2147483648", "", nullptr},
        {"1e400", "", nullptr},
        {"[ 1 2 ]", "", "[ 1 2 ]"},
        {"[ 1 2.5 ]", "", nullptr},
        {"[ 1", "", nullptr},
        {"(a) zavutfstring", "", "(a) zavutfstring"},
        {"<< /a 1 /a 2 >>", "", nullptr},
        {"5", "string", "(5)"},
        {"(5)", "string", "(\\(5\\))"},
        {"\xC3\xA9", "utfstring", "(\\303\\251)  zavutfstring"},
        {"\xE9", "utfstring", nullptr},
        {"\xF0\x9F\x98\x80", "utfstring", nullptr},
        {"4294967295", "ulong", "4294967295 zavulong"},
        {"-1", "ulong", nullptr},
        {"256", "uchar", nullptr},
        {"1.5", "long", nullptr},
        {"x", "long", nullptr},
        {"99999999999", "double", "99999999999.0"},
        {"3", "float", "3.0 zavfloat"},
        {"1e39", "float", nullptr},
        {"5", "zavlong", nullptr},
    };
    for (const auto& [typed, type, text] : rows) {
        SCOPED_TRACE(std::string(typed) + " " + type);
        try {
            EXPECT_STREQ(TypedValue(typed, type).c_str(), text);
        } catch (const ToolFailure& failure) {
            EXPECT_FALSE(text) << failure.mText;
        }
    }
}

TEST(ZavconfJson, ExportsWhatItImported) {
    const std::string json =
        "{\n  \"a\": [1, 2],\n  \"b\": [\n    [true],\n    {}\n  ],\n  \"s\": \"x\\\"\\n\\u0001\xc3\xa9\",\n"
        "  \"d\": 0.1,\n  \"n\": null\n}\n";
    std::ostringstream os;
    WriteJson(os, *ReadJson(json).mDict);
    EXPECT_EQ(os.str(), std::string(json).replace(json.find("true"), 4, "1"));
    ZAV_UValDict latin;
    latin.DefineUVal("s", UVAL_STRING)->SetStrValue(ZAV_String("\xe9"), 0);
    std::ostringstream text;
    WriteJson(text, latin);
    EXPECT_EQ(text.str(), "{\n  \"s\": \"\\u00e9\"\n}\n");
}

} // namespace
