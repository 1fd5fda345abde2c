#include <zavbase/i18n/number_format_internal.h>

#include <algorithm>
#include <cstring>

#include <zavbase/strings/format_spec_internal.h>

ZAV_NumberFormat::ZAV_NumberFormat(const char* format, const char* suitable, char usual, const char* length) {
    const char* p = TakeLiteral(format ? format : "%", mBefore);
    if (!*p) return; // no conversion: the number does not show
    p = TakeConversion(p + 1, suitable, usual, length);
    while (*p) {
        p = TakeLiteral(p, mAfter);
        if (*p) mAfter += *p++;
    }
}

// Up to the next conversion or the end; "%%" is a percent sign.
const char* ZAV_NumberFormat::TakeLiteral(const char* p, ZAV_String& text) {
    for (; *p; ++p) {
        if (*p == '%' && *++p != '%') return p - 1;
        text += *p;
    }
    return p;
}

const char* ZAV_NumberFormat::TakeConversion(const char* p, const char* suitable, char usual,
                                             const char* length) {
    zav_format::Conversion c;
    p = zav_format::Read(p, c);
    mConversion = "%";
    if (c.left) mConversion += '-';
    if (c.plus) mConversion += '+';
    if (c.blank) mConversion += ' ';
    if (c.zero) mConversion += '0';
    if (c.alternate != 0) mConversion += '#';
    if (c.width > 0) AddNumber(static_cast<int>((std::min)(c.width, 999u)));
    if (c.precision >= 0) {
        mConversion += '.';
        AddNumber((std::min)(c.precision, 999));
    }
    mConversion += length;
    mConversion += *p && std::strchr(suitable, *p) ? *p : usual;
    return *p ? p + 1 : p;
}

void ZAV_NumberFormat::AddNumber(int n) {
    ZAV_String digits;
    mConversion += digits.Format("%d", n);
}
