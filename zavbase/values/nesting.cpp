#include <zavbase/values/nesting_internal.h>

#include <algorithm>
#include <vector>

#include <zavbase/values/value_dict_fill_internal.h>
#include <zavbase/values/value_dict_internal.h>

uint32_t ZAV_LevelsOfKey(const char* key, size_t length) {
    if (length == 0) return 0;
    return static_cast<uint32_t>(std::count(key, key + length - 1, ZAV_DictPath::GetSeparator()));
}

bool ZAV_FitsNesting(const ZAV_UValDict& top, unsigned long limit, bool pathKeys) {
    typedef ZAV_UValDict::Fields Fields;
    if (limit == 0) return true;
    struct Level {
        const ZAV_AssocUVal* mNext;
        unsigned long mDepth;
    };
    std::vector<Level> open{{Fields::First(top), 1}};
    while (!open.empty()) {
        Level& level = open.back();
        const ZAV_AssocUVal* entry = level.mNext;
        if (!entry) {
            open.pop_back();
            continue;
        }
        level.mNext = Fields::Next(*entry);
        const ZAV_UVal* value = Fields::Value(*entry);
        if (!value) continue;
        unsigned long depth = level.mDepth;
        if (pathKeys) depth += ZAV_LevelsOfKey(Fields::Key(*entry), entry->KeyLength());
        const bool isDict = ZAV_IsDict(value);
        if (depth + isDict > limit) return false;
        if (isDict) open.push_back({Fields::First(static_cast<const ZAV_UValDict&>(*value)), depth + 1});
    }
    return true;
}
