#include "text_support.h"

#include <random>

#include <gtest/gtest.h>

#include "../support/file_support.h"

namespace {

typedef std::string Bytes;

// All that the packer puts, through a buffer of `room` bytes.
template <class Packer>
Bytes PutAll(Packer&& packer, size_t room) {
    Bytes all;
    std::vector<unsigned char> buffer(room);
    for (bool more = true; more;) {
        unsigned char* cursor = buffer.data();
        more = packer.Put(&cursor, buffer.data() + room) != 0;
        all.append(reinterpret_cast<char*>(buffer.data()), static_cast<size_t>(cursor - buffer.data()));
        EXPECT_TRUE(!more || cursor == buffer.data() + room);
    }
    return all;
}

const int kRefused = -1;

// Offers the bytes in pieces; returns the last answer, or that they were refused.
template <class Packer>
int GetAll(Packer&& packer, const Bytes& bytes, size_t piece, size_t* taken = nullptr) {
    const unsigned char* start = reinterpret_cast<const unsigned char*>(bytes.data());
    const unsigned char* cursor = start;
    int more = 1;
    const auto thrown = Thrown<ZAV_BinPackException>([&] {
        for (size_t end = 0; more && end < bytes.size();)
            more = packer.Get(&cursor, start + (end = (std::min)(end + piece, bytes.size())));
    });
    if (taken) *taken = static_cast<size_t>(cursor - start);
    return thrown ? kRefused : more;
}

int ReadDict(ZAV_UValDict& dict, const Bytes& bytes, size_t piece, size_t* taken = nullptr) {
    return GetAll(ZAV_BinPackUValDict(dict), bytes, piece, taken);
}

TEST(BinPack, ReadingReplacesWhatIsThere) {
    const auto dict = DictOf("<< /y 5 /z 6 >>");
    EXPECT_EQ(ReadDict(*dict, PutAll(ZAV_BinPackUValDict(*DictOf("<< /y << /a 1 >> /x 3 >>")), 512), 7), 0);
    EXPECT_EQ(Printed(*dict), Printed(*DictOf("<< /y << /a 1 >> /z 6 /x 3 >>")));
}

TEST(BinPack, AtomsHaveACountUnlessItIsOne) {
    uint16_t numbers[] = {1, 0x1234, 3}, untouched = 7;
    EXPECT_EQ(PutAll(ZAV_BinPackAtom(BINPACK_16, 1, numbers + 1), 1), Bytes("\x03\x34\x12"));
    EXPECT_EQ(PutAll(ZAV_BinPackAtom(BINPACK_NONE, 0, nullptr), 2), Bytes("\x10\0\0\0\0", 5));
    for (size_t room = 1; room < 13; ++room) {
        const Bytes wire("\x13\0\0\0\x03\x01\0\x34\x12\x03\0", 11);
        ASSERT_EQ(PutAll(ZAV_BinPackAtom(BINPACK_16, 3, numbers), room), wire) << room;
        uint16_t read[3] = {};
        size_t taken = 0;
        EXPECT_EQ(GetAll(ZAV_BinPackAtom(BINPACK_16, 3, read), wire + "more", room, &taken), 0);
        EXPECT_EQ(taken, wire.size());
        EXPECT_EQ(0, memcmp(read, numbers, sizeof read));
    }
    EXPECT_TRUE(Thrown<ZAV_BinPackException>([] { ZAV_BinPackAtom(8, 1, nullptr); }));
    EXPECT_TRUE(Thrown<ZAV_BinPackException>(
        [] { ZAV_BinPackAtom(BINPACK_64, 0xFFFFFFFFul + (sizeof(long) > 4), nullptr); }));
    EXPECT_EQ(GetAll(ZAV_BinPackAtom(BINPACK_16, 1, &untouched), Bytes("\x04\1\1\1\1", 5), 5), kRefused);
    EXPECT_EQ(untouched, 7);
}

TEST(BinPack, ADictionaryIsTheSameHoweverItIsCut) {
    const Bytes golden = FileText(ZAVBASE_TEST_DATA "/values.bin").substr(24);
    for (const size_t piece : {1u, 2u, 3u, 5u, 7u, 13u, 64u, 127u, 128u, 129u, 512u, 100000u}) {
        ZAV_UValDict dict(16);
        size_t taken = 0;
        ASSERT_EQ(ReadDict(dict, golden + "rest", piece, &taken), 0) << piece;
        ASSERT_EQ(taken, golden.size()) << piece;
        ASSERT_EQ(PutAll(ZAV_BinPackUValDict(dict), piece), golden) << piece;
    }
}

TEST(BinPack, RefusesWhatDoesNotFitBeforeItWrites) {
    ZAV_UValDict large(16), text(16), pointers(16);
    ZAV_UValDict* const dicts[] = {&large, &text, &pointers};
    for (int i = 0; i < 65535; ++i) large.SetEntry(std::to_string(i).c_str(), nullptr);
    text.DefineUVal("in:s", UVAL_STRING)->SetStrValue(ZAV_String('x', 65534u), 0);
    pointers.DefineUVal("p", UVAL_PTR, static_cast<long>(ZAV_BINPACK_MAX_POINTERS));
    for (ZAV_UValDict* dict : dicts)
        EXPECT_FALSE(Thrown<ZAV_BinPackException>([&] { PutAll(ZAV_BinPackUValDict(*dict), 1000); }));
    large.SetEntry("more", nullptr);
    text.GetUVal("in:s")->SetStrValue(ZAV_String('x', 65535u), 0);
    pointers.DefineUVal("q", UVAL_PTR, 1);
    for (ZAV_UValDict* dict : dicts) {
        unsigned char buffer[512], *cursor = buffer;
        ZAV_BinPackUValDict packer(*dict);
        EXPECT_TRUE(Thrown<ZAV_BinPackException>([&] { packer.Put(&cursor, buffer + sizeof buffer); }));
        EXPECT_EQ(cursor, buffer);
    }
}

// What no Put writes, and claims that would take much memory if they were believed.
TEST(BinPack, RefusesWrongBytes) {
    const Bytes key("\3\2\0\x12\0\0\0\2k\0", 10), entry = Bytes("\3\1\0", 3) + key, none("\3\0\0", 3);
    const Bytes wrong[] = {
        entry + Bytes("\3\x0d\0", 3), // no such type
        entry + Bytes("\3\x10\1", 3),
        entry + Bytes("\4\6\0\0\0", 5),                    // another kind
        entry + Bytes("\x13\0\0\0\1\6\0", 7),              // a count of one written out
        entry + Bytes("\3\6\0\4\xff\xff\xff\xff", 8),      // a negative dimension
        entry + Bytes("\3\6\0\4\2\0\0\0\x14\0\0\0\3", 13), // another count than the dimension
        entry + Bytes("\3\6\0\4\1\0\0\0\x14\0\0\0\1\1\0\0\0", 17),
        entry + Bytes("\3\x0c\0\4\1\0\1\0", 8),                      // too many pointers
        entry + Bytes("\3\x0a\0\4\0\0\0\0\3\0\0", 11),               // a text without room for its NUL
        entry + Bytes("\3\x0a\0\4\0\0\0\0\3\2\0\x12\0\0\0\2xx", 18), // a text without NUL
        Bytes("\3\1\0\3\0\0", 6),                                    // and such keys
        Bytes("\3\1\0\3\x42\0", 6),
        Bytes("\3\1\0\3\3\0\x12\0\0\0\3a\0\0", 14),
        Bytes("\3\1\0\3\2\0\x12\0\0\0\2ab", 13),
        Bytes("\3\2\0", 3) + key + none + key + none,
    };
    for (const Bytes& bytes : wrong) {
        for (const size_t piece : {1u, 1000u}) {
            ZAV_UValDict dict(16);
            EXPECT_EQ(ReadDict(dict, bytes, piece), kRefused) << testing::PrintToString(bytes);
        }
    }
    // Two thousand million elements, of which none has come: more input is wanted, no memory taken.
    for (const char* type :
         {"\3\x09\0\4\xff\xff\xff\x7f\x17\x7f\xff\xff\xff", "\3\x0a\0\4\xff\xff\xff\x7f\3\1\0\2\0"}) {
        ZAV_UValDict dict(16);
        EXPECT_GT(ReadDict(dict, entry + Bytes(type, 13), 1000), 0);
        EXPECT_EQ(dict.GetSize(), 0u);
    }
}

// Keys in the order in which the table has them, its capacity, and the entries in their order.
std::string TableOf(ZAV_UValDict& dict) {
    std::string keys = std::to_string(dict.GetValuePtr()->Capacity());
    ZAV_Iterator it(dict.GetValuePtr());
    while (ZAV_CltObject* entry = ++it) (keys += ' ') += static_cast<ZAV_AssocUVal*>(entry)->Key();
    return keys + "\n" + Printed(dict);
}

TEST(BinPack, ReadersFillTablesAsAddingOneByOneDoes) {
    std::mt19937 random(1);
    for (int round = 0; round < 400; ++round) {
        ZAV_UValDict dict(16), read(16);
        std::string text = "<<";
        for (auto n = random() % (round % 20 ? 150 : 1500); n > 0; --n) {
            // Numbered keys, whose hashes collide, random ones, or some of which come twice.
            std::string key = round % 3 == 0 ? "key" + std::to_string(n) : "k" + std::to_string(random());
            if (round % 3 == 2) key = std::string(1 + random() % 70, static_cast<char>('a' + random() % 3));
            dict.SetEntry(key.c_str(), new ZAV_UValLong);
            dict.GetUVal(key.c_str())->SetLongValue(static_cast<long>(n), 0);
            text += " /" + key + " " + std::to_string(n);
        }
        ASSERT_EQ(TableOf(*DictOf(text + " >>")), TableOf(dict)) << text;
        ReadDict(read, PutAll(ZAV_BinPackUValDict(dict), 1000), 1000);
        ASSERT_EQ(TableOf(read), TableOf(dict));
        for (ZAV_AssocUVal* e = dict.GetNextAssoc(nullptr); e; e = e->GetNext())
            ASSERT_TRUE(read.AssocAt(e->Key()));
    }
}

// Deeper than any stack could follow.
TEST(BinPack, PacksAnyDepthAndReadsToTheLimit) {
    ZAV_UValDict deep(16), read(16);
    deep.SetUVal(std::string(200000, ':').c_str(), new ZAV_UValLong);
    const Bytes bytes = PutAll(ZAV_BinPackUValDict(deep), 65536);
    EXPECT_EQ(ReadDict(read, bytes, 65536), kRefused);
    read.Clear();
    ZAV_SetUValNestingLimit(0);
    EXPECT_EQ(ReadDict(read, bytes, 65536), 0);
    ZAV_SetUValNestingLimit(10000);
}

} // namespace
