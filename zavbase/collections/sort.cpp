#include <algorithm>
#include <cstring>
#include <vector>

#include <zavbase/collections/nil_internal.h>
#include <zavbase/collections/slot_block_internal.h>
#include <zavbase/collections/strong_hash_internal.h>

// Sorting by Compare costs a virtual call and two cache misses a comparison. For elements of the library's
// own classes the keys are taken out once and sorted beside the pointers; the result is one that Compare
// would have given. Everything else goes through a merge sort, which asks Compare about the least number of
// times and, whatever it answers, only ever permutes the elements.
namespace zav_slots {
namespace {

typedef ZAV_CltObject* Element;

int CompareElements(Element a, Element b) { return ZAV_OrNil(a)->Compare(ZAV_OrNil(b)); }

// Merges the sorted halves [first, middle) and [middle, last) into `to`.
void Merge(const Element* first, const Element* middle, const Element* last, Element* to) {
    const Element* other = middle;
    while (first != middle && other != last)
        *to++ = CompareElements(*first, *other) <= 0 ? *first++ : *other++;
    to = std::copy(first, middle, to);
    std::copy(other, last, to);
}

void MergeSort(Element* a, Element* scratch, size_t n) {
    if (n < 2) return;
    const size_t half = n / 2;
    MergeSort(a, scratch, half);
    MergeSort(a + half, scratch, n - half);
    if (CompareElements(a[half - 1], a[half]) <= 0) return;
    std::copy_n(a, n, scratch);
    Merge(scratch, scratch + half, scratch + n, a);
}

void SortByCompare(Element* slots, uint32_t n) {
    std::vector<Element> sorted(slots, slots + n), scratch(n);
    MergeSort(sorted.data(), scratch.data(), n);
    std::copy(sorted.begin(), sorted.end(), slots);
}

struct Numbered {
    uint32_t mKey;
    Element mElement;
};

// One pass of a radix sort over 11 bits of the key. Returns whether it moved the elements to `to`: not when
// they all have the same digit.
bool SortByDigit(const std::vector<Numbered>& from, std::vector<Numbered>& to, int shift) {
    const uint32_t mask = 0x7FF;
    std::vector<uint32_t> start(mask + 2);
    for (const Numbered& e : from) ++start[(e.mKey >> shift & mask) + 1];
    if (start[(from[0].mKey >> shift & mask) + 1] == from.size()) return false;
    for (size_t i = 1; i < start.size(); ++i) start[i] += start[i - 1];
    for (const Numbered& e : from) to[start[e.mKey >> shift & mask]++] = e;
    return true;
}

int32_t NumberOf(const zav_strong::KeyView& v) {
    int32_t number;
    std::memcpy(&number, v.mBytes, sizeof number);
    return number;
}

// Compare subtracts with wrap-around. Only where no two numbers are 2^31 or more apart is that an order;
// where they are, what comes out depends on which pairs are asked about, and the general sort asks.
bool SortNumbers(Element* slots, uint32_t n) {
    std::vector<Numbered> keyed(n);
    int32_t low = INT32_MAX, high = INT32_MIN;
    for (uint32_t i = 0; i < n; ++i) {
        zav_strong::KeyView v;
        zav_strong::View(slots[i], v);
        const int32_t number = NumberOf(v);
        low = (std::min)(low, number);
        high = (std::max)(high, number);
        keyed[i] = {static_cast<uint32_t>(number), slots[i]};
    }
    if (static_cast<int64_t>(high) - low > INT32_MAX) return false;
    for (Numbered& e : keyed) e.mKey -= static_cast<uint32_t>(low);
    if (n < 512) {
        std::sort(keyed.begin(), keyed.end(),
                  [](const Numbered& a, const Numbered& b) { return a.mKey < b.mKey; });
    } else {
        std::vector<Numbered> other(n);
        for (int shift = 0; shift < 32; shift += 11)
            if (SortByDigit(keyed, other, shift)) keyed.swap(other);
    }
    for (uint32_t i = 0; i < n; ++i) slots[i] = keyed[i].mElement;
    return true;
}

// The first 8 characters as a number that orders as strcmp does; what follows a NUL does not count.
uint64_t PrefixOf(const char* text) {
    uint64_t prefix = 0;
    for (int shift = 56; shift >= 0 && *text; shift -= 8)
        prefix |= static_cast<uint64_t>(static_cast<unsigned char>(*text++)) << shift;
    return prefix;
}

struct Texted {
    uint64_t mKey;
    const char* mText;
    Element mElement;
};

bool TextBefore(const Texted& a, const Texted& b) {
    if (a.mKey != b.mKey) return a.mKey < b.mKey;
    return (a.mKey & 0xFF) != 0 && std::strcmp(a.mText + 8, b.mText + 8) < 0;
}

void SortTexts(Element* slots, uint32_t n) {
    std::vector<Texted> keyed(n);
    for (uint32_t i = 0; i < n; ++i) {
        zav_strong::KeyView v;
        zav_strong::View(slots[i], v);
        keyed[i] = {PrefixOf(v.mBytes), v.mBytes, slots[i]};
    }
    std::sort(keyed.begin(), keyed.end(), TextBefore);
    for (uint32_t i = 0; i < n; ++i) slots[i] = keyed[i].mElement;
}

// Whether all elements are compared by the same kind of key, all bare or all held: a holder and a bare key
// see their order from opposite sides.
bool HaveOneKind(Element* slots, uint32_t n, zav_strong::KeyView& first) {
    if (!slots[0] || !zav_strong::View(slots[0], first)) return false;
    for (uint32_t i = 1; i < n; ++i) {
        zav_strong::KeyView v;
        if (!slots[i] || !zav_strong::View(slots[i], v)) return false;
        if (v.mKind != first.mKind || v.mWrapped != first.mWrapped) return false;
    }
    return true;
}

} // namespace

void Sort(ZAV_CltObject** slots, uint32_t n) {
    if (n < 2) return;
    zav_strong::KeyView first;
    if (HaveOneKind(slots, n, first)) {
        if (first.mKind == zav_strong::NUMBER && SortNumbers(slots, n)) return;
        if (first.mKind == zav_strong::TEXT) return SortTexts(slots, n);
    }
    SortByCompare(slots, n);
}

} // namespace zav_slots
