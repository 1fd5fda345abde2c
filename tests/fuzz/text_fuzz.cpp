// Any text is a value or an error of code 2, and what was read can be written and read again; remarks lie in
// the text, and the bytes of an entry are its value.

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

void CheckRemarks(const std::string& text, ZAV_UVal& value) {
    std::istringstream is(text);
    ZAV_UVal* checked = nullptr;
    const auto tell = [](void* all, const ZAV_UValTextRemark& remark) {
        if (remark.mStart >= remark.mEnd || remark.mEnd > static_cast<std::string*>(all)->size())
            std::abort();
    };
    ZAV_CheckUValTxt(is, checked, tell, const_cast<std::string*>(&text));
    if (Printed(*UValOwner(checked)) != Printed(value)) std::abort();
}

void CheckEntries(const std::string& text, ZAV_UValDict& dict) {
    const ZAV_String whole(text.data(), static_cast<unsigned>(text.size()));
    for (ZAV_AssocUVal* e = dict.GetNextAssoc(nullptr); e; e = dict.GetNextAssoc(e)) {
        ZAV_UValTextEntry place;
        if (!*e->Key() || e->Value()->GetType() == UVAL_DICT) continue;
        if (!ZAV_FindUValTxtEntry(whole, e->Key(), place)) std::abort();
        const UValOwner value = Read(text.substr(place.mValueStart, place.mValueEnd - place.mValueStart), "");
        if (!value || Printed(*value) != Printed(*e->Value())) std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    Read(text, "a");
    const UValOwner value = Read(text, "");
    if (!value) return 0;
    if (!Read(Written(*value), "")) std::abort();
    CheckRemarks(text, *value);
    if (value->GetType() == UVAL_DICT) CheckEntries(text, static_cast<ZAV_UValDict&>(*value));
    return 0;
}
