#include <zavbase/i18n/i18n_msg.h>

#include <zavbase/collections/clt_string.h>
#include <zavbase/collections/linked_list.h>
#include <zavbase/i18n/i18n_msg_arg.h>
#include <zavbase/i18n/i18n_resource.h>
#include <zavbase/values/value_dict.h>

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/printed.h"

namespace {

struct Arg {
    const char* mTag;
    const char* mValue;
};

// The identifier is the text: there is no resource.
ZAV_I18nMsg Message(const char* text, const std::vector<Arg>& args) {
    ZAV_I18nMsg msg{ZAV_UTFString(text)};
    for (const Arg& a : args) msg.AddArg(a.mTag, a.mValue, ZAV_I18N_STRING);
    return msg;
}

std::vector<std::string> Texts(ZAV_OrderedCltn list, bool utf) {
    std::vector<std::string> texts;
    for (int i = 0; i < static_cast<int>(list.Size()); ++i)
        texts.emplace_back(utf ? static_cast<ZAV_CltUTFString*>(list[i])->Ptr()
                               : static_cast<ZAV_CltString*>(list[i])->Ptr());
    list.ClearAndDestroy();
    return texts;
}

template <class Number>
std::string Formatted(Number value, const char* format) {
    ZAV_I18nMsg msg("<<n>>");
    msg.AddArg("<<n>>", value, format, ZAV_I18N_STRING);
    return msg.Format("", nullptr, nullptr).Ptr();
}

} // namespace

TEST(I18nMsg, ReplacesOneOccurrenceForEachArgument) {
    const std::string v(5000, 'v'), both = "<" + v + "-" + v + ">";
    struct {
        const char* mText;
        std::vector<Arg> mArgs;
        std::string mEvolving, mOnePass;
    } const rows[] = {
        {"<<a>>|<<b>>.", {{"<<a>>", ""}, {"<<b>>", "x"}}, "|x.", "|x."},
        {"<<a>> <<a>> <<a>>", {{"<<a>>", "1"}, {"<<a>>", "2"}}, "1 2 <<a>>", "1 2 <<a>>"},
        {"<<a>>/<<b>>", {{"<<a>>", "<<b>>"}, {"<<b>>", "x"}}, "x/<<b>>", "<<b>>/x"},
        {"<<b>>/<<a>>", {{"<<a>>", "<<b>>"}, {"<<b>>", "x"}}, "x/<<b>>", "x/<<b>>"},
        {"text", {{"<<absent>>", "x"}}, "text", "text"},
        {"text", {{"", "x"}}, "xtext", "text"},
        {"aaa", {{"aa", "b"}, {"aa", "c"}, {"a", "d"}}, "bd", "bd"},
        {"\xE2\x82\xAC<<a>>", {{"<<a>>", "\xC3\xA4"}}, "\xE2\x82\xAC\xC3\xA4", "\xE2\x82\xAC\xC3\xA4"},
        {"<<<a>>-<<a>>>", {{"<<a>>", v.c_str()}, {"<<a>>", v.c_str()}}, both, both},
    };
    for (const auto& row : rows) {
        ZAV_I18nMsg msg = Message(row.mText, row.mArgs);
        EXPECT_EQ(row.mEvolving, msg.Format("en", nullptr, nullptr).Ptr()) << row.mText;
        EXPECT_EQ(row.mOnePass, msg.FormatOnce("en", nullptr, nullptr).Ptr()) << row.mText;
    }
}

TEST(I18nMsg, LooksTextsUpInTheRightResource) {
    ZAV_UValDict own, base;
    ZAV_I18nDef2Dict(&own, "KEY", "own text");
    ZAV_I18nDef2Dict(&base, "KEY", "base text");
    ZAV_I18nResource ownRes, baseRes;
    ownRes.SetDefaultDefs(&own);
    baseRes.SetDefaultDefs(&base);
    EXPECT_STREQ("own text", ZAV_I18nMsg("KEY").Format("", &ownRes, &baseRes).Ptr());
    EXPECT_STREQ("base text", ZAV_I18nMsg("+++KEY").Format("", &ownRes, &baseRes).Ptr());
    EXPECT_STREQ("KEY", ZAV_I18nMsg("+++KEY").Format("", &ownRes, nullptr).Ptr());
    EXPECT_STREQ("KEY", ZAV_I18nMsg("KEY").Format("", nullptr, &baseRes).Ptr());
    EXPECT_STREQ("KEY+++", ZAV_I18nMsg("KEY+++").Format("", &ownRes, &baseRes).Ptr());
}

