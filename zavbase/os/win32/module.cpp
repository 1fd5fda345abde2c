#include <zavbase/os/module.h>

#include <windows.h>

namespace zav_os {

const char* const moduleExtension = ".dll";
const char pathSeparator = '\\';

void* OpenModule(const char* path, ModuleError& error) {
    const HMODULE module = LoadLibraryA(path);
    if (!module) error.mNumber = GetLastError();
    return module;
}

void* FindModule(const char* name, ModuleError& error) { return OpenModule(name, error); }

// The way back is in 16-bit characters: one that the code page lacks would lead to another folder or nowhere.
void* FindModuleIn(const char* folder, const char* name, ModuleError& error) {
    wchar_t home[512];
    const DWORD length = GetCurrentDirectoryW(sizeof home / sizeof *home, home);
    if (length == 0 || length >= sizeof home / sizeof *home || !SetCurrentDirectoryW(home) ||
        !SetCurrentDirectoryA(folder))
        return nullptr;
    void* module = FindModule(name, error);
    SetCurrentDirectoryW(home);
    return module;
}

void* RetainModule(void* module) {
    HMODULE same = nullptr;
    const BOOL held =
        GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, static_cast<const char*>(module), &same);
    return held ? same : nullptr;
}

void CloseModule(void* module) { FreeLibrary(static_cast<HMODULE>(module)); }

void* FindSymbol(void* module, const char* name, ModuleError& error) {
    const FARPROC symbol = GetProcAddress(static_cast<HMODULE>(module), name);
    if (!symbol) error.mNumber = GetLastError();
    return reinterpret_cast<void*>(symbol);
}

bool IsAbsolutePath(const char* path) {
    const bool drive = path[0] && path[1] == ':' && (path[2] == '\\' || path[2] == '/');
    return drive || (path[0] == '\\' && path[1] == '\\');
}

} // namespace zav_os
