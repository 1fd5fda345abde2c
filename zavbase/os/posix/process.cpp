#include <zavbase/os/process.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace zav_os {

namespace {

/// Reads the start of a /proc file, which has no size to ask for; the text is ended. Empty on failure.
template <size_t size>
void ReadText(const char* path, char (&text)[size]) {
    text[0] = 0;
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return;
    size_t length = 0;
    ssize_t n;
    while ((n = read(file, text + length, size - 1 - length)) > 0 || (n < 0 && errno == EINTR))
        if (n > 0) length += static_cast<size_t>(n);
    close(file);
    text[length] = 0;
}

uint32_t BootNumber() {
    static constinit std::atomic<uint32_t> known{0}; // found out twice by threads that meet here
    if (uint32_t hash = known) return hash;
    char text[64];
    ReadText("/proc/sys/kernel/random/boot_id", text);
    uint32_t hash = 2166136261u;
    for (const char* p = text; *p && *p != '\n'; ++p)
        hash = (hash ^ static_cast<unsigned char>(*p)) * 16777619u;
    return known = hash;
}

} // namespace

uint32_t OwnProcessId() { return static_cast<uint32_t>(getpid()); }

bool ProcessIdentity(uint32_t id, uint32_t& low, uint32_t& high) {
    char path[40], stat[1024];
    std::snprintf(path, sizeof path, "/proc/%lu/stat", static_cast<unsigned long>(id));
    ReadText(path, stat);
    // The second field is the program's name in parentheses and may hold anything, so count from its end:
    // the state is the first field after it and the start time the twentieth.
    const char* p = std::strrchr(stat, ')');
    if (!p || p[1] != ' ') return false;
    ++p;
    if (p[1] == 'Z' || p[1] == 'X' || p[1] == 'x') return false;
    for (int field = 1; field < 20; ++field) {
        p = std::strchr(p + 1, ' ');
        if (!p) return false;
    }
    const unsigned long long ticks = std::strtoull(p, nullptr, 10);
    low = static_cast<uint32_t>(ticks);
    high = BootNumber() ^ static_cast<uint32_t>(ticks >> 32);
    return true;
}

bool ProcessImageName(uint32_t id, char* name, size_t size) {
    char path[40];
    std::snprintf(path, sizeof path, "/proc/%lu/exe", static_cast<unsigned long>(id));
    const ssize_t length = readlink(path, name, size);
    // A full buffer may be a name cut short.
    if (length < 0 || static_cast<size_t>(length) >= size) return false;
    name[length] = 0;
    return true;
}

} // namespace zav_os
