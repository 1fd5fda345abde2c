#ifndef ZAVBASE_PLATFORM_GEOMETRY_H
#define ZAVBASE_PLATFORM_GEOMETRY_H

#include <iosfwd>

#include <zavbase/foundation/types.h>

/// A point of integer screen geometry: two signed 16-bit coordinates, y growing downwards. A plain value
/// without virtual functions. Arithmetic is done in 16 bits and wraps: 32767 + 1 is -32768.
class ZAV_API ZAV_Point {
public:
    ZAV_Point();
    ZAV_Point(short x, short y);

    short X() const;
    short Y() const;
    void X(short x);
    void Y(short y);

    ZAV_Point& operator+=(const ZAV_Point& p);
    ZAV_Point& operator-=(const ZAV_Point& p);
    /// Both coordinates times `k`; the low 16 bits of each product are kept.
    ZAV_Point& operator*=(int k);
    ZAV_Point operator-() const;
    /// The dot product, in 32 bits.
    int operator*(const ZAV_Point& p) const;

    boolean_t operator==(const ZAV_Point& p) const;
    boolean_t operator!=(const ZAV_Point& p) const;
    /// A partial order: the relation must hold for both coordinates. Of two points neither may be less than
    /// the other although they differ, and `!(a < b)` does not mean `a >= b`.
    boolean_t operator<(const ZAV_Point& p) const;
    boolean_t operator<=(const ZAV_Point& p) const;
    boolean_t operator>(const ZAV_Point& p) const;
    boolean_t operator>=(const ZAV_Point& p) const;
    boolean_t IsBelow(const ZAV_Point& p) const;
    boolean_t IsAbove(const ZAV_Point& p) const;
    boolean_t IsLeft(const ZAV_Point& p) const;
    boolean_t IsRight(const ZAV_Point& p) const;

    /// The greater (smaller) x with the greater (smaller) y: often neither of the two points.
    ZAV_Point Max(const ZAV_Point& p) const;
    ZAV_Point Min(const ZAV_Point& p) const;

    /// Writes "(x,y)".
    void PrintOn(std::ostream& os) const;

private:
    short mX;
    short mY;
};

ZAV_API ZAV_Point operator+(const ZAV_Point& a, const ZAV_Point& b);
ZAV_API ZAV_Point operator-(const ZAV_Point& a, const ZAV_Point& b);

/// A rectangle given by its top-left point (the origin) and its bottom-right point (the corner), both part
/// of it. A plain value; nothing makes sure that the corner lies right of and below the origin.
class ZAV_API ZAV_Rect {
public:
    ZAV_Rect();
    /// Origin (x, y) and corner (x + dx, y + dy). Mind the order: the third argument extends y and the
    /// fourth one x.
    ZAV_Rect(int x, int y, int dy, int dx);
    ZAV_Rect(const ZAV_Point& origin, const ZAV_Point& corner);

    const ZAV_Point& Origin() const;
    const ZAV_Point& Corner() const;
    void Origin(const ZAV_Point& p);
    void Corner(const ZAV_Point& p);

    ZAV_Point TopRight() const;
    ZAV_Point BottomLeft() const;
    ZAV_Point BottomRight() const;
    /// Mid-points: half the sum of the two coordinates, truncated towards zero.
    ZAV_Point TopCenter() const;
    ZAV_Point BottomCenter() const;
    ZAV_Point LeftCenter() const;
    ZAV_Point RightCenter() const;
    ZAV_Point Center() const;

    /// Corner minus origin, without adding 1 and not wrapped to 16 bits.
    int Width() const;
    int Height() const;
    /// Width times height, in 32 bits.
    int Area() const;
    /// Width and height as a point, narrowed to 16 bits.
    ZAV_Point Extent() const;

    ZAV_Rect& operator+=(const ZAV_Point& p);
    ZAV_Rect& operator-=(const ZAV_Point& p);
    /// Moves the origin to `p` and keeps the size.
    void MoveTo(const ZAV_Point& p);

    /// Edges belong to the rectangle.
    boolean_t Contains(const ZAV_Point& p) const;
    boolean_t Contains(const ZAV_Rect& r) const;
    /// False for rectangles that only touch.
    boolean_t Intersects(const ZAV_Rect& r) const;
    /// The intersection; where there is none, the result has its corner above or left of its origin.
    ZAV_Rect operator&(const ZAV_Rect& r) const;
    /// The smallest rectangle around both. (It is an operator of two values: both sides are evaluated.)
    ZAV_Rect operator||(const ZAV_Rect& r) const;

    boolean_t operator==(const ZAV_Rect& r) const;
    boolean_t operator!=(const ZAV_Rect& r) const;

    /// Writes "(x,y) corner: (x,y)".
    void PrintOn(std::ostream& os) const;

private:
    ZAV_Point mOrigin;
    ZAV_Point mCorner;
};

inline std::ostream& operator<<(std::ostream& os, const ZAV_Point& p) {
    p.PrintOn(os);
    return os;
}

inline std::ostream& operator<<(std::ostream& os, const ZAV_Rect& r) {
    r.PrintOn(os);
    return os;
}

#endif
