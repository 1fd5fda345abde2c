#include <zavbase/values/config.h>

#include <memory>
#include <new>

#include <zavbase/foundation/exception.h>
#include <zavbase/foundation/process_hooks_internal.h>
#include <zavbase/foundation/tracer.h>
#include <zavbase/strings/system_string.h>
#include <zavbase/values/value_dict.h>
#include <zavbase/values/value_dict_internal.h>

namespace {

ZAV_UValDict* theConfig = nullptr;

const ZAV_UValFamily kAnyFamily = static_cast<ZAV_UValFamily>(0);

/// The name of a variable. The path it stands for is made only when it is to be shown.
struct VarName {
    const char* mParts[3];

    ZAV_DictPath Path() const { return ZAV_DictPath(mParts[0]) + mParts[1] + mParts[2]; }

    /// Takes the parts one after the other, each within the dictionary that the one before led to.
    ZAV_UVal* FindIn(ZAV_UValDict* dict) const {
        ZAV_UVal* found = nullptr;
        for (const char* part : mParts) {
            if (!part || !*part) continue;
            if (found && !ZAV_IsDict(found)) return nullptr;
            found = (found ? static_cast<ZAV_UValDict*>(found) : dict)->GetUVal(part);
            if (!found) return nullptr;
        }
        return found;
    }
};

ZAV_UVal* Lookup(const VarName& name, ZAV_UValFamily family) {
    if (!theConfig) {
        ZAV_BASE_TRACE(0x02, "Configuration variables have not been initialised yet !!");
        return nullptr;
    }
    ZAV_UVal* value = name.FindIn(theConfig);
    if (!value) {
        ZAV_BASE_TRACE(0x10, "Variable " << name.Path() << " not configured");
    } else if (family != kAnyFamily && value->GetFamily() != family) {
        ZAV_BASE_TRACE(0x01, "Variable " << name.Path() << " has not the right type");
        return nullptr;
    }
    return value;
}

template <class T, class Stored>
T Number(const VarName& name, T deflt, Stored (ZAV_UVal::*get)(long)) {
    ZAV_UVal* value = Lookup(name, UVAL_FAMILY_NUMBER);
    return value ? static_cast<T>((value->*get)(0)) : deflt;
}

/// The string variable, if it has an element `index`.
ZAV_UVal* TextAt(const VarName& name, long index) {
    ZAV_UVal* value = Lookup(name, UVAL_FAMILY_STRING);
    if (!value) return nullptr;
    const long count = value->GetDimension() < 1 ? 1 : value->GetDimension();
    return index >= 0 && index < count ? value : nullptr;
}

template <class Text>
void PutText(ZAV_UVal* value, long index, const char* deflt, Text* out) {
    if (!out) return;
    if (!value) {
        *out = deflt;
        return;
    }
    ZAV_String text;
    value->GetStrValue(text, index);
    *out = text;
}

/// With any NUL bytes it holds.
ZAV_String UpperTextOf(ZAV_UVal& value, long index) {
    ZAV_String text;
    value.GetStrValue(text, index);
    return text.ToUpper();
}

template <class Deflt>
void PutSystemText(const VarName& name, const Deflt& deflt, ZAV_SystemString* out) {
    ZAV_UVal* value = Lookup(name, kAnyFamily);
    if (!out) return;
    if (!value)
        out->Set(deflt);
    else if (value->GetFamily() == UVAL_FAMILY_STRING)
        value->GetSystemStringValue(out, 0);
}

} // namespace

void ZAV_ConfigInit(const ZAV_SystemString& file) {
    if (!theConfig) theConfig = new (std::nothrow) ZAV_UValDict(16);
    if (!theConfig) ZAV_ThrowMemoryException();
    try {
        theConfig->ReadFile(file);
    } catch (ZAV_Exception* e) {
        ZAV_BASE_TRACE(0x04, "ERROR ZAV_ConfigInit(" << file << ") :" << *e);
        throw;
    }
    ZAV_BASE_TRACE(0x08, *theConfig);
}

void ZAV_ConfigInit(const ZAV_UValDict& dict) {
    // Copied first: the dictionary may be the configuration, or in it.
    ZAV_UValDict* copy = const_cast<ZAV_UValDict&>(dict).DeepCopy();
    delete theConfig;
    theConfig = copy;
}

void ZAV_ConfigCleanup() {
    delete theConfig;
    theConfig = nullptr;
}