TEST(I18nMsg, SubMessagesAreFormattedAndListedDepthFirst) {
    ZAV_UValDict defs;
    for (const char* id : {"A", "B", "C", "D"})
        ZAV_I18nDef2Dict(&defs, id, (std::string(id) + "{<<1>><<2>>}").c_str());
    ZAV_I18nResource resource;
    resource.SetDefaultDefs(&defs);

    ZAV_I18nMsg a("A"), b("B"), c("C"), d("D");
    d.AddArg("<<1>>", ZAV_UTFString("B"), ZAV_I18N_STRING);
    c.AddArg("<<1>>", d, ZAV_I18N_SUBERROR);
    b.AddArg("<<1>>", c, ZAV_I18N_TAG); // itself not listed, but what is in it
    a.AddArg("<<1>>", b, ZAV_I18N_SUBERROR);
    a.AddArg("<<2>>", d, static_cast<ZAV_I18nMsgArgType>(3)); // an unknown kind inserts the identifier
    EXPECT_STREQ("A{B{C{D{B<<2>>}<<2>>}<<2>>}D}", a.FormatOnce("", &resource, nullptr).Ptr());
    EXPECT_STREQ("A{B{C{D{BD}<<2>>}<<2>>}<<2>>}", a.Format("", &resource, nullptr).Ptr());
    EXPECT_EQ((std::vector<std::string>{"A", "B", "D"}), Texts(a.GetTagList(), false));
    EXPECT_EQ(
        (std::vector<std::string>{"A{B{C{D{BD}<<2>>}<<2>>}<<2>>}", "B{C{D{B<<2>>}<<2>>}<<2>>}", "D{B<<2>>}"}),
        Texts(a.FormatAll("", &resource, nullptr), true));
    ZAV_OrderedCltn whole = ZAV_I18nMsg(ZAV_UTFString("a\0b", 3)).FormatAll("", nullptr, nullptr);
    EXPECT_EQ(3u, whole[0]->Size());
    whole.ClearAndDestroy();

    EXPECT_EQ("A[<<1>> = B[<<1>> = C[<<1>> = D[<<1>> = B](SubErr)](tag)](SubErr)<<2>> = D[<<1>> = B]]",
              Printed(static_cast<ZAV_Object&>(a)));
}

TEST(I18nMsg, CopiesAreDeepAndLeaveTheLinkAlone) {
    ZAV_I18nMsg msg = Message("<<a>>", {{"<<a>>", "1"}}), other("other");
    msg.SetWarning(B_TRUE);
    ZAV_LinkedList list;
    list.Add(&other);
    list.Add(&msg);
    other = msg;
    EXPECT_EQ(&msg, other.NextLink());
    list.Clear();
    msg.AddArg("<<b>>", msg, ZAV_I18N_TAG); // itself as its argument
    msg = msg;
    EXPECT_STREQ("1", other.Format("", nullptr, nullptr).Ptr());
    EXPECT_TRUE(other.IsWarning());

    other.Set(ZAV_UTFString("fresh"));
    EXPECT_FALSE(other.IsWarning());
    other.AddArg("<<a>>", "x", ZAV_I18N_STRING);
    other = ZAV_UTFString("<<a>>"); // only the identifier
    EXPECT_STREQ("x", other.Format("", nullptr, nullptr).Ptr());
    other.Clear();
    EXPECT_FALSE(other.IsValid());
}

TEST(I18nMsg, ComparesWithTextOnEitherSide) {
    ZAV_I18nMsg msg("ID");
    ZAV_UTFString id("ID");
    const char* text = "ID";
    EXPECT_TRUE(msg == id && id == msg && msg == text && text == msg);
    EXPECT_FALSE(msg != id || id != msg || msg != text || text != msg);
}

TEST(I18nMsg, NumbersReadTheSameEverywhere) {
    const std::pair<std::string, const char*> rows[] = {
        {Formatted(-5L, "%ld items"), "-5 items"},
        {Formatted(5u, "%05lu%%"), "00005%"},
        {Formatted(4294967295ul, "%llx"), "ffffffff"},
        {Formatted(static_cast<long>(4294967295u), "%I64d"), "-1"},
        {Formatted(1.5, "%.3e"), "1.500e+00"},
        {Formatted(1.5, "%8.2lf|"), "    1.50|"},
        {Formatted(7L, "%s and %s"), "7 and %s"},
        {Formatted(7L, "%*n"), "7"},
        {Formatted(7L, "%-4.2d|"), "07  |"},
        {Formatted(2.5, "%d"), "2.5"},
        {Formatted(7L, "100%% %"), "100% 7"},
        {Formatted(7L, nullptr), "7"},
        {Formatted(7L, "no number"), "no number"},
    };
    for (const auto& [text, expected] : rows) EXPECT_EQ(expected, text);
    EXPECT_EQ(999u, Formatted(7L, "%99999999999d").size());
}
