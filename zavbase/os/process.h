#ifndef ZAVBASE_OS_PROCESS_H
#define ZAVBASE_OS_PROCESS_H

#include <cstddef>
#include <cstdint>

namespace zav_os {

uint32_t OwnProcessId();

/// Two numbers that tell a running process from every other one that ever had its id: its time of creation,
/// or, on Linux, its start in clock ticks and a number for the boot of the machine. To be compared for
/// equality only. False for a process that has ended, waited for or not, or may not be queried.
bool ProcessIdentity(uint32_t id, uint32_t& low, uint32_t& high);

/// The name of a running process's executable file, from a snapshot of all processes; false when there is no
/// such process, the name has `size` characters or more, or the system offers no snapshot.
bool ProcessImageName(uint32_t id, char* name, size_t size);

} // namespace zav_os

#endif
