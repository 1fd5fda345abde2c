#include <zavbase/platform/geometry.h>

#include <gtest/gtest.h>

#include <climits>

namespace {

template <class... Values>
std::string Text(const Values&... values) {
    std::ostringstream os;
    os << std::hex << std::showpos; // which is decimal all the same
    ((os << values), ...);
    return os.str();
}

const ZAV_Point lowest(SHRT_MIN, SHRT_MIN), highest(SHRT_MAX, SHRT_MAX);

} // namespace

TEST(Point, ArithmeticWrapsIn16Bits) {
    const ZAV_Point one(1, 1);
    EXPECT_EQ("(-32768,-32768)(32767,32767)", Text(highest + one, lowest - one));
    EXPECT_EQ("(-32768,-32768)", Text(-lowest));
    ZAV_Point p(3, -5);
    p *= INT_MAX;
    EXPECT_EQ("(-3,5)", Text(p));
    EXPECT_EQ(INT_MIN, lowest * lowest);
}

TEST(Point, OrderIsPartialAndYGrowsDownwards) {
    const ZAV_Point a(3, 5), b(4, 2), above(3, 1), beside(4, 1);
    EXPECT_TRUE(above < b && b > above && beside <= b && a <= a && a >= a && a != b);
    EXPECT_FALSE(a < b || b < a || a <= b || a >= b || a > b || a == b || beside < b);
    EXPECT_TRUE(a.IsBelow(b) && b.IsAbove(a) && a.IsLeft(b) && b.IsRight(a));
    EXPECT_FALSE(a.IsBelow(a) || a.IsAbove(a) || a.IsLeft(a) || a.IsRight(a));
    EXPECT_EQ("(4,5)(3,2)", Text(a.Max(b), b.Min(a)));
}

TEST(Rect, ThirdArgumentExtendsYAndOnlyTheSizeIsNotWrapped) {
    EXPECT_EQ("(0,0) corner: (20,10)", Text(ZAV_Rect(0, 0, 10, 20)));
    EXPECT_EQ("(-1,-32768) corner: (-2,-32767)", Text(ZAV_Rect(65535, 32768, 1, INT_MAX)));
    const ZAV_Rect all(lowest, highest);
    EXPECT_EQ(65535, all.Width());
    EXPECT_EQ(static_cast<int>(65535u * 65535u), all.Area());
    EXPECT_EQ("(-1,-1)", Text(all.Extent()));
}

TEST(Rect, MidPointsTruncateTowardsZero) {
    const ZAV_Rect r(ZAV_Point(-3, -5), ZAV_Point(0, 0));
    EXPECT_EQ("(-1,-2)", Text(r.Center()));
    EXPECT_EQ("(-1,-5)(-1,0)(-3,-2)(0,-2)",
              Text(r.TopCenter(), r.BottomCenter(), r.LeftCenter(), r.RightCenter()));
    EXPECT_EQ("(32767,32767)", Text(ZAV_Rect(highest, highest).Center()));
}

TEST(Rect, MovesByAPointOfItsOwn) {
    ZAV_Rect r(ZAV_Point(1, 2), ZAV_Point(4, 8));
    EXPECT_EQ("(2,4) corner: (5,10)", Text(r += r.Origin()));
    r.MoveTo(r.Corner());
    EXPECT_EQ("(5,10) corner: (8,16)", Text(r));
    EXPECT_EQ("(0,0) corner: (3,6)", Text(r -= r.Origin()));
    r.MoveTo(highest);
    EXPECT_EQ("(32767,32767) corner: (-32766,-32763)", Text(r));
}

TEST(Rect, EdgesBelongToItButTouchingIsNoIntersection) {
    const ZAV_Rect left(0, 0, 10, 10), right(10, 0, 10, 10), far(30, 30, 1, 1);
    EXPECT_TRUE(left.Contains(left.Corner()) && left.Contains(left.Origin()) && left.Contains(left));
    EXPECT_FALSE(left.Contains(ZAV_Point(11, 5)) || left.Contains(right) || left.Intersects(right));
    EXPECT_TRUE(left.Intersects(ZAV_Rect(9, 9, 10, 10)));
    EXPECT_EQ("(30,30) corner: (10,10)", Text(left & far));
    EXPECT_EQ("(0,0) corner: (31,31)", Text(far || left));
}
