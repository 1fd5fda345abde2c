// Any text is a value or an error of code 2, and what was read can be written and read again.

#include <cstdlib>

#include "tests/values/text_support.h"

namespace {

UValOwner Read(const std::string& text, const char* name) {
    std::istringstream is(text);
    ZAV_UVal* value = nullptr;
    const int code = FileCodeOf([&] { ZAV_ReadUValTxt(is, value, name); });
    const bool isTold = code == 2 && !value && ZAV_GetUValTextError().mLine > 0;
    if (code != 0 ? !isTold : !value && !*name) std::abort();
    return UValOwner(value);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    Read(text, "a");
    const UValOwner value = Read(text, "");
    if (!value) return 0;
    if (!Read(Written(*value), "")) std::abort();
    Printed(*value);
    return 0;
}
