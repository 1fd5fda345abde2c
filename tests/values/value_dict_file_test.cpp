#include "text_support.h"

#include <gtest/gtest.h>

#include "../support/file_support.h"
#include "../support/trace_capture.h"

namespace {

const char golden[] = ZAVBASE_TEST_DATA "/values.bin";

const auto gWriters = {&ZAV_UValDict::WriteTextFile, &ZAV_UValDict::WriteBinFile};

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
    for (auto write : gWriters) {
        TestFolder folder;
        const std::string path = folder.Path("more");
        const auto more = DictOf("<< /a << /b 1 /c 2 >> /x 3 >>"),
                   dict = DictOf("<< /a << /c 5 /d 6 >> /y 7 >>");
        for (const char* key : {"y", "n"}) more->SetEntry(key, nullptr);
        (*more.*write)(path.c_str());
        dict->ReadFile(path.c_str());
        const auto merged = DictOf("<< /a << /c 2 /d 6 /b 1 >> /y 7 /x 3 >>");
        // An entry without value is lost in text, and elsewhere it takes no place of another.
        if (FileText(path)[0] != '<') merged->SetEntry("n", nullptr);
        EXPECT_EQ(Printed(*dict), Printed(*merged));
    }
}

TEST(ValueDictFile, ABadFileIsToldByItsCodeAndAddsNothing) {
    TestFolder folder;
    const std::string path = folder.Path("bad");
    // The code that each way to read gives, and how many entries there are then.
    const auto expectCodes = [](const std::string& name, int any, int text, int binary) {
        typedef void (ZAV_UValDict::*Read)(const ZAV_SystemString&);
        const std::pair<Read, int> rows[] = {{&ZAV_UValDict::ReadFile, any},
                                             {&ZAV_UValDict::ReadTextFile, text},
                                             {&ZAV_UValDict::ReadBinFile, binary}};
        for (auto [read, code] : rows) {
            ZAV_UValDict dict(16);
            dict.DefineUVal("kept", UVAL_LONG);
            EXPECT_EQ(FileCodeOf([&dict, &name, read = read] { (dict.*read)(name.c_str()); }), code)
                << FileText(name);
            EXPECT_EQ(dict.GetSize(), code ? 1u : 2u) << FileText(name);
        }
    };
    for (const std::string& bad :
         {std::string(), std::string("[ 1 2 ]"), std::string("<< /a 5"), FileText(golden) + "x",
          std::string("\3\x10"), std::string("\3\x10\0\x12\0\0\0\x10UVALBINDUMP_2.1\0\3\0\0", 27)}) {
        PutFile(path, bad);
        expectCodes(path, 2, 2, 2);
    }
    PutFile(path, "<< /a 5 >>");
    expectCodes(path, 0, 0, 2);
    expectCodes(folder.Path("missing"), 3, 3, 3);
    expectCodes(folder.Path(), 3, 3, 3);
}

TEST(ValueDictFile, TheErrorAndTheTraceAreOfTheLastFile) {
    TestFolder folder;
    const std::string bytes = FileText(golden);
    struct Row {
        std::string bytes;
        long line;
        const char* trace;
    };
    for (const Row& row :
         {Row{bytes.substr(0, 30) + "x", 0, "Binary value file is malformed near byte 30\n"},
          Row{"\3bad", 0, "Binary value file is malformed near byte 0\n"},
          Row{"% x\n7", 1, "Error in object hierarchy\n"}, Row{"", 1, "Error in object hierarchy\n"}}) {
        ZAV_UValDict dict;
        EXPECT_FALSE(ReadValue("\n\n<< 5"));
        PutFile(folder.Path("bad"), row.bytes);
        TraceCapture trace(0x1);
        EXPECT_EQ(2, FileCodeOf([&] { dict.ReadFile(folder.Path("bad").c_str()); }));
        EXPECT_EQ(trace.Text(), row.trace);
        EXPECT_EQ(ZAV_GetUValTextError().mLine, row.line);
        EXPECT_EQ(3, FileCodeOf([&] { dict.ReadFile(folder.Path("missing").c_str()); }));
        EXPECT_EQ(ZAV_GetUValTextError().mLine, 0);
    }
}

