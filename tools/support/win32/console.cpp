#include "../console.h"

#include <windows.h>

Utf8Console::Utf8Console() : mFormer(GetConsoleOutputCP()) {
    if (mFormer) SetConsoleOutputCP(CP_UTF8);
}

Utf8Console::~Utf8Console() {
    if (mFormer) SetConsoleOutputCP(mFormer);
}

bool IsCommandLineWhole() {
    if (GetACP() == CP_UTF8) return true;
    BOOL replaced = FALSE;
    const int room = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, GetCommandLineW(), -1, nullptr, 0,
                                         nullptr, &replaced);
    return room > 0 && !replaced;
}
