#include "cli/box/interruption.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <ctime>
#include <iterator>

#include "base/descriptor.h"

namespace olt::cli {

namespace {

constexpr timespec kBetweenAttempts = {0, 2'000'000};
constexpr int kAttempts = 5000;

/// Duplicates of the sockets of each module. The platform closes its own without notice.
struct Duplicate {
  volatile std::sig_atomic_t module = 0;
  volatile std::sig_atomic_t socket = -1;
};
Duplicate duplicates[16];

volatile std::sig_atomic_t enabled = 0;
volatile std::sig_atomic_t interrupted = 0;

void keep(uint32_t module, int socket) {
  auto number = static_cast<std::sig_atomic_t>(module);
  for (Duplicate &one : duplicates) {
    if (one.socket >= 0 && one.module != number) continue;
    int before = one.socket;
    one.socket = -1;
    if (before >= 0) close(before);
    one.module = number;
    one.socket = fcntl(socket, F_DUPFD_CLOEXEC, 0);
    return;
  }
}

}  // namespace

void make_exchanges_interruptible() {
  enabled = 1;
}

bool exchanges_are_interruptible() {
  return enabled != 0;
}

void interrupt_exchanges() {
  interrupted = 1;
  int error = errno;
  for (const Duplicate &one : duplicates) {
    if (one.socket >= 0) shutdown(one.socket, SHUT_RDWR);
  }
  errno = error;
}

void resume_exchanges() {
  interrupted = 0;
}

int interruptible(uint32_t module, int socket) {
  if (enabled == 0 || socket < 0) return socket;
  keep(module, socket);
  if (interrupted == 0) return socket;
  close(socket);
  errno = EINTR;
  return -1;
}

int connect_in_run_dir(const std::string &run_dir, uint32_t module) {
  std::string path = fmt::format("{}/module-{}", run_dir, module);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= std::size(address.sun_path)) {
    errno = ENAMETOOLONG;
    return -1;
  }
  path.copy(address.sun_path, path.size());
  Descriptor connection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!connection.is_open()) return -1;
  // Nothing signals when the queue of the module's socket has room again.
  for (int attempt = 0; attempt < kAttempts && interrupted == 0; ++attempt) {
    if (connect(connection.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) ==
        0) {
      return connection.release();
    }
    if (errno != EAGAIN && errno != EINTR) return -1;
    nanosleep(&kBetweenAttempts, nullptr);
  }
  errno = interrupted != 0 ? EINTR : EAGAIN;
  return -1;
}

}  // namespace olt::cli
