#include <zavbase/values/uval_types.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <new>
#include <ostream>

#include <zavbase/strings/number_text_internal.h>
#include <zavbase/strings/system_string.h>
#include <zavbase/values/uval_convert_internal.h>
#include <zavbase/values/value_dict.h>

namespace {

/// Stands in front of the elements that a value allocated: how many values have them. More than one after an
/// assignment, which hands on the pointer.
struct alignas(8) BufferHead {
    std::atomic<uint32_t> mUsers;
};

template <class Element>
BufferHead* HeadOf(Element* data) {
    return reinterpret_cast<BufferHead*>(reinterpret_cast<char*>(data) - sizeof(BufferHead));
}

/// Room for `count` elements and their head, not constructed; null when there is no memory.
template <class Element>
Element* AllocElements(int32_t count) {
    static_assert(alignof(Element) <= sizeof(BufferHead));
    const std::size_t n = static_cast<std::size_t>(count);
    if (n > (PTRDIFF_MAX - sizeof(BufferHead)) / sizeof(Element)) return nullptr;
    void* block = ::operator new(sizeof(BufferHead) + n * sizeof(Element), std::nothrow);
    if (!block) return nullptr;
    return reinterpret_cast<Element*>(reinterpret_cast<char*>(new (block) BufferHead{{1}}) +
                                      sizeof(BufferHead));
}

template <class Element>
void FreeElements(Element* data) {
    ::operator delete(static_cast<void*>(HeadOf(data)));
}

template <class Element>
Element* NewElements(int32_t count) {
    Element* data = AllocElements<Element>(count);
    if (data) std::uninitialized_default_construct_n(data, count);
    return data;
}

template <class Element>
Element* CopyElements(const Element* from, int32_t count) {
    Element* data = AllocElements<Element>(count);
    if (!data) return nullptr;
    try {
        std::uninitialized_copy_n(from, count, data);
    } catch (...) {
        FreeElements(data);
        throw;
    }
    return data;
}

template <class Element>
void ReleaseElements(Element* data, int32_t count) {
    if (HeadOf(data)->mUsers.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    std::destroy_n(data, count);
    FreeElements(data);
}

const char* const kTags[] = {"Char",  "UChar",  "Short",  "UShort",    "Long", "ULong",
                             "Float", "Double", "String", "UTFString", "Ptr"};

/// As the stream would, but with the same digits on every platform and in every locale.
void ShowReal(std::ostream& os, double value) {
    const std::ios::fmtflags form = os.flags() & std::ios::floatfield;
    const int precision =
        os.precision() < 0 ? 6 : static_cast<int>((std::min)(os.precision(), std::streamsize{40}));
    char text[zav_number::kRealRoom];
    if (form == std::ios::fixed)
        zav_number::FormatFixed(text, value, precision);
    else if (form == std::ios::fmtflags{})
        zav_number::FormatGeneral(text, value, (std::max)(precision, 1));
    else {
        os << value;
        return;
    }
    os << text;
}

template <class Element>
void ShowElement(std::ostream& os, Element& e) {
    if constexpr (sizeof(Element) == 1)
        os << ZAV_ConvertNumber<int>(e);
    else if constexpr (std::is_floating_point_v<Element>)
        ShowReal(os, static_cast<double>(e));
    else
        os << e;
}

boolean_t IsBlank(char c) { return ZAV_Bool(c != 0 && std::strchr(" \t\n\v\f\r", c) != nullptr); }

int DigitOf(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : 99;
}

/// What "%li" reads, modulo the width of a pointer: 0x leads a hexadecimal number, 0 an octal one.
uintptr_t ParseAddress(const char* text) {
    while (IsBlank(*text)) ++text;
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+') ++text;
    unsigned base = 10;
    if (text[0] == '0') {
        const bool hex = text[1] == 'x' || text[1] == 'X';
        base = hex ? 16 : 8;
        text += hex ? 2 : 1;
    }
    uintptr_t value = 0;
    for (; DigitOf(*text) < static_cast<int>(base); ++text)
        value = value * base + static_cast<unsigned>(DigitOf(*text));
    return negative ? 0 - value : value;
}

} // namespace

template <class Element, class Arg>
ZAV_UValArray<Element, Arg>::ZAV_UValArray(ZAV_UValType type, ZAV_UValFamily family, long dimension,
                                           void* buffer)
    : ZAV_UVal(type, family), mValue(), mExternal(0), mData(nullptr) {
    mNrItemsToPrint = static_cast<int32_t>(dimension);
    if (mNrItemsToPrint < 1) return;
    mExternal = buffer ? 1 : 0;
    mData = buffer ? static_cast<Element*>(buffer) : NewElements<Element>(mNrItemsToPrint);
    mDimension = mData ? mNrItemsToPrint : 0;
}

template <class Element, class Arg>
ZAV_UValArray<Element, Arg>::ZAV_UValArray(const ZAV_UValArray& other)
    : ZAV_UVal(other), mValue(other.mValue), mExternal(other.mExternal), mData(nullptr) {
    if (mDimension < 1) return;
    mData = mExternal ? other.mData : CopyElements(other.mData, mDimension);
    if (!mData) mDimension = 0;
}

template <class Element, class Arg>
ZAV_UValArray<Element, Arg>::~ZAV_UValArray() {
    if (mDimension >= 1 && !mExternal) ReleaseElements(mData, mDimension);
}

template <class Element, class Arg>
ZAV_UValArray<Element, Arg>& ZAV_UValArray<Element, Arg>::operator=(const ZAV_UValArray& other) {
    if (other.mDimension >= 1 && !other.mExternal)
        HeadOf(other.mData)->mUsers.fetch_add(1, std::memory_order_relaxed);
    if (mDimension >= 1 && !mExternal) ReleaseElements(mData, mDimension);
    ZAV_UVal::operator=(other);
    mValue = other.mValue;
    mExternal = other.mExternal;
    mData = other.mData;
    return *this;
}

template <class Element, class Arg>
void ZAV_UValArray<Element, Arg>::PrintOn(std::ostream& os) {
    os << '(' << kTags[mType - UVAL_CHAR];
    if (mDimension < 1) {
        os << ')';
        ShowElement(os, mValue);
        return;
    }
    os << '#' << mDimension << ") ";
    if (mNrItemsToPrint <= 0) return;
    os << '{';
    for (int32_t i = 0; i < mDimension && i < mNrItemsToPrint; ++i) {
        ShowElement(os, mData[i]);
        os << ',';
    }
    os << '}';
}

template <class Element, class Arg>
void ZAV_UValNumber<Element, Arg>::SetStrValue(const ZAV_String& text, long index) {
    if constexpr (std::is_floating_point_v<Element>)
        *this->GetValuePtr(index) = static_cast<Element>(ZAV_atof(text.Ptr(), '.'));
    else
        *this->GetValuePtr(index) = ZAV_ConvertNumber<Element>(zav_number::ParseInteger(text.Ptr()));
}

template <class Element, class Arg>
void ZAV_UValNumber<Element, Arg>::GetStrValue(ZAV_String& text, long index) {
    if constexpr (std::is_floating_point_v<Element>) {
        char digits[zav_number::kRealRoom];
        zav_number::FormatFixed(digits, static_cast<double>(*this->GetValuePtr(index)));
        text = digits;
    } else {
        char digits[zav_number::kIntegerRoom];
        zav_number::FormatInteger(digits, ZAV_ConvertNumber<int32_t>(*this->GetValuePtr(index)));
        text = digits;
    }
}

template <class Element, class Arg>
void ZAV_UValNumber<Element, Arg>::SetPtrValue(void* p, long index) {
    if (p) std::memcpy(this->GetValuePtr(index), p, sizeof(Element));
}

template <class Element, class Arg>
void ZAV_UValNumber<Element, Arg>::GetPtrValue(void* p, long index) {
    if (p) std::memcpy(p, this->GetValuePtr(index), sizeof(Element));
}

#define ZAV_NUMBER_ACCESSORS(NAME, TYPE)                                                                     \
    template <class Element, class Arg>                                                                      \
    void ZAV_UValNumber<Element, Arg>::Set##NAME##Value(TYPE value, long index) {                            \
        *this->GetValuePtr(index) = ZAV_ConvertNumber<Element>(value);                                       \
    }                                                                                                        \
    template <class Element, class Arg>                                                                      \
    TYPE ZAV_UValNumber<Element, Arg>::Get##NAME##Value(long index) {                                        \
        return ZAV_ConvertNumber<TYPE>(*this->GetValuePtr(index));                                           \
    }
