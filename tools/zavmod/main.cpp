// zavmod: which entry points a plug-in module has, without running its code.

#include "module_file.h"

#include <algorithm>
#include <iostream>

#include "../support/tool.h"

namespace {

const char* const entryPoints[] = {"CreateObjectInstance", "FreeObjectInstance", "GetI18nDefs"};

enum Exit { COMPLETE = TOOL_DONE, INCOMPLETE = 1, TROUBLE = TOOL_TROUBLE };

const char* const help =
    "usage: zavmod info FILE...\n"
    "\n"
    "Tells which of the three entry points of a plug-in module each FILE exports. Reads the\n"
    "file's table only and runs none of its code; ELF and PE files are understood on every\n"
    "platform.\n"
    "\n"
    "Exit code: 0 all entry points are there, 1 one is missing, 2 a file could not be read or\n"
    "is no module, or the command line is wrong, 4 memory ran out.\n";

Exit Info(const std::string& path) {
    ModuleFile module;
    const std::string failure = ReadModuleFile(ReadWhole(path), module);
    if (!failure.empty()) throw ToolFailure{TROUBLE, path + ": " + failure};

    std::cout << path << ": " << module.mFormat << ", " << module.mFunctions.size() << " exported names\n";
    Exit result = COMPLETE;
    for (const char* name : entryPoints) {
        const bool has = module.mFunctions.count(name) != 0;
        std::cout << "    " << name << (has ? "  present\n" : "  MISSING\n");
        if (!has) result = INCOMPLETE;
    }
    return result;
}

// The files after one that cannot be read are looked at too.
Exit InfoOrTrouble(const std::string& path) {
    try {
        return Info(path);
    } catch (const ToolFailure& failure) {
        std::cerr << "zavmod: " << failure.mText << "\n";
        return TROUBLE;
    }
}

int Run(int argc, char** argv) {
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
    for (int i = 2; i < argc; ++i) result = (std::max)(result, static_cast<int>(InfoOrTrouble(argv[i])));
    return result;
}

} // namespace

int main(int argc, char** argv) { return RunTool("zavmod", argc, argv, Run); }
