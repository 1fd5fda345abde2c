#ifndef ZAVMOD_MODULE_FILE_H
#define ZAVMOD_MODULE_FILE_H

#include <set>
#include <string>

/// What a module file says of itself.
struct ModuleFile {
    std::string mFormat;              ///< for people: "ELF 64-bit, x86-64"
    std::set<std::string> mFunctions; ///< the exported names
};

/// Reads the export table of an ELF or PE file, of any platform, from its bytes; no code of it runs. Returns
/// an empty text, or why the bytes are no such file. Damaged input is reported and never read beyond its end.
std::string ReadModuleFile(const std::string& bytes, ModuleFile& module);

#endif
