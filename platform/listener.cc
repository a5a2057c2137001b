#include "platform/listener.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <system_error>
#include <utility>

#include "base/accounts.h"
#include "base/failure.h"
#include "platform/credentials.h"
#include "platform/run_dir.h"

namespace olt::platform {

namespace {

using namespace std::chrono_literals;

constexpr auto kPauseWithoutDescriptors = 100ms;
// Small, so that a client that keeps connecting does not hold up those that are connected.
constexpr int kAcceptsPerTurn = 4;
// Left to the handlers, which open files. docs/protocol.md names the number.
constexpr rlim_t kReservedDescriptors = 16;

// The next socket would get the lowest free number.
bool has_descriptor_for_client(int any_descriptor) {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return true;
  Descriptor lowest(fcntl(any_descriptor, F_DUPFD_CLOEXEC, 0));
  if (!lowest.is_open()) return errno != EMFILE;
  return static_cast<rlim_t>(lowest.get()) + kReservedDescriptors < limit.rlim_cur;
}

bool is_same_file(int file, const std::string &path) {
  struct stat open_one {};
  struct stat named_one {};
  if (fstat(file, &open_one) != 0 || (stat(path.c_str(), &named_one) != 0 && errno != ENOENT)) {
    throw system_failure("lock file \"" + path + "\" cannot be inspected", errno);
  }
  return open_one.st_dev == named_one.st_dev && open_one.st_ino == named_one.st_ino;
}

// The file may be removed by its last owner between open and flock: try again.
Descriptor lock_module(const std::string &path, uint32_t module, const std::string &run_dir) {
  for (;;) {
    Descriptor file = above_standard_streams(
        Descriptor(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)));
    if (!file.is_open()) throw system_failure("lock file \"" + path + "\" cannot be opened", errno);
    if (flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
      if (errno == EINTR) continue;
      if (errno == EWOULDBLOCK) {
        throw Failure("module " + std::to_string(module) + " is already being served in \"" +
                      run_dir + "\"; expected a free module or another run directory");
      }
      throw system_failure("lock file \"" + path + "\" cannot be locked", errno);
    }
    if (is_same_file(file.get(), path)) return file;
  }
}

// The lock is held: the server that left a socket there has ended.
const std::string &without_stale_socket(const std::string &path) {
  struct stat found {};
  if (lstat(path.c_str(), &found) != 0) return path;
  if (!S_ISSOCK(found.st_mode)) {
    throw Failure("\"" + path + "\" is in the way; expected a socket or nothing");
  }
  if (unlink(path.c_str()) != 0) throw system_failure("\"" + path + "\" cannot be removed", errno);
  return path;
}

void open_to(const std::string &path, std::optional<gid_t> allowed_group) {
  if (allowed_group && chown(path.c_str(), static_cast<uid_t>(-1), *allowed_group) != 0) {
    throw system_failure("\"" + path + "\" cannot be given to group " + group_name(*allowed_group),
                         errno);
  }
  if (chmod(path.c_str(), allowed_group ? 0660 : 0600) != 0) {
    throw system_failure("\"" + path + "\" cannot be closed to others", errno);
  }
}

// Starts listening once the permissions are set.
Descriptor listen_on(const std::string &path, std::optional<gid_t> allowed_group) {
  auto address = socket_address(path);
  if (!address) throw Failure(too_long_for_socket(path));
  Descriptor socket = above_standard_streams(
      Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)));
  if (!socket.is_open() ||
      bind(socket.get(), reinterpret_cast<const sockaddr *>(&*address), sizeof *address) != 0) {
    throw system_failure("\"" + path + "\" cannot be bound", errno);
  }
  open_to(path, allowed_group);
  if (listen(socket.get(), SOMAXCONN) != 0) {
    throw system_failure("\"" + path + "\" cannot be listened on", errno);
  }
  return socket;
}

}  // namespace

asio::posix::stream_descriptor stream_in(asio::io_context &loop, Descriptor descriptor) {
  asio::posix::stream_descriptor stream(loop, descriptor.get());
  descriptor.release();
  return stream;
}

ModuleLock::ModuleLock(const std::string &run_dir, uint32_t module)
    : path_(socket_path(run_dir, module) + ".lock"), file_(lock_module(path_, module, run_dir)) {}

Listener::Listener(asio::io_context &loop, const std::string &run_dir, uint32_t module,
                   std::optional<gid_t> allowed_group, ServerStatistics &statistics, Accept accept)
    : lock_(run_dir, module),
      socket_file_(without_stale_socket(socket_path(run_dir, module))),
      socket_(stream_in(loop, listen_on(socket_path(run_dir, module), allowed_group))),
      timer_(loop),
      statistics_(statistics),
      accept_(std::move(accept)),
      name_("module " + std::to_string(module)) {
  if (!has_descriptor_for_client(socket_.native_handle())) {
    throw Failure(name_ +
                  ": the limit on open files leaves none for clients; expected a higher one "
                  "(ulimit -n)");
  }
  ensure_waiting();
}

void Listener::ensure_waiting() {
  if (!waits_) await_client();
}

void Listener::await_client() {
  socket_.async_wait(asio::posix::stream_descriptor::wait_read,
                     [this](const std::error_code &error) {
                       waits_ = false;
                       if (error) throw std::system_error(error, name_);
                       accept_clients();
                     });
  waits_ = true;
}

void Listener::accept_clients() {
  for (int i = 0; i < kAcceptsPerTurn; ++i) {
    if (!has_descriptor_for_client(socket_.native_handle())) return pause(EMFILE);
    Descriptor client = above_standard_streams(Descriptor(
        accept4(socket_.native_handle(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC)));
    if (client.is_open()) {
      paused_ = false;
      accept_(std::move(client));
    } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
      break;
    } else if (errno != EINTR && errno != ECONNABORTED) {
      return pause(errno);
    }
  }
  await_client();
}

// Out of descriptors or memory, most likely: the clients wait in the queue of the socket.
void Listener::pause(int error) {
  if (!paused_) {
    statistics_.report(name_ + ": new clients have to wait: " + std::strerror(error));
    paused_ = true;
  }
  timer_.expires_after(kPauseWithoutDescriptors);
  timer_.async_wait([this](const std::error_code &cancelled) {
    if (!cancelled) {
      waits_ = false;
      accept_clients();
    }
  });
  waits_ = true;
}

}  // namespace olt::platform
