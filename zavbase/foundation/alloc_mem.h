#ifndef ZAVBASE_FOUNDATION_ALLOC_MEM_H
#define ZAVBASE_FOUNDATION_ALLOC_MEM_H

#include <zavbase/foundation/ref.h>

/// A block of raw memory, aligned as wanted. Sizes and alignment masks have 32 bits; the mask is one less
/// than the alignment, a power of two (15 for 16 bytes, 0 for none). Failures are results, never exceptions;
/// but under the default policy a failed allocation ends the process first (new_handler.h).
class ZAV_API ZAV_AllocMemBody : public ZAV_RefCount {
public:
    ZAV_AllocMemBody(unsigned long size, unsigned long align);
    /// Copies the members, the block's address included, so that two bodies would free it: not for bodies
    /// that hold a block.
    ZAV_AllocMemBody(const ZAV_AllocMemBody& other);
    ZAV_AllocMemBody& operator=(const ZAV_AllocMemBody& other) = default;
    ~ZAV_AllocMemBody() override;

    /// Takes a block. B_FALSE for a size of 0, with nothing changed, and when memory is lacking or size and
    /// mask together exceed 32 bits; size and mask are then 0. A block already held is not freed: its memory
    /// is lost, or without a size if none takes its place.
    boolean_t Allocate(unsigned long size, unsigned long align);
    /// The same, but frees the held block first. Contents are not carried over. A size of 0 keeps the block.
    boolean_t Reallocate(unsigned long size, unsigned long align);
    boolean_t Free(); ///< always B_TRUE

    boolean_t IsAllocated() const { return ZAV_Bool(mPointer != nullptr); }
    unsigned long GetSize() const { return mPointer ? mSize : 0; }
    void* GetPointer() const; ///< the first aligned of GetSize() bytes; null without a block

    /// Fills the whole raw block: size + mask bytes, beginning before the aligned pointer.
    void MemSet(unsigned char c);

private:
    boolean_t Take(unsigned long size, unsigned long align, const char* failure);

    void* mPointer;
    zav_ulong32 mSize;
    zav_ulong32 mAlign;
};

/// The handle of a ZAV_AllocMemBody.
class ZAV_API ZAV_AllocMemRef : public ZAV_Ref {
public:
    ZAV_AllocMemRef(unsigned long size, unsigned long align);
    ZAV_AllocMemRef(const ZAV_AllocMemRef& other);
    ~ZAV_AllocMemRef() override;
    ZAV_AllocMemRef& operator=(const ZAV_AllocMemRef& other);
    ZAV_AllocMemRef& operator=(ZAV_AllocMemBody* body);

    ZAV_AllocMemBody* GetBody() const { return static_cast<ZAV_AllocMemBody*>(mBody); }
    ZAV_AllocMemBody* operator->() const { return GetBody(); }
};

#endif
