#include <zavbase/collections/clt_stream.h>

#include <ostream>

ZAV_DEFINE_CLASS(ZAV_IStream, ZAV_CltObject)
ZAV_DEFINE_CLASS(ZAV_OStream, ZAV_CltObject)

static uintptr_t AddressOf(const void* p) { return reinterpret_cast<uintptr_t>(p); }

ZAV_IStream::~ZAV_IStream() {}

ZAV_IStream& ZAV_IStream::operator=(const ZAV_IStream& o) {
    mStream = o.mStream;
    return *this;
}

void ZAV_IStream::PrintOn(std::ostream& os) { os << std::hex << AddressOf(mStream) << std::dec; }
unsigned int ZAV_IStream::Hash() const { return static_cast<unsigned int>(AddressOf(mStream)); }

ZAV_OStream::~ZAV_OStream() {}

ZAV_OStream& ZAV_OStream::operator=(const ZAV_OStream& o) {
    mStream = o.mStream;
    return *this;
}

void ZAV_OStream::PrintOn(std::ostream& os) { os << std::hex << AddressOf(mStream) << std::dec; }
unsigned int ZAV_OStream::Hash() const { return static_cast<unsigned int>(AddressOf(mStream)); }