// A reader with the same limit reads all that is written.
TEST(ValueDictFile, WhatNestsTooDeepIsNotWritten) {
    TestFolder folder;
    const std::string path = folder.Path("old");
    PutFile(path, "old");
    ZAV_UValDict deep, keys;
    deep.SetUVal("a:b:c:d", ReadValue("5").release());
    keys.SetEntry("a:b:c:d", ReadValue("5").release());
    for (unsigned long limit : {3ul, 4ul, 0ul}) {
        ZAV_SetUValNestingLimit(limit);
        for (ZAV_UValDict* dict : {&deep, &keys}) {
            const bool fits = limit != 3, isRefused = !fits && dict == &deep;
            std::ostringstream os;
            ZAV_WriteUValTxt(os, dict, 0);
            EXPECT_EQ(os.good(), fits);
            EXPECT_EQ(fits, DictOf(os.str()) != nullptr);
            EXPECT_TRUE(fits || os.str().empty());
            EXPECT_EQ(FileCodeOf([&] { dict->WriteTextFile(path.c_str()); }), fits ? 0 : 7);
            EXPECT_EQ(FileText(path) == "old", !fits);
            PutFile(path, "old");
            const auto writeBinary = [&] { dict->WriteBinFile(path.c_str()); };
            EXPECT_EQ(Thrown<ZAV_BinPackException>(writeBinary) != nullptr, isRefused);
            EXPECT_EQ(FileText(path) == "old", isRefused);
            EXPECT_EQ(FileCodeOf([&] { ZAV_UValDict().ReadBinFile(path.c_str()); }), isRefused ? 2 : 0);
            PutFile(path, "old");
        }
    }
    ZAV_SetUValNestingLimit(10000);
    EXPECT_EQ(folder.FileCount(), 1);
}

TEST(ValueDictFile, EveryCutAndEveryFlippedByteIsADictionaryOrAnInvalidFile) {
    TestFolder folder;
    const std::string path = folder.Path("damaged");
    const std::string text = "<<\n/a [ 1 -2.5 (\\(x\\101) ] zavdouble\n/b:c (d(e)) zavutfstring % f\n"
                             "/g << /h [ 0 0 ] zavptr >> /s [ (x) () ]\n>>";
    DictOf(text)->WriteBinFile(path.c_str());
    const auto codeOf = [&](const std::string& damaged) {
        PutFile(path, damaged);
        ZAV_UValDict read(16);
        const int code = FileCodeOf([&] { read.ReadFile(path.c_str()); });
        EXPECT_TRUE(code == 0 ? ReadValue(Written(read)) != nullptr : read.GetSize() == 0) << damaged;
        return code;
    };
    for (const std::string& whole : {text, FileText(path)}) {
        for (size_t cut = 0; cut < whole.size(); ++cut) ASSERT_EQ(codeOf(whole.substr(0, cut)), 2) << cut;
        // A bit of each byte and all of them; of text any bit.
        for (size_t i = 0; i < 9 * whole.size(); ++i) {
            const size_t at = i / 9, bit = i % 9;
            if (whole != text && bit != at % 8 && bit != 8) continue;
            std::string damaged = whole;
            damaged[at] = static_cast<char>(damaged[at] ^ (bit == 8 ? 0xFF : 1 << bit));
            const int code = codeOf(damaged);
            ASSERT_TRUE(code == 2 || code == 0) << i;
        }
    }
}

TEST(ValueDictFile, WritingTellsWhatFailedAndLeavesTheOldFile) {
    TestFolder folder;
    const auto dict = DictOf("<< /a 1 >>");
    for (auto write : gWriters) {
        const auto codeOf = [&](const std::string& path) {
            return FileCodeOf([&] { (*dict.*write)(path.c_str()); });
        };
        EXPECT_EQ(codeOf(folder.Path("no/such/folder")), 4);
        EXPECT_EQ(codeOf(folder.Path()), 4);
        // Where there is such a device, it is the full disk itself.
        EXPECT_TRUE(!std::filesystem::exists("/dev/full") || codeOf("/dev/full") == 7);
    }
    dict->DefineUVal("s", UVAL_STRING)->SetStrValue(ZAV_String('x', 70000u), 0);
    PutFile(folder.Path("old"), "old");
    EXPECT_TRUE(Thrown<ZAV_BinPackException>([&] { dict->WriteBinFile(folder.Path("old").c_str()); }));
    EXPECT_EQ(FileText(folder.Path("old")), "old");
    EXPECT_EQ(folder.FileCount(), 1);
}

} // namespace
