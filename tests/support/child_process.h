#ifndef ZAVBASE_TESTS_SUPPORT_CHILD_PROCESS_H
#define ZAVBASE_TESTS_SUPPORT_CHILD_PROCESS_H

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

/// A program run beside the test, talked to through its standard input and output, so that a test can wait
/// for what it does. One that still runs at the end of the object is killed.
class ChildProcess {
public:
    ChildProcess(const std::string& program, const std::vector<std::string>& arguments);
    ~ChildProcess();

    unsigned long Id() const { return mId; }
    /// The next line of its output, without line end; empty at the end of the output.
    std::string ReadLine() {
        std::string line;
        for (int c; (c = std::fgetc(mOutput.get())) != EOF && c != '\n';) line += static_cast<char>(c);
        return line;
    }
    void CloseInput() { mInput.reset(); }
    /// Ends it without any chance to tidy up. It stays known to the system until Wait.
    void Kill();
    /// Its exit code; some other number than 0 if it was killed.
    int Wait();

private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    unsigned long mId = 0;
    intptr_t mProcess = -1; // a handle of the system; -1 when it was waited for
    std::unique_ptr<std::FILE, Close> mInput, mOutput;
};

#endif
