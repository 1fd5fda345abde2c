#ifndef ZAVTOOLS_TOOL_H
#define ZAVTOOLS_TOOL_H

#include <filesystem>
#include <string>

/// Exit codes that mean the same in every tool; 1 and 3 are each tool's own.
enum ToolExit { TOOL_DONE = 0, TOOL_TROUBLE = 2, TOOL_NO_MEMORY = 4 };

/// A failure to be told to the user, with the tool's exit code.
struct ToolFailure {
    int mExit;
    std::string mText;
};

/// What stands around every tool's work: its command line and console are UTF-8, also on Windows; whatever it
/// throws ends as one line on standard error and an exit code, a lack of memory too; and what could not be
/// written to standard output is never taken for done.
int RunTool(const char* name, int argc, char** argv, int (*work)(int argc, char** argv));

/// Names are UTF-8, which the paths of the standard library are not told on Windows.
std::filesystem::path PathOf(const std::string& name);
std::string NameOf(const std::filesystem::path& path);

/// The bytes of an ordinary file; throws a ToolFailure of TOOL_TROUBLE. A pipe is not opened, since that
/// would wait for its writer.
std::string ReadWhole(const std::string& name);

/// Whether all of `word` is a decimal number that fits; stores it if so.
bool IsWholeNumber(const std::string& word, unsigned long& number);

#endif
