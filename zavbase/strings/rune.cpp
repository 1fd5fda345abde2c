#include <zavbase/strings/rune.h>

#include <cstring>

#include <zavbase/strings/rune_internal.h>

namespace {

constexpr unsigned kErrorRune = 0x80;

unsigned byteAt(const char* p) { return static_cast<unsigned char>(*p); }

struct Decoded {
    unsigned rune;
    unsigned length;
};

inline Decoded decode(const char* s) {
    constexpr Decoded failed{kErrorRune, 1};
    const unsigned c = byteAt(s);
    if (c < 0x80) return {c, 1};
    const unsigned c1 = byteAt(s + 1) ^ 0x80;
    if ((c1 & 0xC0) != 0 || c < 0xC0) return failed;
    if (c < 0xE0) {
        const unsigned l = (c & 0x1F) << 6 | c1;
        return l <= 0x7F ? failed : Decoded{l, 2};
    }
    const unsigned c2 = byteAt(s + 2) ^ 0x80;
    if ((c2 & 0xC0) != 0 || c >= 0xF0) return failed;
    const unsigned l = (c & 0x0F) << 12 | c1 << 6 | c2;
    return l <= 0x7FF ? failed : Decoded{l, 3};
}

// What the scanning functions take as one character.
inline Decoded scan(const char* s) {
    const unsigned c = byteAt(s);
    return c < 0xA0 ? Decoded{c, 1} : decode(s);
}

// The rune at the start of a source of which `left` bytes may be read; one cut off by the end is an error.
Decoded decodeBounded(const char* s, unsigned left) {
    if (left >= 3) return decode(s);
    const char padded[3] = {s[0], left > 1 ? s[1] : '\0', '\0'};
    return decode(padded);
}

unsigned encode(char* s, unsigned r) {
    if (r < 0x80) {
        s[0] = static_cast<char>(r);
        return 1;
    }
    if (r < 0x800) {
        s[0] = static_cast<char>(0xC0 | r >> 6);
        s[1] = static_cast<char>(0x80 | (r & 0x3F));
        return 2;
    }
    s[0] = static_cast<char>(0xE0 | r >> 12);
    s[1] = static_cast<char>(0x80 | (r >> 6 & 0x3F));
    s[2] = static_cast<char>(0x80 | (r & 0x3F));
    return 3;
}

// The readers of a source: End() at its NUL (Nul() then) or after the given number of units, Take()
// otherwise.
template <class Unit>
class UnitSource {
public:
    UnitSource(const Unit* p, unsigned length) : mP(p), mLeft(length) {}
    bool Counted() const { return mLeft == 0; }
    bool Nul() const { return *mP == 0; }
    unsigned Take() {
        if (mLeft != kToNul) --mLeft;
        const Unit u = *mP++;
        if constexpr (sizeof(Unit) == 1) return static_cast<unsigned char>(u);
        return static_cast<unsigned>(u);
    }

private:
    static constexpr unsigned kToNul = 0xFFFFFFFFu;
    const Unit* mP;
    unsigned mLeft;
};

class UtfSource {
public:
    UtfSource(const char* p, unsigned length) : mP(p), mLeft(length) {}
    bool Counted() const { return mLeft == 0; }
    bool Nul() const { return *mP == 0; }
    unsigned Take() {
        const Decoded d = decodeBounded(mP, mLeft);
        mP += d.length;
        if (mLeft != 0xFFFFFFFFu) mLeft -= d.length;
        return d.rune;
    }

private:
    const char* mP;
    unsigned mLeft;
};

// The one loop behind the six conversions. `put` writes a rune at a position, returns the units written, or 0
// when the rune has no place in the destination's encoding and "?" stands for it; `roomFor` is what a rune
// may need.
template <class Unit, class Source, class Put, class Count>
int transcode(Unit* dst, unsigned dstSize, Source source, unsigned roomFor, Count* count, Put put) {
    unsigned n = 0;
    int result = 0;
    for (;;) {
        if (source.Counted()) {
            if (n < dstSize) dst[n] = 0;
            break;
        }
        const bool end = source.Nul();
        if (dstSize - n < (end ? 1 : roomFor)) {
            result = -1;
            break;
        }
        if (end) {
            dst[n] = 0;
            break;
        }
        unsigned written = put(dst + n, source.Take());
        if (written == 0) {
            dst[n] = '?';
            written = 1;
            result = -2;
        }
        n += written;
    }
    if (count != nullptr) *count = static_cast<Count>(n);
    return result;
}

template <class Unit, class Count>
int emptyResult(Unit* dst, long long dstSize, Count* count) {
    if (dstSize >= 1) dst[0] = 0;
    if (count != nullptr) *count = 0;
    return 0;
}

unsigned putRune(Rune* to, unsigned r) {
    *to = static_cast<Rune>(r);
    return 1;
}

unsigned putDecodedRune(Rune* to, unsigned r) { return r == kErrorRune ? 0 : putRune(to, r); }

unsigned putLatin1(char* to, unsigned r) {
    if (r > 255 || r == kErrorRune) return 0;
    *to = static_cast<char>(r);
    return 1;
}

int bytesOf(const char* s, unsigned runes) {
    if (s == nullptr) return 0;
    const char* p = s;
    for (; runes > 0 && *p != '\0'; --runes) p += scan(p).length;
    return static_cast<int>(p - s);
}

} // namespace

