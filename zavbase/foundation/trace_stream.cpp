#include <zavbase/foundation/trace_stream.h>

#include <zavbase/os/console.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <locale>
#include <new>

ZAV_FuncStrmbuf::ZAV_FuncStrmbuf(Callback callback, void* userData)
    : mCallback(callback), mUserData(userData) {}

ZAV_FuncStrmbuf::ZAV_FuncStrmbuf(const ZAV_FuncStrmbuf& other) : std::streambuf() { *this = other; }

ZAV_FuncStrmbuf& ZAV_FuncStrmbuf::operator=(const ZAV_FuncStrmbuf& other) {
    if (this == &other) return *this;
    char* own = pbase();
    char* end = epptr();
    std::streambuf::operator=(other);
    setp(own, end); // the other's put pointers came along
    mCallback = other.mCallback;
    mUserData = other.mUserData;
    // Both buffers have the same size, so the pending text fits and nothing is handed on here.
    for (const char* p = other.pbase(); p != other.pptr(); ++p) sputc(*p);
    return *this;
}

ZAV_FuncStrmbuf::~ZAV_FuncStrmbuf() { delete[] pbase(); }

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
        char* buffer = new (std::nothrow) char[zav_os::kTracePiece];
        if (!buffer) return EOF;
        setp(buffer, buffer + zav_os::kTracePiece);
    } else if (pptr() > pbase() && syncout() < 0) {
        return EOF;
    }
    if (c != EOF) sputc(static_cast<char>(c));
    return 0;
}

int ZAV_FuncStrmbuf::underflow() { return EOF; }

int ZAV_FuncStrmbuf::syncout() {
    // The buffer is free again before the callback runs: what the callback writes here itself is kept.
    char piece[zav_os::kTracePiece];
    int length = static_cast<int>(pptr() - pbase());
    std::copy(pbase(), pptr(), piece);
    setp(pbase(), epptr());
    if (mCallback) mCallback(mUserData, piece, length);
    return 0;
}

namespace {

// The reference dout is bound by the compiler; the objects are made with the first of the library's static
// objects and are never destroyed, since threads may trace to the very end.
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
