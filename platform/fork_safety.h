/// Locks that a child process can use, whatever other threads did during the fork.
#ifndef OLT_PLATFORM_FORK_SAFETY_H
#define OLT_PLATFORM_FORK_SAFETY_H

#include <pthread.h>

#include <mutex>

namespace olt::platform {

inline void nothing_to_do() {}

/// Holds the lock across every fork of the process; in the child, also calls the function before
/// releasing it. Meant for an initialiser at namespace scope.
template <std::mutex &lock, void (*in_child)() = nothing_to_do>
int hold_across_fork() noexcept {
  return pthread_atfork([] { lock.lock(); }, [] { lock.unlock(); },
                        [] {
                          in_child();
                          lock.unlock();
                        });
}

}  // namespace olt::platform

#endif
