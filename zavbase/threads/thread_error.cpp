#include <zavbase/threads/thread_error.h>

#include <cerrno>
#include <utility>

ZAV_ThreadErrorStrEntry* ZAV_ThreadError::table = nullptr;
const char* ZAV_ThreadError::no_string = nullptr;

ZAV_ThreadErrorStrEntry* ZAV_ThreadError::SetStringTable(ZAV_ThreadErrorStrEntry* newTable) {
    return std::exchange(table, newTable);
}

const char* ZAV_ThreadError::SetNoString(const char* text) { return std::exchange(no_string, text); }

const char* ZAV_ThreadError::String() const {
    const char* text = nullptr;
    if (table) {
        const ZAV_ThreadErrorStrEntry* entry = table;
        while (static_cast<uint32_t>(entry->code) < static_cast<uint32_t>(mCode)) ++entry;
        text = entry->text;
    }
    if (!text) text = no_string;
    return text ? text : "";
}

ZAV_ThreadError ZAV_ThreadError::MapOSError() { return MapOSError(errno); }
