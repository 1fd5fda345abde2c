#ifndef ZAVBASE_VALUES_UVAL_TYPES_H
#define ZAVBASE_VALUES_UVAL_TYPES_H

#include <zavbase/strings/byte_string.h>
#include <zavbase/strings/utf_string.h>
#include <zavbase/values/uval.h>

/// The eleven typed values. Each class is made from (dimension, buffer):
///  - a dimension below 1 makes a scalar, 0 or the empty string at first (a negative one is kept only as the
///    number of items to print);
///  - a dimension of 1 or more makes an array. With a buffer the elements are the caller's: they are neither
///    copied nor freed, must outlive the value and every copy of it, and have the element type of the class
///    (4 bytes for a long: zav_long32). Without one the value allocates them: numbers are undefined at first,
///    strings empty. If that allocation fails, the value is a scalar.
///
/// Copying copies the elements, unless the buffer is the caller's. Assignment does not: afterwards both
/// values have the same elements, which live until the last of them is gone.

/// The storage of all of them; Element is the element type, Arg how one is passed.
template <class Element, class Arg>
class ZAV_API ZAV_UValArray : public ZAV_UVal {
public:
    ~ZAV_UValArray() override;

    /// The typed accessors. An index outside the array means the inline scalar, here too.
    Arg GetValue(long index) const { return *const_cast<ZAV_UValArray*>(this)->GetValuePtr(index); }
    void SetValue(Arg value, long index) { *GetValuePtr(index) = static_cast<const Element&>(value); }
    Element* GetValuePtr(long index) { return index >= 0 && index < mDimension ? &mData[index] : &mValue; }

    void PrintOn(std::ostream& os) override;

protected:
    ZAV_UValArray(ZAV_UValType type, ZAV_UValFamily family, long dimension, void* buffer);
    ZAV_UValArray(const ZAV_UValArray& other);
    ZAV_UValArray& operator=(const ZAV_UValArray& other);

    Element mValue;
    uint32_t mExternal;
    Element* mData;
};

/// The accessors of the eight numbers.
template <class Element, class Arg>
class ZAV_API ZAV_UValNumber : public ZAV_UValArray<Element, Arg> {
public:
    void SetStrValue(const ZAV_String& text, long index) override;
    void GetStrValue(ZAV_String& text, long index) override;
    void SetPtrValue(void* p, long index) override;
    void GetPtrValue(void* p, long index) override;
    void SetCharValue(char value, long index) override;
    char GetCharValue(long index) override;
    void SetUCharValue(unsigned char value, long index) override;
    unsigned char GetUCharValue(long index) override;
    void SetShortValue(short value, long index) override;
    short GetShortValue(long index) override;
    void SetUShortValue(unsigned short value, long index) override;
    unsigned short GetUShortValue(long index) override;
    void SetLongValue(long value, long index) override;
    long GetLongValue(long index) override;
    void SetULongValue(unsigned long value, long index) override;
    unsigned long GetULongValue(long index) override;
    void SetFloatValue(float value, long index) override;
    float GetFloatValue(long index) override;
    void SetDoubleValue(double value, long index) override;
    double GetDoubleValue(long index) override;

protected:
    ZAV_UValNumber(ZAV_UValType type, long dimension, void* buffer)
        : ZAV_UValArray<Element, Arg>(type, UVAL_FAMILY_NUMBER, dimension, buffer) {}
};

/// The accessors of the two strings.
template <class Text>
class ZAV_API ZAV_UValText : public ZAV_UValArray<Text, const Text&> {
public:
    void SetStrValue(const ZAV_String& text, long index) override;
    void GetStrValue(ZAV_String& text, long index) override;
    void SetPtrValue(void* p, long index) override;
    void GetPtrValue(void* p, long index) override;
    const char* GetCStringValue(long index) override;
    int GetSystemStringValue(ZAV_SystemString* out, long index) override;

protected:
    ZAV_UValText(ZAV_UValType type, long dimension, void* buffer)
        : ZAV_UValArray<Text, const Text&>(type, UVAL_FAMILY_STRING, dimension, buffer) {}
};

/// What each class has of its own: its record, constructors, assignment and copy.
#define ZAV_UVAL_MEMBERS(NAME)                                                                               \
    ZAV_DECLARE_CLASS(NAME)                                                                                  \
    explicit NAME(long dimension = 0, void* buffer = nullptr);                                               \
    NAME(const NAME& other);                                                                                 \
    ~NAME() override;                                                                                        \
    NAME& operator=(const NAME& other);                                                                      \
    NAME* DeepCopy() override;

class ZAV_API ZAV_UValChar : public ZAV_UValNumber<char, char> {
    ZAV_UVAL_MEMBERS(ZAV_UValChar)
};
class ZAV_API ZAV_UValUChar : public ZAV_UValNumber<unsigned char, unsigned char> {
    ZAV_UVAL_MEMBERS(ZAV_UValUChar)
};
class ZAV_API ZAV_UValShort : public ZAV_UValNumber<short, short> {
    ZAV_UVAL_MEMBERS(ZAV_UValShort)
};
class ZAV_API ZAV_UValUShort : public ZAV_UValNumber<unsigned short, unsigned short> {
    ZAV_UVAL_MEMBERS(ZAV_UValUShort)
};
class ZAV_API ZAV_UValLong : public ZAV_UValNumber<zav_long32, long> {
    ZAV_UVAL_MEMBERS(ZAV_UValLong)
};
/// Its text form is signed: 4294967295 becomes "-1", which reads back to the same bits. PrintOn shows it
/// unsigned.
class ZAV_API ZAV_UValULong : public ZAV_UValNumber<zav_ulong32, unsigned long> {
    ZAV_UVAL_MEMBERS(ZAV_UValULong)
};
class ZAV_API ZAV_UValFloat : public ZAV_UValNumber<float, float> {
    ZAV_UVAL_MEMBERS(ZAV_UValFloat)
};
class ZAV_API ZAV_UValDouble : public ZAV_UValNumber<double, double> {
    ZAV_UVAL_MEMBERS(ZAV_UValDouble)
};
class ZAV_API ZAV_UValString : public ZAV_UValText<ZAV_String> {
    ZAV_UVAL_MEMBERS(ZAV_UValString)
};
class ZAV_API ZAV_UValUTFString : public ZAV_UValText<ZAV_UTFString> {
    ZAV_UVAL_MEMBERS(ZAV_UValUTFString)
};
class ZAV_API ZAV_UValPtr : public ZAV_UValArray<void*, void*> {
    ZAV_UVAL_MEMBERS(ZAV_UValPtr)
    void SetStrValue(const ZAV_String& text, long index) override;
    void GetStrValue(ZAV_String& text, long index) override;
    void SetPtrValue(void* p, long index) override;
    void GetPtrValue(void* p, long index) override;
};

#undef ZAV_UVAL_MEMBERS

/// A new value of one of the types 2 to 12, which the caller owns; null for any other type.
ZAV_API ZAV_UVal* ZAV_NewUVal(ZAV_UValType type, long dimension = 0, void* buffer = nullptr);

#endif
