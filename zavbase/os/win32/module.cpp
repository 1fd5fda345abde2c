#include <zavbase/os/module.h>

#include <windows.h>

namespace zav_os {

const char* const moduleExtension = ".dll";
const char pathSeparator = '\\';

void* OpenModule(const char* path, uint32_t& error) {
    const HMODULE module = LoadLibraryA(path);
    if (!module) error = GetLastError();
    return module;
}

void* FindModule(const char* name, uint32_t& error) { return OpenModule(name, error); }

void* RetainModule(void* module) {
    char path[MAX_PATH + 1];
    const DWORD length = GetModuleFileNameA(static_cast<HMODULE>(module), path, sizeof path);
    return length > 0 && length < sizeof path ? LoadLibraryA(path) : nullptr;
}

void CloseModule(void* module) { FreeLibrary(static_cast<HMODULE>(module)); }

void* FindSymbol(void* module, const char* name, uint32_t& error) {
    const FARPROC symbol = GetProcAddress(static_cast<HMODULE>(module), name);
    if (!symbol) error = GetLastError();
    return reinterpret_cast<void*>(symbol);
}

bool IsAbsolutePath(const char* path) {
    const bool drive = path[0] && path[1] == ':' && (path[2] == '\\' || path[2] == '/');
    return drive || (path[0] == '\\' && path[1] == '\\');
}

} // namespace zav_os
