#include "platform/process_socket.h"

#include <sys/socket.h>

#include <mutex>
#include <unordered_set>

#include "platform/fork_safety.h"

namespace olt::platform {

namespace {

// Held during a fork, so that no socket is created, closed or registered meanwhile.
constinit std::mutex lock;
[[maybe_unused]] const int registered = hold_across_fork<lock, ProcessSocket::close_all>();

// Never destroyed: threads may still be in an exchange while the process exits.
std::unordered_set<ProcessSocket *> &all_sockets() {
  static auto &instance = *new std::unordered_set<ProcessSocket *>;
  return instance;
}

}  // namespace

ProcessSocket::ProcessSocket() {
  std::lock_guard guard(lock);
  all_sockets().insert(this);
}

ProcessSocket::~ProcessSocket() {
  std::lock_guard guard(lock);
  all_sockets().erase(this);
  socket_.close();
}

bool ProcessSocket::create() {
  std::lock_guard guard(lock);
  socket_ = above_standard_streams(
      Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)));
  return is_open();
}

bool ProcessSocket::adopt(int number) {
  std::lock_guard guard(lock);
  socket_ = above_standard_streams(Descriptor(number));
  return is_open();
}

void ProcessSocket::close_all() {
  for (ProcessSocket *socket : all_sockets()) socket->socket_.close();
}

}  // namespace olt::platform
