#include <zavbase/foundation/trace_stream.h>

#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::vector<std::string> theTexts;

LRESULT CALLBACK ViewerProc(HWND window, UINT message, WPARAM w, LPARAM l) {
    if (message != RegisterWindowMessageA("*WM_TRACE_MSG")) return DefWindowProcA(window, message, w, l);
    char text[300];
    GlobalGetAtomNameA(static_cast<ATOM>(w), text, sizeof text);
    theTexts.emplace_back(text);
    EXPECT_EQ(0, l);
    return 0;
}

} // namespace

TEST(Viewer, ReceivesEachPieceAsAnAtom) {
    char name[40];
    ASSERT_TRUE(ZAV_GetTraceChannel(name, sizeof name));
    WNDCLASSA viewer = {};
    viewer.lpfnWndProc = ViewerProc;
    viewer.hInstance = GetModuleHandleA(nullptr);
    viewer.lpszClassName = name;
    ASSERT_NE(0, RegisterClassA(&viewer));
    HWND window = CreateWindowA(name, "viewer", WS_OVERLAPPED, 0, 0, 10, 10, nullptr, nullptr,
                                viewer.hInstance, nullptr);
    ASSERT_NE(nullptr, window);
    dout << "x" << std::endl << std::string(300, 'y') << std::flush;
    DestroyWindow(window);
    dout << "after" << std::flush;
    EXPECT_EQ((std::vector<std::string>{"x\n", std::string(255, 'y'), std::string(45, 'y')}), theTexts);
}
