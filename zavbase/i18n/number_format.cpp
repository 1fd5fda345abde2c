#include <zavbase/i18n/number_format_internal.h>

#include <cctype>
#include <cstring>

ZAV_NumberFormat::ZAV_NumberFormat(const char* format, const char* suitable, char usual) {
    const char* p = TakeLiteral(format ? format : "%", mBefore);
    if (!*p) return; // no conversion: the number does not show
    p = TakeConversion(p + 1, suitable, usual);
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

const char* ZAV_NumberFormat::TakeConversion(const char* p, const char* suitable, char usual) {
    mConversion = "%";
    for (; *p && std::strchr("-+ #0", *p); ++p) mConversion += *p;
    p = TakeDigits(p);
    if (*p == '.') {
        mConversion += *p;
        p = TakeDigits(p + 1);
    }
    if (std::strncmp(p, "I64", 3) == 0 || std::strncmp(p, "I32", 3) == 0) p += 3;
    while (*p && std::strchr("hlLqjzt", *p)) ++p;
    mConversion += *p && std::strchr(suitable, *p) ? *p : usual;
    return *p ? p + 1 : p;
}

const char* ZAV_NumberFormat::TakeDigits(const char* p) {
    for (int digits = 0; *p == '*' || std::isdigit(static_cast<unsigned char>(*p)); ++p)
        if (*p != '*' && ++digits <= 3) mConversion += *p;
    return p;
}
