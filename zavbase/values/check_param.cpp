#include <zavbase/values/check_param.h>

#include <zavbase/foundation/error.h>

namespace {
ZAV_UVal* Checked(const ZAV_DictPath& path, ZAV_UVal* value, bool suits, boolean_t mandatory,
                  const char* name) {
    if (value ? !suits : mandatory != B_FALSE) ZAV_ThrowParamSpecError(path, name);
    return value;
}
} // namespace

ZAV_UVal* ZAV_CheckParam(const ZAV_UValDict& dict, const ZAV_DictPath& path, ZAV_UValType wanted,
                         boolean_t mandatory, const char* name) {
    ZAV_UVal* value = dict.GetUVal(path);
    return Checked(path, value, value && value->GetType() == wanted, mandatory, name);
}

ZAV_UVal* ZAV_CheckParam(const ZAV_UValDict& dict, const ZAV_DictPath& path, ZAV_UValFamily wanted,
                         boolean_t mandatory, const char* name) {
    ZAV_UVal* value = dict.GetUVal(path);
    return Checked(path, value, value && value->GetFamily() == wanted, mandatory, name);
}
