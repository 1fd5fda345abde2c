#ifndef ZAVBASE_FOUNDATION_TRACER_H
#define ZAVBASE_FOUNDATION_TRACER_H

#include <ostream>

#include <zavbase/foundation/types.h>

class ZAV_Collection;
class ZAV_UValDict;

/// A named tracer: the stream that its lines go to and the mask of the levels that are written. The process
/// has one table of 30 tracers; a name once given stays for the life of the process. Names count to their
/// first 10 characters, so two names that agree in these are one tracer.
///
/// A host makes tracers speak with Initialize, or with SetStreamP and SetMask; the stream stays the host's
/// and must outlive its use here: once SetStreamP has given the tracer another stream or null, lines of this
/// tracer no longer reach the former one. The library's own tracer is "BASE". Its levels:
///
///     0x1 errors, caught exceptions       0x2 warnings, configuration not initialised
///     0x4 configuration error header      0x8 configuration detail
///     0x10 information                    0x80 thread life cycle
///     0x100 dispatcher termination        0x200 one line a dispatched event
///
/// Threads: lookups, settings and trace statements may run on any thread at once; each statement's line
/// arrives whole. Lines reach their streams one at a time, so a stream must not wait for another thread that
/// traces or sets streams. What hosts stream into dout themselves is not ordered with these lines.
class ZAV_API ZAV_Tracer {
public:
    constexpr ZAV_Tracer() : mName{}, mStreamP(nullptr), mMask(0) {}
    ~ZAV_Tracer();

    /// The tracer called `name`, taking a free slot for a new name; null when the table is full. An empty
    /// or null name gets a free slot but does not name it.
    static ZAV_Tracer* FindOrCreate(const char* name);

    /// Both find or create the tracer; 0, or -1 when no slot could be had. SetStreamP waits until a line that
    /// is being written has reached its stream, unless the caller is that stream.
    static int SetStreamP(const char* name, std::ostream* stream);
    static int SetMask(const char* name, long mask);
    /// Both find or create the tracer, so asking for an unknown name takes a slot. 0, or -1 with null or 0
    /// stored when no slot could be had.
    static int GetStreamP(const char* name, std::ostream** stream);
    static int GetMask(const char* name, long* mask);

    /// For each entry of `dict`: the tracer of that name gets the stream dout and the entry's number as mask.
    /// An entry "BASE" = 17 enables the levels 0x1 and 0x10 of the library.
    static void Initialize(ZAV_UValDict& dict);

    /// Adds one new ZAV_CltString for each named slot, which the caller deletes. The strings are empty, not
    /// the names; they tell only how many slots are named.
    static void GetNameList(ZAV_Collection* collection);

    char mName[11];         ///< at most 10 characters and a NUL; a slot with an empty name is free
    std::ostream* mStreamP; ///< null: silent
    zav_long32 mMask;
};

extern ZAV_API ZAV_Tracer* tr_base;            ///< the library's tracer; null until first looked up
extern ZAV_API const char* const tr_base_name; ///< "BASE"

/// One line of a trace statement; used through ZAV_TRACE. The parts are collected first and reach the
/// tracer's stream in one piece, so no lock is held while an object prints itself.
class ZAV_API ZAV_TraceLine {
public:
    /// The stream that a line of this level goes to, null when it is not wanted. Looks the tracer up by name
    /// while `cache` is null.
    static std::ostream* Sink(ZAV_Tracer*& cache, const char* name, long level);

    explicit ZAV_TraceLine(std::ostream& sink);
    ~ZAV_TraceLine();
    ZAV_TraceLine(const ZAV_TraceLine&) = delete;
    ZAV_TraceLine& operator=(const ZAV_TraceLine&) = delete;

    std::ostream& Parts();
    void End(); ///< writes the line, a line end, and flushes

private:
    std::ostream& mSink;
    std::ostream* mParts;
};

/// The trace statement: if the tracer has a stream and the level's bit is set in its mask, writes the parts
/// and a line end. The parts are not evaluated otherwise.
///
///     static ZAV_Tracer* tr_host;
///     ZAV_TRACE(tr_host, "HOST", 0x10, "opened " << name << " in " << ms << " ms");
#define ZAV_TRACE(CACHE, NAME, LEVEL, PARTS)                                                                 \
    do {                                                                                                     \
        if (std::ostream* zav_sink = ZAV_TraceLine::Sink(CACHE, NAME, LEVEL)) {                              \
            ZAV_TraceLine zav_line(*zav_sink);                                                               \
            zav_line.Parts() << PARTS;                                                                       \
            zav_line.End();                                                                                  \
        }                                                                                                    \
    } while (0)

/// The same on the library's own tracer.
#define ZAV_BASE_TRACE(LEVEL, PARTS) ZAV_TRACE(tr_base, tr_base_name, LEVEL, PARTS)

#endif
