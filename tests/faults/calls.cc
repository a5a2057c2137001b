// The interposed calls: each asks the injector whether to fail, and else calls the C library, whose
// headers have other names for the parameters.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <new>

#include "tests/faults/fault_injector.h"

namespace {

using olt::faults::FaultInjector;
using olt::faults::injector_for;
using olt::faults::kNew;
using olt::faults::kShort;

template <typename Function>
Function *next(Function * /*of the same type*/, const char *name) {
  return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

/// A peer that closed its end makes all later calls on the socket fail, too.
int fail(const FaultInjector &injector, int socket = -1) {
  int error = injector.error();
  if (socket >= 0 && (error == EPIPE || error == ECONNRESET)) shutdown(socket, SHUT_RDWR);
  errno = error;
  return -1;
}

}  // namespace

#define NEXT(name)                                    \
  static const auto following = next(&(name), #name); \
  FaultInjector *const injector = injector_for(#name)

// A call with plain arguments.
#define CALL(name, parameters, arguments)            \
  extern "C" int name parameters {                   \
    NEXT(name);                                      \
    if (injector != nullptr) return fail(*injector); \
    return following arguments;                      \
  }

// One that transfers bytes through a descriptor.
#define TRANSFER(name, parameters, arguments)                                           \
  extern "C" ssize_t name parameters {                                                  \
    NEXT(name);                                                                         \
    if (injector != nullptr && injector->error() != kShort) return fail(*injector, fd); \
    if (injector != nullptr) length = std::min<size_t>(length, 1);                      \
    return following arguments;                                                         \
  }

CALL(accept4, (int fd, sockaddr *address, socklen_t *size, int flags), (fd, address, size, flags))
CALL(bind, (int fd, const sockaddr *address, socklen_t size) noexcept, (fd, address, size))
CALL(chmod, (const char *path, mode_t mode) noexcept, (path, mode))
CALL(chown, (const char *path, uid_t user, gid_t group) noexcept, (path, user, group))
CALL(connect, (int fd, const sockaddr *address, socklen_t size), (fd, address, size))
CALL(epoll_create1, (int flags) noexcept, (flags))
CALL(epoll_ctl, (int loop, int what, int fd, epoll_event *event) noexcept, (loop, what, fd, event))
CALL(epoll_wait, (int loop, epoll_event *events, int max, int timeout),
     (loop, events, max, timeout))
CALL(eventfd, (unsigned count, int flags) noexcept, (count, flags))
CALL(fchmod, (int fd, mode_t mode) noexcept, (fd, mode))
CALL(fchown, (int fd, uid_t user, gid_t group) noexcept, (fd, user, group))
CALL(flock, (int fd, int operation) noexcept, (fd, operation))
CALL(fstat, (int fd, struct stat *found) noexcept, (fd, found))
CALL(fstatat, (int directory, const char *path, struct stat *found, int flags) noexcept,
     (directory, path, found, flags))
CALL(fsync, (int fd), (fd))
CALL(ftruncate, (int fd, off_t length) noexcept, (fd, length))
CALL(getrlimit, (__rlimit_resource_t resource, rlimit *limit) noexcept, (resource, limit))
CALL(getsockopt, (int fd, int level, int option, void *value, socklen_t *size) noexcept,
     (fd, level, option, value, size))
CALL(linkat,
     (int from_directory, const char *from, int directory, const char *path, int flags) noexcept,
     (from_directory, from, directory, path, flags))
CALL(listen, (int fd, int backlog) noexcept, (fd, backlog))
CALL(lstat, (const char *path, struct stat *found) noexcept, (path, found))
CALL(mkdir, (const char *path, mode_t mode) noexcept, (path, mode))
CALL(mkdirat, (int directory, const char *path, mode_t mode) noexcept, (directory, path, mode))
CALL(munmap, (void *begin, size_t length) noexcept, (begin, length))
CALL(ppoll, (pollfd * fds, nfds_t count, const timespec *timeout, const sigset_t *mask),
     (fds, count, timeout, mask))
CALL(rename, (const char *from, const char *path) noexcept, (from, path))
CALL(renameat, (int from_directory, const char *from, int directory, const char *path) noexcept,
     (from_directory, from, directory, path))
CALL(setrlimit, (__rlimit_resource_t resource, const rlimit *limit) noexcept, (resource, limit))
CALL(setsockopt, (int fd, int level, int option, const void *value, socklen_t size) noexcept,
     (fd, level, option, value, size))
CALL(socket, (int domain, int type, int protocol) noexcept, (domain, type, protocol))
CALL(socketpair, (int domain, int type, int protocol, int ends[2]) noexcept,
     (domain, type, protocol, ends))
CALL(stat, (const char *path, struct stat *found) noexcept, (path, found))
CALL(timerfd_create, (clockid_t clock, int flags) noexcept, (clock, flags))
CALL(timerfd_settime, (int fd, int flags, const itimerspec *time, itimerspec *old) noexcept,
     (fd, flags, time, old))
CALL(unlink, (const char *path) noexcept, (path))
CALL(unlinkat, (int directory, const char *path, int flags) noexcept, (directory, path, flags))

TRANSFER(read, (int fd, void *buffer, size_t length), (fd, buffer, length))
TRANSFER(recv, (int fd, void *buffer, size_t length, int flags), (fd, buffer, length, flags))
TRANSFER(send, (int fd, const void *buffer, size_t length, int flags), (fd, buffer, length, flags))
TRANSFER(write, (int fd, const void *buffer, size_t length), (fd, buffer, length))

extern "C" ssize_t readlink(const char *path, char *target, size_t size) noexcept {
  NEXT(readlink);
  return injector != nullptr ? fail(*injector) : following(path, target, size);
}

extern "C" void *mmap(void *begin, size_t length, int access, int flags, int fd,
                      off_t offset) noexcept {
  NEXT(mmap);
  if (injector == nullptr) return following(begin, length, access, flags, fd, offset);
  fail(*injector);
  return MAP_FAILED;
}

extern "C" ssize_t readlinkat(int directory, const char *path, char *target, size_t size) noexcept {
  NEXT(readlinkat);
  return injector != nullptr ? fail(*injector) : following(directory, path, target, size);
}

extern "C" ssize_t sendmsg(int fd, const msghdr *message, int flags) {
  NEXT(sendmsg);
  if (injector == nullptr) return following(fd, message, flags);
  if (injector->error() != kShort) return fail(*injector, fd);
  iovec piece = message->msg_iov[0];
  for (size_t i = 1; piece.iov_len == 0 && i < message->msg_iovlen; ++i) {
    piece = message->msg_iov[i];
  }
  piece.iov_len = std::min<size_t>(piece.iov_len, 1);
  msghdr part = *message;
  part.msg_iov = &piece;
  part.msg_iovlen = 1;
  return following(fd, &part, flags);
}

// close closes the descriptor even when it fails.
extern "C" int close(int fd) {
  NEXT(close);
  int result = following(fd);
  return injector != nullptr ? fail(*injector) : result;
}

extern "C" int fcntl(int fd, int command, ...) {
  va_list rest;
  va_start(rest, command);
  void *argument = va_arg(rest, void *);
  va_end(rest);
  NEXT(fcntl);
  return injector != nullptr ? fail(*injector) : following(fd, command, argument);
}

extern "C" int ioctl(int fd, unsigned long command, ...) noexcept {
  va_list rest;
  va_start(rest, command);
  void *argument = va_arg(rest, void *);
  va_end(rest);
  NEXT(ioctl);
  return injector != nullptr ? fail(*injector) : following(fd, command, argument);
}

extern "C" int open(const char *path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  auto mode = static_cast<mode_t>((flags & O_CREAT) != 0 ? va_arg(rest, int) : 0);
  va_end(rest);
  NEXT(open);
  return injector != nullptr ? fail(*injector) : following(path, flags, mode);
}

extern "C" int openat(int directory, const char *path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  auto mode = static_cast<mode_t>((flags & O_CREAT) != 0 ? va_arg(rest, int) : 0);
  va_end(rest);
  NEXT(openat);
  return injector != nullptr ? fail(*injector) : following(directory, path, flags, mode);
}

extern "C" DIR *fdopendir(int fd) {
  NEXT(fdopendir);
  if (injector == nullptr) return following(fd);
  fail(*injector);
  return nullptr;
}

extern "C" dirent *readdir(DIR *directory) {
  NEXT(readdir);
  if (injector == nullptr) return following(directory);
  fail(*injector);
  return nullptr;
}

// Sanitizers bring an allocator of their own for C, and look for it under this name.
#ifndef OLT_TEST_SANITIZED
extern "C" void *__libc_calloc(size_t count, size_t size);

extern "C" void *calloc(size_t count, size_t size) noexcept {
  FaultInjector *const injector = injector_for("calloc");
  if (injector == nullptr) return __libc_calloc(count, size);
  fail(*injector);
  return nullptr;
}
#endif

void *operator new(size_t size) {
  void *const block =
      injector_for(kNew) != nullptr ? nullptr : std::malloc(std::max<size_t>(size, 1));
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void *operator new(size_t size, const std::nothrow_t & /*tag*/) noexcept {
  return injector_for(kNew) != nullptr ? nullptr : std::malloc(std::max<size_t>(size, 1));
}

void *operator new[](size_t size) {
  return operator new(size);
}

void operator delete(void *block) noexcept {
  std::free(block);
}

void operator delete(void *block, size_t /*size*/) noexcept {
  std::free(block);
}

void operator delete(void *block, const std::nothrow_t & /*tag*/) noexcept {
  std::free(block);
}

void operator delete[](void *block) noexcept {
  std::free(block);
}

void operator delete[](void *block, size_t /*size*/) noexcept {
  std::free(block);
}

// NOLINTEND(readability-inconsistent-declaration-parameter-name)
