#ifndef ZAVBASE_TESTS_SUPPORT_CHILD_PROCESS_H
#define ZAVBASE_TESTS_SUPPORT_CHILD_PROCESS_H

#include <cstdint>
#include <string>
#include <vector>

/// A program run beside the test, talked to through its standard input and output, so that a test can wait
/// for what it does. One that still runs at the end of the object is killed.
class ChildProcess {
public:
    ChildProcess(const std::string& program, const std::vector<std::string>& arguments);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    unsigned long Id() const { return mId; }
    /// The next line of its output, without line end; empty at the end of the output.
    std::string ReadLine();
    void CloseInput();
    /// Ends it without any chance to tidy up. It stays known to the system until Wait.
    void Kill();
    /// Its exit code; some other number than 0 if it was killed.
    int Wait();

private:
    unsigned long mId;
    intptr_t mProcess, mInput, mOutput; // handles of the system; -1 when closed
};

#endif
