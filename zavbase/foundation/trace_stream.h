#ifndef ZAVBASE_FOUNDATION_TRACE_STREAM_H
#define ZAVBASE_FOUNDATION_TRACE_STREAM_H

#include <ostream>
#include <streambuf>

#include <zavbase/foundation/types.h>

/// A stream buffer that hands what is written to a plain function, a piece at a time: when the stream is
/// flushed, and when 255 bytes have come together. Pieces are never longer and nothing is lost in between.
/// The buffer is output-only. Text not flushed when it is destroyed is dropped. Not locked.
///
/// A derived class may give it a put area of another size (setp); that stays the derived class's, and a piece
/// is then all that is pending in it.
///
///     void ToLog(void* log, const char* text, int length);   // text is not NUL-terminated
///     ZAV_FuncStrmbuf buffer(ToLog, &log);
///     std::ostream os(&buffer);
class ZAV_API ZAV_FuncStrmbuf : public std::streambuf {
public:
    typedef void (*Callback)(void* userData, const char* text, int length);

    ZAV_FuncStrmbuf(Callback callback, void* userData); ///< a null callback drops the text
    /// Copies take the pending text along in a buffer of their own, or in the put area that they have; what
    /// does not fit there is handed on.
    ZAV_FuncStrmbuf(const ZAV_FuncStrmbuf& other);
    ZAV_FuncStrmbuf& operator=(const ZAV_FuncStrmbuf& other);
    virtual ~ZAV_FuncStrmbuf();

    void SetCallback(Callback callback, void* userData);

protected:
    int sync() override;
    int overflow(int c) override;
    int underflow() override;

    /// Hands on the pending text and returns 0; -1, with the text still pending, when more than 255 bytes are
    /// pending and there is no memory to copy them. The callback may write to the same stream: that text
    /// waits for the next flush.
    int syncout();

    Callback mCallback;
    void* mUserData;
};

/// The process-wide trace stream. It is there as long as the library is and formats in the classic locale.
/// Every flushed piece goes to _trace. Not locked: text that two threads stream into it at once mixes, and
/// must be serialised by the host; lines of the trace statement (tracer.h) are.
extern ZAV_API std::ostream& dout;

/// The sink of dout: sends the text to the trace viewer if one runs, otherwise to the debugger (Windows) or
/// standard error (elsewhere). Each piece looks for the viewer anew, so one may be started or closed at any
/// time. Text longer than 255 bytes is sent in several pieces. `userData` is ignored. Any thread.
///
/// The viewer on Windows is the window of class "ZAVTraceWindow"; it gets the registered message
/// "*WM_TRACE_MSG" with a global atom of the text and must read it before it returns. Elsewhere it is whoever
/// receives datagrams at ZAV_GetTraceChannel. A viewer that does not take a piece within two seconds
/// (Windows) or a fifth of a second (elsewhere) is passed over: the text goes where it would go without a
/// viewer, and elsewhere the following pieces do not wait until the viewer takes text again.
ZAV_API void _trace(void* userData, const char* text, int length);

/// Where a trace viewer listens: the window class on Windows, elsewhere the path of a datagram socket in the
/// user's private run-time folder: $XDG_RUNTIME_DIR, /run/user/UID or /tmp/zavbase-UID, the first that is a
/// folder of this user closed to all others. Stores the NUL-terminated name and returns B_TRUE; B_FALSE when
/// there is no such folder or `size` is too small.
ZAV_API boolean_t ZAV_GetTraceChannel(char* name, unsigned size);

/// Takes a text and arguments and does nothing: the place where start-up and shut-down messages go.
ZAV_API void ZAV_Trace(const char* format, ...);

/// Stores a function for hosts that ask for it; nothing in the library calls it.
ZAV_API void ZAV_SetTraceFunc(void (*fn)(const char*, int));
ZAV_API void (*ZAV_GetTraceFunc(void))(const char*, int);

#endif
