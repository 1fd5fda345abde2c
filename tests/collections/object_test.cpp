// The protocol of collectable objects: keys, numbers, texts and streams.
#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include "tests/support/printed.h"

TEST(CltObject, OnlyNilIsEqualToItself) {
    struct : ZAV_CltObject {
    } o;
    EXPECT_FALSE(o.IsEqual(&o));
    EXPECT_EQ(0, o.Compare(&o));
    EXPECT_TRUE(GetNilObj()->IsEqual(GetNilObj()));
    EXPECT_FALSE(GetNilObj()->IsEqual(&o));
}

// By hand: the length, XOR little-endian words of 4, the rest as a shorter word.
TEST(CltString, Hash) {
    const std::pair<const char*, unsigned int> rows[] = {
        {"", 0},
        {"AB", 2 ^ 0x4241u},
        {"ABCD", 4 ^ 0x44434241u},
        {"ABCDEFGHIJK", 11 ^ 0x44434241u ^ 0x48474645u ^ 0x4B4A49u}};
    for (const auto& [text, hash] : rows) {
        EXPECT_EQ(hash, ZAV_CltString(text).Hash()) << text;
        EXPECT_EQ(hash, ZAV_CltUTFString(text).Hash()) << text;
    }
    EXPECT_EQ(1 ^ 0xFFu, ZAV_CltString("\xff").Hash());
}

TEST(CltString, EqualityIsOfBytesAndOrderOfText) {
    ZAV_CltString a(ZAV_String("x\0a", 3)), b(ZAV_String("x\0b", 3)), x("x"), y("y");
    EXPECT_FALSE(a.IsEqual(&b) || a.IsEqual(&x));
    EXPECT_EQ(0, a.Compare(static_cast<ZAV_CltObject*>(&b)));
    EXPECT_LT(x.Compare(static_cast<ZAV_CltObject*>(&y)), 0);
    EXPECT_TRUE(ZAV_CltString("").IsEqual(std::make_unique<ZAV_CltString>(ZAV_String()).get()));
    // Objects that are no texts stand beside texts in arrays and tables.
    ZAV_CltUTFString utf("x");
    ZAV_Integer number(static_cast<long>(x.Hash()));
    ZAV_LinkObj held(&x), empty(nullptr);
    ZAV_Set mixed;
    for (ZAV_CltObject* o : std::initializer_list<ZAV_CltObject*>{&number, &x})
        EXPECT_EQ(o, mixed.Add(o)) << "of one hash";
    for (ZAV_CltObject* o : std::initializer_list<ZAV_CltObject*>{GetNilObj(), &number, &held, &empty}) {
        EXPECT_FALSE(x.IsEqual(o) || utf.IsEqual(o));
        EXPECT_TRUE(x.Compare(o) == 0 && utf.Compare(o) == 0);
    }
    EXPECT_TRUE(x.IsEqual(&utf) && utf.IsEqual(&x) && mixed.Add(&utf) == &x && held.IsEqual(&utf));
    EXPECT_EQ(0, ZAV_Integer(-7).Compare(GetNilObj()));
    EXPECT_TRUE(empty.Hash() == 0 && empty.Size() == 0 && !empty.IsEqual(&x) && empty.Compare(&x) == 0);
    EXPECT_EQ("", Printed(empty));
}

TEST(CltString, BothBasesSeeTheSameObject) {
    ZAV_CltString s("abc");
    s = "defg";
    s += "h";
    ZAV_CltObject* o = &s;
    EXPECT_TRUE(o->Size() == 5 && s.Size() == 5);
    for (const std::string& printed :
         {Printed(o), Printed(static_cast<ZAV_String&>(s)), Printed(static_cast<const ZAV_CltString&>(s))})
        EXPECT_EQ("defgh", printed);
    std::unique_ptr<ZAV_CltObject> copy(s.ShallowCopy());
    s = "changed";
    EXPECT_STREQ("defgh", ZAV_CltString::Castdown(copy.get())->Ptr());
}

TEST(LookupKey, PassesTheQuestionToTheOther) {
    ZAV_CltString one("one"), same("one"), two("two");
    ZAV_Assoc a(&one, nullptr), b(&same, nullptr);
    ZAV_LookupKey c(&two);
    EXPECT_TRUE(a.IsEqual(&b) && a.IsEqual(&same) && !a.IsEqual(&c));
    EXPECT_EQ(one.Hash(), a.Hash());
    // Two holders: the sense of the first. A bare key: its own sense.
    EXPECT_LT(a.Compare(&c), 0);
    EXPECT_GT(c.Compare(&a), 0);
    EXPECT_GT(a.Compare(&two), 0);
    EXPECT_EQ(&two, c.Key(&one));
    EXPECT_TRUE(c.IsEqual(&a));
}

TEST(LookupKey, ValuesOfTheFamily) {
    ZAV_CltString key("key"), first("first"), second("second");
    ZAV_Assoc a(&key, &first);
    EXPECT_EQ(&first, a.Value(&second));
    EXPECT_EQ("key=>second", Printed(a));
    ZAV_LookupKey bare(&key);
    EXPECT_EQ(nullptr, bare.Value(&first));
    EXPECT_EQ("key=>", Printed(bare));

    ZAV_AssocInt n(&key, 5);
    ZAV_Integer seven(7), five(5);
    EXPECT_TRUE(five.IsEqual(n.Value()));
    EXPECT_TRUE(n.Value(&seven) == n.Value() && n.Value(nullptr) == n.Value()) << "it copies the number";
    std::unique_ptr<ZAV_CltObject> copy(n.ShallowCopy());
    n.Value(&five);
    EXPECT_EQ("key=>7", Printed(copy.get()));

    std::ostringstream hex, out;
    hex << "key=>" << std::hex << reinterpret_cast<uintptr_t>(&out) << std::dec << 10;
    out << ZAV_AssocOs(&key, &out) << 10;
    EXPECT_EQ(hex.str(), out.str());
}

TEST(Integer, Wraps) {
    ZAV_Integer low(-2147483647L - 1), high(2147483647L), seven(7);
    EXPECT_EQ(-2, ZAV_Integer(5).Compare(&seven));
    EXPECT_TRUE(low.Compare(&high) == 1 && high.Compare(&low) == -1);
    EXPECT_EQ(0x80000000u, low.Hash());
    ZAV_CltString text("5");
    EXPECT_FALSE(ZAV_Integer(5).IsEqual(&text));
    std::ostringstream os;
    os << std::hex << high << ' ' << 255;
    EXPECT_EQ("2147483647 ff", os.str()) << "decimal, and the stream stays as it was";
}
