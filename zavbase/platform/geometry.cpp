#include <zavbase/platform/geometry.h>

#include <algorithm>
#include <ostream>
#include <string>

namespace {

// All arithmetic goes through unsigned, where overflow is defined, and keeps the low 16 bits.
short Low16(unsigned value) { return static_cast<short>(static_cast<unsigned short>(value)); }
unsigned Bits(int value) { return static_cast<unsigned>(value); }

short Middle(short a, short b) { return static_cast<short>((a + b) / 2); }

} // namespace

ZAV_Point::ZAV_Point() : mX(0), mY(0) {}
ZAV_Point::ZAV_Point(short x, short y) : mX(x), mY(y) {}

short ZAV_Point::X() const { return mX; }
short ZAV_Point::Y() const { return mY; }
void ZAV_Point::X(short x) { mX = x; }
void ZAV_Point::Y(short y) { mY = y; }

ZAV_Point& ZAV_Point::operator+=(const ZAV_Point& p) { return *this = *this + p; }
ZAV_Point& ZAV_Point::operator-=(const ZAV_Point& p) { return *this = *this - p; }

ZAV_Point& ZAV_Point::operator*=(int k) {
    mX = Low16(Bits(mX) * Bits(k));
    mY = Low16(Bits(mY) * Bits(k));
    return *this;
}

ZAV_Point ZAV_Point::operator-() const { return ZAV_Point() - *this; }

int ZAV_Point::operator*(const ZAV_Point& p) const {
    return static_cast<int>(Bits(mX * p.mX) + Bits(mY * p.mY));
}

boolean_t ZAV_Point::operator==(const ZAV_Point& p) const { return ZAV_Bool(mX == p.mX && mY == p.mY); }
boolean_t ZAV_Point::operator!=(const ZAV_Point& p) const { return ZAV_Bool(mX != p.mX || mY != p.mY); }
boolean_t ZAV_Point::operator<(const ZAV_Point& p) const { return ZAV_Bool(mX < p.mX && mY < p.mY); }
boolean_t ZAV_Point::operator<=(const ZAV_Point& p) const { return ZAV_Bool(mX <= p.mX && mY <= p.mY); }
boolean_t ZAV_Point::operator>(const ZAV_Point& p) const { return ZAV_Bool(mX > p.mX && mY > p.mY); }
boolean_t ZAV_Point::operator>=(const ZAV_Point& p) const { return ZAV_Bool(mX >= p.mX && mY >= p.mY); }
boolean_t ZAV_Point::IsBelow(const ZAV_Point& p) const { return ZAV_Bool(mY > p.mY); }
boolean_t ZAV_Point::IsAbove(const ZAV_Point& p) const { return ZAV_Bool(mY < p.mY); }
boolean_t ZAV_Point::IsLeft(const ZAV_Point& p) const { return ZAV_Bool(mX < p.mX); }
boolean_t ZAV_Point::IsRight(const ZAV_Point& p) const { return ZAV_Bool(mX > p.mX); }

ZAV_Point ZAV_Point::Max(const ZAV_Point& p) const {
    return ZAV_Point((std::max)(mX, p.mX), (std::max)(mY, p.mY));
}

ZAV_Point ZAV_Point::Min(const ZAV_Point& p) const {
    return ZAV_Point((std::min)(mX, p.mX), (std::min)(mY, p.mY));
}

void ZAV_Point::PrintOn(std::ostream& os) const {
    // Decimal whatever the stream's flags and locale are.
    os << "(" << std::to_string(mX) << "," << std::to_string(mY) << ")";
}

ZAV_Point operator+(const ZAV_Point& a, const ZAV_Point& b) {
    return ZAV_Point(Low16(Bits(a.X()) + Bits(b.X())), Low16(Bits(a.Y()) + Bits(b.Y())));
}

ZAV_Point operator-(const ZAV_Point& a, const ZAV_Point& b) {
    return ZAV_Point(Low16(Bits(a.X()) - Bits(b.X())), Low16(Bits(a.Y()) - Bits(b.Y())));
}

ZAV_Rect::ZAV_Rect() {}

