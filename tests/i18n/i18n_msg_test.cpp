#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include "tests/support/printed.h"

namespace {

// The identifier is the text where there is no resource.
std::string Formatted(const ZAV_I18nMsg& msg, ZAV_I18nResource* own = nullptr,
                      ZAV_I18nResource* base = nullptr) {
    return msg.Format("", own, base).Ptr();
}

template <class Number>
std::string Formatted(Number value, const char* format) {
    ZAV_I18nMsg msg("<<n>>");
    msg.AddArg("<<n>>", value, format, ZAV_I18N_STRING);
    return Formatted(msg);
}

std::string PrintedAndDestroyed(ZAV_OrderedCltn list) {
    const std::string text = Printed(list);
    list.ClearAndDestroy();
    return text;
}

} // namespace

TEST(I18nMsg, ReplacesOneOccurrenceForEachArgument) {
    const std::string v(5000, 'v'), both = "<" + v + "-" + v + ">";
    struct {
        const char* mText;
        std::vector<std::pair<const char*, const char*>> mArgs;
        std::string mEvolving, mOnePass;
    } const rows[] = {
        {"<<a>> <<a>> <<a>>", {{"<<a>>", "1"}, {"<<a>>", "2"}}, "1 2 <<a>>", "1 2 <<a>>"},
        {"<<a>>/<<b>>", {{"<<a>>", "<<b>>"}, {"<<b>>", "x"}}, "x/<<b>>", "<<b>>/x"},
        {"<<b>>/<<a>>", {{"<<a>>", "<<b>>"}, {"<<b>>", "x"}}, "x/<<b>>", "x/<<b>>"},
        {"text", {{"", "x"}}, "xtext", "text"},
        {"aaa", {{"aa", "b"}, {"aa", "c"}, {"a", "d"}}, "bd", "bd"},
        {"\xE2\x82\xAC<<a>>", {{"<<a>>", "\xC3\xA4"}}, "\xE2\x82\xAC\xC3\xA4", "\xE2\x82\xAC\xC3\xA4"},
        {"\xE2\x82\xAC \x82", {{"\x82", "x"}}, "\xE2\x82\xAC \x82", "\xE2\x82\xAC x"},
        {"\xC2\x82 \x82", {{"\x82", "x"}}, "\xC2\x82 \x82", "\xC2\x82 x"},
        {"\x82\xE2\x82\xAC", {{"\x82", "x"}}, "x\xE2\x82\xAC", "x\xE2\x82\xAC"},
        {"<<<a>>-<<a>>>", {{"<<a>>", v.c_str()}, {"<<a>>", v.c_str()}}, both, both},
    };
    for (const auto& row : rows) {
        ZAV_I18nMsg msg(row.mText);
        for (const auto& [tag, value] : row.mArgs) msg.AddArg(tag, value, ZAV_I18N_STRING);
        EXPECT_EQ(row.mEvolving, Formatted(msg)) << row.mText;
        EXPECT_EQ(row.mOnePass, msg.FormatOnce("en", nullptr, nullptr).Ptr()) << row.mText;
    }
}

TEST(I18nMsg, FindsNoTagBehindANul) {
    const auto bytes = [](const char* text, size_t n) {
        return ZAV_UTFString(text, static_cast<unsigned>(n));
    };
    ZAV_I18nMsg msg(bytes("<<a>>\0<<a>>", 11));
    msg.AddArg("<<a>>", bytes("1\0<<b>>", 7), ZAV_I18N_STRING);
    msg.AddArg("<<a>>", "2", ZAV_I18N_STRING);
    msg.AddArg("<<b>>", "3", ZAV_I18N_STRING);
    const ZAV_UTFString expected = bytes("1\0<<b>>\0<<a>>", 13);
    EXPECT_TRUE(msg.Format("", nullptr, nullptr) == expected &&
                msg.FormatOnce("", nullptr, nullptr) == expected);
    ZAV_I18nMsg longer("<<a>><<b>>");
    longer.AddArg("<<a>>", "a longer text", ZAV_I18N_STRING);
    longer.AddArg("<<b>>", bytes("x\0", 2), ZAV_I18N_STRING);
    longer.AddArg("longer", "b", ZAV_I18N_STRING);
    EXPECT_TRUE(longer.Format("", nullptr, nullptr) == bytes("a b textx\0", 10))
        << "before it they are found";
}

TEST(I18nMsg, LooksTextsUpInTheRightResource) {
    ZAV_UValDict ownDefs, baseDefs;
    ZAV_I18nDef2Dict(&ownDefs, "KEY", "own text");
    ZAV_I18nDef2Dict(&baseDefs, "KEY", "base text");
    ZAV_I18nResource own, base;
    own.SetDefaultDefs(&ownDefs);
    base.SetDefaultDefs(&baseDefs);
    EXPECT_EQ("own text", Formatted(ZAV_I18nMsg("KEY"), &own, &base));
    EXPECT_EQ("base text", Formatted(ZAV_I18nMsg("+++KEY"), &own, &base));
    EXPECT_EQ("KEY", Formatted(ZAV_I18nMsg("KEY"), nullptr, &base));
    EXPECT_EQ("KEY+++", Formatted(ZAV_I18nMsg("KEY+++"), &own, &base));
}

