#include "text_support.h"

#include <gtest/gtest.h>

#include <zavbase/strings/system_string.h>
#include <zavbase/values/bin_pack.h>

#include "../support/file_support.h"

namespace {

const char golden[] = ZAVBASE_TEST_DATA "/values.bin";

enum Form { TEXT, BINARY };

void Write(ZAV_UValDict& dict, const std::string& path, Form form) {
    if (form == TEXT)
        dict.WriteTextFile(path.c_str());
    else
        dict.WriteBinFile(path.c_str());
}

TEST(ValueDictFile, WritesTheGoldenFiles) {
    TestFolder folder;
    const std::string out = folder.Path("out");
    ZAV_UValDict dict(16), again(16);
    dict.ReadBinFile(golden);
    dict.WriteBinFile(out.c_str());
    EXPECT_EQ(FileText(out), FileText(golden));
    dict.WriteTextFile(out.c_str());
    EXPECT_EQ(FileText(out), FileText(ZAVBASE_TEST_DATA "/values.zav"));
    EXPECT_EQ(folder.FileCount(), 1);
    // Reading the text loses the empty key and the entry without value, and makes a path of "a:b".
    again.ReadFile(out.c_str());
    EXPECT_EQ(again.GetSize(), dict.GetSize() - 2);
    EXPECT_EQ(again.GetValue("a:b", 0), 2);
}

TEST(ValueDictFile, ReadingMergesEitherForm) {
    for (Form form : {TEXT, BINARY}) {
        TestFolder folder;
        const std::string path = folder.Path("more");
        UValOwner more = ReadValue("<< /a << /b 1 /c 2 >> /x 3 >>");
        Write(static_cast<ZAV_UValDict&>(*more), path, form);
        UValOwner owner = ReadValue("<< /a << /c 5 /d 6 >> /y 7 >>");
        ZAV_UValDict& dict = static_cast<ZAV_UValDict&>(*owner);
        dict.ReadFile(path.c_str());
        EXPECT_EQ(Printed(dict), Printed(*ReadValue("<< /a << /c 2 /d 6 /b 1 >> /y 7 /x 3 >>")));
    }
}

TEST(ValueDictFile, ReadsANamedDictionaryOutOfATextFile) {
    TestFolder folder;
    PutFile(folder.Path("f"), "<< /one << /a 1 >> /two << /b 2 >> this is never read");
    ZAV_UValDict dict(16);
    dict.ReadTextFile(folder.Path("f").c_str(), "two");
    dict.ReadTextFile(folder.Path("f").c_str(), "three");
    EXPECT_EQ(Printed(dict), "    |- b => (Long)2\n");
}

TEST(ValueDictFile, ABadFileIsToldByItsCodeAndAddsNothing) {
    TestFolder folder;
    const std::string path = folder.Path("bad");
    const std::string bytes = FileText(golden);
    const struct {
        std::string mText;
        int mText_, mBin, mAny;
    } rows[] = {
        {"", 2, 2, 2},
        {"[ 1 2 ]", 2, 2, 2},
        {"<< /a 5", 2, 2, 2},
        {"<< /a 5 >>", 0, 2, 0},
        {bytes + "x", 2, 2, 2},
        {"\3\x10", 2, 2, 2},
        {std::string("\3\x10\0\x12\0\0\0\x10UVALBINDUMP_2.1\0\3\0\0", 27), 2, 2, 2},
    };
    for (const auto& row : rows) {
        PutFile(path, row.mText);
        for (auto read : {&ZAV_UValDict::ReadFile, &ZAV_UValDict::ReadBinFile}) {
            ZAV_UValDict dict(16);
            dict.DefineUVal("kept", UVAL_LONG);
            int code = FileCodeOf([&] { (dict.*read)(path.c_str()); });
            EXPECT_EQ(code, read == &ZAV_UValDict::ReadFile ? row.mAny : row.mBin) << row.mText;
            EXPECT_EQ(dict.GetSize(), code ? 1u : 2u) << row.mText;
        }
        ZAV_UValDict dict(16);
        EXPECT_EQ(FileCodeOf([&] { dict.ReadTextFile(path.c_str()); }), row.mText_) << row.mText;
    }
    for (const std::string& name : {folder.Path("missing"), folder.Path()}) {
        ZAV_UValDict dict(16);
        EXPECT_EQ(FileCodeOf([&] { dict.ReadFile(name.c_str()); }), 3);
        EXPECT_EQ(FileCodeOf([&] { dict.ReadTextFile(name.c_str(), "x"); }), 3);
        EXPECT_EQ(FileCodeOf([&] { dict.ReadBinFile(name.c_str()); }), 3);
    }
}

TEST(ValueDictFile, EveryCutAndEveryFlippedByteIsADictionaryOrAnInvalidFile) {
    TestFolder folder;
    const std::string path = folder.Path("damaged");
    ZAV_UValDict dict(16);
    UValOwner small =
        ReadValue("<< /a [ 1 2 ] /s [ (x) () ] /d << /u (y) zavutfstring /p [ 0 0 ] zavptr >> /r 1.5 >>");
    static_cast<ZAV_UValDict&>(*small).WriteBinFile(path.c_str());
    const std::string bytes = FileText(path);
    for (size_t cut = 0; cut < bytes.size(); ++cut) {
        PutFile(path, bytes.substr(0, cut));
        ASSERT_EQ(FileCodeOf([&] { dict.ReadFile(path.c_str()); }), 2) << cut;
    }
    for (size_t i = 0; i < 2 * bytes.size(); ++i) {
        std::string damaged = bytes;
        damaged[i / 2] = static_cast<char>(damaged[i / 2] ^ (i % 2 ? 0xFF : 1 << (i / 2 % 8)));
        PutFile(path, damaged);
        ZAV_UValDict read(16);
        int code = FileCodeOf([&] { read.ReadFile(path.c_str()); });
        ASSERT_TRUE(code == 2 ? read.GetSize() == 0 : code == 0) << i;
    }
    EXPECT_EQ(dict.GetSize(), 0u);
}

TEST(ValueDictFile, WritingTellsWhatFailedAndLeavesTheOldFile) {
    TestFolder folder;
    UValOwner owner = ReadValue("<< /a 1 >>");
    ZAV_UValDict& dict = static_cast<ZAV_UValDict&>(*owner);
    for (Form form : {TEXT, BINARY}) {
        EXPECT_EQ(FileCodeOf([&] { Write(dict, folder.Path("no/such/folder"), form); }), 4);
        EXPECT_EQ(FileCodeOf([&] { Write(dict, folder.Path(), form); }), 4);
        // Where there is such a device, it is the full disk itself.
        if (std::filesystem::exists("/dev/full")) {
            EXPECT_EQ(FileCodeOf([&] { Write(dict, "/dev/full", form); }), 7);
        }
    }
    ZAV_UValDict large(16);
    large.DefineUVal("s", UVAL_STRING)->SetStrValue(ZAV_String('x', 70000u), 0);
    PutFile(folder.Path("old"), "old");
    EXPECT_TRUE(Thrown<ZAV_BinPackException>([&] { large.WriteBinFile(folder.Path("old").c_str()); }));
    EXPECT_EQ(FileText(folder.Path("old")), "old");
    EXPECT_EQ(folder.FileCount(), 1);
}

} // namespace
