#include <zavbase/os/module.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace zav_os {

const char* const moduleExtension = ".so";
const char pathSeparator = '/';

namespace {

const uint32_t absent = 2, noModule = 8, noEntry = 22;

void Report(ModuleError& error, uint32_t number) {
    if (error.mNumber == noModule) return;
    error.mNumber = number;
    if (number == noModule) std::snprintf(error.mReason, sizeof error.mReason, "%s", dlerror());
}

/// The loader takes a path that it has seen before for the same file, so "./a.so" opened in two directories
/// would be one module: hence no relative path goes to it.
std::string AbsolutePath(const char* path) {
    if (IsAbsolutePath(path)) return path;
    char* current = getcwd(nullptr, 0);
    if (!current) return std::string();
    const std::string result = std::string(current) + "/" + path;
    free(current);
    return result;
}

std::string WithExtension(const char* name) {
    const char* last = std::strrchr(name, '/');
    return std::strchr(last ? last : name, '.') ? name : std::string(name) + moduleExtension;
}

} // namespace

void* OpenModule(const char* path, ModuleError& error) {
    const std::string full = AbsolutePath(path);
    struct stat info;
    if (full.empty() || stat(full.c_str(), &info) != 0) {
        Report(error, absent);
        return nullptr;
    }
    void* module = dlopen(full.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!module) Report(error, noModule);
    return module;
}

void* FindModule(const char* name, ModuleError& error) {
    const std::string file = WithExtension(name);
    if (void* module = OpenModule(file.c_str(), error)) return module;
    // With a separator in it the loader would take the name for a path, and that was tried.
    if (file.find('/') != std::string::npos) return nullptr;
    return dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

// The way back is an open folder, since its path may change meanwhile or lead through others that are closed
// to this user. Opening it as "." asks for the same right as entering it again.
void* FindModuleIn(const char* folder, const char* name, ModuleError& error) {
    char path[512];
    const int home = getcwd(path, sizeof path) ? open(".", O_PATH | O_DIRECTORY | O_CLOEXEC) : -1;
    if (home < 0) return nullptr;
    void* module = nullptr;
    if (chdir(folder) == 0) {
        module = FindModule(name, error);
        [[maybe_unused]] const int ruledOut = fchdir(home);
    }
    close(home);
    return module;
}

void* RetainModule(void* module) {
    link_map* map = nullptr;
    if (dlinfo(module, RTLD_DI_LINKMAP, &map) != 0) return nullptr;
    void* same = dlopen(map->l_name, RTLD_NOW | RTLD_NOLOAD);
    // A second module may have been loaded from the same path after the file was replaced.
    if (same && same != module) {
        dlclose(same);
        same = nullptr;
    }
    return same;
}

void CloseModule(void* module) { dlclose(module); }

void* FindSymbol(void* module, const char* name, ModuleError& error) {
    void* symbol = dlsym(module, name);
    // dlsym also finds what the libraries export that the module needs.
    link_map* owner = nullptr;
    Dl_info info;
    if (symbol && dladdr1(symbol, &info, reinterpret_cast<void**>(&owner), RTLD_DL_LINKMAP) &&
        owner != module)
        symbol = nullptr;
    if (!symbol) error.mNumber = noEntry;
    return symbol;
}

bool IsAbsolutePath(const char* path) { return path[0] == '/'; }

} // namespace zav_os