namespace {

ZAV_ProcessHooks hooks(ZAV_ProcessHooks::kMade, nullptr, nullptr, ZAV_ConfigCleanup);

} // namespace

ZAV_UValDict* ZAV_ConfigGet() { return theConfig; }

ZAV_UVal* ZAV_ConfigGet(const char* a, const char* b, const char* c) {
    return Lookup({{a, b, c}}, kAnyFamily);
}

#define ZAV_DEFINE_NUMBER(TYPE, GETTER)                                                                      \
    TYPE ZAV_ConfigGet(const char* a, const char* b, const char* c, TYPE deflt) {                            \
        return Number({{a, b, c}}, deflt, &ZAV_UVal::GETTER);                                                \
    }
ZAV_DEFINE_NUMBER(long, GetLongValue)
ZAV_DEFINE_NUMBER(float, GetFloatValue)
ZAV_DEFINE_NUMBER(double, GetDoubleValue)
ZAV_DEFINE_NUMBER(int, GetLongValue)
ZAV_DEFINE_NUMBER(unsigned int, GetULongValue)
ZAV_DEFINE_NUMBER(unsigned long, GetULongValue)
ZAV_DEFINE_NUMBER(long long, GetLongValue)
ZAV_DEFINE_NUMBER(unsigned long long, GetULongValue)
#undef ZAV_DEFINE_NUMBER

boolean_t ZAV_ConfigGet(const char* a, const char* b, const char* c, boolean_t deflt) {
    return ZAV_Bool(ZAV_ConfigGet(a, b, c, static_cast<long>(deflt)) != 0);
}

const char* ZAV_ConfigGet(const char* a, const char* b, const char* c, const char* deflt) {
    return ZAV_ConfigGetAt(a, b, c, 0, deflt);
}

const char* ZAV_ConfigGet(const char* a, const char* b, const char* c, std::nullptr_t) {
    return ZAV_ConfigGetAt(a, b, c, 0, nullptr);
}

void ZAV_ConfigGet(const char* a, const char* b, const char* c, const char* deflt, ZAV_String* out) {
    PutText(TextAt({{a, b, c}}, 0), 0, deflt, out);
}

void ZAV_ConfigGet(const char* a, const char* b, const char* c, const char* deflt, ZAV_UTFString* out) {
    PutText(TextAt({{a, b, c}}, 0), 0, deflt, out);
}

void ZAV_ConfigGet(const char* a, const char* b, const char* c, const ZAV_String& deflt,
                   ZAV_SystemString* out) {
    PutSystemText({{a, b, c}}, deflt, out);
}

void ZAV_ConfigGet(const char* a, const char* b, const char* c, const ZAV_UTFString& deflt,
                   ZAV_SystemString* out) {
    PutSystemText({{a, b, c}}, deflt, out);
}

void ZAV_ConfigGet(const char* a, const char* b, const char* c, const char* deflt, ZAV_SystemString* out) {
    PutSystemText({{a, b, c}}, ZAV_String(deflt), out);
}

long ZAV_ConfigGetDimension(const char* a, const char* b, const char* c) {
    const ZAV_UVal* value = Lookup({{a, b, c}}, UVAL_FAMILY_STRING);
    if (!value) return 0;
    return value->GetDimension() < 1 ? 1 : value->GetDimension();
}

const char* ZAV_ConfigGetAt(const char* a, const char* b, const char* c, long i, const char* deflt) {
    ZAV_UVal* value = TextAt({{a, b, c}}, i);
    return value ? value->GetCStringValue(i) : deflt;
}

void ZAV_ConfigGetAt(const char* a, const char* b, const char* c, long i, const char* deflt,
                     ZAV_String* out) {
    PutText(TextAt({{a, b, c}}, i), i, deflt, out);
}

void ZAV_ConfigGetAt(const char* a, const char* b, const char* c, long i, const char* deflt,
                     ZAV_UTFString* out) {
    PutText(TextAt({{a, b, c}}, i), i, deflt, out);
}

boolean_t ZAV_IsConfigured(const char* a, const char* b, const char* c, const char* value) {
    ZAV_UVal* texts = Lookup({{a, b, c}}, UVAL_FAMILY_STRING);
    ZAV_String wanted(value);
    wanted.ToUpper();
    for (long i = 0; texts && (i == 0 || i < texts->GetDimension()); ++i)
        if (UpperTextOf(*texts, i) == wanted) return B_TRUE;
    return B_FALSE;
}
