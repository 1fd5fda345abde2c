#include <zavbase/collections/strong_hash_internal.h>

#include <atomic>
#include <cstring>

#include <zavbase/collections/assoc.h>
#include <zavbase/collections/clt_string.h>

namespace zav_strong {
namespace {

struct KeyClass {
    const std::type_info* mType;
    BytesOf mBytes;
};

const int MAX_CLASSES = 4;
constinit KeyClass registered[MAX_CLASSES] = {};
// Counted up only when an entry is whole, so that a reader on another thread never sees half of one.
constinit std::atomic<int> registeredCount{0};

bool IsHolder(const std::type_info* t) {
    return t == &typeid(ZAV_Assoc) || t == &typeid(ZAV_AssocInt) || t == &typeid(ZAV_LookupKey) ||
           t == &typeid(ZAV_AssocIs) || t == &typeid(ZAV_AssocOs);
}

bool ViewText(const ZAV_Str& s, KeyView& v) {
    v.mBytes = s.Ptr();
    v.mLength = s.Size();
    v.mKind = TEXT;
    return true;
}

bool ViewRegistered(const ZAV_CltObject* o, const std::type_info* t, KeyView& v) {
    for (int i = 0, n = registeredCount.load(std::memory_order_acquire); i < n; ++i) {
        if (registered[i].mType != t) continue;
        v.mBytes = registered[i].mBytes(o, &v.mLength);
        v.mKind = static_cast<uint16_t>(FIRST_REGISTERED + i);
        return true;
    }
    return false;
}

bool ViewBare(const ZAV_CltObject* o, const std::type_info* t, KeyView& v) {
    if (t == &typeid(ZAV_CltString)) return ViewText(*static_cast<const ZAV_CltString*>(o), v);
    if (t == &typeid(ZAV_CltUTFString)) return ViewText(*static_cast<const ZAV_CltUTFString*>(o), v);
    if (t == &typeid(ZAV_Integer)) {
        v.mBytes = static_cast<const ZAV_Integer*>(o)->Bytes();
        v.mLength = 4;
        v.mKind = NUMBER;
        return true;
    }
    return ViewRegistered(o, t, v);
}

template <class Word>
uint64_t Load(const char* p) {
    Word w;
    std::memcpy(&w, p, sizeof w);
    return w;
}

// Up to 8 bytes as a number, filled up with zeros, in one or two loads that may overlap.
uint64_t LoadShort(const char* p, uint32_t n) {
    if (n >= 4) return Load<uint32_t>(p) | Load<uint32_t>(p + n - 4) << (8 * (n - 4));
    if (n == 0) return 0;
    const uint64_t last = Load<uint8_t>(p + n - 1) << (8 * (n - 1));
    return n == 3 ? Load<uint16_t>(p) | last : Load<uint8_t>(p) | last;
}

uint64_t Mix(uint64_t h, uint64_t word) {
    h = (h ^ word) * 0xD6E8FEB86659FD93u;
    return h ^ (h >> 32);
}

} // namespace

bool RegisterKeyClass(const std::type_info& type, BytesOf bytes) {
    const int n = registeredCount.load(std::memory_order_relaxed);
    for (int i = 0; i < n; ++i)
        if (registered[i].mType == &type) return true;
    if (n == MAX_CLASSES) return false;
    registered[n] = {&type, bytes};
    registeredCount.store(n + 1, std::memory_order_release);
    return true;
}

bool View(const ZAV_CltObject* o, KeyView& v) {
    const std::type_info* t = &typeid(*o);
    v.mWrapped = 0;
    if (IsHolder(t)) {
        o = static_cast<const ZAV_LookupKey*>(o)->ZAV_LookupKey::Key();
        if (!o) return false;
        v.mWrapped = 1;
        t = &typeid(*o);
    }
    return ViewBare(o, t, v);
}

Brief MakeBrief(const KeyView& v) {
    const bool cut = v.mLength > 15;
    const uint32_t n = cut ? 15 : v.mLength;
    Brief brief = {0, 0};
    if (n > 8) {
        brief.mLow = Load<uint64_t>(v.mBytes);
        brief.mHigh = Load<uint64_t>(v.mBytes + n - 8) >> (8 * (16 - n));
    } else {
        brief.mLow = LoadShort(v.mBytes, n);
    }
    const uint64_t kind = cut ? 7 : v.mKind;
    brief.mHigh |= (kind << 5 | static_cast<uint64_t>(v.mWrapped) << 4 | n) << 56;
    return brief;
}

uint32_t Hash(const KeyView& v, const Brief& brief) {
    uint64_t h = Mix(Mix(0x9E3779B97F4A7C15u, brief.mLow), brief.mHigh & ~Brief::WRAPPED);
    if (brief.IsCut()) {
        const char* p = v.mBytes + 15;
        uint32_t n = v.mLength - 15;
        for (; n > 8; n -= 8, p += 8) h = Mix(h, Load<uint64_t>(p));
        h = Mix(Mix(h, LoadShort(p, n)), static_cast<uint64_t>(v.mLength) << 16 | v.mKind);
    }
    return static_cast<uint32_t>(Mix(h, 0) >> 20);
}

} // namespace zav_strong