ZAV_NUMBER_ACCESSORS(Char, char)
ZAV_NUMBER_ACCESSORS(UChar, unsigned char)
ZAV_NUMBER_ACCESSORS(Short, short)
ZAV_NUMBER_ACCESSORS(UShort, unsigned short)
ZAV_NUMBER_ACCESSORS(Long, long)
ZAV_NUMBER_ACCESSORS(ULong, unsigned long)
ZAV_NUMBER_ACCESSORS(Float, float)
ZAV_NUMBER_ACCESSORS(Double, double)
#undef ZAV_NUMBER_ACCESSORS

template <class Text>
void ZAV_UValText<Text>::SetStrValue(const ZAV_String& text, long index) {
    *this->GetValuePtr(index) = text;
}

template <class Text>
void ZAV_UValText<Text>::GetStrValue(ZAV_String& text, long index) {
    text = static_cast<const ZAV_String&>(*this->GetValuePtr(index));
}

template <class Text>
void ZAV_UValText<Text>::SetPtrValue(void* p, long index) {
    if (p) *this->GetValuePtr(index) = *static_cast<const Text*>(p);
}

template <class Text>
void ZAV_UValText<Text>::GetPtrValue(void* p, long index) {
    if (p) *static_cast<Text*>(p) = *this->GetValuePtr(index);
}

