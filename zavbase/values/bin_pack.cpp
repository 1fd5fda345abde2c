#include <zavbase/values/bin_pack_dict_internal.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include <zavbase/foundation/exception_context.h>
#include <zavbase/strings/byte_string.h>

ZAV_DEFINE_CLASS(ZAV_BinPackException, ZAV_Exception)

ZAV_BinPackException::ZAV_BinPackException() {}

ZAV_BinPackException::ZAV_BinPackException(const ZAV_BinPackException& other) : ZAV_Exception(other) {}

ZAV_BinPackException::~ZAV_BinPackException() {}

ZAV_String& ZAV_BinPackException::ToString(ZAV_String& s) const { return s += "Binary Packing Error"; }

void ZAV_ThrowBinPackException() { throw new ZAV_BinPackException; }

void zav_pack::Refuse(const char* reason, const char* key) {
    char text[160];
    if (key) std::snprintf(text, sizeof text, "entry \"%s\": %s", key, reason);
    ZAV_BinPackException* exception = new ZAV_BinPackException;
    ZAV_AddExceptionContext(exception, {"", key ? text : reason});
    throw exception;
}

unsigned int ZAV_BinPackElementSize(int kind) {
    static constexpr unsigned char sizes[] = {0, 1, 1, 2, 4, 8, 4, 8};
    return kind >= 0 && kind < 8 ? sizes[kind] : 0;
}

int ZAV_BinPackBuffer::Put(unsigned char** cursor, const unsigned char* limit) {
    size_t size = (std::min)(static_cast<size_t>(limit - *cursor), static_cast<size_t>(mLeft));
    if (size > 0) std::memcpy(*cursor, mData, size);
    *cursor += size;
    mData += size;
    mLeft -= static_cast<unsigned long>(size);
    return mLeft > 0;
}

int ZAV_BinPackBuffer::Get(const unsigned char** cursor, const unsigned char* limit) {
    size_t size = (std::min)(static_cast<size_t>(limit - *cursor), static_cast<size_t>(mLeft));
    if (size > 0) std::memcpy(mData, *cursor, size);
    *cursor += size;
    mData += size;
    mLeft -= static_cast<unsigned long>(size);
    return mLeft > 0;
}

int ZAV_BinPackBuffer::Get(unsigned char** cursor, const unsigned char* limit) {
    return Get(const_cast<const unsigned char**>(cursor), limit);
}

static const char NO_ATOM[] = "no such kind of atom, or too many elements";

ZAV_BinPackAtom::ZAV_BinPackAtom(int kind, unsigned long count, void* data)
    : mHeader{}, mHeaderSize(1), mHeaderDone(0) {
    if (kind < BINPACK_NONE || kind > BINPACK_DOUBLE || count > 0xFFFFFFFFul) zav_pack::Refuse(NO_ATOM);
    uint64_t size = static_cast<uint64_t>(count) * ZAV_BinPackElementSize(kind);
    if (size > static_cast<unsigned long>(-1)) zav_pack::Refuse(NO_ATOM);
    mHeader[0] = static_cast<unsigned char>(kind);
    if (count != 1) {
        mHeader[0] |= 0x10;
        for (int i = 0; i < 4; ++i) mHeader[1 + i] = static_cast<unsigned char>(count >> (24 - 8 * i));
        mHeaderSize = 5;
    }
    mElements = ZAV_BinPackBuffer(data, static_cast<unsigned long>(size));
}

int ZAV_BinPackAtom::Put(unsigned char** cursor, const unsigned char* limit) {
    while (mHeaderDone < mHeaderSize) {
        if (*cursor == limit) return 1;
        *(*cursor)++ = mHeader[mHeaderDone++];
    }
    return mElements.Put(cursor, limit);
}

int ZAV_BinPackAtom::Get(const unsigned char** cursor, const unsigned char* limit) {
    for (; mHeaderDone < mHeaderSize; ++mHeaderDone) {
        if (*cursor == limit) return 1;
        if (*(*cursor)++ != mHeader[mHeaderDone]) zav_pack::Refuse("another atom than expected");
    }
    return mElements.Get(cursor, limit);
}

int ZAV_BinPackAtom::Get(unsigned char** cursor, const unsigned char* limit) {
    return Get(const_cast<const unsigned char**>(cursor), limit);
}
