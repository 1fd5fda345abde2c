#ifndef ZAVBASE_VALUES_UVAL_H
#define ZAVBASE_VALUES_UVAL_H

#include <cstdint>

#include <zavbase/collections/clt_object.h>
#include <zavbase/foundation/pooled.h>

class ZAV_String;
class ZAV_SystemString;

/// The concrete kind of a value. The numbers are stored in files and never change; 0 is the type of no object
/// and stands for "not there" where a type is asked for.
enum ZAV_UValType : int {
    UVAL_DICT = 1,
    UVAL_CHAR = 2,
    UVAL_UCHAR = 3,
    UVAL_SHORT = 4,
    UVAL_USHORT = 5,
    UVAL_LONG = 6,
    UVAL_ULONG = 7,
    UVAL_FLOAT = 8,
    UVAL_DOUBLE = 9,
    UVAL_STRING = 10,
    UVAL_UTFSTRING = 11,
    UVAL_PTR = 12
};

enum ZAV_UValFamily : int {
    UVAL_FAMILY_DICT = 1,
    UVAL_FAMILY_NUMBER = 2,
    UVAL_FAMILY_STRING = 3,
    UVAL_FAMILY_PTR = 4
};

/// A universal value: a scalar or a one-dimensional array of one element type (uval_types.h), or a dictionary
/// of named values (value_dict.h). Every value is read and written through the same accessors, so that a
/// caller can ask any number for a double without knowing how it is stored.
///
/// Type, family and dimension are fixed at construction. No accessor throws or reports: an accessor that does
/// not suit the type does nothing and returns 0 or null, and an index outside the array (or any index of a
/// scalar) reaches the value's inline scalar. Integers have at most 32 bits: wider arguments keep the low 32,
/// results are extended from 32. Numbers convert as the machine does, without range check: integers keep
/// their low bits, a real is truncated toward zero (0 beyond 64 bits) and then narrowed.
///
/// Values are not locked: an object belongs to one thread at a time; several may read it while none writes.
class ZAV_API ZAV_UVal : public ZAV_CltObject, public ZAV_Pooled {
    ZAV_DECLARE_CLASS(ZAV_UVal)

public:
    ~ZAV_UVal() override;

    ZAV_UValType GetType() const { return mType; }
    ZAV_UValFamily GetFamily() const { return mFamily; }
    /// 0 for a scalar and a dictionary, otherwise the number of elements.
    long GetDimension() const { return mDimension; }

    /// How many elements of an array PrintOn shows; at first all of them. 0 or less shows none.
    void SetNrItemsToPrint(long n) { mNrItemsToPrint = static_cast<int32_t>(n); }
    long GetNrItemsToPrint() const { return mNrItemsToPrint; }

    /// A new object that the caller owns. A value over a caller's buffer shares that buffer with its copy.
    virtual ZAV_UVal* DeepCopy();

    /// The element as text: decimal, "%f" for reals, "0x" and at least eight digits for a pointer, the text
    /// itself for strings. Setting parses the text; text without a leading number stores 0.
    virtual void SetStrValue(const ZAV_String& text, long index);
    virtual void GetStrValue(ZAV_String& text, long index);

    /// For numbers and strings `p` is the address of one element (a char, a 4-byte long, a ZAV_String, ...)
    /// that is copied from or to. A pointer value stores `p` itself, and writes its pointer to *(void**)p.
    virtual void SetPtrValue(void* p, long index);
    virtual void GetPtrValue(void* p, long index);

    virtual void SetCharValue(char value, long index);
    virtual char GetCharValue(long index);
    virtual void SetUCharValue(unsigned char value, long index);
    virtual unsigned char GetUCharValue(long index);
    virtual void SetShortValue(short value, long index);
    virtual short GetShortValue(long index);
    virtual void SetUShortValue(unsigned short value, long index);
    virtual unsigned short GetUShortValue(long index);
    virtual void SetLongValue(long value, long index);
    virtual long GetLongValue(long index);
    virtual void SetULongValue(unsigned long value, long index);
    virtual unsigned long GetULongValue(long index);
    virtual void SetFloatValue(float value, long index);
    virtual float GetFloatValue(long index);
    virtual void SetDoubleValue(double value, long index);
    virtual double GetDoubleValue(long index);

    /// The element's text, valid until the element changes; null for a value that is not a string.
    virtual const char* GetCStringValue(long index);
    /// Puts a string element into `out`, converted to the system's code page where it is UTF-8. Returns the
    /// result of that conversion (0, or -1 when a character had no equal); -1 for a value that is not a
    /// string.
    virtual int GetSystemStringValue(ZAV_SystemString* out, long index);

protected:
    ZAV_UVal(ZAV_UValType type, ZAV_UValFamily family)
        : mType(type), mFamily(family), mNrItemsToPrint(1), mDimension(0) {}
    ZAV_UVal(const ZAV_UVal& other) = default;
    ZAV_UVal& operator=(const ZAV_UVal& other) = default;

    ZAV_UValType mType;
    ZAV_UValFamily mFamily;
    int32_t mNrItemsToPrint;
    int32_t mDimension;
};

#endif
