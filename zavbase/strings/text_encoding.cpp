#include <zavbase/strings/text_encoding.h>

#include <algorithm>
#include <climits>
#include <clocale>
#include <cstring>
#include <memory>
#include <new>

#include <zavbase/foundation/tracer.h>
#include <zavbase/os/text.h>
#include <zavbase/strings/number_text_internal.h>
#include <zavbase/strings/rune.h>
#include <zavbase/values/config.h>

ZAV_DEFINE_CLASS(ZAV_TextEncodingConverter, ZAV_Object)

namespace {

constexpr unsigned kToNul = 0xFFFFFFFFu;

template <class PARTS>
int failure(const char* what, const PARTS& detail) {
    ZAV_BASE_TRACE(0x1, "ERROR : " << what << detail);
    return -1;
}

int conversionFailure(const char* call, uint32_t error) {
    char number[zav_number::kIntegerRoom];
    zav_number::FormatUnsigned(number, error);
    ZAV_BASE_TRACE(0x1, "ERROR : " << call << " failure :" << number);
    return -1;
}

// A destination without room for a terminator can hold nothing; *count is 0 until something was converted.
template <class Unit>
bool begin(Unit* dst, long size, long* count) {
    if (count != nullptr) *count = 0;
    if (size < 1) return false;
    dst[0] = 0;
    return true;
}

template <class Unit>
void end(Unit* dst, long size, long units, long* count) {
    dst[(std::min)(units, size - 1)] = 0;
    if (count != nullptr) *count = (std::min)(units, size - 1);
}

int clampedSize(long size) { return static_cast<int>((std::min)(size, static_cast<long>(INT_MAX))); }

uint16_t* newUnits(size_t units, size_t told) {
    uint16_t* const p = new (std::nothrow) uint16_t[units];
    if (p == nullptr) failure("Unicode Buffer allocation failure : #Runes=", told);
    return p;
}

int32_t localeCodePage() {
    const char* const locale = std::setlocale(LC_ALL, nullptr);
    const char* const dot = locale ? std::strchr(locale, '.') : nullptr;
    return dot ? zav_number::ParseInteger(dot + 1) : 0;
}

} // namespace

ZAV_TextEncodingConverter::ZAV_TextEncodingConverter() : mCodePage(-1) {}

int ZAV_TextEncodingConverter::Initialize(const char* name) {
    mCodePage =
        name ? static_cast<int32_t>(ZAV_ConfigGet("ZAV", "TEXTENCODING", name, 0L)) : localeCodePage();
    return 0;
}

int ZAV_TextEncodingConverter::Text2Ucs(const char* src, unsigned short* dst, long size, long* count) {
    if (!begin(dst, size, count)) return -1;
    if (mCodePage < 0) return failure("mCodePage < 0", "");
    long units = 0;
    const uint32_t error = zav_os::TextToUcs(mCodePage, src, dst, size, &units);
    end(dst, size, units, count);
    return error == 0 ? 0 : conversionFailure("TECConvertText()", error);
}

int ZAV_TextEncodingConverter::Ucs2Text(const unsigned short* src, char* dst, long size, long* count) {
    if (!begin(dst, size, count)) return -1;
    if (mCodePage < 0) return failure("mCodePage < 0", "");
    long units = 0;
    bool replaced = false;
    const uint32_t error = zav_os::UcsToText(mCodePage, src, dst, size, &units, &replaced);
    end(dst, size, units, count);
    if (error != 0) return conversionFailure("WideCharToMultiByte()", error);
    return replaced ? failure("WideCharToMultiByte() failure :", "fallback was used") : 0;
}

int ZAV_TextEncodingConverter::Utf2Ucs(const char* src, unsigned short* dst, long size, long* count) {
    if (!begin(dst, size, count)) return -1;
    unsigned units = 0;
    const int result = UTFtoUnicode(dst, clampedSize(size), src, kToNul, &units);
    end(dst, size, static_cast<long>(units), count);
    return result == 0 ? 0 : failure("UTFtoUnicode failure :", result);
}

int ZAV_TextEncodingConverter::Ucs2Utf(const unsigned short* src, char* dst, long size, long* count) {
    if (!begin(dst, size, count)) return -1;
    int units = 0;
    const int result = UTFfromUnicode(dst, clampedSize(size), src, -1, &units);
    end(dst, size, units, count);
    return result == 0 ? 0 : failure("UnicodeTuUTF failure :", result);
}

int ZAV_TextEncodingConverter::Utf2Text(const char* utf, char* dst, long size) {
    if (!begin(dst, size, nullptr)) return -1;
    if (utf == nullptr || *utf == '\0') return 0;
    const size_t runes = static_cast<size_t>(UtfStringLength(utf));
    const std::unique_ptr<uint16_t[]> ucs(newUnits(runes + 1, runes));
    if (!ucs || Utf2Ucs(utf, ucs.get(), static_cast<long>(runes + 1), nullptr) != 0) return -1;
    return Ucs2Text(ucs.get(), dst, size, nullptr);
}

int ZAV_TextEncodingConverter::Text2Utf(const char* text, char* dst, long size) {
    if (!begin(dst, size, nullptr)) return -1;
    if (text == nullptr || *text == '\0') return 0;
    const size_t units = 2 * std::strlen(text);
    const std::unique_ptr<uint16_t[]> ucs(newUnits(units + 2, units));
    if (!ucs || Text2Ucs(text, ucs.get(), static_cast<long>(units + 2), nullptr) != 0) return -1;
    return Ucs2Utf(ucs.get(), dst, size, nullptr);
}

int ZAV_TextEncodingConverter::UtfStringLength(const char* utf) { return utflen(utf); }
