#ifndef ZAVTRACE_TRACE_LINES_H
#define ZAVTRACE_TRACE_LINES_H

#include <map>
#include <string>

/// Puts the pieces of several programs together to lines, each made harmless, and keeps those that match.
class TraceLines {
public:
    /// Only lines that contain `match` are kept; all if it is empty.
    explicit TraceLines(const std::string& match) : mMatch(match) {}

    /// The lines that the piece completes, each with its line end. A line of 64 KiB is complete as it is.
    std::string Take(unsigned long source, const std::string& piece);
    /// What is left of lines begun: they are complete now.
    std::string Rest();

private:
    std::string Finished(const std::string& line) const;

    std::string mMatch;
    std::map<unsigned long, std::string> mBegun;
};

#endif
