#include <gtest/gtest.h>

#include <tests/support/printed.h>
#include <zavbase/values/dict_path.h>

namespace {

typedef std::vector<std::string> List;

List Keys(const ZAV_DictPath& path) {
    List keys;
    const char* key = nullptr;
    for (int i = 0; i < path.Size(); ++i) keys.push_back(key = path.NextKey(key));
    return keys;
}

TEST(DictPath, TextToKeysAndBack) {
    const std::tuple<const char*, List, const char*> rows[] = {{"", {}, ""},
                                                               {nullptr, {}, ""},
                                                               {"a:b", {"a", "b"}, "a:b:"},
                                                               {"a::b", {"a", "", "b"}, "a::b:"},
                                                               {"a::", {"a", ""}, "a::"}};
    for (const auto& [text, keys, back] : rows) {
        EXPECT_EQ(keys, Keys(ZAV_DictPath(text))) << back;
        EXPECT_EQ(back, Printed(ZAV_DictPath(text)));
    }
}

TEST(DictPath, AnEmptyTextThenNullFollowTheLastKey) {
    for (bool shortened : {false, true}) {
        ZAV_DictPath path(shortened ? "a:b:c" : "a:b");
        if (shortened) --path;
        const char* last = path.NextKey(path.NextKey(nullptr));
        EXPECT_STREQ("b", last);
        EXPECT_STREQ("", path.NextKey(last));
        EXPECT_EQ(nullptr, path.NextKey(path.NextKey(last)));
    }
}

TEST(DictPath, DroppedKeysStayDropped) {
    ZAV_DictPath path("a:b:c");
    EXPECT_EQ(&path, &path--);
    EXPECT_TRUE(path == "a:b" && "a:b" == path);
    EXPECT_EQ((List{"a", "b"}), Keys(ZAV_DictPath(path)));
    EXPECT_EQ((List{"a", "b", "x", "y"}), Keys(path + "x:y"));
    --path;
    path += "";
    EXPECT_EQ(List{"a"}, Keys(path));
    --path;
    --path;
    EXPECT_TRUE(path == ZAV_DictPath());
    EXPECT_TRUE(path != ":" && --ZAV_DictPath("a::") == "a");
}

TEST(DictPath, CopiesAndAppendsMayAliasThePath) {
    ZAV_DictPath path("key:other"), copy(path);
    path += path.NextKey(nullptr);
    path += ZAV_String(path);
    EXPECT_EQ((List{"key", "other", "key", "key", "other", "key"}), Keys(path));
    path = path.NextKey(path.NextKey(nullptr));
    EXPECT_EQ(List{"other"}, Keys(path));
    path = *&path;
    EXPECT_EQ((List{"key", "other"}), Keys(copy));
}

TEST(DictPath, TheSeparatorHoldsForPathsMadeAfterwards) {
    ZAV_DictPath before("a:b");
    ZAV_DictPath::SetSeparator('/');
    EXPECT_EQ((List{"a:b", "c"}), Keys(ZAV_DictPath("a:b/c")));
    EXPECT_EQ((List{"a", "b", "c"}), Keys(before + "c"));
    ZAV_DictPath::SetSeparator(':');
}

TEST(DictPath, HalfAMillionKeys) {
    ZAV_DictPath path(std::string(500000, ':').c_str());
    EXPECT_TRUE(path.Size() == 500000 && ZAV_String(path).Length() == 500000);
    while (path.Size() > 1) --path;
    EXPECT_TRUE(path == ":");
}

} // namespace
