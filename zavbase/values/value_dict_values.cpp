#include <zavbase/values/value_dict.h>

#include <zavbase/values/uval_types.h>

namespace {

template <class T, class Stored>
T Ask(ZAV_UVal* value, T deflt, Stored (ZAV_UVal::*get)(long), long index) {
    return value ? static_cast<T>((value->*get)(index)) : deflt;
}

template <class T, class Stored>
void Tell(ZAV_UVal* value, T element, void (ZAV_UVal::*set)(Stored, long), long index) {
    if (value) (value->*set)(static_cast<Stored>(element), index);
}

bool HasFamily(const ZAV_UVal* value, ZAV_UValFamily family) { return value && value->GetFamily() == family; }

} // namespace

#define ZAV_DEFINE_NUMBER(TYPE, GETTER, SETTER)                                                              \
    TYPE ZAV_UValDict::GetValue(const ZAV_DictPath& path, TYPE deflt, long index) const {                    \
        return Ask(GetUVal(path), deflt, &ZAV_UVal::GETTER, index);                                          \
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

boolean_t ZAV_UValDict::GetValue(const ZAV_DictPath& path, boolean_t deflt, long index) const {
    return ZAV_Bool(GetValue(path, static_cast<long>(deflt), index) != 0);
}

void ZAV_UValDict::SetValue(const ZAV_DictPath& path, boolean_t value, long index) {
    SetValue(path, static_cast<long>(value), index);
}

const char* ZAV_UValDict::GetValue(const ZAV_DictPath& path, const char* deflt, long index) const {
    ZAV_UVal* value = GetUVal(path);
    return HasFamily(value, UVAL_FAMILY_STRING) ? value->GetCStringValue(index) : deflt;
}

const char* ZAV_UValDict::GetValue(const ZAV_DictPath& path, std::nullptr_t, long index) const {
    return GetValue(path, static_cast<const char*>(nullptr), index);
}

void ZAV_UValDict::SetValue(const ZAV_DictPath& path, const char* text, long index) {
    ZAV_UVal* value = GetUVal(path);
    if (HasFamily(value, UVAL_FAMILY_STRING)) value->SetStrValue(ZAV_String(text), index);
}

void* ZAV_UValDict::GetValue(const ZAV_DictPath& path, void* deflt, long index) const {
    ZAV_UVal* value = GetUVal(path);
    if (HasFamily(value, UVAL_FAMILY_PTR)) value->GetPtrValue(&deflt, index);
    return deflt;
}

void ZAV_UValDict::SetValue(const ZAV_DictPath& path, void* p, long index) {
    ZAV_UVal* value = GetUVal(path);
    if (HasFamily(value, UVAL_FAMILY_PTR)) value->SetPtrValue(p, index);
}

void ZAV_UValDict::SetValue(const ZAV_DictPath& path, std::nullptr_t, long index) {
    SetValue(path, static_cast<const char*>(nullptr), index);
    SetValue(path, static_cast<void*>(nullptr), index);
}

ZAV_String ZAV_UValDict::GetValue(const ZAV_DictPath& path, const ZAV_String& deflt, long index) const {
    ZAV_UVal* value = GetUVal(path);
    if (!value) return deflt;
    ZAV_String text;
    value->GetStrValue(text, index);
    return text;
}

ZAV_UTFString ZAV_UValDict::GetValue(const ZAV_DictPath& path, const ZAV_UTFString& deflt, long index) const {
    ZAV_UVal* value = GetUVal(path);
    if (!value) return deflt;
    ZAV_String text;
    value->GetStrValue(text, index);
    return ZAV_UTFString(text);
}

void ZAV_UValDict::SetValue(const ZAV_DictPath& path, const ZAV_String& text, long index) {
    if (ZAV_UVal* value = GetUVal(path)) value->SetStrValue(text, index);
}
