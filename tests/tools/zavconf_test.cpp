#include "../../tools/zavconf/json.h"

#include <sstream>

#include <gtest/gtest.h>

#include "../support/printed.h"
#include <zavbase/values/uval_text.h>

namespace {

std::string Listed(const std::string& json) {
    JsonResult result = ReadJson(json);
    return result.mDict ? Printed(*result.mDict) : result.mError;
}

TEST(ZavconfJson, MapsEachKindOfValue) {
    const struct {
        const char *mJson, *mListed;
    } rows[] = {
        {"{}", ""},
        {"{\"i\":-2147483648,\"u\":4294967295,\"d\":4294967296,\"r\":1.5e2}",
         "    |- i => (Long)-2147483648\n    |- u => (ULong)4294967295\n    |- d => (Double)4.29497e+09\n"
         "    |- r => (Double)150\n"},
        {" { \"t\" : true , \"f\" : false , \"n\" : null } ",
         "    |- t => (UChar)1\n    |- f => (UChar)0\n    |- n => (Ptr)0\n"},
        {"{\"s\":\"a\\n\\u00e9\\\"\\/\",\"x\":\"\\ud83d\\ude00\"}",
         "    |- s => (UTFString)a\n[e9]\"/\n    |- x => (String)\xf0\x9f\x98\x80\n"},
        {"{\"l\":[1,2],\"m\":[1,4294967295],\"d\":[1,2.5],\"s\":[\"a\",\"\"],\"b\":[true,false]}",
         "    |- l => (Long#2) {1,2,}\n    |- m => (ULong#2) {1,4294967295,}\n    |- d => (Double#2) "
         "{1,2.5,}\n"
         "    |- s => (UTFString#2) {a,,}\n    |- b => (UChar#2) {1,0,}\n"},
        {"{\"e\":[],\"x\":[1,\"a\"],\"n\":[[1,2],[]],\"o\":[0,{\"k\":1}]}",
         "    |- e\n    |- x\n    |    |- 0 => (Long)1\n    |    |- 1 => (UTFString)a\n    |- n\n    |    |- "
         "0 => (Long#2) {1,2,}\n"
         "    |    |- 1\n    |- o\n    |    |- 0 => (Long)0\n    |    |- 1\n    |    |    |- k => (Long)1\n"},
        {"[5,6]", "    |- 0 => (Long)5\n    |- 1 => (Long)6\n"},
    };
    for (const auto& row : rows) EXPECT_EQ(Listed(row.mJson), row.mListed) << row.mJson;
    JsonResult cut = ReadJson("{\"" + std::string(65, 'k') + "\":1,\"" + std::string(64, 'k') + "\":2}");
    EXPECT_EQ(cut.mCutKeys, 1u);
    EXPECT_EQ(cut.mLostEntries, 1u);
}

TEST(ZavconfJson, RefusesWhatIsNotJson) {
    const struct {
        const char *mJson, *mError;
        long mLine, mColumn;
    } rows[] = {
        {"", "object or array expected", 1, 1},
        {"{\"a\":1,\n \"b\" 2}", "colon expected", 2, 6},
        {"[1 2]", "comma or end expected", 1, 4},
        {"[1,]", "value expected", 1, 4},
        {"[\"a", "text without end", 1, 4},
        {"[\"\\x\"]", "unknown escape", 1, 5},
        {"[\"\\u12\"]", "four hexadecimal digits expected", 1, 5},
        {"[1e999]", "number out of range", 1, 2},
        {"[1]]", "text behind the end", 1, 4},
        {"{\"a\":[1", "comma or end expected", 1, 8},
        {"[\"\n\"]", "control character in a text", 2, 1},
    };
    for (const auto& row : rows) {
        JsonResult result = ReadJson(row.mJson);
        EXPECT_FALSE(result.mDict) << row.mJson;
        EXPECT_EQ(result.mError, row.mError) << row.mJson;
        EXPECT_TRUE(result.mLine == row.mLine && result.mColumn == row.mColumn) << row.mJson;
    }
    EXPECT_EQ(ReadJson(std::string(1000000, '[')).mError, "nested too deeply");
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
