#ifndef ZAVBASE_TESTS_SUPPORT_TRACE_CAPTURE_H
#define ZAVBASE_TESTS_SUPPORT_TRACE_CAPTURE_H

#include <sstream>
#include <string>
#include <vector>

#include <zavbase/foundation/tracer.h>

/// Collects what the library's tracer "BASE" writes while the object lives, and puts the tracer back as it
/// was. Read it while no other thread traces.
class TraceCapture {
public:
    explicit TraceCapture(long mask = 0xFFFF) {
        ZAV_Tracer::GetStreamP(tr_base_name, &mStreamBefore);
        ZAV_Tracer::GetMask(tr_base_name, &mMaskBefore);
        ZAV_Tracer::SetStreamP(tr_base_name, &mText);
        ZAV_Tracer::SetMask(tr_base_name, mask);
    }
    ~TraceCapture() {
        ZAV_Tracer::SetMask(tr_base_name, mMaskBefore);
        ZAV_Tracer::SetStreamP(tr_base_name, mStreamBefore);
    }

    std::string Text() const { return mText.str(); }
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        std::istringstream text(Text());
        for (std::string line; std::getline(text, line);) lines.push_back(line);
        return lines;
    }
    void Clear() { mText.str(""); }

private:
    std::ostringstream mText;
    std::ostream* mStreamBefore;
    long mMaskBefore;
};

#endif
