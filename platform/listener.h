/// The socket of a module in the run directory.
#ifndef OLT_PLATFORM_LISTENER_H
#define OLT_PLATFORM_LISTENER_H

#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/steady_timer.hpp>
#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "base/descriptor.h"
#include "platform/server_statistics.h"

namespace olt::platform {

/// The descriptor as a stream of the loop, which then owns it. Throws std::system_error when the
/// loop does not take it; the descriptor is then closed.
asio::posix::stream_descriptor stream_in(asio::io_context &loop, Descriptor descriptor);

/// Removes a file when it is destroyed.
class OwnedFile {
 public:
  explicit OwnedFile(std::string path) : path_(std::move(path)) {}
  OwnedFile(const OwnedFile &) = delete;
  OwnedFile &operator=(const OwnedFile &) = delete;
  ~OwnedFile() { unlink(path_.c_str()); }

 private:
  std::string path_;
};

/// Holds the file module-N.lock against other servers, and removes it.
class ModuleLock {
 public:
  /// Throws Failure when another server has it.
  ModuleLock(const std::string &run_dir, uint32_t module);
  ModuleLock(const ModuleLock &) = delete;
  ModuleLock &operator=(const ModuleLock &) = delete;
  ~ModuleLock() { unlink(path_.c_str()); }

 private:
  std::string path_;
  Descriptor file_;
};

/// Listens on module-N, which it holds against other servers.
class Listener {
 public:
  using Accept = std::function<void(Descriptor)>;

  /// Throws Failure when the socket cannot be created, std::system_error when the loop fails.
  Listener(asio::io_context &loop, const std::string &run_dir, uint32_t module,
           std::optional<gid_t> allowed_group, ServerStatistics &statistics, Accept accept);

  /// Waits for clients, unless it does already: an exception may have ended the wait.
  void ensure_waiting();

 private:
  void await_client();
  void accept_clients();
  void pause(int error);

  ModuleLock lock_;
  OwnedFile socket_file_;
  asio::posix::stream_descriptor socket_;
  asio::steady_timer timer_;
  ServerStatistics &statistics_;
  Accept accept_;
  const std::string name_;
  bool waits_ = false;
  bool paused_ = false;
};

}  // namespace olt::platform

#endif
