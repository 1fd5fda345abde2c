#ifndef ZAVBASE_STRINGS_FORMAT_SPEC_INTERNAL_H
#define ZAVBASE_STRINGS_FORMAT_SPEC_INTERNAL_H

/// The conversions of a printf-style format, read without touching an argument.
namespace zav_format {

enum class Size { Char, Short, Int, Long, LongLong, Pointer, LongDouble };

/// What va_arg has to take for a conversion; None for what is no conversion and takes nothing.
enum class Argument { None, Int, Long, LongLong, Pointer, Double, LongDouble };

/// Where a "*" takes its number from.
constexpr int kNotGiven = -1, kNextArgument = 0; // 1 and up: the argument of this number
/// Arguments are told by number up to here; a higher number is no number of an argument.
constexpr int kMostNumbered = 99;

struct Conversion {
    bool left = false;
    bool plus = false;
    bool blank = false;
    bool zero = false;
    unsigned alternate = 0; // how many "#"
    unsigned width = 0;
    int precision = -1; // -1: none given
    int number = 0;     // the argument's, from "%2$d"; 0: the next one
    int widthFrom = kNotGiven;
    int precisionFrom = kNotGiven;
    Size size = Size::Int;
    char letter = '\0'; // '\0' when the format ends in the conversion
};

/// Reads what follows a "%" and returns the place of the letter.
const char* Read(const char* p, Conversion& c);
/// Whether the letter is one that Format converts.
bool IsConversion(char letter);
Argument ArgumentOf(const Conversion& c);

} // namespace zav_format

#endif
