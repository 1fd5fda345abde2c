#ifndef ZAVBASE_OS_MODULE_H
#define ZAVBASE_OS_MODULE_H

#include <cstddef>
#include <cstdint>

namespace zav_os {

/// ".so" or ".dll", and the character that stands between a directory and a name.
extern const char* const moduleExtension;
extern const char pathSeparator;

/// Why a module or function was not had.
struct ModuleError {
    uint32_t mNumber = 0;
    char mReason[256] = ""; ///< the loader's text, cut; empty where the number has a text of the system
};

/// Loads the module of a path, or returns null with a number in `error`. Where the loader has no numbers of
/// its own, these are 2 for an absent file and 8, with a text, for one that is no module; an 8 that `error`
/// holds from an earlier attempt is then kept over a 2, since it says more.
void* OpenModule(const char* path, ModuleError& error);

/// The same for a bare name, sought by the loader's own rules, the current directory included. The
/// extension is added unless the last part of the name has a ".".
void* FindModule(const char* name, ModuleError& error);

/// The same with `folder` as the current one meanwhile. Null without an error, and without leaving the
/// present folder, when its path has 512 characters or more, when there is no way back to it, or when
/// `folder` cannot be entered.
void* FindModuleIn(const char* folder, const char* name, ModuleError& error);

/// One more reference to a loaded module, to be closed like the first, whatever became of its file or of the
/// name of its folder; null when the loader refuses.
void* RetainModule(void* module);
void CloseModule(void* module);

/// The address of an exported function; null with a number in `error` (22 where the loader has none).
void* FindSymbol(void* module, const char* name, ModuleError& error);

/// Whether a path names the same file whatever the current directory is.
bool IsAbsolutePath(const char* path);

} // namespace zav_os

#endif
