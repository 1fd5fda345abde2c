#ifndef ZAVBASE_THREADS_THREAD_ERROR_H
#define ZAVBASE_THREADS_THREAD_ERROR_H

#include <zavbase/foundation/types.h>

/// A text for a code; see ZAV_ThreadError::SetStringTable.
struct ZAV_ThreadErrorStrEntry {
    zav_long32 code;
    const char* text;
};

/// The result of every operation on threads. 0 is success and -1 means that there is no result yet. The
/// library itself uses 22 (not allowed in this state), 36 (a thread waits for itself), 3 (no such thread) and
/// 62 (the time ran out), with these numbers on every system; other numbers are the system's own, passed
/// through.
class ZAV_API ZAV_ThreadError {
public:
    ZAV_ThreadError() : mCode(-1) {}
    ZAV_ThreadError(long code) : mCode(static_cast<int32_t>(code)) {}

    bool operator!() const { return mCode == 0; } ///< true on success
    operator long() const { return mCode; }

    /// The text of the first entry of the table whose code, as an unsigned number, is not below this one:
    /// codes between two entries get the text of the higher. Without a table or a text: the "no string" text,
    /// and an empty text if there is none.
    const char* String() const;

    /// Installs a table for the whole process and returns the previous one. The table is sorted by code as
    /// unsigned numbers and ends with an entry not below any code that is looked up: -1 is the highest code.
    /// It must outlive its use. Set it before threads start.
    static ZAV_ThreadErrorStrEntry* SetStringTable(ZAV_ThreadErrorStrEntry* newTable);
    static const char* SetNoString(const char* text);

    static ZAV_ThreadError MapOSError(); ///< the calling thread's errno
    static ZAV_ThreadError MapOSError(int code) { return ZAV_ThreadError(code); }

private:
    static ZAV_ThreadErrorStrEntry* table;
    static const char* no_string;

    int32_t mCode;
};

#endif
