#ifndef ZAVBASE_I18N_NUMBER_FORMAT_INTERNAL_H
#define ZAVBASE_I18N_NUMBER_FORMAT_INTERNAL_H

#include <zavbase/strings/byte_string.h>

/// A printf-style format cut around its first conversion, which is made to fit one number, whatever the
/// format asks for: the number's own length letters, no "*", a width and a precision of at most 999. Later
/// conversions are plain text.
struct ZAV_NumberFormat {
    /// `suitable` lists the conversion letters that may stay; any other becomes `usual`. A null format is one
    /// conversion of the usual kind. `length` is the length letters of the number.
    ZAV_NumberFormat(const char* format, const char* suitable, char usual, const char* length = "");

    /// The text of `value`, which must be of the type that the letters and `length` stand for.
    template <class Number>
    ZAV_String Apply(Number value) const {
        ZAV_String number;
        number.Format(mConversion, value);
        return mBefore + number + mAfter;
    }

    ZAV_String mBefore;
    ZAV_String mConversion;
    ZAV_String mAfter;

private:
    const char* TakeLiteral(const char* p, ZAV_String& text);
    const char* TakeConversion(const char* p, const char* suitable, char usual, const char* length);
    void AddNumber(int n);
};

#endif