template <class Text>
const char* ZAV_UValText<Text>::GetCStringValue(long index) {
    return this->GetValuePtr(index)->Ptr();
}

template <class Text>
int ZAV_UValText<Text>::GetSystemStringValue(ZAV_SystemString* out, long index) {
    // The static type picks the conversion: a UTF string taken as a ZAV_String would not be converted.
    const Text& text = *this->GetValuePtr(index);
    return out ? out->Set(text) : -1;
}

void ZAV_UValPtr::SetStrValue(const ZAV_String& text, long index) {
    *GetValuePtr(index) = reinterpret_cast<void*>(ParseAddress(text.Ptr()));
}

void ZAV_UValPtr::GetStrValue(ZAV_String& text, long index) {
    static const char digits[] = "0123456789ABCDEF";
    char buffer[2 + 2 * sizeof(uintptr_t)];
    char* p = buffer + sizeof buffer;
    uintptr_t rest = reinterpret_cast<uintptr_t>(GetValue(index));
    for (int n = 0; n < 8 || rest != 0; ++n, rest >>= 4) *--p = digits[rest & 15];
    *--p = 'x';
    *--p = '0';
    text = ZAV_String(p, static_cast<unsigned>(buffer + sizeof buffer - p));
}

void ZAV_UValPtr::SetPtrValue(void* p, long index) { *GetValuePtr(index) = p; }

void ZAV_UValPtr::GetPtrValue(void* p, long index) {
    if (p) std::memcpy(p, GetValuePtr(index), sizeof(void*));
}

#define ZAV_DEFINE_UVAL(NAME, TYPE, BASE, ...)                                                               \
    ZAV_DEFINE_CLASS(NAME, ZAV_UVal)                                                                         \
    NAME::NAME(long dimension, void* buffer) : BASE(TYPE __VA_OPT__(, ) __VA_ARGS__, dimension, buffer) {}   \
    NAME::NAME(const NAME& other) = default;                                                                 \
    NAME::~NAME() = default;                                                                                 \
    NAME& NAME::operator=(const NAME& other) = default;                                                      \
    NAME* NAME::DeepCopy() { return new (std::nothrow) NAME(*this); }
