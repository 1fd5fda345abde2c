#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

#include <zavbase/strings/str.h>

int ZAV_SubStr::compare(const char* p, unsigned int length) const {
    const int r = std::strncmp(mStart, p, (std::min)(mLength, length));
    if (r != 0 || length == mLength) return r;
    return length < mLength ? 1 : -1;
}

int ZAV_SubStr::compare(const ZAV_Str& s) const { return compare(s.mData, s.mLength); }

int ZAV_SubStr::compare(const ZAV_SubStr& s) const { return compare(s.mStart, s.mLength); }

ZAV_SubStr& ZAV_SubStr::operator=(const ZAV_Str& s) {
    replace(s.mData, s.mLength);
    return *this;
}

ZAV_SubStr& ZAV_SubStr::operator=(const ZAV_SubStr& s) {
    replace(s.mStart, s.mLength);
    return *this;
}

void ZAV_SubStr::replace(const char* p, unsigned int n) {
    if (mOwner == nullptr) return;
    ZAV_Str& owner = *mOwner;
    const size_t start = static_cast<size_t>(mStart - owner.mData);
    if (start > owner.mLength) return;
    // A view left over from a splice may reach past the end of its owner.
    const size_t range = (std::min)(size_t{mLength}, owner.mLength - start);
    if (n == range) {
        if (n != 0) std::memmove(mStart, p, n);
        return;
    }

    // A source in the owner's own buffer would move, or be overwritten, below.
    std::unique_ptr<char[]> copy;
    if (n != 0 && owner.holds(p)) {
        copy.reset(new char[n]);
        std::memcpy(copy.get(), p, n);
        p = copy.get();
    }

    const uint64_t length = uint64_t{owner.mLength} - range + n;
    if (length >= owner.mCapacity) {
        owner.growTo((std::max)(length, uint64_t{owner.mLength}));
        mStart = owner.mData + start;
    }
    std::memmove(mStart + n, mStart + range, owner.mLength - start - range + 1);
    if (n != 0) std::memcpy(mStart, p, n);
    owner.mLength = static_cast<unsigned>(length);
}

ZAV_Str ZAV_SubStr::operator+(const ZAV_SubStr& s) const {
    ZAV_Str sum;
    sum.concatCopy(mLength, mStart, s.mLength, s.mStart);
    sum.terminate();
    return sum;
}

ZAV_Str ZAV_SubStr::operator+(const ZAV_Str& s) const {
    ZAV_Str sum;
    sum.concatCopy(mLength, mStart, s.mLength, s.mData);
    sum.terminate();
    return sum;
}

void ZAV_SubStr::PrintOn(std::ostream& os) const { ZAV_Str(*this).PrintOn(os); }

std::ostream& operator<<(std::ostream& os, const ZAV_SubStr& s) {
    s.PrintOn(os);
    return os;
}
