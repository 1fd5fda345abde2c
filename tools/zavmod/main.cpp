// zavmod: which entry points a plug-in module has, without running its code.

#include "module_file.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

namespace {

const char* const entryPoints[] = {"CreateObjectInstance", "FreeObjectInstance", "GetI18nDefs"};

enum Exit { COMPLETE = 0, INCOMPLETE = 1, TROUBLE = 2 };

const char* const help =
    "usage: zavmod info FILE...\n"
    "\n"
    "Tells which of the three entry points of a plug-in module each FILE exports. Reads the\n"
    "file's table only and runs none of its code; ELF and PE files are understood on every\n"
    "platform.\n"
    "\n"
    "Exit code: 0 all entry points are there, 1 one is missing, 2 a file could not be read or\n"
    "is no module, or the command line is wrong.\n";

Exit Trouble(const std::string& text) {
    std::cerr << "zavmod: " << text << "\n";
    return TROUBLE;
}

Exit Info(const std::string& path) {
    std::error_code ignored;
    // Opening a pipe would wait for its writer.
    if (!std::filesystem::is_regular_file(path, ignored)) return Trouble(path + ": no such file");
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    if (!file || !(bytes << file.rdbuf())) return Trouble(path + ": cannot be read");
    ModuleFile module;
    const std::string failure = ReadModuleFile(bytes.str(), module);
    if (!failure.empty()) return Trouble(path + ": " + failure);

    std::cout << path << ": " << module.mFormat << ", " << module.mFunctions.size() << " exported names\n";
    Exit result = COMPLETE;
    for (const char* name : entryPoints) {
        const bool has = module.mFunctions.count(name) != 0;
        std::cout << "    " << name << (has ? "  present\n" : "  MISSING\n");
        if (!has) result = INCOMPLETE;
    }
    return result;
}

} // namespace

int main(int argc, char** argv) {
    const std::string command = argc > 1 ? argv[1] : "";
    if (command == "--help" || command == "help") {
        std::cout << help;
        return COMPLETE;
    }
    if (command != "info" || argc < 3) {
        std::cerr << help;
        return TROUBLE;
    }
    int result = COMPLETE;
    for (int i = 2; i < argc; ++i) result = (std::max)(result, static_cast<int>(Info(argv[i])));
    return result;
}
