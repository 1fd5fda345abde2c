#ifndef ZAVBASE_TESTS_VALUES_TEXT_SUPPORT_H
#define ZAVBASE_TESTS_VALUES_TEXT_SUPPORT_H

#include <tests/support/printed.h>
#include <tests/support/thrown.h>
#include <zavbase/zavbase.h>

typedef std::unique_ptr<ZAV_UVal> UValOwner;

/// Runs `operation` and returns the code of the file exception that it throws, 0 when it throws none.
template <class Operation>
int FileCodeOf(Operation operation) {
    auto thrown = Thrown<ZAV_FileException>(operation);
    return thrown ? thrown->mCode : 0;
}

/// The value in `text`; null when the reader throws, which must then be code 2.
inline UValOwner ReadValue(const std::string& text) {
    std::istringstream is(text);
    ZAV_UVal* value = nullptr;
    if (FileCodeOf([&] { ZAV_ReadUValTxt(is, value); }) != 0) return nullptr;
    return UValOwner(value);
}

/// The dictionary in a text that is nothing else.
inline std::unique_ptr<ZAV_UValDict> DictOf(const std::string& text) {
    return std::unique_ptr<ZAV_UValDict>(static_cast<ZAV_UValDict*>(ReadValue(text).release()));
}

inline std::string Written(ZAV_UVal& value) {
    std::ostringstream os;
    ZAV_WriteUValTxt(os, &value, 0);
    return os.str();
}

#endif