ZAV_DEFINE_UVAL(ZAV_UValChar, UVAL_CHAR, ZAV_UValNumber)
ZAV_DEFINE_UVAL(ZAV_UValUChar, UVAL_UCHAR, ZAV_UValNumber)
ZAV_DEFINE_UVAL(ZAV_UValShort, UVAL_SHORT, ZAV_UValNumber)
ZAV_DEFINE_UVAL(ZAV_UValUShort, UVAL_USHORT, ZAV_UValNumber)
ZAV_DEFINE_UVAL(ZAV_UValLong, UVAL_LONG, ZAV_UValNumber)
ZAV_DEFINE_UVAL(ZAV_UValULong, UVAL_ULONG, ZAV_UValNumber)
ZAV_DEFINE_UVAL(ZAV_UValFloat, UVAL_FLOAT, ZAV_UValNumber)
ZAV_DEFINE_UVAL(ZAV_UValDouble, UVAL_DOUBLE, ZAV_UValNumber)
ZAV_DEFINE_UVAL(ZAV_UValString, UVAL_STRING, ZAV_UValText)
ZAV_DEFINE_UVAL(ZAV_UValUTFString, UVAL_UTFSTRING, ZAV_UValText)
ZAV_DEFINE_UVAL(ZAV_UValPtr, UVAL_PTR, ZAV_UValArray, UVAL_FAMILY_PTR)
#undef ZAV_DEFINE_UVAL

// Hosts derive from the classes and call what these have from their templates, which an optimiser that sees
// the whole library would otherwise find unused.
template class ZAV_UValArray<char, char>;
template class ZAV_UValArray<unsigned char, unsigned char>;
template class ZAV_UValArray<short, short>;
template class ZAV_UValArray<unsigned short, unsigned short>;
template class ZAV_UValArray<zav_long32, long>;
template class ZAV_UValArray<zav_ulong32, unsigned long>;
template class ZAV_UValArray<float, float>;
template class ZAV_UValArray<double, double>;
template class ZAV_UValArray<ZAV_String, const ZAV_String&>;
template class ZAV_UValArray<ZAV_UTFString, const ZAV_UTFString&>;
template class ZAV_UValArray<void*, void*>;
template class ZAV_UValNumber<char, char>;
template class ZAV_UValNumber<unsigned char, unsigned char>;
template class ZAV_UValNumber<short, short>;
template class ZAV_UValNumber<unsigned short, unsigned short>;
template class ZAV_UValNumber<zav_long32, long>;
template class ZAV_UValNumber<zav_ulong32, unsigned long>;
template class ZAV_UValNumber<float, float>;
template class ZAV_UValNumber<double, double>;
template class ZAV_UValText<ZAV_String>;
template class ZAV_UValText<ZAV_UTFString>;

ZAV_UVal* ZAV_NewUVal(ZAV_UValType type, long dimension, void* buffer) {
    switch (type) {
    case UVAL_CHAR:
        return new (std::nothrow) ZAV_UValChar(dimension, buffer);
    case UVAL_UCHAR:
        return new (std::nothrow) ZAV_UValUChar(dimension, buffer);
    case UVAL_SHORT:
        return new (std::nothrow) ZAV_UValShort(dimension, buffer);
    case UVAL_USHORT:
        return new (std::nothrow) ZAV_UValUShort(dimension, buffer);
    case UVAL_LONG:
        return new (std::nothrow) ZAV_UValLong(dimension, buffer);
    case UVAL_ULONG:
        return new (std::nothrow) ZAV_UValULong(dimension, buffer);
    case UVAL_FLOAT:
        return new (std::nothrow) ZAV_UValFloat(dimension, buffer);
    case UVAL_DOUBLE:
        return new (std::nothrow) ZAV_UValDouble(dimension, buffer);
    case UVAL_STRING:
        return new (std::nothrow) ZAV_UValString(dimension, buffer);
    case UVAL_UTFSTRING:
        return new (std::nothrow) ZAV_UValUTFString(dimension, buffer);
    case UVAL_PTR:
        return new (std::nothrow) ZAV_UValPtr(dimension, buffer);
    case UVAL_DICT:
        break;
    }
    return nullptr;
}
