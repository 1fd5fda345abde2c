#include <zavbase/os/console.h>

#include <windows.h>

#include <cstring>

namespace zav_os {

namespace {

constexpr char kViewerClass[] = "ZAVTraceWindow";
constexpr UINT kViewerTimeout = 2000;

UINT ViewerMessage() {
    static const UINT message = RegisterWindowMessageA("*WM_TRACE_MSG");
    return message;
}

// A viewer that hangs must not hang the process with it: the call is synchronous, but it has an end.
bool SendToViewer(const char* text) {
    HWND viewer = FindWindowA(kViewerClass, nullptr);
    if (!viewer) return false;
    ATOM atom = GlobalAddAtomA(text);
    if (!atom) return false;
    DWORD_PTR answer;
    bool taken =
        SendMessageTimeoutA(viewer, ViewerMessage(), atom, 0, SMTO_ABORTIFHUNG, kViewerTimeout, &answer) != 0;
    GlobalDeleteAtom(atom);
    return taken;
}

} // namespace

void TraceText(const char* text, size_t) {
    if (!SendToViewer(text)) OutputDebugStringA(text);
}

bool TraceChannel(char* name, size_t size) {
    if (size < sizeof kViewerClass) return false;
    std::memcpy(name, kViewerClass, sizeof kViewerClass);
    return true;
}

void FatalMessage(const char* text, const char* caption) { MessageBoxA(nullptr, text, caption, MB_ICONHAND); }

void Terminate() {
    FatalExit(0);
    TerminateProcess(GetCurrentProcess(), 0);
    __builtin_unreachable();
}

} // namespace zav_os
