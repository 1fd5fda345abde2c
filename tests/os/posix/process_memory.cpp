#include <tests/os/process_memory.h>

#include <fstream>
#include <unistd.h>

size_t ProcessMemory() {
    size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}
