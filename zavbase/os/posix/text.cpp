#include <zavbase/os/text.h>

#include <iconv.h>
#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string>

namespace zav_os {

namespace {

const char kUtf8[] = "UTF-8";

// The encoding of the user's locale, whatever locale the program has chosen. Plain ASCII, which is what a
// bare environment gives, is widened to UTF-8.
std::string defaultEncoding() {
    const locale_t locale = newlocale(LC_CTYPE_MASK, "", static_cast<locale_t>(nullptr));
    if (locale == static_cast<locale_t>(nullptr)) return kUtf8;
    const std::string name = nl_langinfo_l(CODESET, locale);
    freelocale(locale);
    return name.empty() || name == "ANSI_X3.4-1968" ? kUtf8 : name;
}

std::string encodingOf(int32_t codePage) {
    switch (codePage) {
    case 0:
        return defaultEncoding();
    case 20127:
        return "US-ASCII";
    case 20866:
        return "KOI8-R";
    case 21866:
        return "KOI8-U";
    case 20932:
        return "EUC-JP";
    case 51949:
        return "EUC-KR";
    case 54936:
        return "GB18030";
    case 65001:
        return kUtf8;
    default:
        break;
    }
    char name[24];
    if (codePage > 28590 && codePage < 28606)
        std::snprintf(name, sizeof name, "ISO-8859-%d", static_cast<int>(codePage - 28590));
    else
        std::snprintf(name, sizeof name, "CP%d", static_cast<int>(codePage));
    return name;
}

class Converter {
public:
    Converter(const std::string& to, const std::string& from)
        : mHandle(iconv_open(to.c_str(), from.c_str())) {}
    ~Converter() {
        if (Ok()) iconv_close(mHandle);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool Ok() const { return mHandle != reinterpret_cast<iconv_t>(-1); }
    // Moves all four along; 0 when the source is used up, otherwise an errno number.
    int Run(char*& from, size_t& left, char*& to, size_t& room) {
        return iconv(mHandle, &from, &left, &to, &room) == static_cast<size_t>(-1) ? errno : 0;
    }

private:
    iconv_t mHandle;
};

// Windows gives each byte from 0x80 to 0x9F that a single-byte code page leaves free the control character of
// that number, and takes it back.
uint16_t unitForUndefined(const std::string& encoding, unsigned char byte) {
    if (encoding == kUtf8) return 0xFFFD;
    return byte >= 0x80 && byte <= 0x9F ? byte : static_cast<uint16_t>('?');
}

bool isFreeByte(const std::string& encoding, uint16_t unit) {
    if (unit < 0x80 || unit > 0x9F || encoding == kUtf8) return false;
    Converter toUcs("UTF-16LE", encoding);
    char byte = static_cast<char>(unit);
    char result[4];
    char* from = &byte;
    char* to = result;
    size_t left = 1, room = sizeof result;
    return toUcs.Ok() && toUcs.Run(from, left, to, room) == EILSEQ;
}

// The letters without their marks, from U+00C0 to U+017F; "?" where there is none.
const char kPlainLetters[] = "AAAAAA?CEEEEIIII?NOOOOO?OUUUUY??aaaaaa?ceeeeiiii?nooooo?ouuuuy?y"
                             "AaAaAaCcCcCcCcDd?dEeEeEeEeEeGgGgGgGgHhHhIiIiIiIiIi??JjKk?LlLlLl??"
                             "LlNnNnNn???OoOoOo??RrRrRrSsSsSsSsTtTtTtUuUuUuUuUuUuWwYyYZzZzZz?";

// Windows does not count it as a replacement when a character that the code page lacks has a near equivalent
// there. Of these the letters with marks and the full-width forms of ASCII are known here, for the code pages
// of European languages. '?' when there is none.
char nearEquivalent(int32_t codePage, uint16_t unit) {
    static const int32_t pages[] = {437,  850,  852,  857,   866,   1250,  1251,
                                    1252, 1253, 1254, 28591, 28592, 28595, 28605};
    if (std::find(std::begin(pages), std::end(pages), codePage) == std::end(pages)) return '?';
    if (unit >= 0xC0 && unit <= 0x17F) return kPlainLetters[unit - 0xC0];
    return unit >= 0xFF01 && unit <= 0xFF5E ? static_cast<char>(unit - 0xFF01 + '!') : '?';
}

template <class Unit>
uint32_t fail(uint32_t error, Unit* dst, long* units) {
    dst[0] = 0;
    *units = 0;
    return error;
}

} // namespace

uint32_t TextToUcs(int32_t codePage, const char* src, uint16_t* dst, long room, long* units) {
    const std::string encoding = encodingOf(codePage);
    Converter converter("UTF-16LE", encoding);
    if (!converter.Ok()) return fail(kTextNoCodePage, dst, units);
    char* from = const_cast<char*>(src);
    size_t left = std::strlen(src);
    char* to = reinterpret_cast<char*>(dst);
    size_t space = static_cast<size_t>(room - 1) * sizeof(uint16_t);
    while (left != 0) {
        const int error = converter.Run(from, left, to, space);
        if (error == 0) break;
        if (error == E2BIG || space < sizeof(uint16_t)) return fail(kTextNoRoom, dst, units);
        const uint16_t unit = unitForUndefined(encoding, static_cast<unsigned char>(*from));
        std::memcpy(to, &unit, sizeof unit);
        to += sizeof unit;
        space -= sizeof unit;
        ++from;
        --left;
    }
    *units = (to - reinterpret_cast<char*>(dst)) / static_cast<ptrdiff_t>(sizeof(uint16_t));
    dst[*units] = 0;
    return 0;
}

uint32_t UcsToText(int32_t codePage, const uint16_t* src, char* dst, long room, long* units, bool* replaced) {
    *replaced = false;
    const std::string encoding = encodingOf(codePage);
    Converter converter(encoding, "UTF-16LE");
    if (!converter.Ok()) return fail(kTextNoCodePage, dst, units);
    size_t length = 0;
    while (src[length] != 0) ++length;
    char* from = reinterpret_cast<char*>(const_cast<uint16_t*>(src));
    size_t left = length * sizeof(uint16_t);
    char* to = dst;
    size_t space = static_cast<size_t>(room - 1);
    while (left != 0) {
        const int error = converter.Run(from, left, to, space);
        if (error == 0) break;
        if (error == E2BIG || space == 0) return fail(kTextNoRoom, dst, units);
        uint16_t unit;
        std::memcpy(&unit, from, sizeof unit);
        const char byte =
            isFreeByte(encoding, unit) ? static_cast<char>(unit) : nearEquivalent(codePage, unit);
        if (byte == '?') *replaced = true;
        *to++ = byte;
        --space;
        from += sizeof unit;
        left -= sizeof unit;
    }
    *units = to - dst;
    dst[*units] = '\0';
    return 0;
}

} // namespace zav_os
