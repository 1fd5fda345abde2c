#ifndef ZAVBASE_STRINGS_TEXT_ENCODING_H
#define ZAVBASE_STRINGS_TEXT_ENCODING_H

#include <zavbase/foundation/object.h>

/// Converts between the text of a code page, 16-bit Unicode and UTF-8. On Windows the system's own
/// conversions do the work; elsewhere iconv gives the same results.
///
/// Every call returns 0, or -1 after a failure, which also writes a line to the tracer "BASE" (level 0x1).
/// The destination then holds what was converted before, and a character that the code page lacks is "?"
/// there (which counts as a failure too). Sources end at their NUL. `size` is the room in destination units;
/// the result is always terminated, at the last unit when it fills the room. *count, if given, receives the
/// units before the terminator.
///
/// Set up once by Initialize and only read afterwards: then it may be used from several threads.
class ZAV_API ZAV_TextEncodingConverter : public ZAV_Object {
    ZAV_DECLARE_CLASS(ZAV_TextEncodingConverter)
public:
    /// Without a code page: each conversion from or to system text fails until Initialize.
    ZAV_TextEncodingConverter();
    /// With a name: the code page is the number configured as "ZAV", "TEXTENCODING", `name`, or 0. Without:
    /// the number after the first "." in the name of the current locale, or 0. 0 stands for the platform's
    /// default. Returns 0.
    int Initialize(const char* name);

    int Text2Ucs(const char* src, unsigned short* dst, long size, long* count);
    int Ucs2Text(const unsigned short* src, char* dst, long size, long* count);
    static int Utf2Ucs(const char* src, unsigned short* dst, long size, long* count);
    static int Ucs2Utf(const unsigned short* src, char* dst, long size, long* count);
    int Utf2Text(const char* utf, char* dst, long size);
    int Text2Utf(const char* text, char* dst, long size);
    /// In runes.
    static int UtfStringLength(const char* utf);

private:
    int32_t mCodePage;
};

#endif
