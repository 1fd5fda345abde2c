#include <zavbase/strings/str.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <istream>
#include <ostream>

#include <zavbase/strings/char_class_internal.h>
#include <zavbase/strings/text_length_internal.h>

char ZAV_Str::sEmpty[1] = {'\0'};

namespace {

constexpr uint64_t kLargestRoom = 0xFFFFFFF0u;

uint64_t capacityFor(uint64_t length) { return (length / 16 + 1) * 16; }

// The room for a text that outgrew `room`. Middle sizes quadruple: fewer blocks of fresh memory are touched,
// which costs more there than the copying.
uint64_t roomAhead(uint64_t room) {
    constexpr uint64_t kSmall = 4096, kMiddle = 1u << 20, kMost = 64u << 20;
    const uint64_t more = room >= kSmall && room < kMiddle ? 3 * room : (std::min)(room, kMost);
    return (std::min)(room + more, kLargestRoom);
}

void copyBytes(char* to, const char* from, size_t n) {
    if (n != 0) std::memmove(to, from, n);
}

// A read that finds nothing to consume, not even a delimiter, fails: a loop on the state of the stream ends.
bool canRead(std::istream& is) {
    if (!is.good())
        is.setstate(std::ios_base::failbit);
    else if (is.rdbuf()->sgetc() == std::istream::traits_type::eof())
        is.setstate(std::ios_base::eofbit | std::ios_base::failbit);
    return is.good();
}

} // namespace

char* ZAV_Str::newBuffer(uint64_t room) {
    if (room > (std::min)(kLargestRoom, uint64_t{SIZE_MAX / 2})) zav_text::Refuse();
    void* block = ::operator new(static_cast<size_t>(room) + sizeof(Room) + 1);
    const Room stored = static_cast<Room>(room);
    std::memcpy(block, &stored, sizeof stored);
    return static_cast<char*>(block) + sizeof stored;
}

ZAV_Str::ZAV_Str(unsigned int n) {
    allocBuffer(n);
    mLength = 0;
    mData[0] = '\0';
}

ZAV_Str::ZAV_Str(const ZAV_Str& s) { s.allocCopy(*this, static_cast<int>(s.mLength), 0, 0); }

ZAV_Str::ZAV_Str(const ZAV_SubStr& s) {
    allocBuffer(s.mLength);
    copyBytes(mData, s.mStart, s.mLength);
    mData[mLength] = '\0';
}

ZAV_Str::~ZAV_Str() { safeDelete(mData); }

void ZAV_Str::init() {
    mData = sEmpty;
    mLength = 0;
    mCapacity = 0;
}

void ZAV_Str::safeDelete(char* data) {
    if (data != nullptr && data != sEmpty) ::operator delete(data - sizeof(Room));
}

void ZAV_Str::allocBuffer(unsigned int n) {
    const uint64_t capacity = capacityFor(n);
    mData = newBuffer(capacity);
    mLength = n;
    mCapacity = static_cast<unsigned>(capacity);
}

void ZAV_Str::allocCopy(ZAV_Str& dest, int count, int index, int extra) const {
    const unsigned n = static_cast<unsigned>(count);
    dest.allocBuffer(zav_text::Checked(uint64_t{n} + static_cast<unsigned>(extra)));
    copyBytes(dest.mData, mData + index, n);
    dest.mLength = n;
    dest.mData[n] = '\0';
}

// The empty state has its terminator; writing one there would be a race between threads.
void ZAV_Str::terminate() {
    if (mCapacity != 0) mData[mLength] = '\0';
}

void ZAV_Str::assignCopy(unsigned int n, const char* p) {
    if (n > mCapacity) {
        Empty();
        allocBuffer(n);
    }
    copyBytes(mData, p, n);
    mLength = n;
    terminate();
}

bool ZAV_Str::holds(const char* p) const {
    return !std::less<>()(p, mData) && !std::less<>()(mData + mLength, p);
}

void ZAV_Str::growTo(unsigned long long length) {
    const uint64_t capacity = capacityFor(length);
    const uint64_t room = mCapacity != 0 ? roomOf(mData) : 0;
    if (room < capacity) {
        char* data = newBuffer((std::max)(capacity, roomAhead(room)));
        copyBytes(data, mData, mLength);
        data[mLength] = '\0';
        safeDelete(mData);
        mData = data;
    }
    mCapacity = static_cast<unsigned>(capacity);
}

void ZAV_Str::concatInPlace(unsigned int n, const char* p) {
    const uint64_t length = uint64_t{mLength} + n;
    if (length > mCapacity) {
        const bool own = holds(p);
        const size_t offset = own ? static_cast<size_t>(p - mData) : 0;
        growTo(length);
        if (own) p = mData + offset;
    }
    copyBytes(mData + mLength, p, n);
    mLength = static_cast<unsigned>(length);
    terminate();
}

