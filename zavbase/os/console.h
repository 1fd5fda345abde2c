#ifndef ZAVBASE_OS_CONSOLE_H
#define ZAVBASE_OS_CONSOLE_H

#include <cstddef>

namespace zav_os {

/// The longest text that the viewer's channel carries at once.
constexpr size_t kTracePiece = 255;

/// Shows one piece of trace text, NUL-terminated and of at most kTracePiece bytes: to the trace viewer, or to
/// the debugger or standard error when there is none or it does not take the text in time.
void TraceText(const char* text, size_t length);

/// The name by which a viewer is found: a window class, or the path of a datagram socket. False when the
/// system has no private folder for it or `size` is too small.
bool TraceChannel(char* name, size_t size);

/// Tells the user and, where that is a window, waits until it is closed.
void FatalMessage(const char* text, const char* caption);

/// Ends the process at once with status 0; no destructors, no exit functions.
[[noreturn]] void Terminate();

} // namespace zav_os

#endif