TEST(I18nMsg, SubMessagesAreFormattedAndListedDepthFirst) {
    ZAV_UValDict defs;
    for (const char* id : {"A", "B", "C", "D"})
        ZAV_I18nDef2Dict(&defs, id, (std::string(id) + "{<<1>><<2>>}").c_str());
    ZAV_I18nResource resource;
    resource.SetDefaultDefs(&defs);

    ZAV_I18nMsg a("A"), b("B"), c("C"), d("D");
    d.AddArg("<<1>>", "B", ZAV_I18N_STRING);
    c.AddArg("<<1>>", d, ZAV_I18N_SUBERROR);
    b.AddArg("<<1>>", c, ZAV_I18N_TAG); // itself not listed, but what is in it
    a.AddArg("<<1>>", b, ZAV_I18N_SUBERROR);
    a.AddArg("<<2>>", d, static_cast<ZAV_I18nMsgArgType>(3)); // an unknown kind inserts the identifier
    EXPECT_STREQ("A{B{C{D{B<<2>>}<<2>>}<<2>>}D}", a.FormatOnce("", &resource, nullptr).Ptr());
    EXPECT_EQ("A{B{C{D{BD}<<2>>}<<2>>}<<2>>}", Formatted(a, &resource));
    EXPECT_EQ("A\nB\nD", PrintedAndDestroyed(a.GetTagList()));
    EXPECT_EQ("A{B{C{D{BD}<<2>>}<<2>>}<<2>>}\nB{C{D{B<<2>>}<<2>>}<<2>>}\nD{B<<2>>}",
              PrintedAndDestroyed(a.FormatAll("", &resource, nullptr)));
    ZAV_OrderedCltn whole = ZAV_I18nMsg(ZAV_UTFString("a\0b", 3)).FormatAll("", nullptr, nullptr);
    EXPECT_EQ(3u, whole[0]->Size());
    whole.ClearAndDestroy();
    EXPECT_EQ("A[<<1>> = B[<<1>> = C[<<1>> = D[<<1>> = B](SubErr)](tag)](SubErr)<<2>> = D[<<1>> = B]]",
              Printed(static_cast<ZAV_Object&>(a)));
}

TEST(I18nMsg, CopiesAreDeep) {
    ZAV_I18nMsg msg("<<a>>"), other("other");
    msg.AddArg("<<a>>", "1", ZAV_I18N_STRING);
    msg.SetWarning(B_TRUE);
    other = msg;
    msg.AddArg("<<b>>", msg, ZAV_I18N_TAG); // itself as its argument
    msg = msg;
    EXPECT_EQ("1", Formatted(other));
    EXPECT_TRUE(other.IsWarning());

    other.Set(ZAV_UTFString("fresh"));
    EXPECT_FALSE(other.IsWarning());
    other.AddArg("<<a>>", "x", ZAV_I18N_STRING);
    other = ZAV_UTFString("<<a>>"); // only the identifier
    EXPECT_EQ("x", Formatted(other));
    other.Clear();
    EXPECT_FALSE(other.IsValid());
}

TEST(I18nMsg, NumbersReadTheSameEverywhere) {
    const std::pair<std::string, const char*> rows[] = {
        {Formatted(5u, "%05lu%%"), "00005%"},
        {Formatted(4294967295ull, "%llx"), "ffffffff"},
        {Formatted(5000000000ll, "%d|"), "5000000000|"},
        {Formatted(-5000000000ll, "%+15ld"), "    -5000000000"},
        {Formatted(18446744073709551615ull, "%hu"), "18446744073709551615"},
        {Formatted(-1ll, "%X"), "FFFFFFFFFFFFFFFF"},
        {Formatted(65ll, "%c"), "65"},
        {Formatted(65, "%Fd %Fd"), "65 %Fd"},
        {Formatted(static_cast<long>(4294967295u), "%I64d"), "-1"},
        {Formatted(1.5, "%.3e"), "1.500e+00"},
        {Formatted(7L, "%s and %s"), "7 and %s"},
        {Formatted(7L, "%*n"), "7"},
        {Formatted(7L, "%-4.2d|"), "07  |"},
        {Formatted(2.5, "%d"), "2.5"},
        {Formatted(7L, "100%% %"), "100% 7"},
        {Formatted(7L, nullptr), "7"},
    };
    for (const auto& [text, expected] : rows) EXPECT_EQ(expected, text);
    EXPECT_EQ(999u, Formatted(7L, "%99999999999d").size());
}
