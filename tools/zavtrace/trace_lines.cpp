#include "trace_lines.h"

#include "../support/harmless.h"

std::string TraceLines::Take(unsigned long source, const std::string& piece) {
    const size_t longest = 65536;
    std::string& begun = mBegun[source];
    begun += piece;
    std::string complete;
    size_t at = 0;
    for (size_t end; (end = begun.find('\n', at)) != std::string::npos; at = end + 1)
        complete += Finished(begun.substr(at, end - at));
    begun.erase(0, at);
    if (begun.size() >= longest) {
        complete += Finished(begun);
        begun.clear();
    }
    // Programs come and go; only those in the middle of a line are remembered.
    if (begun.empty()) mBegun.erase(source);
    return complete;
}

std::string TraceLines::Rest() {
    std::string complete;
    for (const auto& [source, begun] : mBegun) complete += Finished(begun);
    mBegun.clear();
    return complete;
}

std::string TraceLines::Finished(const std::string& line) const {
    if (line.find(mMatch) == std::string::npos) return std::string();
    return Harmless(line, true) + "\n";
}
