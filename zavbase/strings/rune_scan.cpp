#include <cstdint>
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

__m128i bytes(int value) { return _mm_set1_epi8(static_cast<char>(value)); }

// All bits set in the bytes that are above `limit`, which with the top bit turned over is a comparison with
// sign.
__m128i above(__m128i turned, int limit) { return _mm_cmpgt_epi8(turned, bytes(limit ^ 0x80)); }

__m128i turnedOver(__m128i v) { return _mm_xor_si128(v, bytes(0x80)); }

// The lowest of the numbers with sign are 0x80 to 0xBF.
__m128i continuation(__m128i v) { return _mm_cmplt_epi8(v, bytes(0xC0)); }

// Marks the bytes of a block at which a sequence of two or three bytes starts, and which have three. Reads
// two bytes beyond the block.
struct Starts {
    __m128i all, three;

    Starts(const Byte* p, __m128i v, __m128i turned) {
        const __m128i next = load(p + 1);
        const __m128i lead = _mm_andnot_si128(above(turned, 0xEF), above(turned, 0xC1));
        const __m128i lead3 = above(turned, 0xDF);
        const __m128i overlong =
            _mm_and_si128(_mm_cmpeq_epi8(v, bytes(0xE0)), _mm_cmplt_epi8(next, bytes(0xA0)));
        const __m128i third = _mm_andnot_si128(overlong, continuation(load(p + 2)));
        const __m128i cut = _mm_andnot_si128(third, lead3);
        all = _mm_andnot_si128(cut, _mm_and_si128(lead, continuation(next)));
        three = _mm_and_si128(all, lead3);
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
            const __m128i turned = turnedOver(v);
            if (mask(above(turned, 0x9F)) == 0) {
                i = afterAscii(r, i + kBlock);
                continue;
            }
            const Starts starts(r.p + i, v, turned);
            i += kBlock;
            counts = _mm_sub_epi8(counts, _mm_add_epi8(starts.all, starts.three));
        }
        const __m128i sums = _mm_sad_epu8(counts, zero);
        used +=
            static_cast<size_t>(_mm_cvtsi128_si32(sums)) + static_cast<size_t>(_mm_extract_epi16(sums, 4));
    }
    return used;
}

// Two blocks as bits.
struct Bits {
    uint32_t high = 0, all = 0, three = 0;

    void Add(const Byte* p, int shift) {
        const __m128i v = load(p);
        const __m128i turned = turnedOver(v);
        const Starts starts(p, v, turned);
        high |= mask(above(turned, 0x9F)) << shift;
        all |= mask(starts.all) << shift;
        three |= mask(starts.three) << shift;
    }
};

// Whether the whole pairs of blocks from `i` on are valid; moves `i` to where the rest is to be looked at.
bool validBlocks(const Range& r, size_t& i) {
    uint64_t carry = 0; // bits 0 and 1: the next two bytes are used up
    while (i + 2 * kBlock + 2 <= r.n) {
        Bits bits;
        bits.Add(r.p + i, 0);
        bits.Add(r.p + i + kBlock, kBlock);
        i += 2 * kBlock;
        const uint64_t used = carry | uint64_t{bits.all} << 1 | uint64_t{bits.three} << 2;
        carry = used >> 32;
        if ((bits.high & ~(bits.all | used)) != 0) return false;
        if (bits.high == 0) i = afterAscii(r, i);
    }
    i += static_cast<size_t>((carry & 1) + (carry >> 1 & 1));
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

bool IsInsideRune(const char* s, size_t n, size_t at) {
    const Range r{reinterpret_cast<const Byte*>(s), n};
    return isContinuation(r.at(at)) &&
           ((at >= 1 && usedUpBy(r, at - 1) >= 1) || (at >= 2 && usedUpBy(r, at - 2) == 2));
}

size_t CountRunes(const char* s) { return CountRunes(s, std::strlen(s)); }

bool IsValid(const char* s) { return IsValid(s, std::strlen(s)); }

} // namespace zav_utf
