#include "bench/bare.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace olt::bench {

namespace {

bool read_all(int socket, char *bytes, std::size_t size) {
  for (std::size_t filled = 0; filled < size;) {
    pollfd watched{.fd = socket, .events = POLLIN, .revents = 0};
    if (poll(&watched, 1, -1) < 0) return false;
    const ssize_t count = read(socket, bytes + filled, size - filled);
    if (count <= 0) return false;
    filled += static_cast<std::size_t>(count);
  }
  return true;
}

void write_all(int socket, const char *bytes, std::size_t size) {
  require(write(socket, bytes, size) == static_cast<ssize_t>(size), "write");
}

}  // namespace

Bare::Bare(std::size_t reply_size) : reply_(reply_size) {
  require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends_.data()) == 0, "socketpair");
  server_.emplace([this](int ready) {
    say_ready(ready);
    Request request{};
    while (read_all(ends_[1], request.data(), request.size())) {
      write_all(ends_[1], reply_.data(), reply_.size());
    }
  });
  close(ends_[1]);
}

Bare::~Bare() {
  close(ends_[0]);
}

void Bare::exchange() {
  const Request request{};
  write_all(ends_[0], request.data(), request.size());
  require(read_all(ends_[0], reply_.data(), reply_.size()), "read");
}

}  // namespace olt::bench
