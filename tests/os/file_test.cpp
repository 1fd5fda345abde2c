#include <zavbase/os/file.h>

#include <gtest/gtest.h>

#include "../support/file_support.h"

namespace {

using namespace zav_os;
namespace fs = std::filesystem;

// A folder of its own and the path of a file in it.
class OsFile : public testing::Test {
protected:
    const TestFolder mFolder;
    const std::string mPath = mFolder.Path("f");
};

TEST_F(OsFile, ReadsOrdinaryFilesWhole) {
    FileBytes bytes;
    for (const std::string& text :
         {std::string(), std::string("line\r\n\x1a\0more", 11) + std::string(100000, 'x')}) {
        PutFile(mPath, text);
        ASSERT_EQ(ReadWholeFile(mPath.c_str(), text.size(), &bytes), READ_DONE);
        EXPECT_EQ(std::string(bytes.mData, bytes.mSize), text);
        EXPECT_EQ(bytes.mData[bytes.mSize], '\0');
        FreeFileBytes(&bytes);
    }
    EXPECT_EQ(ReadWholeFile(mPath.c_str(), 100010, &bytes), READ_TOO_LARGE);
    EXPECT_EQ(bytes.mData, nullptr);
    EXPECT_EQ(ReadWholeFile(mFolder.Path("none").c_str(), 10, &bytes), READ_NOT_OPEN);
    EXPECT_EQ(ReadWholeFile(mFolder.Path().c_str(), 10, &bytes), READ_NOT_OPEN);
}

TEST_F(OsFile, AReplacementAppearsAtCommitOrNotAtAll) {
    PutFile(mPath, "old");
    {
        FileReplacement givenUp;
        ASSERT_EQ(givenUp.Open(mPath.c_str()), 0u);
        EXPECT_EQ(givenUp.Write("new", 3), 0u);
        EXPECT_EQ(mFolder.FileCount(), 2);
    }
    EXPECT_EQ(FileText(mPath), "old");
    EXPECT_EQ(mFolder.FileCount(), 1);
    FileReplacement first, second, third;
    for (FileReplacement* replacement : {&first, &second, &third})
        ASSERT_EQ(replacement->Open(mPath.c_str()), 0u);
    first.Write("first", 5);
    second.Write("second\n", 7);
    EXPECT_EQ(second.Commit(), 0u);
    EXPECT_EQ(FileText(mPath), "second\n");
    EXPECT_EQ(first.Commit(), 0u);
    EXPECT_NE(third.CommitNew(), 0u) << "another came first";
    EXPECT_EQ(FileText(mPath), "first");
    EXPECT_EQ(mFolder.FileCount(), 1);
}

TEST_F(OsFile, AReplacementKeepsModeAndLinks) {
    const std::string link = mFolder.Path("link");
    PutFile(mPath, "old");
    fs::permissions(mPath, fs::perms::owner_read | fs::perms::owner_write);
    const auto mode = fs::status(mPath).permissions();
    std::error_code noLinks;
    fs::create_symlink(mPath, link, noLinks);
    FileReplacement replacement;
    ASSERT_EQ(replacement.Open((noLinks ? mPath : link).c_str()), 0u);
    replacement.Write("new", 3);
    ASSERT_EQ(replacement.Commit(), 0u);
    EXPECT_EQ(FileText(mPath), "new");
    EXPECT_EQ(fs::status(mPath).permissions(), mode);
    EXPECT_TRUE(noLinks || fs::is_symlink(link));
}

TEST_F(OsFile, RefusalsAndDeletion) {
    for (const char* name : {"no/f", ""}) EXPECT_NE(FileReplacement().Open(mFolder.Path(name).c_str()), 0u);
    EXPECT_EQ(mFolder.FileCount(), 0);
    PutFile(mPath, "");
    EXPECT_EQ(DeleteOneFile(mPath.c_str()), 0u);
    EXPECT_NE(DeleteOneFile(mPath.c_str()), 0u);
}

} // namespace
