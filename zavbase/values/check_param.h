#ifndef ZAVBASE_VALUES_CHECK_PARAM_H
#define ZAVBASE_VALUES_CHECK_PARAM_H

#include <zavbase/values/value_dict.h>

/// Checks one entry of a dictionary of parameters. Returns the value at `path` when it has the wanted type
/// (or family), and null when there is none and it need not be there. Otherwise throws a ZAV_ErrorException*:
/// an internal error whose detail is the parameter-spec error for `name`, ":" and the path (the path alone
/// when `name` is null). The value stays the dictionary's.
ZAV_API ZAV_UVal* ZAV_CheckParam(const ZAV_UValDict& dict, const ZAV_DictPath& path, ZAV_UValType wanted,
                                 boolean_t mandatory, const char* name);
ZAV_API ZAV_UVal* ZAV_CheckParam(const ZAV_UValDict& dict, const ZAV_DictPath& path, ZAV_UValFamily wanted,
                                 boolean_t mandatory, const char* name);

#endif
