#include "tests/support/child_process.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace {

HANDLE Handle(intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

/// A pipe of which the child gets the one end and only that.
void MakePipe(HANDLE& read, HANDLE& write, HANDLE& ours) {
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    CreatePipe(&read, &write, &inherited, 0);
    SetHandleInformation(ours, HANDLE_FLAG_INHERIT, 0);
}

std::FILE* Open(HANDLE handle, const char* mode) {
    return _fdopen(_open_osfhandle(reinterpret_cast<intptr_t>(handle), _O_TEXT), mode);
}

} // namespace

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments) {
    std::string line = "\"" + program + "\"";
    for (const std::string& a : arguments) line += " \"" + a + "\"";
    HANDLE theirInput, ourInput, ourOutput, theirOutput;
    MakePipe(theirInput, ourInput, ourInput);
    MakePipe(ourOutput, theirOutput, ourOutput);
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = theirInput;
    start.hStdOutput = theirOutput;
    start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION info = {};
    if (CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &info)) {
        CloseHandle(info.hThread);
        mProcess = reinterpret_cast<intptr_t>(info.hProcess);
        mId = info.dwProcessId;
    }
    CloseHandle(theirInput);
    CloseHandle(theirOutput);
    mInput.reset(Open(ourInput, "w"));
    mOutput.reset(Open(ourOutput, "r"));
}

ChildProcess::~ChildProcess() {
    Kill();
    Wait();
    CloseHandle(Handle(mProcess));
}

void ChildProcess::Kill() {
    if (mProcess != -1) TerminateProcess(Handle(mProcess), 1000);
}

int ChildProcess::Wait() {
    DWORD code = 0;
    if (mProcess == -1) return 1000;
    // The handle stays open: so the system still knows the process.
    WaitForSingleObject(Handle(mProcess), INFINITE);
    GetExitCodeProcess(Handle(mProcess), &code);
    return static_cast<int>(code);
}
