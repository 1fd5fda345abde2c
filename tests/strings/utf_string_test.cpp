#include <gtest/gtest.h>

#include <clocale>
#include <random>

#include <zavbase/strings/utf_string.h>

namespace {

const char kEuro[] = "\xE2\x82\xAC";

TEST(Rune, DecodesAndFailsByTheRules) {
    const std::pair<const char*, std::pair<int, unsigned>> rows[] = {
        {"A", {1, 'A'}}, {kEuro, {3, 0x20AC}}, {"\xC2\x80", {2, 0x80}}};
    for (const auto& [bytes, expected] : rows) {
        Rune r = 1;
        EXPECT_EQ(chartorune(&r, bytes), expected.first) << bytes;
        EXPECT_EQ(r, expected.second) << bytes;
        EXPECT_EQ(isutf(bytes), expected.first) << bytes;
    }
    for (const char* wrong :
         {"\xC0\x80", "\xE0\x9F\xBF", "\xF0\x90\x80\x80", "\x80", "\xC3 ", "\xE2\x82", "\xFF"}) {
        Rune r = 1;
        EXPECT_TRUE(chartorune(&r, wrong) == 1 && r == 0x80 && isutf(wrong) == 0) << wrong;
    }
    for (long r = 0; r < 0x10000; ++r) {
        char text[4] = {};
        const Rune in = static_cast<Rune>(r);
        Rune out = 0;
        const int n = runetochar(text, &in);
        ASSERT_EQ(n, runelen(r));
        ASSERT_EQ(chartorune(&out, text), n);
        ASSERT_EQ(out, r);
        ASSERT_TRUE(fullrune(text, n) && !fullrune(text, n - 1)) << r;
    }
}

TEST(Rune, PositionsCountRunes) {
    const std::string text = std::string("A") + kEuro + "B\x85", twice = text + text;
    const char* const s = text.c_str();
    const int offsets[] = {0, 1, 4, 5, 6, 6}, runes[] = {0, 1, -1, -1, 2, 3, 4, -1};
    for (unsigned n = 0; n < 6; ++n)
        EXPECT_TRUE(utfbytepos(s, n) == offsets[n] && utfnsize(s, n) == offsets[n]) << n;
    for (unsigned at = 0; at < 8; ++at) EXPECT_EQ(utfrunepos(s, at), runes[at]) << at;
    EXPECT_EQ(utfbytepos(nullptr, 3) + utfnsize(nullptr, 3) + utfrunepos(nullptr, 3), 0);
    EXPECT_EQ(utfrune(s, 0x20AC), s + 1);
    EXPECT_EQ(utfrune(s, 0x85), s + 5) << "a lone byte below 0xA0 is a rune";
    EXPECT_EQ(utfrune(s, 0xAC), nullptr) << "not the last byte of the euro sign";
    EXPECT_EQ(utfrune(s, 0), s + 6);
    EXPECT_EQ(utfrrune(twice.c_str(), 0x20AC), twice.c_str() + 7);
    EXPECT_TRUE(!utfutf(s, "\xACG") && utfutf(s, "B") == s + 4);
    EXPECT_TRUE(isutfstr(nullptr));
}

// Whole blocks are looked at at once: every pair of neighbours and every place in a block must agree with
// looking at one rune at a time.
TEST(Rune, BlockScansAgreeWithTheDefinition) {
    const char* const pieces[] = {
        "a",    "bcdefgh",  "\xC3\xA9", kEuro,          "\xE0\xA0\x80",     "\x80", "\x9F",        "\xA0",
        "\xC2", "\xE2\x82", "\xC1\x81", "\xE0\x9F\xBF", "\xF0\x9F\x98\x80", "\xFF", "\xED\xA0\x80"};
    std::mt19937 random(3);
    for (int i = 0; i < 30000; ++i) {
        const size_t kinds = i % 3 == 0 ? std::size(pieces) : 5;
        std::string text(random() % 40, 'x');
        for (size_t count = random() % 60; count > 0; --count) text += pieces[random() % kinds];
        if (i % 5 == 0 && !text.empty())
            text[random() % text.size()] = static_cast<char>(128 + random() % 128);
        // A copy of exactly this size lets the address sanitizer see any read beyond the NUL.
        const std::unique_ptr<char[]> exact(new char[text.size() + 1]);
        std::memcpy(exact.get(), text.c_str(), text.size() + 1);
        int length = 0;
        bool valid = true;
        Rune rune;
        for (const char* s = exact.get(); *s; ++length) {
            const bool plain = static_cast<unsigned char>(*s) < 0xA0;
            valid = valid && (plain || isutf(s));
            s += plain ? 1 : chartorune(&rune, s);
        }
        ASSERT_EQ(utflen(exact.get()), length) << i;
        ASSERT_EQ(isutfstr(exact.get()) != 0, valid) << i;
    }
    std::string blocks;
    for (int i = 0; i < 5000; ++i) blocks += "\xE2\x82\xAC and thirteen";
    EXPECT_EQ(utflen(blocks.c_str()), 5000 * 14) << "counts of one place in many blocks must not overflow";
}

TEST(Rune, ConversionsStopWhereTheyShould) {
    constexpr unsigned toNul = 0xFFFFFFFF;
    Rune runes[8];
    char text[16];
    unsigned n = 9;
    EXPECT_EQ(UTFtoUnicode(runes, 8, "A\xE2\x82\xAC\xFF", toNul, &n), -2);
    EXPECT_TRUE(n == 3 && runes[0] == 'A' && runes[1] == 0x20AC && runes[2] == '?' && runes[3] == 0);
    EXPECT_TRUE(UTFtoUnicode(runes, 2, "AB", toNul, &n) == -1 && n == 2) << "no room for the NUL";
    EXPECT_EQ(UTFtoUnicode(runes, 2, "ABC", 2, &n), 0) << "a counted source needs none";
    EXPECT_TRUE(UTFtoUnicode(runes, 8, kEuro, 2, &n) == -2 && n == 2) << "cut off by the count";

    EXPECT_EQ(UTFtoLatin1(text, 16, "\xE2\x82\xAC\xC3\xA9\xC2\x80", toNul, &n), -2);
    EXPECT_STREQ(text, "?\xE9?") << "U+0080 is the error rune";
    const Rune source[] = {0xE9, 0x100, 'x', 0}, euro[] = {0x20AC, 0};
    EXPECT_EQ(UnicodetoLatin1(text, 16, source, toNul, &n), -2);
    EXPECT_STREQ(text, "\xE9?x");

    int count = 0;
    EXPECT_TRUE(UTFfromUnicode(text, 5, euro, -1, &count) == 0 && count == 3) << "the NUL before the room";
    EXPECT_STREQ(text, kEuro);
    EXPECT_EQ(UTFfromUnicode(text, 5, source, 2, &count), 0);
    EXPECT_TRUE(UTFfromUnicode(text, 4, source, 2, &count) == -1 && count == 2);
    EXPECT_EQ(UTFfromLatin1(text, 2, "a", 1, &n), -1);
    EXPECT_EQ(UTFfromLatin1(text, 16, "\xE9z", toNul, &n), 0);
    EXPECT_STREQ(text, "\xC3\xA9z");
    EXPECT_TRUE(UnicodefromLatin1(runes, 2, "\xE9z", 2, &n) == 0 && n == 2 && runes[0] == 0xE9);
    EXPECT_EQ(UnicodefromLatin1(runes, 1, "ab", 2, &n), -1);
}

TEST(UTFString, IncomingTextIsCleaned) {
    const std::string dirty = "caf\xE9 \xC3\xA9", clean = "caf# ##", euro = kEuro;
    const ZAV_String bytes(dirty.c_str());
    ZAV_UTFString u(kEuro);
    u += dirty.c_str();
    u += bytes;
    u += bytes(3, 1);
    u += '\xE9';
    EXPECT_EQ(u.Ptr(), euro + clean + clean + "##") << "what was there stays";
    u = bytes;
    EXPECT_EQ(u.Ptr(), clean);
    u = bytes(0, 4);
    EXPECT_STREQ(u, "caf#");
    u = kEuro;
    EXPECT_EQ((u + bytes).Ptr(), euro + clean);
    EXPECT_EQ((dirty.c_str() + u).Ptr(), clean + euro);
    EXPECT_EQ((u + bytes(0, 4) + u(0, 1)).Ptr(), euro + "caf#" + euro);
    EXPECT_EQ((bytes + u + u(0, 1)).Ptr(), dirty + euro + euro) << "bytes on the left stay";
    EXPECT_EQ(("\xE9" + u(0, 1)).Ptr(), "#" + euro);
    u(0, 1) = bytes;
    u(0, 4) = "\xFF";
    EXPECT_STREQ(u, "# ##");
    EXPECT_STREQ(ZAV_UTFString(bytes(0, 4)), "caf#");
    EXPECT_STREQ(ZAV_UTFString("a\0\xE9", 3).Ptr() + 2, "#") << "behind a NUL, too";
    EXPECT_STREQ(ZAV_UTFString("\x85"), "\x85");
}

TEST(UTFString, CountsInRunes) {
    ZAV_UTFString u = ZAV_UTFString("a") + kEuro + "b" + kEuro;
    EXPECT_TRUE(u.Length() == 4 && u.Size() == 8);
    ZAV_UTFSubString view = u(1, 1);
    EXPECT_TRUE(view.Size() == 3 && view.Length() == 1 && view.Position() == 1 && view == kEuro);
    EXPECT_TRUE(u(3, 9).Size() == 3 && u(9, 1).Size() == 0);
    EXPECT_EQ(u.Find("b"), 2);
    EXPECT_EQ(u.Find(kEuro, 2), 3) << "starts at a byte, answers a rune";
    EXPECT_EQ(u.Find('b'), 4) << "characters are found by byte";
    EXPECT_EQ(ZAV_UTFString("x#").Find("\xE9"), 1) << "the sought text is cleaned";
    view = "xyz";
    EXPECT_STREQ(u, "axyzb\xE2\x82\xAC");
    u = u(1, 2);
    u(0, 1) = u;
    EXPECT_STREQ(u, "xyy");
}

TEST(UTFString, ComparesAsItsBaseWhateverTheOperands) {
    const ZAV_UTFString u("a\0b", 3), v("a\0c", 3);
    const ZAV_String s("a\0b", 3), t("a\0c", 3);
    EXPECT_TRUE(u == s && s == u && !(u == v) && !(s == v) && !(u == t));
    EXPECT_TRUE(!(u != v) && !(s != v) && !(v != s)) << "!= ends at the NUL on either side";
}

// The first of these locales that the system has knows bytes of UTF-8 as blanks and as letters.
TEST(UTFString, BytesOfRunesAreOfNoClass) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {".1252", "en_US.ISO-8859-1", "C"})
        if (std::setlocale(LC_ALL, name)) break;
    for (unsigned r = 0x80; r < 0x10000; ++r) {
        const Rune rune = static_cast<Rune>(r);
        char text[4] = {};
        runetochar(text, &rune);
        ZAV_UTFString u = ZAV_UTFString(" \t") + text + "aZ" + text + "\n ";
        u.TrimLeft();
        u.TrimRight();
        ASSERT_EQ(u.Ptr(), text + std::string("aZ") + text) << r;
        u.ToUpper();
        u(0, 1).ToUpper();
        ASSERT_EQ(u.Ptr(), text + std::string("AZ") + text) << r;
        u.ToLower();
        u(0, 3).ToLower();
        ASSERT_EQ(u.Ptr(), text + std::string("az") + text) << r;
    }
    std::istringstream is(" \n\xA0x");
    ZAV_UTFString line;
    line.ReadLine(is, B_TRUE);
    EXPECT_STREQ(line, "#x") << "cleaned, not skipped";
    std::setlocale(LC_ALL, before.c_str());
}

