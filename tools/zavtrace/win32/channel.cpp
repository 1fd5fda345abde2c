#include "../channel.h"

#include <windows.h>

namespace {

const char* const windowClass = "ZAVTraceWindow";
const UINT_PTR idleTimer = 1;

Receiver* theReceiver;
HWND theWindow;
UINT theMessage;

/// The sender deletes the atom as soon as this returns, so its text is taken here.
LRESULT TakePiece(HWND window, ATOM atom) {
    wchar_t text[256];
    char utf8[3 * 256];
    const UINT length = GlobalGetAtomNameW(atom, text, sizeof text / sizeof *text);
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text, static_cast<int>(length), utf8, sizeof utf8, nullptr, nullptr);
    if (!theReceiver->Take(0, std::string(utf8, static_cast<size_t>(size))))
        PostMessageA(window, WM_CLOSE, 0, 0);
    SetTimer(window, idleTimer, 200, nullptr);
    return 0;
}

LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message == theMessage) return TakePiece(window, static_cast<ATOM>(first));
    switch (message) {
    case WM_TIMER:
        KillTimer(window, idleTimer);
        if (!theReceiver->Idle()) DestroyWindow(window);
        return 0;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcA(window, message, first, second);
    }
}

/// Runs on a thread of the system's own.
BOOL WINAPI OnControl(DWORD) {
    PostMessageA(theWindow, WM_CLOSE, 0, 0);
    return TRUE;
}

} // namespace

std::string Listen(Receiver& receiver) {
    theReceiver = &receiver;
    theMessage = RegisterWindowMessageA("*WM_TRACE_MSG");
    if (FindWindowA(windowClass, nullptr)) return "another viewer is running";
    WNDCLASSA description = {};
    description.lpfnWndProc = OnMessage;
    description.hInstance = GetModuleHandleA(nullptr);
    description.lpszClassName = windowClass;
    // A window that is never shown; but it is a top-level one, since only those are found by their class.
    if (!RegisterClassA(&description) ||
        !(theWindow = CreateWindowA(windowClass, "Trace", WS_OVERLAPPED, 0, 0, 1, 1, nullptr, nullptr,
                                    description.hInstance, nullptr)))
        return "the window cannot be made";
    SetConsoleCtrlHandler(OnControl, TRUE);
    receiver.Ready();
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) DispatchMessageA(&message);
    return std::string();
}
