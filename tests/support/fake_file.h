#ifndef ZAVBASE_TESTS_SUPPORT_FAKE_FILE_H
#define ZAVBASE_TESTS_SUPPORT_FAKE_FILE_H

#include <cstddef>
#include <map>
#include <string>

/// Stands in for zavbase/os/file: one disk in memory, which can be full and can fail. Linked into an internal
/// test in place of the operating system's.
namespace fake_file {

struct Disk {
    std::map<std::string, std::string> mFiles;
    size_t mRoom = static_cast<size_t>(-1); ///< bytes that one new file can take
    bool mCommitFails = false;
    int mOpenReplacements = 0; ///< neither committed nor given up
};

Disk& TheDisk();

} // namespace fake_file

#endif
