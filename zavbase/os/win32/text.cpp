#include <zavbase/os/text.h>

#include <windows.h>

#include <vector>

namespace zav_os {

namespace {

bool isUtf8(UINT codePage) { return codePage == CP_UTF8 || (codePage == CP_ACP && GetACP() == CP_UTF8); }

bool isSurrogate(uint16_t u, uint16_t first) { return (u & 0xFC00) == first; }

// UTF-8 takes no default character. Surrogates without their other half, which it lacks, are replaced here.
bool replaceLoneSurrogates(std::vector<wchar_t>& text) {
    bool replaced = false;
    for (size_t i = 0; i + 1 < text.size(); ++i) {
        if (isSurrogate(text[i], 0xD800) && isSurrogate(text[i + 1], 0xDC00)) {
            ++i;
        } else if (isSurrogate(text[i], 0xD800) || isSurrogate(text[i], 0xDC00)) {
            text[i] = L'?';
            replaced = true;
        }
    }
    return replaced;
}

// `n` is what the system wrote, with the terminator; 0 for a failure.
template <class Unit>
uint32_t finish(int n, Unit* dst, long* units) {
    const uint32_t error = n >= 1 ? 0 : GetLastError();
    *units = n >= 1 ? n - 1 : 0;
    dst[*units] = 0;
    return error;
}

} // namespace

uint32_t TextToUcs(int32_t codePage, const char* src, uint16_t* dst, long room, long* units) {
    wchar_t* const to = reinterpret_cast<wchar_t*>(dst);
    return finish(MultiByteToWideChar(static_cast<UINT>(codePage), 0, src, -1, to, room), dst, units);
}

uint32_t UcsToText(int32_t codePage, const uint16_t* src, char* dst, long room, long* units, bool* replaced) {
    const UINT page = static_cast<UINT>(codePage);
    const wchar_t* from = reinterpret_cast<const wchar_t*>(src);
    if (isUtf8(page)) {
        std::vector<wchar_t> text(from, from + lstrlenW(from) + 1);
        *replaced = replaceLoneSurrogates(text);
        return finish(WideCharToMultiByte(page, 0, text.data(), -1, dst, room, nullptr, nullptr), dst, units);
    }
    BOOL usedDefault = FALSE;
    const int n = WideCharToMultiByte(page, 0, from, -1, dst, room, "?", &usedDefault);
    *replaced = usedDefault != FALSE;
    return finish(n, dst, units);
}

} // namespace zav_os
