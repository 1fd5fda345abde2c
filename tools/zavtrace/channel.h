#ifndef ZAVTRACE_CHANNEL_H
#define ZAVTRACE_CHANNEL_H

#include <string>

/// What receives the trace pieces: Ready once the place is taken, Take for each, Idle when none has come for
/// a fifth of a second. The last two return false to end the listening.
class Receiver {
public:
    virtual ~Receiver() {}
    virtual void Ready() = 0;
    /// `source` tells pieces of different programs apart where the system knows; 0 otherwise.
    virtual bool Take(unsigned long source, const std::string& piece) = 0;
    virtual bool Idle() = 0;
};

/// Takes the trace viewer's place and receives until the receiver or the user (Ctrl-C, a request to end) has
/// enough; leaves the place tidy. Returns an empty text, or why the place cannot be had.
std::string Listen(Receiver& receiver);

#endif
