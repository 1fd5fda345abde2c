#ifndef ZAVBASE_OS_POSIX_THREAD_END_H
#define ZAVBASE_OS_POSIX_THREAD_END_H

namespace zav_os {

/// Has EndThread called on this thread when it ends. The library uses one key of the system for that and no
/// destructors of thread_local objects: those keep a library loaded as long as the thread lives. False when
/// the system has no key left. A thread that is already ending is told again, a few times at most.
bool ArmThreadEnd() noexcept;
/// For the unloading of the library: no thread is told any more.
void DisarmThreadEnds() noexcept;

// What the end of a thread means to each file.
void AbandonWriteLocks();
void EndOwnBlock() noexcept;

// The list of the threads' blocks, around a fork. A child has but one thread.
void BlocksBeforeFork() noexcept;
void BlocksAfterFork(bool inChild) noexcept;
// The same for the list of the threads that the library started.
void ThreadsBeforeFork() noexcept;
void ThreadsAfterFork(bool inChild) noexcept;

} // namespace zav_os

#endif
