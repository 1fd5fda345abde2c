#include <zavbase/foundation/trace_stream.h>

#include <zavbase/foundation/process_hooks_internal.h>
#include <zavbase/foundation/side_table_internal.h>
#include <zavbase/os/console.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <locale>
#include <memory>
#include <new>

namespace {

// The put area may be one that a derived class set; which one was made here, the base class does not keep.
struct OwnBuffer : ZAV_SideEntry {
    explicit OwnBuffer(const ZAV_FuncStrmbuf* owner) : ZAV_SideEntry{owner} {}
    char mText[zav_os::kTracePiece];
};
constinit ZAV_SideTable theOwnBuffers;
ZAV_SpinLock& OwnBuffersLock() { return theOwnBuffers.Lock(); }
ZAV_LockOverFork<OwnBuffersLock> buffersOverFork(ZAV_ProcessHooks::kTables);

OwnBuffer* OwnBufferOf(const ZAV_FuncStrmbuf* owner) {
    if (ZAV_SideEntry* made = theOwnBuffers.Find(owner)) return static_cast<OwnBuffer*>(made);
    OwnBuffer* own = new (std::nothrow) OwnBuffer(owner);
    if (own) theOwnBuffers.Put(own);
    return own;
}

} // namespace

ZAV_FuncStrmbuf::ZAV_FuncStrmbuf(Callback callback, void* userData)
    : mCallback(callback), mUserData(userData) {}

ZAV_FuncStrmbuf::ZAV_FuncStrmbuf(const ZAV_FuncStrmbuf& other) : std::streambuf() { *this = other; }

ZAV_FuncStrmbuf& ZAV_FuncStrmbuf::operator=(const ZAV_FuncStrmbuf& other) {
    if (this == &other) return *this;
    char* const put[] = {pbase(), epptr()};
    char* const get[] = {eback(), gptr(), egptr()};
    std::streambuf::operator=(other);
    setp(put[0], put[1]); // the other's areas came along
    setg(get[0], get[1], get[2]);
    mCallback = other.mCallback;
    mUserData = other.mUserData;
    // Buffers made here have the same size: the pending text fits, and nothing is handed on.
    sputn(other.pbase(), other.pptr() - other.pbase());
    return *this;
}

ZAV_FuncStrmbuf::~ZAV_FuncStrmbuf() { delete static_cast<OwnBuffer*>(theOwnBuffers.Take(this)); }

void ZAV_FuncStrmbuf::SetCallback(Callback callback, void* userData) {
    mCallback = callback;
    mUserData = userData;
}

int ZAV_FuncStrmbuf::sync() {
    if (pptr() > pbase()) syncout();
    return 0;
}

int ZAV_FuncStrmbuf::overflow(int c) {
    if (!pbase()) {
        OwnBuffer* own = OwnBufferOf(this);
        if (!own) return EOF;
        setp(own->mText, own->mText + sizeof own->mText);
    } else if (pptr() > pbase() && syncout() < 0) {
        return EOF;
    }
    if (c == EOF) return 0;
    char byte = static_cast<char>(c);
    if (pptr() < epptr())
        sputc(byte);
    else if (mCallback) // an area of no size
        mCallback(mUserData, &byte, 1);
    return 0;
}

int ZAV_FuncStrmbuf::underflow() { return EOF; }

int ZAV_FuncStrmbuf::syncout() {
    // The area is free again before the callback runs: what the callback writes here itself is kept.
    char piece[zav_os::kTracePiece];
    size_t length = static_cast<size_t>(pptr() - pbase());
    std::unique_ptr<char[]> longer; // only areas of derived classes hold more
    if (length > sizeof piece && !(longer.reset(new (std::nothrow) char[length]), longer)) return -1;
    char* text = longer ? longer.get() : piece;
    std::copy(pbase(), pptr(), text);
    setp(pbase(), epptr());
    if (mCallback) mCallback(mUserData, text, static_cast<int>(length));
    return 0;
}

namespace {

// The reference dout is bound by the compiler; the objects are made with the first of the library's static
// objects and live as long as the process, since threads may trace to the very end.
template <class T>
union Immortal {
    constexpr Immortal() : none(0) {}
    ~Immortal() {}
    char none;
    T object;
};
constinit Immortal<ZAV_FuncStrmbuf> theBuffer;
constinit Immortal<std::ostream> theStream;

struct MakeStream {
    MakeStream() {
        new (&theBuffer.object) ZAV_FuncStrmbuf(_trace, nullptr);
        new (&theStream.object) std::ostream(&theBuffer.object);
        theStream.object.imbue(std::locale::classic());
    }
};
__attribute__((init_priority(200))) MakeStream makeStream;

void EndStream() {
    theStream.object.~basic_ostream();
    theBuffer.object.~ZAV_FuncStrmbuf();
}
ZAV_ProcessHooks streamHooks(ZAV_ProcessHooks::kTraceLines, nullptr, nullptr, EndStream);

constinit std::atomic<void (*)(const char*, int)> theTraceFunc{nullptr};

} // namespace

constinit std::ostream& dout = theStream.object;

void _trace(void*, const char* text, int length) {
    char piece[zav_os::kTracePiece + 1];
    for (int at = 0; at < length;) {
        size_t count = (std::min)(static_cast<size_t>(length - at), zav_os::kTracePiece);
        std::memcpy(piece, text + at, count);
        piece[count] = 0;
        zav_os::TraceText(piece, count);
        at += static_cast<int>(count);
    }
}

boolean_t ZAV_GetTraceChannel(char* name, unsigned size) {
    return ZAV_Bool(zav_os::TraceChannel(name, size));
}

void ZAV_Trace(const char*, ...) {}

void ZAV_SetTraceFunc(void (*fn)(const char*, int)) { theTraceFunc = fn; }
void (*ZAV_GetTraceFunc(void))(const char*, int) { return theTraceFunc; }
