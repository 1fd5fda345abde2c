#include <gtest/gtest.h>

#include <random>

#include <zavbase/strings/byte_string.h>

namespace {

std::string bytes(const ZAV_Str& s) { return std::string(s.Ptr(), s.Size()); }

// What the capacity of a buffer for `n` characters reports.
unsigned roomFor(unsigned n) { return (n / 16 + 1) * 16 - 1; }

TEST(ByteString, NaturalCallsPickTheRightConstructor) {
    const ZAV_String none;
    EXPECT_EQ(none.Capacity(), 4294967295u);
    for (const ZAV_String& s : {ZAV_String(nullptr), ZAV_String(0u), ZAV_String(0), ZAV_String(none)})
        EXPECT_EQ(s.Capacity(), 15u) << "owns a buffer";
    EXPECT_EQ(ZAV_String(size_t{20}).Capacity(), 31u);
    EXPECT_EQ(ZAV_String('x').Capacity(), roomFor(120));
    const unsigned char prefixed[] = {3, 'a', '\0', 'c', 'd'};
    EXPECT_EQ(bytes(ZAV_String(prefixed)), std::string("a\0c", 3));
    EXPECT_EQ(bytes(ZAV_String('z', 17)), std::string(17, 'z'));
}

// The hidden slack must not show: capacities are those of growth by 16, step by step.
TEST(ByteString, CapacityGrowsAsIfByReallocation) {
    ZAV_String s(0u);
    for (unsigned n = 1; n <= 2000; ++n) {
        const char* const before = s.Ptr();
        s += 'a';
        ASSERT_EQ(s.Capacity(), n <= 16 ? 15 : roomFor(n % 16 == 0 ? n - 1 : n)) << n;
        ASSERT_TRUE(n > 17 || (s.Ptr() == before) == (n <= 16)) << "the first buffer has no slack";
    }
    EXPECT_EQ(s.ReSize(5), roomFor(2000));
    s = "short";
    EXPECT_EQ(s.Capacity(), roomFor(2000)) << "assignment keeps the buffer";
    EXPECT_EQ(s.ReSize(5), 15u) << "ReSize may shrink it";
    EXPECT_STREQ(s, "short");

    struct Open : ZAV_String {
        Open() : ZAV_String("ab") { concatCopy(mLength, mData, 20, "cdefghijklmnopqrstuvwxyz"); }
        std::string Text() const { return std::string(mData, mLength) + std::to_string(mCapacity); }
    };
    EXPECT_EQ(Open().Text(), "abcdefghijklmnopqrstuv32") << "for derived classes, from its own text";
}

// The source is elsewhere, or it lies before, across or behind the range in the string's own buffer, which
// any step may have to enlarge.
TEST(ByteString, SplicesAppendsAndAssignsAsTheModelDoes) {
    std::mt19937 engine(7);
    const auto random = [&engine] { return static_cast<unsigned>(engine()); };
    ZAV_String own;
    std::string model;
    for (int i = 0; i < 30000; ++i) {
        const unsigned size = static_cast<unsigned>(model.size());
        const unsigned pos = random() % (size + 1), len = random() % (size - pos + 1);
        const unsigned from = random() % (size + 1), n = random() % (size - from + 1);
        const std::string sources[] = {model, model.substr(from, n), model.c_str() + from,
                                       std::string(random() % 20, static_cast<char>('a' + i % 26))};
        const unsigned kind = random() % 4;
        const auto withSource = [&](auto use) {
            if (kind == 0) use(own);
            if (kind == 1) use(own(from, n));
            if (kind == 2) use(own.Ptr() + from);
            if (kind == 3) use(sources[3].c_str());
        };
        const char* const buffer = own.Ptr();
        const unsigned what = random() % 10;
        if (what == 0) {
            withSource([&](const auto& source) { own = source; });
            model = sources[kind];
            ASSERT_TRUE(kind == 3 || own.Ptr() == buffer);
        } else if (what == 1) {
            withSource([&](const auto& source) { own += source; });
            model += sources[kind];
        } else {
            withSource([&](const auto& source) { own(pos, len) = source; });
            model.replace(pos, len, sources[kind]);
        }
        ASSERT_EQ(bytes(own), model) << i;
        ASSERT_EQ(own.Ptr()[own.Length()], '\0');
        ASSERT_GT(own.Capacity() + 2, own.Length()) << i;
        if (model.size() <= 300) continue;
        model = std::string("a\0b", 3);
        own = ZAV_String(model.data(), 3);
    }
}

TEST(ByteString, AViewLeftOverFromASpliceStaysInsideItsOwner) {
    ZAV_String s("0123456789");
    ZAV_SubString view = s(3, 2);
    view = "abcdef";
    EXPECT_STREQ(s, "012abcdef56789");
    EXPECT_TRUE(view == "ab" && view.Position() == 3);
    view = view + view;
    EXPECT_STREQ(s, "012ababcdef56789");
    s = "0123456789";
    ZAV_SubString wide = s(3, 5);
    wide = "";
    EXPECT_STREQ(s, "01289");
    wide = "abcde";
    EXPECT_STREQ(s, "012abcde");
    s = "01";
    wide = "lost";
    EXPECT_STREQ(s, "01") << "a view behind the end reaches nothing";
    ZAV_SubStr none;
    none = s;
    EXPECT_EQ(none.Size(), 0u);
}

TEST(ByteString, NulBytesSurviveCopiesAndSums) {
    const std::string raw("a\0b", 3);
    const ZAV_String s(raw.data(), 3);
    EXPECT_EQ(bytes(s + s(0, 3) + (s(0, 3) + s)), raw + raw + raw + raw);
    EXPECT_EQ(bytes(s(0, 1) + "z"), "az");
    EXPECT_TRUE(s(0, 1) + s(2, 1) == "ab" && s(0, 1) + ZAV_Str(s(2, 1)) + "c" == "abc") << "no addresses";
    EXPECT_EQ(bytes('x' + s), "x" + raw);
    EXPECT_EQ(bytes("x" + s(1, 2)), "x" + raw.substr(1));
    ZAV_String t("abc");
    t(1, 1) = s;
    t += s;
    EXPECT_EQ(bytes(t), "a" + raw + "c" + raw);
    t(5, 3) = ZAV_String("x\0y", 3);
    EXPECT_EQ(bytes(t), "a" + raw + "c" + std::string("x\0y", 3)) << "in place, too";
    EXPECT_STREQ((s + 'c' + nullptr).Ptr(), "a");
}

TEST(ByteString, EqualityIsBinaryAndTheRestEndsAtNul) {
    const ZAV_String ab("a\0b", 3), ac("a\0c", 3);
    EXPECT_FALSE(ab == ac);
    EXPECT_FALSE(ab != ac);
    EXPECT_TRUE(ab <= ac && ab >= ac && !(ab < ac));
    EXPECT_TRUE(ab == "a" && "a" == ab && !("a" != ab) && ab != nullptr && ZAV_String() == nullptr);
    EXPECT_TRUE(ab(0, 1) > nullptr && ab(0, 0) == nullptr);
}

TEST(ByteString, SearchesAndChangesOfCase) {
    ZAV_String s("one two one");
    EXPECT_TRUE(s.Find('o', 1) == 6 && s.Find("one", 1) == 8 && s.Find("three") == -1 && s.Find('\0') == 11);
    EXPECT_TRUE(s.ReverseFind('o') == 8 && s.FindOneOf(" tw", 4) == 4) << "indices from the start";
    ZAV_String cut("aba\0a", 5);
    cut.FindAndReplace('a', 'x');
    EXPECT_EQ(bytes(cut), std::string("xbx\0a", 5));
    ZAV_String mixed("aZ\xC1[@\0q", 7);
    EXPECT_EQ(bytes(ZAV_String(mixed).ToUpper()), std::string("AZ\xC1[@\0Q", 7));
    EXPECT_EQ(bytes(ZAV_String(mixed).ToLower()), std::string("az\xC1[@\0q", 7));
    EXPECT_EQ(bytes(mixed.ToAscii()), std::string("aZA[@\0q", 7));
    mixed(0, 2).ToLower();
    EXPECT_STREQ(mixed, "azA[@");
}

TEST(ByteString, TrimmingKeepsTheBuffer) {
    const char* const rows[][2] = {
        {"", "|"}, {" \t\r\n", "|"}, {"  a b  ", "a b  |  a b"}, {"\v\fx\n", "x\n|\v\fx"}};
    for (const auto& [text, trimmed] : rows) {
        ZAV_String left(text), right(text);
        const char* const buffer = left.Ptr();
        left.TrimLeft();
        right.TrimRight();
        EXPECT_EQ(bytes(left) + "|" + bytes(right), trimmed);
        EXPECT_EQ(left.Ptr(), buffer);
    }
    ZAV_String empty, cut("a \0b ", 5);
    empty.TrimLeft();
    empty.TrimRight();
    cut.TrimRight();
    EXPECT_EQ(cut.Length(), 1u) << "only the text up to the NUL counts";
}

TEST(ByteString, ReadsAppendAndGrowBySixteen) {
    std::istringstream lines("one\r\ntwo\rthree\n\n  four");
    for (const char* line : {"one", "two", "three", "", "  four"}) {
        ZAV_String s;
        s.ReadLine(lines);
        EXPECT_STREQ(s, line);
    }
    EXPECT_TRUE(lines.eof());

    std::istringstream parts(" \n a;b;" + std::string(40, 'c') + std::string("\0d", 2));
    ZAV_String s("> ");
    s.ReadLine(parts, B_TRUE);
    s.ReadString(parts);
    EXPECT_EQ(bytes(s), "> a;b;" + std::string(40, 'c') + std::string("\0d", 2)) << "nothing at the end";

    std::istringstream fields("a;b" + std::string(1, '\0') + "rest");
    ZAV_String field;
    field.ReadToDelim(fields, ';');
    EXPECT_EQ(field.Capacity(), 31u) << "the first character reserves 16 more";
    field.ReadString(fields);
    EXPECT_STREQ(field, "ab");
    EXPECT_EQ(fields.get(), 'r');

    std::istringstream throwing("abc");
    throwing.exceptions(std::ios_base::eofbit);
    ZAV_String read;
    EXPECT_THROW(read.ReadLine(throwing), std::ios_base::failure);
    EXPECT_STREQ(read, "abc");
}

} // namespace
