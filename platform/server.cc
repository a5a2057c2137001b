#include "platform/server.h"

#include <sys/eventfd.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

#include "base/failure.h"
#include "platform/credentials.h"
#include "platform/frame.h"
#include "platform/run_dir.h"

namespace olt::platform {

namespace {

using namespace std::chrono_literals;

constexpr uint32_t kDefaultStallMs = 10'000;
constexpr uint32_t kDefaultPendingLimit = 64 * 1024 * 1024;
constexpr auto kPauseAfterFailure = 10ms;

// As many clients as the system allows.
void raise_descriptor_limit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
  }
}

Descriptor make_event() {
  Descriptor event = above_standard_streams(Descriptor(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)));
  if (!event.is_open()) throw system_failure("an event descriptor cannot be created", errno);
  return event;
}

std::optional<gid_t> group_of(const olt_server_options &options) {
  return options.group != nullptr ? std::optional(require_group(options.group)) : std::nullopt;
}

// The client learns why its connection is closed.
void send_refusal(int socket) {
  auto frame = encode(AnswerHeader{.sequence = 0, .status = 0, .refused = true, .length = 0});
  send(socket, frame.data(), frame.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
}

}  // namespace

Server::Server(const olt_server_options &options)
    : run_dir_(options.run_dir != nullptr ? options.run_dir : ""),
      allowed_group_(group_of(options)),
      stall_limit_(options.stall_ms != 0 ? options.stall_ms : kDefaultStallMs),
      statistics_(options.on_event, options.context),
      budget_(options.pending_limit != 0 ? options.pending_limit : kDefaultPendingLimit),
      waker_(stream_in(loop_, make_event())) {
  if (options.run_dir != nullptr) {
    raise_descriptor_limit();
    prepare_run_dir(run_dir_, allowed_group_);
  }
  ensure_waiting();
}

void Server::add(const Service &service) {
  std::lock_guard guard(lock_);
  auto [place, added] = services_.emplace(service.module, service);
  if (!added) {
    throw Failure("module " + std::to_string(service.module) +
                  " was added before; expected each module once");
  }
  if (run_dir_.empty()) return;
  try {
    listeners_.emplace_back(
        loop_, run_dir_, service.module, allowed_group_, statistics_,
        [this, &kept = place->second](Descriptor socket) { admit(std::move(socket), kept); });
  } catch (...) {
    services_.erase(place);
    throw;
  }
}

// A connection for which there is no memory or no place in the loop is dropped; the others go on.
// The stop flag is read after each handler, so that a stop waits for one of them at most.
void Server::run() {
  do {
    try {
      ensure_waiting();
      do loop_.run_one();
      while (!stop_);
      take_wake_up();
    } catch (const std::bad_alloc &) {
      recover("out of memory: a connection was dropped");
    } catch (const std::system_error &error) {
      recover(error.what());
    }
  } while (!stop_.exchange(false));
}

void Server::recover(const char *event) {
  statistics_.report(event);
  std::this_thread::sleep_for(kPauseAfterFailure);
  loop_.restart();
}

void Server::ensure_waiting() {
  if (!waker_waits_) await_wake_up();
  for (Listener &listener : listeners_) listener.ensure_waiting();
}

void Server::stop() {
  stop_ = true;
  wake_up();
}

int Server::connect(uint32_t module) {
  std::lock_guard guard(lock_);
  auto service = services_.find(module);
  if (service == services_.end()) {
    errno = ECONNREFUSED;
    return -1;
  }
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    return -1;
  }
  Descriptor own(ends[0]);
  Descriptor other(ends[1]);
  pending_.push_back({.socket = std::move(own), .service = &service->second});
  wake_up();
  return other.release();
}

// Only system calls: signal handlers come here.
void Server::wake_up() {
  int error = errno;
  uint64_t one = 1;
  while (write(waker_.native_handle(), &one, sizeof one) < 0 && errno == EINTR) {
  }
  errno = error;
}

void Server::await_wake_up() {
  waker_.async_wait(asio::posix::stream_descriptor::wait_read,
                    [this](const std::error_code &error) {
                      waker_waits_ = false;
                      if (error) throw std::system_error(error);
                      take_wake_up();
                      await_wake_up();
                    });
  waker_waits_ = true;
}

void Server::take_wake_up() {
  uint64_t count = 0;
  [[maybe_unused]] ssize_t got = read(waker_.native_handle(), &count, sizeof count);
  std::vector<PendingConnection> connections;
  {
    std::lock_guard guard(lock_);
    connections.swap(pending_);
  }
  for (PendingConnection &one : connections) admit(std::move(one.socket), *one.service);
}

void Server::admit(Descriptor socket, const Service &service) {
  std::string refusal = refusal_of_peer(socket.get(), allowed_group_);
  if (!refusal.empty()) {
    send_refusal(socket.get());
    statistics_.count(&olt_server_counters::refused_peers,
                      "module " + std::to_string(service.module) + ": " + refusal);
    return;
  }
  statistics_.count(&olt_server_counters::connections);
  std::make_shared<Session>(loop_, std::move(socket), service, statistics_, budget_, stall_limit_,
                            watch_, ++connections_)
      ->start();
}

}  // namespace olt::platform