extern "C" {

int chartorune(Rune* r, const char* s) {
    const Decoded d = decode(s);
    *r = static_cast<Rune>(d.rune);
    return static_cast<int>(d.length);
}

int runetochar(char* s, const Rune* r) { return static_cast<int>(encode(s, *r)); }

int runelen(long r) { return r < 0x80 ? 1 : r < 0x800 ? 2 : 3; }

int fullrune(const char* s, int n) {
    if (n < 1) return 0;
    const unsigned c = byteAt(s);
    return c < 0x80 || (n >= 2 && c < 0xE0) || n >= 3;
}

int utflen(const char* s) { return static_cast<int>(zav_utf::CountRunes(s)); }

char* utfrune(const char* s, long c) {
    if (c < 0x21) return const_cast<char*>(std::strchr(s, static_cast<int>(c)));
    while (*s != '\0') {
        const Decoded d = scan(s);
        if (static_cast<long>(d.rune) == c) return const_cast<char*>(s);
        s += d.length;
    }
    return nullptr;
}

char* utfrrune(const char* s, long c) {
    if (c < 0x21) return const_cast<char*>(std::strrchr(s, static_cast<int>(c)));
    const char* last = nullptr;
    while (*s != '\0') {
        const Decoded d = scan(s);
        if (static_cast<long>(d.rune) == c) last = s;
        s += d.length;
    }
    return const_cast<char*>(last);
}

char* utfutf(const char* s1, const char* s2) { return const_cast<char*>(std::strstr(s1, s2)); }

int isutf(const char* s) {
    const Decoded d = decode(s);
    return d.rune == kErrorRune && d.length == 1 ? 0 : static_cast<int>(d.length);
}

int isutfstr(const char* s) { return s == nullptr || zav_utf::IsValid(s); }

int utfbytepos(const char* s, unsigned n) { return bytesOf(s, n); }

int utfnsize(const char* s, unsigned n) { return bytesOf(s, n); }

int utfrunepos(const char* s, unsigned byteOffset) {
    if (s == nullptr) return 0;
    unsigned offset = 0;
    int index = 0;
    for (; offset < byteOffset && s[offset] != '\0'; ++index) offset += scan(s + offset).length;
    return offset == byteOffset ? index : -1;
}

int UTFtoUnicode(Rune* dst, int dstSize, const char* src, unsigned srcLen, unsigned* count) {
    if (src == nullptr || dstSize < 1) return emptyResult(dst, dstSize, count);
    return transcode(dst, static_cast<unsigned>(dstSize), UtfSource(src, srcLen), 1, count, putDecodedRune);
}

int UTFtoLatin1(char* dst, int dstSize, const char* src, unsigned srcLen, unsigned* count) {
    if (src == nullptr || dstSize < 1) return emptyResult(dst, dstSize, count);
    return transcode(dst, static_cast<unsigned>(dstSize), UtfSource(src, srcLen), 1, count, putLatin1);
}

int UnicodetoLatin1(char* dst, int dstSize, const Rune* src, unsigned srcLen, unsigned* count) {
    if (src == nullptr || dstSize < 1) return emptyResult(dst, dstSize, count);
    return transcode(dst, static_cast<unsigned>(dstSize), UnitSource(src, srcLen), 1, count, putLatin1);
}

int UTFfromUnicode(char* dst, int dstSize, const Rune* src, int srcLen, int* count) {
    if (src == nullptr || dstSize < 1) return emptyResult(dst, dstSize, count);
    return transcode(dst, static_cast<unsigned>(dstSize), UnitSource(src, static_cast<unsigned>(srcLen)), 3,
                     count, encode);
}

int UTFfromLatin1(char* dst, unsigned dstSize, const char* src, unsigned srcLen, unsigned* count) {
    if (src == nullptr || dstSize < 1) return emptyResult(dst, dstSize, count);
    if (dstSize < 3) {
        emptyResult(dst, dstSize, count);
        return -1;
    }
    return transcode(dst, dstSize, UnitSource(src, srcLen), 3, count, encode);
}

int UnicodefromLatin1(Rune* dst, int dstSize, const char* src, int srcLen, unsigned* count) {
    if (src == nullptr || dstSize < 1) return emptyResult(dst, dstSize, count);
    return transcode(dst, static_cast<unsigned>(dstSize), UnitSource(src, static_cast<unsigned>(srcLen)), 1,
                     count, putRune);
}
}
