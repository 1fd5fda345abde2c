// zavtrace: the trace viewer. Shows what programs write to the library's trace stream while it runs.

#include <iostream>

#include "../support/tool.h"
#include "channel.h"
#include "trace_lines.h"

namespace {

enum Exit { DONE = TOOL_DONE, TROUBLE = TOOL_TROUBLE };

const char* const help =
    "usage: zavtrace [--match TEXT] [--count N] [--announce]\n"
    "\n"
    "Shows the trace lines of all programs of this user that use the library, as they come. While a\n"
    "viewer runs they go to it instead of to the debugger (Windows) or standard error (elsewhere).\n"
    "A line that stays unfinished for a fifth of a second is shown as it is. Control characters are\n"
    "written as \\ooo, so that no trace text can steer the terminal.\n"
    "\n"
    "  --match TEXT  shows only lines that contain TEXT\n"
    "  --count N     ends after N lines\n"
    "  --announce    prints a line \"listening\" first, as soon as lines would be shown\n"
    "\n"
    "Ends with Ctrl-C. Exit code: 0 ended by the user or after N lines, 2 the place of the viewer\n"
    "cannot be had (another one runs), the lines cannot be written, or the command line is wrong,\n"
    "4 memory ran out.\n";

class Printer : public Receiver {
public:
    Printer(const std::string& match, unsigned long count, bool announces)
        : mLines(match), mCount(count), mAnnounces(announces) {}

    void Ready() override {
        if (mAnnounces) std::cout << "listening" << std::endl;
    }
    bool Take(unsigned long source, const std::string& piece) override {
        return Print(mLines.Take(source, piece));
    }
    bool Idle() override { return Print(mLines.Rest()); }

private:
    /// False when enough lines were shown or there is nobody to show them to.
    bool Print(const std::string& lines) {
        for (size_t at = 0; at < lines.size();) {
            const size_t end = lines.find('\n', at) + 1;
            std::cout.write(lines.data() + at, static_cast<std::streamsize>(end - at));
            at = end;
            if (mCount > 0 && --mCount == 0) return std::cout.flush(), false;
        }
        return !!std::cout.flush();
    }

    TraceLines mLines;
    unsigned long mCount;
    bool mAnnounces;
};

int Run(int argc, char** argv) {
    std::string match;
    unsigned long count = 0;
    bool wrong = false, announces = false;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        if (option == "--help") return std::cout << help, DONE;
        if (option == "--match" && i + 1 < argc)
            match = argv[++i];
        else if (option == "--count" && i + 1 < argc)
            wrong = !IsWholeNumber(argv[++i], count) || count == 0;
        else if (option == "--announce")
            announces = true;
        else
            wrong = true;
        if (wrong) return std::cerr << help, TROUBLE;
    }
    Printer printer(match, count, announces);
    const std::string problem = Listen(printer);
    if (!problem.empty()) throw ToolFailure{TROUBLE, problem};
    return DONE;
}

} // namespace

int main(int argc, char** argv) { return RunTool("zavtrace", argc, argv, Run); }
