#include <gtest/gtest.h>

#include <cmath>

#include <tests/values/text_support.h>

namespace {

UValOwner Make(ZAV_UValType type, long dimension = 0) { return UValOwner(ZAV_NewUVal(type, dimension)); }

TEST(TypedValue, AnIndexOutsideTheArrayReachesTheScalar) {
    for (int type = UVAL_CHAR; type <= UVAL_DOUBLE; ++type) {
        SCOPED_TRACE(type);
        auto scalar = Make(static_cast<ZAV_UValType>(type)), array = Make(static_cast<ZAV_UValType>(type), 3);
        scalar->SetLongValue(7, 0);
        EXPECT_EQ(7, scalar->GetLongValue(5));
        for (long i = 0; i < 3; ++i) array->SetLongValue(i + 1, i);
        for (long outside : {-1L, 3L, 2147483647L, -2147483647L}) {
            array->SetLongValue(outside > 0 ? 9 : 8, outside);
            EXPECT_EQ(outside > 0 ? 9 : 8, array->GetLongValue(-1));
        }
        EXPECT_TRUE(array->GetLongValue(0) == 1 && array->GetLongValue(2) == 3);
    }
}

TEST(TypedValue, RealsAreTruncatedThenNarrowed) {
    const std::tuple<ZAV_UValType, double, long> rows[] = {
        {UVAL_SHORT, -2.9, -2},         {UVAL_CHAR, 200.5, -56}, {UVAL_LONG, 3e9, -1294967296L},
        {UVAL_ULONG, 4294967295.0, -1}, {UVAL_LONG, 1e300, 0},   {UVAL_ULONG, -1.0, -1},
        {UVAL_LONG, std::nan(""), 0},   {UVAL_LONG, -1e19, 0},   {UVAL_LONG, -INFINITY, 0},
    };
    for (const auto& [type, value, result] : rows) {
        auto number = Make(type), real = Make(UVAL_DOUBLE);
        number->SetDoubleValue(value, 0);
        real->SetDoubleValue(value, 0);
        EXPECT_EQ(result, number->GetLongValue(0)) << type << " " << value;
        EXPECT_TRUE(type != UVAL_LONG || result == real->GetLongValue(0)) << value;
    }
}

TEST(TypedValue, IntegersHaveThirtyTwoBitsOnEveryPlatform) {
    auto v = Make(UVAL_ULONG), small = Make(UVAL_CHAR), real = Make(UVAL_DOUBLE), integer = Make(UVAL_LONG);
    v->SetULongValue(4294967295UL, 0);
    EXPECT_EQ(-1L, v->GetLongValue(0));
    EXPECT_EQ(4294967295UL, v->GetULongValue(0));
    EXPECT_EQ(4294967295.0, v->GetDoubleValue(0));
    small->SetUCharValue(255, 0);
    EXPECT_EQ(4294967295UL, small->GetULongValue(0));
    EXPECT_EQ(255, small->GetUCharValue(0));
    const long wide = static_cast<long>(sizeof(long) > 4 ? 0x500000007LL : 7);
    real->SetLongValue(wide, 0);
    integer->SetLongValue(wide, 0);
    EXPECT_EQ(7.0, real->GetDoubleValue(0));
    EXPECT_EQ(7, integer->GetLongValue(0));
}

TEST(TypedValue, TextOfAnElement) {
    const std::tuple<ZAV_UValType, const char*, const char*> rows[] = {
        {UVAL_CHAR, " -129x", "127"},        {UVAL_SHORT, "40000", "-25536"},
        {UVAL_USHORT, "-1", "65535"},        {UVAL_LONG, "4294967297", "1"},
        {UVAL_ULONG, "4294967295", "-1"},    {UVAL_DOUBLE, "-1.5e3", "-1500.000000"},
        {UVAL_PTR, "0xABcd", "0x0000ABCD"},  {UVAL_PTR, "010", "0x00000008"},
        {UVAL_PTR, " +17", "0x00000011"},    {UVAL_PTR, "0x", "0x00000000"},
        {UVAL_STRING, "caf\xE9", "caf\xE9"}, {UVAL_UTFSTRING, "caf\xE9", "caf#"},
    };
    for (const auto& [type, text, result] : rows) {
        auto v = Make(type, 2);
        ZAV_String shown;
        v->SetStrValue(text, 1);
        v->GetStrValue(shown, 1);
        EXPECT_STREQ(result, shown.Ptr()) << type << " " << text;
    }
    int local = 0;
    ZAV_UValPtr p;
    p.SetPtrValue(&local, 0);
    ZAV_String text;
    p.GetStrValue(text, 0);
    p.SetPtrValue(nullptr, 0);
    p.SetStrValue(text, 0);
    EXPECT_EQ(&local, p.GetValue(0)) << "a pointer of any width survives as text";
    ZAV_UValString s;
    s.SetValue("12", 0);
    s.SetLongValue(5, 0);
    EXPECT_EQ(0, s.GetLongValue(0)) << "a string is no number";
    EXPECT_STREQ("12", s.GetCStringValue(0));
}

TEST(TypedValue, ElementsGoThroughPointers) {
    zav_long32 in[] = {-5, 6}, out = 0;
    ZAV_UValLong n(2);
    n.SetPtrValue(in, 1);
    n.GetPtrValue(&out, 1);
    EXPECT_EQ(-5, out);
    ZAV_String text("a\0b", 3), copy;
    ZAV_UValString s;
    s.SetPtrValue(&text, 0);
    s.GetPtrValue(&copy, 0);
    EXPECT_TRUE(copy == text);
}

TEST(TypedValue, CopiesOwnTheirElementsAndAssignedValuesShareThem) {
    zav_long32 buffer[] = {1, 2, 3};
    auto alias = std::make_unique<ZAV_UValLong>(3, buffer);
    std::unique_ptr<ZAV_UValLong> second(alias->DeepCopy());
    alias.reset();
    second->SetLongValue(7, 1);
    EXPECT_EQ(7, buffer[1]) << "elements of the caller are nobody's";

    auto first = std::make_unique<ZAV_UValString>(2);
    first->SetValue("a text that needs a buffer of its own", 1);
    ZAV_UValString shared(3), third;
    shared = *first;
    third = shared;
    third = *&third;
    const std::unique_ptr<ZAV_UValString> copy(first->DeepCopy());
    first->SetValue("seen by all", 0);
    first.reset();
    shared = ZAV_UValString();
    EXPECT_STREQ("seen by all", third.GetCStringValue(0)) << "until the last is gone";
    EXPECT_STREQ("a text that needs a buffer of its own", third.GetCStringValue(1));
    EXPECT_STREQ("", copy->GetCStringValue(0));
}

TEST(TypedValue, Print) {
    short three[] = {1, 2, 3};
    ZAV_UValShort v(3, three);
    v.SetNrItemsToPrint(2);
    EXPECT_EQ("(Short#3) {1,2,}", Printed(v));
    ZAV_UValShort negative(-5);
    EXPECT_TRUE(negative.GetDimension() == 0 && negative.GetNrItemsToPrint() == -5);
    EXPECT_EQ("(Short)0", Printed(negative)) << "a scalar, as is what memory cannot hold";
    EXPECT_TRUE(sizeof(void*) > 4 || ZAV_UValDouble(0x7FFFFFFF).GetDimension() == 0);
    const std::pair<const char*, const char*> rows[] = {{"-1 zavulong", "(ULong)4294967295"},
                                                        {"0.1 zavfloat", "(Float)0.1"},
                                                        {"1e100", "(Double)1e+100"},
                                                        {"(\xE2\x82\xAC) zavutfstring", "(UTFString)[20ac]"}};
    for (const auto& [text, printed] : rows) EXPECT_EQ(printed, Printed(*ReadValue(text)));
}

} // namespace
