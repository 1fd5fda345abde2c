#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include <zavbase/values/dict_path.h>

namespace {

std::vector<std::string> Keys(const ZAV_DictPath& path) {
    std::vector<std::string> keys;
    const char* key = nullptr;
    for (int i = 0; i < path.Size(); ++i) keys.push_back(key = path.NextKey(key));
    return keys;
}

typedef std::vector<std::string> List;

TEST(DictPath, TextToKeysAndBack) {
    const struct {
        const char* text;
        List keys;
        const char* back;
    } rows[] = {
        {"", {}, ""},
        {"a:b", {"a", "b"}, "a:b:"},
        {"a::b", {"a", "", "b"}, "a::b:"},
        {"a::", {"a", ""}, "a::"},
        {nullptr, {}, ""},
    };
    for (const auto& row : rows) {
        ZAV_DictPath path(row.text);
        SCOPED_TRACE(row.back);
        EXPECT_EQ(row.keys, Keys(path));
        std::ostringstream os;
        os << path;
        EXPECT_EQ(row.back, os.str());
    }
}

TEST(DictPath, AnEmptyTextThenNullFollowTheLastKey) {
    for (bool shortened : {false, true}) {
        ZAV_DictPath path(shortened ? "a:b:c" : "a:b");
        if (shortened) --path;
        const char* last = path.NextKey(path.NextKey(nullptr));
        EXPECT_STREQ("b", last);
        const char* after = path.NextKey(last);
        EXPECT_STREQ("", after);
        EXPECT_EQ(nullptr, path.NextKey(after));
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
    ZAV_DictPath path("key:other");
    ZAV_DictPath copy(path);
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
    EXPECT_EQ((List{"a", "b"}), Keys(ZAV_DictPath("a/b")));
    EXPECT_EQ(List{"a:b"}, Keys(ZAV_DictPath("a:b")));
    EXPECT_EQ((List{"a", "b", "c"}), Keys(before + "c"));
    ZAV_DictPath::SetSeparator(':');
}

TEST(DictPath, HalfAMillionKeys) {
    ZAV_DictPath path(std::string(500000, ':').c_str());
    EXPECT_EQ(500000, path.Size());
    EXPECT_EQ(500000u, ZAV_String(path).Length());
    while (path.Size() > 1) --path;
    EXPECT_TRUE(path == ":");
}

} // namespace
