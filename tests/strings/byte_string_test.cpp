#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <sstream>
#include <string>

#include <zavbase/strings/byte_string.h>

namespace {

std::string bytes(const ZAV_Str& s) { return std::string(s.Ptr(), s.Size()); }

// What the capacity of a buffer for `n` characters reports.
unsigned roomFor(unsigned n) { return (n / 16 + 1) * 16 - 1; }

// Reaches what derived classes may use.
struct Open : ZAV_String {
    using ZAV_String::operator=;
    using ZAV_String::concatCopy;
    unsigned RawCapacity() const { return mCapacity; }
    void Terminate() { mData[mLength] = '\0'; }
};

TEST(ByteString, NaturalCallsPickTheRightConstructor) {
    EXPECT_EQ(ZAV_String().Capacity(), 4294967295u);
    for (unsigned room :
         {ZAV_String(nullptr).Capacity(), ZAV_String(0u).Capacity(), ZAV_String(0).Capacity()})
        EXPECT_EQ(room, 15u);
    EXPECT_EQ(ZAV_String(size_t{20}).Capacity(), 31u);
    EXPECT_EQ(ZAV_String('x').Capacity(), roomFor(120));
    const unsigned char prefixed[] = {3, 'a', '\0', 'c', 'd'};
    EXPECT_EQ(bytes(ZAV_String(prefixed)), std::string("a\0c", 3));
    EXPECT_EQ(bytes(ZAV_String("a\0b", 3)), std::string("a\0b", 3));
    EXPECT_EQ(bytes(ZAV_String('z', 17)), std::string(17, 'z'));
    ZAV_String copy = ZAV_String();
    EXPECT_EQ(ZAV_String(copy).Capacity(), 15u) << "a copy of an empty string owns a buffer";
}

// The hidden slack must not show: capacities are those of growth by 16, step by step.
TEST(ByteString, CapacityGrowsAsIfByReallocation) {
    ZAV_String s(0u);
    for (unsigned n = 1; n <= 2000; ++n) {
        const char* const before = s.Ptr();
        s += 'a';
        ASSERT_EQ(s.Capacity(), n <= 16 ? 15 : roomFor(n % 16 == 0 ? n - 1 : n)) << n;
        ASSERT_EQ(s.Ptr()[n], '\0');
        if (n <= 17) {
            ASSERT_EQ(s.Ptr() == before, n <= 16) << "the first buffer has no slack";
        }
    }
    EXPECT_EQ(bytes(s), std::string(2000, 'a'));
    EXPECT_EQ(s.ReSize(5), roomFor(2000));
    EXPECT_EQ(ZAV_String(s).Capacity(), roomFor(2000));
    s = "short";
    EXPECT_EQ(s.Capacity(), roomFor(2000)) << "assignment keeps the buffer";
    EXPECT_EQ(s.ReSize(5), 15u) << "ReSize may shrink it";
    EXPECT_STREQ(s, "short");
}

TEST(ByteString, AppendsAndAssignsItsOwnText) {
    ZAV_String s("0123456789");
    s += s;
    s += s;
    EXPECT_STREQ(s, "0123456789012345678901234567890123456789");
    s += s(38, 2);
    s += s.Ptr() + 35;
    EXPECT_STREQ(s.Ptr() + 38, "89895678989");
    ZAV_String tail("0123456789");
    tail = tail.Ptr() + 7;
    EXPECT_STREQ(tail, "789");
    tail = tail;
    EXPECT_STREQ(tail, "789");

    ZAV_String t("0123456789");
    const char* const buffer = t.Ptr();
    t = t(2, 3);
    EXPECT_STREQ(t, "234");
    EXPECT_EQ(t.Ptr(), buffer);

    Open joined;
    joined = "ab";
    joined.concatCopy(joined.Length(), joined.Ptr(), 20, "cdefghijklmnopqrstuvwxyz");
    joined.Terminate();
    EXPECT_STREQ(joined, "abcdefghijklmnopqrstuv");
    EXPECT_EQ(joined.RawCapacity(), 32u);
}

TEST(ByteString, NulBytesSurviveCopiesAndSums) {
    const std::string raw("a\0b", 3);
    ZAV_String s(raw.data(), 3), t;
    t = s;
    t += s;
    EXPECT_EQ(bytes(t), raw + raw);
    EXPECT_EQ(bytes(s + s(1, 2)), raw + raw.substr(1));
    EXPECT_EQ(bytes(s + s(0, 3) + (s(0, 3) + s)), raw + raw + raw + raw);
    EXPECT_EQ(bytes(s(0, 1) + "z"), "az");
    EXPECT_TRUE(s(0, 1) + s(2, 1) == "ab" && s(0, 1) + ZAV_Str(s(2, 1)) + "c" == "abc") << "no addresses";
    EXPECT_EQ(bytes('x' + s), "x" + raw);
    EXPECT_EQ(bytes("x" + s(1, 2)), "x" + raw.substr(1));
    t(1, 1) = s;
    EXPECT_EQ(bytes(t), "a" + raw + "b" + raw);
    EXPECT_STREQ((s + 'c' + nullptr).Ptr(), "a");
}

TEST(ByteString, EqualityIsBinaryAndTheRestEndsAtNul) {
    const ZAV_String ab("a\0b", 3), ac("a\0c", 3), b("b");
    EXPECT_FALSE(ab == ac);
    EXPECT_FALSE(ab != ac);
    EXPECT_TRUE(ab <= ac && ab >= ac && !(ab < ac));
    EXPECT_TRUE(ab == "a" && "a" == ab && !("a" != ab) && ab != nullptr && ZAV_String() == nullptr);
    EXPECT_TRUE(ab(0, 1) > nullptr && ab(0, 0) == nullptr);
    EXPECT_TRUE("a" < b && b > "a" && "c" > b && b <= "b" && "b" >= b);
    // A range and a text that agree so far: the shorter one is less.
    const ZAV_String text("abcabc");
    EXPECT_TRUE(text(0, 3) == text(3, 3) && text(0, 3) == "abc" && "abc" == text(0, 3));
    EXPECT_TRUE(text(0, 3) < "abcd" && text(0, 3) > "ab" && text(0, 2) < text(0, 3) && text(0, 3) != text);
    EXPECT_TRUE(text > text(0, 3) && text(0, 3) < text && "abd" > text(0, 3) && text(1, 2) >= "bc");
    EXPECT_TRUE(text(0, 0) == "" && text(0, 0) < text);
}

TEST(ByteString, SearchesGiveIndicesFromTheStart) {
    ZAV_String s("one two one");
    EXPECT_EQ(s.Find('o', 1), 6);
    EXPECT_EQ(s.Find("one", 1), 8);
    EXPECT_EQ(s.Find("three"), -1);
    EXPECT_EQ(s.Find('\0'), 11);
    EXPECT_EQ(s.ReverseFind('o'), 8);
    EXPECT_EQ(s.FindOneOf(" tw", 4), 4);
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
    const char* const rows[][3] = {
        {"", "", ""}, {" \t\r\n", "", ""}, {"  a b  ", "a b  ", "  a b"}, {"\v\fx\n", "x\n", "\v\fx"}};
    for (const auto& [text, trimmedLeft, trimmedRight] : rows) {
        ZAV_String left(text), right(text);
        const char* const buffer = left.Ptr();
        left.TrimLeft();
        right.TrimRight();
        EXPECT_EQ(bytes(left), trimmedLeft);
        EXPECT_EQ(left.Ptr(), buffer);
        EXPECT_EQ(bytes(right), trimmedRight);
    }
    ZAV_String empty, cut("a \0b ", 5);
    empty.TrimLeft();
    empty.TrimRight();
    cut.TrimRight();
    EXPECT_EQ(cut.Length(), 1u) << "only the text up to the NUL counts";
}

TEST(ByteString, SplicesAsTheModelDoes) {
    ZAV_String s("0123456789");
    ZAV_SubString view = s(3, 2);
    view = "abcdef";
    EXPECT_STREQ(s, "012abcdef56789");
    EXPECT_TRUE(view == "ab" && view.Position() == 3);
    view = view + view;
    EXPECT_STREQ(s, "012ababcdef56789");

    // Sources from elsewhere, and from before, across and behind the range in the own buffer.
    std::mt19937 engine(7);
    const auto random = [&engine] { return static_cast<unsigned>(engine()); };
    ZAV_String own;
    std::string model;
    for (int i = 0; i < 20000; ++i) {
        const unsigned size = static_cast<unsigned>(model.size());
        const unsigned pos = random() % (size + 1), len = random() % (size - pos + 1);
        const unsigned from = random() % (size + 1), n = random() % (size - from + 1);
        std::string source = model.substr(from, n);
        if (i % 3 == 0) {
            own(pos, len) = own(from, n);
        } else if (i % 3 == 1) {
            source = model.substr(from);
            own(pos, len) = own.Ptr() + from;
        } else {
            source = std::string(random() % 20, static_cast<char>('a' + i % 26));
            own(pos, len) = source.c_str();
        }
        model.replace(pos, len, source);
        ASSERT_EQ(bytes(own), model) << i;
        ASSERT_EQ(own.Ptr()[own.Length()], '\0');
        ASSERT_GT(own.Capacity() + 2, own.Length()) << i;
        if (model.size() > 300) model = "x", own = "x";
    }
}

TEST(ByteString, AViewLeftOverFromASpliceStaysInsideItsOwner) {
    ZAV_String s("0123456789");
    ZAV_SubString view = s(3, 5);
    view = "";
    EXPECT_STREQ(s, "01289");
    EXPECT_EQ(view.Length(), 5u);
    view = "abcde";
    EXPECT_STREQ(s, "012abcde");
    s = "01";
    view = "lost";
    EXPECT_STREQ(s, "01") << "a view behind the end reaches nothing";
    ZAV_SubStr none;
    none = s;
    EXPECT_EQ(none.Size(), 0u);
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
    EXPECT_STREQ(s.Ptr(), ("> a;b;" + std::string(40, 'c')).c_str());
    EXPECT_EQ(bytes(s).substr(46), std::string("\0d", 2));
    s.ReadString(parts);
    EXPECT_EQ(s.Length(), 48u) << "a stream at its end gives nothing";

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
