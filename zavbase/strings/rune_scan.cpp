#include <cstring>

#include <zavbase/strings/rune_internal.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// A byte that starts a sequence is never a continuation byte, so whether a sequence of two or three bytes
// starts somewhere depends on these bytes alone and not on how the scan got there. That lets whole blocks be
// looked at at once: the runes are the bytes less the continuation bytes that such sequences use up, and a
// text is valid when every byte from 0xA0 up is either the start of a sequence or used up by one.
namespace zav_utf {

namespace {

using Byte = unsigned char;

struct Range {
    const Byte* p;
    size_t n;
    unsigned at(size_t i) const { return i < n ? p[i] : 0u; }
};

bool isContinuation(unsigned b) { return (b & 0xC0) == 0x80; }

// 1 or 2 where a sequence of two or three bytes starts, otherwise 0.
unsigned usedUpBy(const Range& r, size_t i) {
    const unsigned c = r.p[i];
    if (c < 0xC2 || c >= 0xF0 || !isContinuation(r.at(i + 1))) return 0;
    if (c < 0xE0) return 1;
    if (!isContinuation(r.at(i + 2)) || (c == 0xE0 && r.at(i + 1) < 0xA0)) return 0;
    return 2;
}

#if defined(__SSE2__)

constexpr size_t kBlock = 16;

__m128i load(const Byte* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }

// All bits set in the bytes that are at least `low`, taken without sign.
__m128i atLeast(__m128i v, int low) {
    return _mm_cmpeq_epi8(_mm_max_epu8(v, _mm_set1_epi8(static_cast<char>(low))), v);
}

__m128i continuation(__m128i v) { return _mm_cmplt_epi8(v, _mm_set1_epi8(static_cast<char>(0xC0))); }

// Marks the bytes of a block at which a sequence of two and of three bytes starts. Reads two bytes beyond it.
struct Starts {
    __m128i two, three;

    Starts(const Byte* p, __m128i v) {
        const __m128i next = load(p + 1);
        const __m128i follows = continuation(next);
        const __m128i from3 = atLeast(v, 0xE0);
        const __m128i lead2 = _mm_andnot_si128(from3, atLeast(v, 0xC2));
        const __m128i lead3 = _mm_andnot_si128(atLeast(v, 0xF0), from3);
        const __m128i isE0 = _mm_cmpeq_epi8(v, _mm_set1_epi8(static_cast<char>(0xE0)));
        const __m128i overlong = _mm_andnot_si128(atLeast(next, 0xA0), isE0);
        two = _mm_and_si128(lead2, follows);
        three = _mm_andnot_si128(overlong,
                                 _mm_and_si128(_mm_and_si128(lead3, follows), continuation(load(p + 2))));
    }
};

unsigned mask(__m128i v) { return static_cast<unsigned>(_mm_movemask_epi8(v)); }

size_t afterAscii(const Range& r, size_t i) {
    for (; i + 64 <= r.n; i += 64) {
        const __m128i a = _mm_or_si128(load(r.p + i), load(r.p + i + 16));
        const __m128i b = _mm_or_si128(load(r.p + i + 32), load(r.p + i + 48));
        if (mask(_mm_or_si128(a, b)) != 0) break;
    }
    return i;
}

// Adds the bytes that sequences starting in whole blocks of the range use up, and moves `i` behind these
// blocks.
size_t usedUpByBlocks(const Range& r, size_t& i) {
    size_t used = 0;
    const __m128i zero = _mm_setzero_si128();
    while (i + kBlock + 2 <= r.n) {
        __m128i counts = zero;
        // A byte of `counts` grows by at most 2 a block.
        for (int blocks = 0; blocks < 120 && i + kBlock + 2 <= r.n; ++blocks) {
            const __m128i v = load(r.p + i);
            if (mask(v) == 0) {
                i = afterAscii(r, i + kBlock);
                continue;
            }
            const Starts starts(r.p + i, v);
            i += kBlock;
            counts = _mm_sub_epi8(counts, _mm_add_epi8(starts.two, _mm_add_epi8(starts.three, starts.three)));
        }
        const __m128i sums = _mm_sad_epu8(counts, zero);
        used +=
            static_cast<size_t>(_mm_cvtsi128_si32(sums)) + static_cast<size_t>(_mm_extract_epi16(sums, 4));
    }
    return used;
}

// Whether the whole blocks from `i` on are valid; moves `i` to where the rest is to be looked at.
bool validBlocks(const Range& r, size_t& i) {
    unsigned carry = 0; // bits 0 and 1: the next two bytes are used up
    while (i + kBlock + 2 <= r.n) {
        const __m128i v = load(r.p + i);
        if (mask(v) == 0) {
            i = afterAscii(r, i + kBlock);
            continue;
        }
        const Starts starts(r.p + i, v);
        i += kBlock;
        const unsigned three = mask(starts.three);
        const unsigned start = mask(starts.two) | three;
        const unsigned used = carry | start << 1 | three << 2;
        carry = used >> 16;
        if ((mask(atLeast(v, 0xA0)) & ~(start | used)) != 0) return false;
    }
    i += (carry & 1) + (carry >> 1 & 1);
    return true;
}

#else

size_t usedUpByBlocks(const Range&, size_t&) { return 0; }
bool validBlocks(const Range&, size_t&) { return true; }

#endif

} // namespace

size_t CountRunes(const char* s, size_t n) {
    const Range r{reinterpret_cast<const Byte*>(s), n};
    size_t i = 0;
    size_t used = usedUpByBlocks(r, i);
    for (; i < n; ++i) used += usedUpBy(r, i);
    return n - used;
}

bool IsValid(const char* s, size_t n) {
    const Range r{reinterpret_cast<const Byte*>(s), n};
    size_t i = 0;
    if (!validBlocks(r, i)) return false;
    while (i < n) {
        const unsigned used = r.p[i] < 0xA0 ? 0 : usedUpBy(r, i);
        if (used == 0 && r.p[i] >= 0xA0) return false;
        i += 1 + used;
    }
    return true;
}

size_t CountRunes(const char* s) { return CountRunes(s, std::strlen(s)); }

bool IsValid(const char* s) { return IsValid(s, std::strlen(s)); }

} // namespace zav_utf