template <class Text>
class ReadersOf : public testing::Test {};
typedef testing::Types<ZAV_String, ZAV_UTFString> TextTypes;
TYPED_TEST_SUITE(ReadersOf, TextTypes, );

TYPED_TEST(ReadersOf, FailWhenNothingIsLeftToConsume) {
    const auto reads = [](const std::string& text, const auto& read) {
        std::istringstream is(text);
        TypeParam s;
        int n = 0;
        while (n < 9 && read(s, is)) ++n;
        EXPECT_TRUE(is.eof() && is.fail()) << text;
        return n;
    };
    const auto line = [](TypeParam& s, std::istream& is) -> bool { return !!s.ReadLine(is); };
    const auto words = [](TypeParam& s, std::istream& is) -> bool { return !!s.ReadLine(is, B_TRUE); };
    const auto field = [](TypeParam& s, std::istream& is) -> bool { return !!s.ReadToDelim(is, ';'); };
    const auto text = [](TypeParam& s, std::istream& is) -> bool { return !!s.ReadString(is); };
    EXPECT_EQ(reads("", line) + reads("", words) + reads("", field) + reads("", text), 0);
    EXPECT_TRUE(reads("a", line) == 1 && reads("a\n", line) == 1 && reads("\n\nb", line) == 3);
    EXPECT_TRUE(reads(" a\n b", words) == 2 && reads(" ", words) == 1) << "a blank is consumed, too";
    EXPECT_TRUE(reads("a;", field) == 1 && reads(";b", field) == 2);
    EXPECT_TRUE(reads("a", text) == 1 && reads(std::string("a\0b", 3), text) == 2);
}

TEST(UTFString, ReadsAndPrints) {
    std::istringstream is("caf\xE9\r\nx;y\xE9");
    ZAV_UTFString line, rest;
    line.ReadLine(is);
    EXPECT_STREQ(line, "caf#\r");
    rest.ReadToDelim(is, ';');
    rest.ReadString(is);
    EXPECT_STREQ(rest, "xy#");

    std::ostringstream os;
    os.setf(std::ios_base::showbase | std::ios_base::uppercase);
    os << ZAV_UTFString("a\xE2\x82\xAC\xC3\xA9") << ZAV_UTFString("\x85") << ' ' << 10;
    EXPECT_EQ(os.str(), "a[20ac][e9]\x85 10");
}

} // namespace