ZAV_Rect::ZAV_Rect(int x, int y, int dy, int dx)
    : mOrigin(Low16(Bits(x)), Low16(Bits(y))), mCorner(Low16(Bits(x) + Bits(dx)), Low16(Bits(y) + Bits(dy))) {
}

ZAV_Rect::ZAV_Rect(const ZAV_Point& origin, const ZAV_Point& corner) : mOrigin(origin), mCorner(corner) {}

const ZAV_Point& ZAV_Rect::Origin() const { return mOrigin; }
const ZAV_Point& ZAV_Rect::Corner() const { return mCorner; }
void ZAV_Rect::Origin(const ZAV_Point& p) { mOrigin = p; }
void ZAV_Rect::Corner(const ZAV_Point& p) { mCorner = p; }

ZAV_Point ZAV_Rect::TopRight() const { return ZAV_Point(mCorner.X(), mOrigin.Y()); }
ZAV_Point ZAV_Rect::BottomLeft() const { return ZAV_Point(mOrigin.X(), mCorner.Y()); }
ZAV_Point ZAV_Rect::BottomRight() const { return mCorner; }

ZAV_Point ZAV_Rect::TopCenter() const { return ZAV_Point(Center().X(), mOrigin.Y()); }
ZAV_Point ZAV_Rect::BottomCenter() const { return ZAV_Point(Center().X(), mCorner.Y()); }
ZAV_Point ZAV_Rect::LeftCenter() const { return ZAV_Point(mOrigin.X(), Center().Y()); }
ZAV_Point ZAV_Rect::RightCenter() const { return ZAV_Point(mCorner.X(), Center().Y()); }

ZAV_Point ZAV_Rect::Center() const {
    return ZAV_Point(Middle(mOrigin.X(), mCorner.X()), Middle(mOrigin.Y(), mCorner.Y()));
}

int ZAV_Rect::Width() const { return mCorner.X() - mOrigin.X(); }
int ZAV_Rect::Height() const { return mCorner.Y() - mOrigin.Y(); }
int ZAV_Rect::Area() const { return static_cast<int>(Bits(Width()) * Bits(Height())); }
ZAV_Point ZAV_Rect::Extent() const { return mCorner - mOrigin; }

ZAV_Rect& ZAV_Rect::operator+=(const ZAV_Point& p) {
    // `p` may be a point of this rectangle, which the first addition changes.
    const ZAV_Point by = p;
    mOrigin += by;
    mCorner += by;
    return *this;
}

ZAV_Rect& ZAV_Rect::operator-=(const ZAV_Point& p) { return *this += -p; }

void ZAV_Rect::MoveTo(const ZAV_Point& p) { *this += p - mOrigin; }

boolean_t ZAV_Rect::Contains(const ZAV_Point& p) const { return ZAV_Bool(mOrigin <= p && p <= mCorner); }

boolean_t ZAV_Rect::Contains(const ZAV_Rect& r) const {
    return ZAV_Bool(Contains(r.mOrigin) && Contains(r.mCorner));
}

boolean_t ZAV_Rect::Intersects(const ZAV_Rect& r) const {
    return mOrigin.Max(r.mOrigin) < mCorner.Min(r.mCorner);
}

ZAV_Rect ZAV_Rect::operator&(const ZAV_Rect& r) const {
    return ZAV_Rect(mOrigin.Max(r.mOrigin), mCorner.Min(r.mCorner));
}

ZAV_Rect ZAV_Rect::operator||(const ZAV_Rect& r) const {
    return ZAV_Rect(mOrigin.Min(r.mOrigin), mCorner.Max(r.mCorner));
}

boolean_t ZAV_Rect::operator==(const ZAV_Rect& r) const {
    return ZAV_Bool(mOrigin == r.mOrigin && mCorner == r.mCorner);
}

boolean_t ZAV_Rect::operator!=(const ZAV_Rect& r) const { return ZAV_Bool(!(*this == r)); }

void ZAV_Rect::PrintOn(std::ostream& os) const { os << mOrigin << " corner: " << mCorner; }
