// The other process of the lock pool's tests: lock_pool_child ROLE FILE NAME COUNT.

#include <zavbase/foundation/new_handler.h>
#include <zavbase/threads/lock_pool.h>

#include <cstdio>
#include <iostream>

namespace {

typedef ZAV_ResourceLockPool Pool;

/// Takes and releases the lock so many times. Whoever has it creates a file that must not be there.
int Work(Pool& pool, const char* name, const std::string& witness, int count) {
    for (int taken = 0; taken < count;) {
        const Pool::RetVal result = pool.Lock(name);
        if (result == Pool::OTHER_HAS_LOCK) continue;
        if (result != Pool::HAVE_LOCK) return 2;
        std::FILE* file = std::fopen(witness.c_str(), "wbx");
        if (!file) return 3;
        std::fclose(file);
        if (std::remove(witness.c_str()) != 0) return 4;
        if (pool.UnLock(name) != Pool::UNLOCKED) return 5;
        ++taken;
    }
    return 0;
}

/// Writes the pool file without end.
int Write(Pool& pool, const std::string& name) {
    for (unsigned i = 0;; ++i) {
        pool.Lock((name + std::to_string(i % 50)).c_str());
        if (i == 0) std::cout << "writing" << std::endl;
        if (i % 50 == 49) pool.ClearOwnLocks();
    }
}

} // namespace

// An exception that leaves it ends the program with another result than 0, and that is what the tests ask
// for.
int main(int argc, char** argv) {
    SetNewHandler();
    if (argc != 5) return 1;
    const std::string role = argv[1], file = argv[2];
    Pool pool(file.c_str());
    Pool::SetGuard(B_TRUE);
    if (role == "work") return Work(pool, argv[3], file + ".witness", std::stoi(argv[4]));
    return role == "write" ? Write(pool, argv[3]) : 1;
}
