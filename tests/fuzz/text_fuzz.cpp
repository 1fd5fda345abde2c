// Any text is a value or an error of code 2, and what was read can be written and read again.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>

#include <zavbase/foundation/exception.h>
#include <zavbase/values/uval_text.h>
#include <zavbase/values/value_dict.h>

namespace {

typedef std::unique_ptr<ZAV_UVal> Owner;

Owner Read(const std::string& text, const char* name) {
    std::istringstream is(text);
    ZAV_UVal* value = nullptr;
    try {
        ZAV_ReadUValTxt(is, value, name);
    } catch (ZAV_FileException* e) {
        if (e->mCode != 2 || value || ZAV_GetUValTextError().mLine < 1) std::abort();
        e->Delete();
        return nullptr;
    }
    if (!value && !*name) std::abort();
    return Owner(value);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    Read(text, "a");
    Owner value = Read(text, "");
    if (!value) return 0;
    std::ostringstream written, printed;
    ZAV_WriteUValTxt(written, value.get(), 0);
    if (!Read(written.str(), "")) std::abort();
    value->PrintOn(printed);
    return 0;
}
