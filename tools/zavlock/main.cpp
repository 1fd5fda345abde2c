// zavlock: looks at and works on a lock pool file.

#include <zavbase/foundation/exception.h>
#include <zavbase/strings/byte_string.h>
#include <zavbase/threads/lock_pool.h>

#include <cstring>
#include <iostream>
#include <limits>
#include <string>

#include "../support/harmless.h"
#include "../support/tool.h"

namespace {

typedef ZAV_ResourceLockPool Pool;

enum Exit { DONE = TOOL_DONE, REFUSED = 1, TROUBLE = TOOL_TROUBLE };

const char* const help =
    "usage: zavlock [--guard] FILE list\n"
    "       zavlock [--guard] FILE clear\n"
    "       zavlock [--guard] FILE lock NAME\n"
    "       zavlock [--guard] FILE unlock NAME\n"
    "\n"
    "  list     prints every lock with its owner and whether that process still runs; changes nothing\n"
    "  clear    removes the locks of processes that have ended\n"
    "  lock     takes the lock and holds it until standard input ends (a lock ends with its process)\n"
    "  unlock   says whether the lock is free; removes it if its owner has ended\n"
    "  --guard  makes each operation exclusive among those who use the guard too (FILE.guard)\n"
    "\n"
    "NAME is a path: a:b is the lock b in the group a. Names without a level (a::b) cannot be locked.\n"
    "Exit code: 0 done (lock: taken, and released at the end; unlock: free now), 1 another process has\n"
    "the lock, or took it while it was held here, 2 the file could not be read or written or is damaged,\n"
    "or the command line is wrong, 4 memory ran out.\n";

int Wrong() {
    std::cerr << help;
    return TROUBLE;
}

void PrintLock(const std::string& path, ZAV_UValDict& entry) {
    const char* state = "damaged";
    try {
        state = Pool::IsOwnerAlive(entry) ? "alive" : "dead";
    } catch (ZAV_Exception* e) {
        e->Delete();
    }
    std::cout << Harmless(path) << "  process "
              << static_cast<unsigned long>(entry.GetValue("ProcessId", 0UL) & 0xFFFFFFFFUL) << "  " << state;
    const char* file = entry.GetValue("FileName", "");
    if (file && *file) std::cout << "  " << Harmless(file);
    std::cout << "\n";
}

/// Entries with an owner are locks; others are groups of locks.
void PrintLocks(const std::string& prefix, ZAV_UValDict& dict) {
    for (ZAV_AssocUVal* e = dict.GetNextAssoc(nullptr); e; e = dict.GetNextAssoc(e)) {
        if (!e->Value() || e->Value()->GetType() != UVAL_DICT) continue;
        ZAV_UValDict& entry = static_cast<ZAV_UValDict&>(*e->Value());
        const std::string path = prefix + e->Key();
        if (entry.AssocAt("ProcessId")) PrintLock(path, entry);
        PrintLocks(path + ZAV_DictPath::GetSeparator(), entry);
    }
}

int List(const char* file) {
    ZAV_UValDict locks(16);
    locks.ReadTextFile(file);
    PrintLocks("", locks);
    return DONE;
}

int Hold(Pool& pool, const char* name) {
    const Pool::RetVal result = pool.Lock(name);
    std::cout << Pool::RetVal2String(result) << std::endl;
    if (result == Pool::OTHER_HAS_LOCK) return REFUSED;
    std::cin.ignore((std::numeric_limits<std::streamsize>::max)(), std::char_traits<char>::eof());
    const Pool::RetVal released = pool.UnLock(name);
    std::cout << Pool::RetVal2String(released) << std::endl;
    return released == Pool::UNLOCKED ? DONE : REFUSED;
}

/// The file does not keep a name with an empty level, so that everybody would be granted its lock.
void CheckName(const char* name) {
    const ZAV_DictPath path(name);
    const char* key = nullptr;
    bool isWhole = path.Size() > 0;
    for (int i = 0; i < path.Size(); ++i) isWhole = *(key = path.NextKey(key)) && isWhole;
    if (!isWhole) throw ToolFailure{TROUBLE, "\"" + Harmless(name) + "\" is no name for a lock"};
}

int UnLock(Pool& pool, const char* name) {
    const Pool::RetVal result = pool.UnLock(name);
    std::cout << Pool::RetVal2String(result) << std::endl;
    return result == Pool::OTHER_HAS_LOCK ? REFUSED : DONE;
}

int Work(int argc, char** argv) {
    if (argc < 2) return Wrong();
    const char* file = argv[0];
    const std::string command = argv[1];
    if (command == "list" && argc == 2) return List(file);
    if (argc == 3) CheckName(argv[2]);
    Pool pool(file);
    if (command == "clear" && argc == 2) return pool.ClearInvalidLocks(), DONE;
    if (command == "lock" && argc == 3) return Hold(pool, argv[2]);
    if (command == "unlock" && argc == 3) return UnLock(pool, argv[2]);
    return Wrong();
}

int Run(int argc, char** argv) {
    if (argc > 1 && (!std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "help"))) {
        std::cout << help;
        return DONE;
    }
    const bool guard = argc > 1 && !std::strcmp(argv[1], "--guard");
    if (guard) Pool::SetGuard(B_TRUE);
    const int skip = guard ? 2 : 1;
    return Work(argc - skip, argv + skip);
}

} // namespace

int main(int argc, char** argv) { return RunTool("zavlock", argc, argv, Run); }
