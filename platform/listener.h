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

#include "platform/descriptor.h"
#include "platform/ledger.h"

namespace olt::platform {

/// A file that is removed with its owner.
class OwnedFile {
 public:
  explicit OwnedFile(std::string path) : path_(std::move(path)) {}
  OwnedFile(const OwnedFile &) = delete;
  OwnedFile &operator=(const OwnedFile &) = delete;
  ~OwnedFile() { ::unlink(path_.c_str()); }

 private:
  std::string path_;
};

/// Listens on module-N, which it holds against other servers by a lock on module-N.lock.
class Listener {
 public:
  using Accept = std::function<void(Descriptor)>;

  /// Throws Failure when the socket cannot be had, std::system_error when the loop fails.
  Listener(asio::io_context &loop, const std::string &run_dir, uint32_t module,
           std::optional<gid_t> allowed_group, Ledger &ledger, Accept accept);

 private:
  void await_client();
  void accept_all();
  void pause(int error);

  Descriptor lock_;
  OwnedFile lock_file_;
  asio::posix::stream_descriptor socket_;
  OwnedFile socket_file_;
  asio::steady_timer timer_;
  Ledger &ledger_;
  Accept accept_;
  const std::string name_;
  bool paused_ = false;
};

}  // namespace olt::platform

#endif
