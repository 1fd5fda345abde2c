#ifndef ZAVBASE_STRINGS_NUMBER_TEXT_INTERNAL_H
#define ZAVBASE_STRINGS_NUMBER_TEXT_INTERNAL_H

#include <cstddef>
#include <cstdint>

/// Numbers to text and back, the same on every platform and in every locale. The C run-times differ in the
/// digits of exponents, in digits after the 17th and in what they do on overflow; none of them is used here.
namespace zav_number {

/// Room for any 32-bit number with sign and terminator.
constexpr size_t kIntegerRoom = 12;
/// Writes decimal digits and a NUL; returns the length without it.
unsigned FormatInteger(char (&out)[kIntegerRoom], int32_t value);
unsigned FormatUnsigned(char (&out)[kIntegerRoom], uint32_t value);

/// White space, sign, digits; modulo 2^32, so that 4294967295 reads as -1. Ends at what does not fit; no
/// digits give 0.
int32_t ParseInteger(const char* text);
/// The same on at most `length` characters.
int32_t ParseInteger(const char* text, size_t length);

/// Room for any double with up to 40 decimals, with terminator.
constexpr size_t kRealRoom = 360;
/// As "%.<decimals>f": every digit is exact, rounded half to even. `decimals` is 0 to 40. Infinities are
/// "inf" and "-inf", what is not a number is "nan". Returns the length.
unsigned FormatFixed(char (&out)[kRealRoom], double value, int decimals = 6);
/// The same for files that are read back: infinities as 1e999 and -1e999, not a number as 0.
unsigned FormatFixedForFile(char (&out)[kRealRoom], double value, int decimals = 6);
/// As "%.<precision>g", which is what a stream writes by default (precision 1 to 40; 6 unless changed).
/// Exponents have two digits or, where needed, three. Infinities and not a number as FormatFixed.
unsigned FormatGeneral(char (&out)[kRealRoom], double value, int precision = 6);

/// The double next to 10 to the power `exponent`: 0 below, infinity above the range of double.
double PowerOfTen(int exponent);
/// ZAV_atof on at most `length` characters, or up to a NUL; *used, if given, receives the characters that
/// belong to the number.
double ParseReal(const char* text, size_t length, char decimalSeparator, size_t* used = nullptr);

} // namespace zav_number

#endif
