#include <zavbase/foundation/alloc_mem.h>

#include <zavbase/foundation/trace_stream.h>

#include <cstring>
#include <new>

ZAV_AllocMemBody::ZAV_AllocMemBody(unsigned long size, unsigned long align)
    : mPointer(nullptr), mSize(0), mAlign(0) {
    Allocate(size, align);
}

ZAV_AllocMemBody::ZAV_AllocMemBody(const ZAV_AllocMemBody& other) = default;

ZAV_AllocMemBody::~ZAV_AllocMemBody() { Free(); }

boolean_t ZAV_AllocMemBody::Allocate(unsigned long size, unsigned long align) {
    if (size == 0) return B_FALSE;
    return Take(size, align, "ZAV_AllocMemBody::Allocate(%u,%u) failed to allocate memory\n");
}

boolean_t ZAV_AllocMemBody::Reallocate(unsigned long size, unsigned long align) {
    if (size == 0) return B_FALSE;
    ::operator delete(mPointer);
    mPointer = nullptr;
    return Take(size, align, "ZAV_AllocMemBody::Reallocate(%u,%u) failed to allocate memory\n");
}

boolean_t ZAV_AllocMemBody::Free() {
    ::operator delete(mPointer);
    mPointer = nullptr;
    mSize = mAlign = 0;
    return B_TRUE;
}

void* ZAV_AllocMemBody::GetPointer() const {
    if (!mPointer) return nullptr;
    uintptr_t mask = mAlign; // widened before it is inverted
    return reinterpret_cast<void*>((reinterpret_cast<uintptr_t>(mPointer) + mask) & ~mask);
}

void ZAV_AllocMemBody::MemSet(unsigned char c) {
    if (mPointer) std::memset(mPointer, c, static_cast<size_t>(mSize) + mAlign);
}

boolean_t ZAV_AllocMemBody::Take(unsigned long size, unsigned long align, const char* failure) {
    // What is wider than 32 bits is refused: cut, it would be a block smaller than the caller asked for.
    uint32_t wanted = static_cast<uint32_t>(size);
    uint32_t mask = static_cast<uint32_t>(align);
    void* block = nullptr;
    if (wanted == size && mask == align && wanted <= UINT32_MAX - mask) {
        try {
            block = ::operator new(static_cast<size_t>(wanted) + mask);
        } catch (...) {
            // Whatever an installed handler throws means the same here.
        }
    }
    if (block) mPointer = block;
    mSize = block ? wanted : 0;
    mAlign = block ? mask : 0;
    if (!block) ZAV_Trace(failure, wanted, mask);
    return ZAV_Bool(block != nullptr);
}

ZAV_AllocMemRef::ZAV_AllocMemRef(unsigned long size, unsigned long align)
    : ZAV_Ref(new (std::nothrow) ZAV_AllocMemBody(size, align)) {}
ZAV_AllocMemRef::ZAV_AllocMemRef(const ZAV_AllocMemRef& other) : ZAV_Ref(other) {}
ZAV_AllocMemRef::~ZAV_AllocMemRef() {}

ZAV_AllocMemRef& ZAV_AllocMemRef::operator=(const ZAV_AllocMemRef& other) {
    ZAV_Ref::operator=(other);
    return *this;
}

ZAV_AllocMemRef& ZAV_AllocMemRef::operator=(ZAV_AllocMemBody* body) {
    ZAV_Ref::operator=(body);
    return *this;
}
