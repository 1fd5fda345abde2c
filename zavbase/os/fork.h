#ifndef ZAVBASE_OS_FORK_H
#define ZAVBASE_OS_FORK_H

namespace zav_os {

/// Has `before` called on the forking thread before each fork of this process, and `after` when it is done,
/// in the parent and in the child. To be called once, while the library is loaded; it ends with the library.
/// Where processes do not fork, nothing happens.
void AtFork(void (*before)(), void (*after)(bool inChild));

} // namespace zav_os

#endif
