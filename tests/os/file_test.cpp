#include <zavbase/os/file.h>

#include <gtest/gtest.h>

#include "../support/file_support.h"

namespace {

using namespace zav_os;

TEST(OsFile, ReadsOrdinaryFilesWhole) {
    TestFolder folder;
    const std::string path = folder.Path("f"),
                      text = std::string("line\r\n\x1a\0more", 11) + std::string(100000, 'x');
    PutFile(path, text);
    FileBytes bytes;
    ASSERT_EQ(ReadWholeFile(path.c_str(), text.size(), &bytes), READ_DONE);
    EXPECT_EQ(std::string(bytes.mData, bytes.mSize), text);
    EXPECT_EQ(bytes.mData[bytes.mSize], '\0');
    FreeFileBytes(&bytes);
    EXPECT_EQ(ReadWholeFile(path.c_str(), text.size() - 1, &bytes), READ_TOO_LARGE);
    EXPECT_EQ(bytes.mData, nullptr);
    EXPECT_EQ(ReadWholeFile(folder.Path("none").c_str(), 10, &bytes), READ_NOT_OPEN);
    EXPECT_EQ(ReadWholeFile(folder.Path().c_str(), 10, &bytes), READ_NOT_OPEN);
    PutFile(path, "");
    ASSERT_EQ(ReadWholeFile(path.c_str(), 0, &bytes), READ_DONE);
    EXPECT_EQ(bytes.mSize, 0u);
    FreeFileBytes(&bytes);
}

TEST(OsFile, AReplacementAppearsAtCommitOrNotAtAll) {
    TestFolder folder;
    const std::string path = folder.Path("f");
    PutFile(path, "old");
    {
        FileReplacement given_up;
        ASSERT_EQ(given_up.Open(path.c_str()), 0u);
        EXPECT_EQ(given_up.Write("new", 3), 0u);
        EXPECT_EQ(FileText(path), "old");
        EXPECT_EQ(folder.FileCount(), 2);
    }
    EXPECT_EQ(FileText(path), "old");
    EXPECT_EQ(folder.FileCount(), 1);
    FileReplacement first, second;
    ASSERT_EQ(first.Open(path.c_str()), 0u);
    ASSERT_EQ(second.Open(path.c_str()), 0u);
    first.Write("first", 5);
    second.Write("second\n", 7);
    EXPECT_EQ(second.Commit(), 0u);
    EXPECT_EQ(FileText(path), "second\n");
    EXPECT_EQ(first.Commit(), 0u);
    EXPECT_EQ(FileText(path), "first");
    EXPECT_EQ(folder.FileCount(), 1);
}

TEST(OsFile, AReplacementThatMustBeNewFailsWhenAnotherCameFirst) {
    TestFolder folder;
    const std::string path = folder.Path("f");
    FileReplacement first, second;
    ASSERT_EQ(first.Open(path.c_str()), 0u);
    ASSERT_EQ(second.Open(path.c_str()), 0u);
    first.Write("first", 5);
    second.Write("second", 6);
    EXPECT_EQ(second.CommitNew(), 0u);
    EXPECT_NE(first.CommitNew(), 0u);
    EXPECT_EQ(FileText(path), "second");
    EXPECT_EQ(folder.FileCount(), 1);
}

TEST(OsFile, AReplacementKeepsModeAndLinks) {
    TestFolder folder;
    const std::string path = folder.Path("f"), link = folder.Path("link");
    PutFile(path, "old");
    std::filesystem::permissions(path,
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    const auto mode = std::filesystem::status(path).permissions();
    std::error_code noLinks;
    std::filesystem::create_symlink(path, link, noLinks);
    FileReplacement replacement;
    ASSERT_EQ(replacement.Open((noLinks ? path : link).c_str()), 0u);
    replacement.Write("new", 3);
    ASSERT_EQ(replacement.Commit(), 0u);
    EXPECT_EQ(FileText(path), "new");
    EXPECT_EQ(std::filesystem::status(path).permissions(), mode);
    EXPECT_TRUE(noLinks || std::filesystem::is_symlink(link));
}

TEST(OsFile, OpeningFailsWhereAFileCannotBeWritten) {
    TestFolder folder;
    for (const char* name : {"no/f", ""}) EXPECT_NE(FileReplacement().Open(folder.Path(name).c_str()), 0u);
    EXPECT_EQ(folder.FileCount(), 0);
}

TEST(OsFile, FoldersAndDeletion) {
    TestFolder folder;
    char before[4096], there[4096], tiny[2];
    ASSERT_EQ(CurrentFolder(before, sizeof before), 0u);
    EXPECT_NE(CurrentFolder(tiny, sizeof tiny), 0u);
    PutFile(folder.Path("f"), "");
    PutFile(folder.Path("stays"), "");
    ASSERT_EQ(ChangeFolder(folder.Path().c_str()), 0u);
    ASSERT_EQ(CurrentFolder(there, sizeof there), 0u);
    EXPECT_EQ(DeleteOneFile("f"), 0u);
    EXPECT_NE(DeleteOneFile("f"), 0u);
    EXPECT_NE(ChangeFolder("no such folder"), 0u);
    EXPECT_EQ(ChangeFolder(before), 0u);
    EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(there) / "stays"));
}

} // namespace
