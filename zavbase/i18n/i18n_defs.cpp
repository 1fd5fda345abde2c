#include <zavbase/i18n/i18n_resource.h>

#include <zavbase/foundation/error.h>
#include <zavbase/values/uval_types.h>
#include <zavbase/values/value_dict.h>

#include <initializer_list>

namespace {

struct Definition {
    const char* mId;
    const char* mText;
};

void Define(ZAV_UValDict* dict, std::initializer_list<Definition> definitions) {
    for (const Definition& d : definitions) ZAV_I18nDef2Dict(dict, d.mId, d.mText);
}

} // namespace

void ZAV_I18nDef2Dict(ZAV_UValDict* dict, const char* id, const char* text) {
    if (!dict) return;
    if (ZAV_UVal* value = dict->DefineUVal(id, UVAL_UTFSTRING, 0, nullptr))
        static_cast<ZAV_UValUTFString*>(value)->SetValue(ZAV_UTFString(text), 0);
}

// Exactly B_TRUE counts: modules are called with flags of their own making.
void ZAV_Base_GetI18nDefs(ZAV_UValDict* dict, boolean_t paramDefs, boolean_t baseDefs) {
    if (!dict) return;
    if (paramDefs == B_TRUE)
        Define(dict,
               {{ERR_BASE_PARAMETER_SPEC, "Invalid parameter spec for <<paramname>>"},
                {ERR_BASE_PARAMETER_VAL, "Invalid parameter value for <<paramname>> : <<paramvalue>>"}});
    if (baseDefs == B_TRUE)
        Define(dict, {{ERR_BASE_INVALID_MODULE, "Invalid module"},
                      {ERR_BASE_INVALID_FILENAME, "Invalid filename"},
                      {ERR_BASE_INVALID_FILETYPE, "Invalid filetype"},
                      {ERR_BASE_INVALID_FILECONTENT, "Invalid file contents"},
                      {ERR_BASE_INTERNAL, "Internal error"},
                      {ERR_BASE_MEMORYALLOC, "Memory allocation error"},
                      {ERR_BASE_FILEOPENRD, "Error opening <<filetype>> file for reading : <<filename>>"},
                      {ERR_BASE_FILEOPENWR, "Error opening <<filetype>> file for writing : <<filename>>"},
                      {ERR_BASE_FILEREAD, "Error reading <<filetype>> file : <<filename>>"},
                      {ERR_BASE_FILEWRITE, "Error writing <<filetype>> file : <<filename>>"},
                      {ERR_BASE_FILECLOSE, "Error closing <<filetype>> file : <<filename>>"},
                      {ERR_BASE_FILEINVALID, "Error invalid <<filetype>> file : <<filename>>"},
                      {ERR_BASE_FILETYPE_UVALBIN, "UVALBIN"}});
}

void ZAV_Base_GetI18nDefsEntry(ZAV_Object* dict, boolean_t paramDefs, boolean_t baseDefs) {
    ZAV_Base_GetI18nDefs(static_cast<ZAV_UValDict*>(dict), paramDefs, baseDefs);
}