void ZAV_Str::concatCopy(unsigned int len1, const char* p1, unsigned int len2, const char* p2) {
    const uint64_t length = uint64_t{len1} + len2;
    char* old = nullptr;
    if (length > mCapacity) {
        const uint64_t capacity = capacityFor(length);
        char* data = newBuffer(capacity);
        old = mData;
        mData = data;
        mCapacity = static_cast<unsigned>(capacity);
    }
    copyBytes(mData, p1, len1);
    copyBytes(mData + len1, p2, len2);
    mLength = static_cast<unsigned>(length);
    safeDelete(old);
}

ZAV_Str& ZAV_Str::operator=(const ZAV_Str& s) {
    if (s.mData != mData) assignCopy(s.mLength, s.mData);
    return *this;
}

ZAV_Str& ZAV_Str::operator=(const ZAV_SubStr& s) {
    if (s.mOwner != this) {
        assignCopy(s.mLength, s.mStart);
    } else {
        copyBytes(mData, s.mStart, s.mLength);
        mLength = s.mLength;
        terminate();
    }
    return *this;
}

ZAV_Str& ZAV_Str::operator+=(const ZAV_Str& s) {
    concatInPlace(s.mLength, s.mData);
    return *this;
}

ZAV_Str& ZAV_Str::operator+=(const ZAV_SubStr& s) {
    concatInPlace(s.mLength, s.mStart);
    return *this;
}

unsigned int ZAV_Str::ReSize(unsigned int n) {
    char* const old = mData;
    const unsigned length = mLength;
    allocBuffer((std::max)(n, length));
    mLength = length;
    copyBytes(mData, old, length);
    mData[length] = '\0';
    safeDelete(old);
    return Capacity();
}

void ZAV_Str::Empty() {
    safeDelete(mData);
    init();
}

int ZAV_Str::Compare(const ZAV_Str& s) const { return std::strcmp(mData, s.mData); }

void ZAV_Str::TrimLeft() { cutFront(zav_text::LeadingSpace(mData, zav_text::kAllBytes)); }

void ZAV_Str::TrimRight() { trimEnd(zav_text::kAllBytes); }

void ZAV_Str::cutFront(unsigned int n) {
    if (n == 0) return;
    mLength -= n;
    std::memmove(mData, mData + n, size_t{mLength} + 1);
}

void ZAV_Str::trimEnd(int below) {
    const unsigned length = zav_text::LengthOf(mData);
    const unsigned end = zav_text::TrimmedLength(mData, length, below);
    if (end == length) return;
    mData[end] = '\0';
    mLength = end;
}

int ZAV_Str::getChar(std::istream& is) {
    if (!is.good()) return -1;
    const int c = is.rdbuf()->sbumpc();
    if (c == std::istream::traits_type::eof()) is.setstate(std::ios_base::eofbit);
    return c;
}

int ZAV_Str::getCharSw(std::istream& is) {
    int c = getChar(is);
    while (is.good() && zav_text::IsSpace(c)) c = getChar(is);
    return c;
}

void ZAV_Str::appendRead(char c) {
    if (mLength == mCapacity) growTo(uint64_t{mLength} + 16);
    mData[mLength++] = c;
    mData[mLength] = '\0';
}

void ZAV_Str::readToDelim(std::istream& is, char delim, boolean_t skipWhite) {
    readSkipping(is, delim, skipWhite ? zav_text::kAllBytes : 0);
}

void ZAV_Str::readSkipping(std::istream& is, char delim, int below) {
    if (!canRead(is)) return;
    const int end = static_cast<unsigned char>(delim);
    int c = getChar(is);
    while (is.good() && zav_text::IsSpace(c, below)) c = getChar(is);
    for (; is.good() && c != end; c = getChar(is)) appendRead(static_cast<char>(c));
}

std::istream& ZAV_Str::ReadLine(std::istream& is, boolean_t skipWhite) {
    if (!canRead(is)) return is;
    int c = skipWhite ? getCharSw(is) : getChar(is);
    for (; is.good() && c != '\r' && c != '\n'; c = getChar(is)) appendRead(static_cast<char>(c));
    if (is.good() && c == '\r' && is.rdbuf()->sgetc() == '\n') is.rdbuf()->sbumpc();
    return is;
}

std::istream& ZAV_Str::ReadString(std::istream& is) { return ReadToDelim(is, '\0'); }

std::istream& ZAV_Str::ReadToDelim(std::istream& is, char delim) {
    readToDelim(is, delim, B_FALSE);
    return is;
}

void ZAV_Str::PrintOn(std::ostream& os) { os << mData; }

std::ostream& operator<<(std::ostream& os, const ZAV_Str& s) {
    const_cast<ZAV_Str&>(s).PrintOn(os);
    return os;
}
