#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <sstream>

#include <tests/values/text_support.h>

namespace {

std::unique_ptr<ZAV_UVal> Make(ZAV_UValType type, long dimension = 0) {
    return std::unique_ptr<ZAV_UVal>(ZAV_NewUVal(type, dimension));
}

TEST(TypedValue, AnIndexOutsideTheArrayReachesTheScalar) {
    for (int type = UVAL_CHAR; type <= UVAL_DOUBLE; ++type) {
        SCOPED_TRACE(type);
        auto scalar = Make(static_cast<ZAV_UValType>(type));
        scalar->SetLongValue(7, 0);
        EXPECT_EQ(7, scalar->GetLongValue(5));
        auto array = Make(static_cast<ZAV_UValType>(type), 3);
        for (long i = 0; i < 3; ++i) array->SetLongValue(i + 1, i);
        for (long outside : {-1L, 3L, 2147483647L, -2147483647L}) {
            array->SetLongValue(outside > 0 ? 9 : 8, outside);
            EXPECT_EQ(outside > 0 ? 9 : 8, array->GetLongValue(-1));
        }
        EXPECT_EQ(1, array->GetLongValue(0));
        EXPECT_EQ(3, array->GetLongValue(2));
    }
}

TEST(TypedValue, RealsAreTruncatedThenNarrowed) {
    const struct {
        ZAV_UValType type;
        double value;
        long result;
    } rows[] = {
        {UVAL_SHORT, -2.9, -2},
        {UVAL_CHAR, 200.5, -56},
        {UVAL_LONG, 3e9, -1294967296L},
        {UVAL_ULONG, 4294967295.0, -1},
        {UVAL_LONG, 1e300, 0},
        {UVAL_ULONG, -1.0, -1},
        {UVAL_LONG, std::nan(""), 0},
        {UVAL_LONG, -1e19, 0},
        {UVAL_LONG, -std::numeric_limits<double>::infinity(), 0},
    };
    for (const auto& row : rows) {
        auto v = Make(row.type);
        v->SetDoubleValue(row.value, 0);
        EXPECT_EQ(row.result, v->GetLongValue(0)) << row.type << " " << row.value;
        auto real = Make(UVAL_DOUBLE);
        real->SetDoubleValue(row.value, 0);
        if (row.type != UVAL_LONG) continue;
        EXPECT_EQ(row.result, real->GetLongValue(0)) << row.value;
    }
}

TEST(TypedValue, IntegersHaveThirtyTwoBitsOnEveryPlatform) {
    auto v = Make(UVAL_ULONG);
    v->SetULongValue(4294967295UL, 0);
    EXPECT_EQ(-1L, v->GetLongValue(0));
    EXPECT_EQ(4294967295UL, v->GetULongValue(0));
    EXPECT_EQ(4294967295.0, v->GetDoubleValue(0));
    auto small = Make(UVAL_CHAR);
    small->SetUCharValue(255, 0);
    EXPECT_EQ(4294967295UL, small->GetULongValue(0));
    EXPECT_EQ(255, small->GetUCharValue(0));
    if (sizeof(long) > 4) {
        const long wide = static_cast<long>(0x500000007LL);
        auto real = Make(UVAL_DOUBLE);
        real->SetLongValue(wide, 0);
        EXPECT_EQ(7.0, real->GetDoubleValue(0));
        ZAV_UValLong integer;
        integer.SetValue(wide, 0);
        EXPECT_EQ(7, integer.GetValue(0));
    }
}

TEST(TypedValue, TextOfAnElement) {
    const struct {
        ZAV_UValType type;
        const char* text;
        const char* result;
    } rows[] = {
        {UVAL_CHAR, " -129x", "127"},        {UVAL_SHORT, "40000", "-25536"},
        {UVAL_USHORT, "-1", "65535"},        {UVAL_LONG, "4294967297", "1"},
        {UVAL_ULONG, "4294967295", "-1"},    {UVAL_DOUBLE, "-1.5e3", "-1500.000000"},
        {UVAL_PTR, "0xABcd", "0x0000ABCD"},  {UVAL_PTR, "010", "0x00000008"},
        {UVAL_PTR, " +17", "0x00000011"},    {UVAL_PTR, "0x", "0x00000000"},
        {UVAL_STRING, "caf\xE9", "caf\xE9"}, {UVAL_UTFSTRING, "caf\xE9", "caf#"},
    };
    for (const auto& row : rows) {
        auto v = Make(row.type, 2);
        ZAV_String text;
        v->SetStrValue(row.text, 1);
        v->GetStrValue(text, 1);
        EXPECT_STREQ(row.result, text.Ptr()) << row.type << " " << row.text;
    }
    int local = 0;
    ZAV_UValPtr p;
    p.SetPtrValue(&local, 0);
    ZAV_String text;
    p.GetStrValue(text, 0);
    p.SetPtrValue(nullptr, 0);
    p.SetStrValue(text, 0);
    EXPECT_EQ(&local, p.GetValue(0));
}

TEST(TypedValue, AStringIsNoNumber) {
    ZAV_UValString s;
    s.SetValue("12", 0);
    s.SetLongValue(5, 0);
    EXPECT_EQ(0, s.GetLongValue(0));
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

TEST(TypedValue, CopiesOwnTheirElementsUnlessTheCallerDoes) {
    ZAV_UValString own(2);
    own.SetValue("one", 0);
    std::unique_ptr<ZAV_UValString> copy(own.DeepCopy());
    own.SetValue("two", 0);
    EXPECT_STREQ("one", copy->GetCStringValue(0));

    zav_long32 buffer[] = {1, 2, 3};
    auto alias = std::make_unique<ZAV_UValLong>(3, buffer);
    std::unique_ptr<ZAV_UValLong> second(alias->DeepCopy());
    alias.reset();
    second->SetLongValue(7, 1);
    EXPECT_EQ(7, buffer[1]);
}

TEST(TypedValue, AssignedValuesShareElementsUntilTheLastIsGone) {
    auto first = std::make_unique<ZAV_UValString>(2);
    first->SetValue("a text that needs a buffer of its own", 1);
    ZAV_UValString second(3), third;
    second = *first;
    third = second;
    third = *&third;
    first->SetValue("seen by all", 0);
    first.reset();
    second = ZAV_UValString();
    EXPECT_STREQ("seen by all", third.GetCStringValue(0));
    EXPECT_STREQ("a text that needs a buffer of its own", third.GetCStringValue(1));
}

TEST(TypedValue, NegativeAndImpossibleDimensionsMakeScalars) {
    ZAV_UValShort v(-5);
    EXPECT_EQ(0, v.GetDimension());
    EXPECT_EQ(-5, v.GetNrItemsToPrint());
    EXPECT_EQ("(Short)0", Printed(v));
    if (sizeof(void*) > 4) return;
    EXPECT_EQ(0, ZAV_UValDouble(0x7FFFFFFF).GetDimension());
}

TEST(TypedValue, Print) {
    short three[] = {1, 2, 3};
    ZAV_UValShort v(3, three);
    EXPECT_EQ("(Short#3) {1,2,3,}", Printed(v));
    v.SetNrItemsToPrint(2);
    EXPECT_EQ("(Short#3) {1,2,}", Printed(v));
    const struct {
        ZAV_UValType type;
        const char* text;
        const char* print;
    } rows[] = {
        {UVAL_ULONG, "-1", "(ULong)4294967295"},
        {UVAL_FLOAT, "0.1", "(Float)0.1"},
        {UVAL_DOUBLE, "1e100", "(Double)1e+100"},
        {UVAL_UTFSTRING, "\xE2\x82\xAC", "(UTFString)[20ac]"},
    };
    for (const auto& row : rows) {
        auto value = Make(row.type);
        value->SetStrValue(row.text, 0);
        EXPECT_EQ(row.print, Printed(*value));
    }
    std::ostringstream os;
    os.precision(3);
    ZAV_UValDouble pi;
    pi.SetValue(3.14159, 0);
    os << pi << ' ' << std::fixed << pi;
    EXPECT_EQ("(Double)3.14 (Double)3.142", os.str());
}

} // namespace
