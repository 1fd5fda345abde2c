#include <zavbase/values/value_dict.h>

#include <zavbase/values/uval_types.h>

namespace {

template <class T, class Stored>
void Tell(ZAV_UVal* value, T element, void (ZAV_UVal::*set)(Stored, long), long index) {
    if (value) (value->*set)(static_cast<Stored>(element), index);
}

bool HasFamily(const ZAV_UVal* value, ZAV_UValFamily family) { return value && value->GetFamily() == family; }

} // namespace

#define ZAV_DEFINE_NUMBER(TYPE, GETTER, SETTER)                                                              \
    TYPE ZAV_UValDict::ElementOf(ZAV_UVal* value, TYPE deflt, long index) {                                  \
        return value ? static_cast<TYPE>(value->GETTER(index)) : deflt;                                      \
    }                                                                                                        \
    void ZAV_UValDict::SetValue(const ZAV_DictPath& path, TYPE value, long index) {                          \
        Tell(GetUVal(path), value, &ZAV_UVal::SETTER, index);                                                \
    }
ZAV_DEFINE_NUMBER(char, GetCharValue, SetCharValue)
ZAV_DEFINE_NUMBER(unsigned char, GetUCharValue, SetUCharValue)
ZAV_DEFINE_NUMBER(short, GetShortValue, SetShortValue)
ZAV_DEFINE_NUMBER(unsigned short, GetUShortValue, SetUShortValue)
ZAV_DEFINE_NUMBER(int, GetLongValue, SetLongValue)
ZAV_DEFINE_NUMBER(unsigned int, GetULongValue, SetULongValue)
ZAV_DEFINE_NUMBER(long, GetLongValue, SetLongValue)
ZAV_DEFINE_NUMBER(unsigned long, GetULongValue, SetULongValue)
ZAV_DEFINE_NUMBER(long long, GetLongValue, SetLongValue)
ZAV_DEFINE_NUMBER(unsigned long long, GetULongValue, SetULongValue)
ZAV_DEFINE_NUMBER(float, GetFloatValue, SetFloatValue)
ZAV_DEFINE_NUMBER(double, GetDoubleValue, SetDoubleValue)
#undef ZAV_DEFINE_NUMBER

boolean_t ZAV_UValDict::ElementOf(ZAV_UVal* value, boolean_t deflt, long index) {
    return ZAV_Bool(ElementOf(value, static_cast<long>(deflt), index) != 0);
}

const char* ZAV_UValDict::ElementOf(ZAV_UVal* value, const char* deflt, long index) {
    return HasFamily(value, UVAL_FAMILY_STRING) ? value->GetCStringValue(index) : deflt;
}

const char* ZAV_UValDict::ElementOf(ZAV_UVal* value, std::nullptr_t, long index) {
    return ElementOf(value, static_cast<const char*>(nullptr), index);
}

void* ZAV_UValDict::ElementOf(ZAV_UVal* value, void* deflt, long index) {
    if (HasFamily(value, UVAL_FAMILY_PTR)) value->GetPtrValue(&deflt, index);
    return deflt;
}

ZAV_String ZAV_UValDict::ElementOf(ZAV_UVal* value, const ZAV_String& deflt, long index) {
    if (!value) return deflt;
    ZAV_String text;
    value->GetStrValue(text, index);
    return text;
}

ZAV_UTFString ZAV_UValDict::ElementOf(ZAV_UVal* value, const ZAV_UTFString& deflt, long index) {
    return value ? ZAV_UTFString(ElementOf(value, ZAV_String(), index)) : deflt;
}

#define ZAV_DEFINE_GET(TYPE, PARAMETER)                                                                      \
    TYPE ZAV_UValDict::GetValue(const ZAV_DictPath& path, PARAMETER deflt, long index) const {               \
        return ElementOf(GetUVal(path), deflt, index);                                                       \
    }
ZAV_DEFINE_GET(char, char)
ZAV_DEFINE_GET(unsigned char, unsigned char)
ZAV_DEFINE_GET(short, short)
ZAV_DEFINE_GET(unsigned short, unsigned short)
ZAV_DEFINE_GET(int, int)
ZAV_DEFINE_GET(unsigned int, unsigned int)
ZAV_DEFINE_GET(long, long)
ZAV_DEFINE_GET(unsigned long, unsigned long)
ZAV_DEFINE_GET(long long, long long)
ZAV_DEFINE_GET(unsigned long long, unsigned long long)
ZAV_DEFINE_GET(boolean_t, boolean_t)
ZAV_DEFINE_GET(float, float)
ZAV_DEFINE_GET(double, double)
ZAV_DEFINE_GET(const char*, const char*)
ZAV_DEFINE_GET(const char*, std::nullptr_t)
ZAV_DEFINE_GET(void*, void*)
ZAV_DEFINE_GET(ZAV_String, const ZAV_String&)
ZAV_DEFINE_GET(ZAV_UTFString, const ZAV_UTFString&)
#undef ZAV_DEFINE_GET

void ZAV_UValDict::SetValue(const ZAV_DictPath& path, boolean_t value, long index) {
    SetValue(path, static_cast<long>(value), index);
}

void ZAV_UValDict::SetValue(const ZAV_DictPath& path, const char* text, long index) {
    ZAV_UVal* value = GetUVal(path);
    if (HasFamily(value, UVAL_FAMILY_STRING)) value->SetStrValue(ZAV_String(text), index);
}

void ZAV_UValDict::SetValue(const ZAV_DictPath& path, void* p, long index) {
    ZAV_UVal* value = GetUVal(path);
    if (HasFamily(value, UVAL_FAMILY_PTR)) value->SetPtrValue(p, index);
}

void ZAV_UValDict::SetValue(const ZAV_DictPath& path, std::nullptr_t, long index) {
    SetValue(path, static_cast<const char*>(nullptr), index);
    SetValue(path, static_cast<void*>(nullptr), index);
}

void ZAV_UValDict::SetValue(const ZAV_DictPath& path, const ZAV_String& text, long index) {
    if (ZAV_UVal* value = GetUVal(path)) value->SetStrValue(text, index);
}
