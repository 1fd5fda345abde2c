#include <zavbase/platform/geometry.h>

#include <gtest/gtest.h>

#include <climits>
#include <sstream>

namespace {

template <class T>
std::string Text(const T& value) {
    std::ostringstream os;
    os << std::hex << std::showpos << value; // which is decimal all the same
    return os.str();
}

const ZAV_Point lowest(SHRT_MIN, SHRT_MIN), highest(SHRT_MAX, SHRT_MAX);

} // namespace

TEST(Point, ArithmeticWrapsIn16Bits) {
    EXPECT_EQ("(-32768,-32768)", Text(highest + ZAV_Point(1, 1)));
    EXPECT_EQ("(32767,32767)", Text(lowest - ZAV_Point(1, 1)));
    EXPECT_EQ("(-32768,-32768)", Text(-lowest));
    ZAV_Point p(3, -5);
    p *= INT_MAX;
    EXPECT_EQ("(-3,5)", Text(p));
    EXPECT_EQ(INT_MIN, lowest * lowest);
    EXPECT_EQ(-7, ZAV_Point(1, 3) * ZAV_Point(-4, -1));
    p += p;
    EXPECT_EQ("(-6,10)", Text(p));
    p -= p;
    EXPECT_EQ("(0,0)", Text(p));
}

TEST(Point, OrderIsPartialAndYGrowsDownwards) {
    const ZAV_Point a(3, 5), b(4, 2);
    EXPECT_TRUE(ZAV_Point(3, 1) < b && b > ZAV_Point(3, 1));
    EXPECT_FALSE(a < b || b < a || a <= b || a >= b || a > b || a == b);
    EXPECT_TRUE(a <= a && a >= a && a != b);
    EXPECT_FALSE(ZAV_Point(4, 1) < b);
    EXPECT_TRUE(ZAV_Point(4, 1) <= b);
    EXPECT_TRUE(a.IsBelow(b) && b.IsAbove(a) && a.IsLeft(b) && b.IsRight(a));
    EXPECT_FALSE(a.IsBelow(a) || a.IsAbove(a) || a.IsLeft(a) || a.IsRight(a));
    EXPECT_EQ("(4,5) (3,2)", Text(a.Max(b)) + " " + Text(b.Min(a)));
}

TEST(Rect, ThirdArgumentExtendsY) {
    const ZAV_Rect r(0, 0, 10, 20);
    EXPECT_EQ("(0,0) corner: (20,10)", Text(r));
    EXPECT_EQ(200, r.Area());
    EXPECT_EQ("(-1,-32768) corner: (-2,-32767)", Text(ZAV_Rect(65535, 32768, 1, INT_MAX)));
}

TEST(Rect, SizeIsNotWrappedButExtentIs) {
    const ZAV_Rect all(lowest, highest);
    EXPECT_EQ(65535, all.Width());
    EXPECT_EQ(static_cast<int>(65535u * 65535u), all.Area());
    EXPECT_EQ("(-1,-1)", Text(all.Extent()));
    EXPECT_EQ("(0,0)", Text(all.Center()));
}

TEST(Rect, MidPointsTruncateTowardsZero) {
    const ZAV_Rect r(ZAV_Point(-3, -3), ZAV_Point(0, 0));
    EXPECT_EQ("(-1,-1)", Text(r.Center()));
    EXPECT_EQ("(-1,-3) (-1,0)", Text(r.TopCenter()) + " " + Text(r.BottomCenter()));
    EXPECT_EQ("(-3,-1) (0,-1)", Text(r.LeftCenter()) + " " + Text(r.RightCenter()));
    EXPECT_EQ("(0,-3) (-3,0)", Text(r.TopRight()) + " " + Text(r.BottomLeft()));
    EXPECT_EQ("(32767,32767)", Text(ZAV_Rect(highest, highest).Center()));
}

TEST(Rect, MovesByAPointOfItsOwn) {
    ZAV_Rect r(ZAV_Point(1, 2), ZAV_Point(4, 8));
    r += r.Origin();
    EXPECT_EQ("(2,4) corner: (5,10)", Text(r));
    r.MoveTo(r.Corner());
    EXPECT_EQ("(5,10) corner: (8,16)", Text(r));
    r -= r.Origin();
    EXPECT_EQ("(0,0) corner: (3,6)", Text(r));
    r.MoveTo(highest);
    EXPECT_EQ("(32767,32767) corner: (-32766,-32763)", Text(r));
}

TEST(Rect, EdgesBelongToItButTouchingIsNoIntersection) {
    const ZAV_Rect left(0, 0, 10, 10), right(10, 0, 10, 10), far(30, 30, 1, 1);
    EXPECT_TRUE(left.Contains(left.Corner()) && left.Contains(left.Origin()) && left.Contains(left));
    EXPECT_FALSE(left.Contains(ZAV_Point(11, 5)) || left.Contains(right));
    EXPECT_FALSE(left.Intersects(right));
    EXPECT_TRUE(left.Intersects(ZAV_Rect(9, 9, 10, 10)));
    EXPECT_EQ(0, (left & right).Width());
    EXPECT_EQ("(30,30) corner: (10,10)", Text(left & far));
    EXPECT_EQ("(0,0) corner: (31,31)", Text(far || left));
    EXPECT_TRUE(left != right && left == ZAV_Rect(ZAV_Point(), ZAV_Point(10, 10)));
}
