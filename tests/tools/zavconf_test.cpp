#include "../../tools/zavconf/json.h"

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
    JsonResult cut = ReadJson("{\"" + std::string(65, 'k') + "\":1,\"" + std::string(64, 'k') + "\":2}");
    EXPECT_EQ(cut.mCutKeys, 1u);
    EXPECT_EQ(cut.mLostEntries, 1u);
}

TEST(ZavconfJson, RefusesWhatIsNotJson) {
    const std::pair<std::string, const char*> rows[] = {
        {"", "1:1: object or array expected"},
        {"{\"a\":1,\n \"b\" 2}", "2:6: colon expected"},
        {"[1 2]", "1:4: comma or end expected"},
        {"[1,]", "1:4: value expected"},
        {"[\"a", "1:4: text without end"},
        {"[\"\\x\"]", "1:5: unknown escape"},
        {"[\"\\u12\"]", "1:5: four hexadecimal digits expected"},
        {"[1e999]", "1:2: number out of range"},
        {"[1]]", "1:4: text behind the end"},
        {"{\"a\":[1", "1:8: comma or end expected"},
        {"[\"\n\"]", "2:1: control character in a text"},
        {std::string(1000000, '['), "1:10001: nested too deeply"},
    };
    for (const auto& [json, error] : rows) EXPECT_EQ(Listed(json), error) << json.substr(0, 20);
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
