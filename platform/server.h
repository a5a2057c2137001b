/// A server of modules: one loop, one thread.
#ifndef OLT_PLATFORM_SERVER_H
#define OLT_PLATFORM_SERVER_H

#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "base/descriptor.h"
#include "platform/listener.h"
#include "platform/olthost.h"
#include "platform/server_statistics.h"
#include "platform/session.h"

namespace olt::platform {

class Server {
 public:
  /// Throws Failure, or what the loop throws; so do add and run.
  explicit Server(const olt_server_options &options);

  void add(const Service &service);
  void watch(const Watch &watch) { watch_ = watch; }
  void run();

  /// From any thread and from a signal handler. One call ends one run, or the next one when none
  /// is under way.
  void stop();

  /// From any thread. @return a connected socket, or -1 with errno
  int connect(uint32_t module);

  olt_server_counters counters() const { return statistics_.counters(); }

 private:
  /// Made by connect, not yet seen by the loop.
  struct PendingConnection {
    Descriptor socket;
    const Service *service;
  };

  /// Reports a failure that may be temporary, and pauses.
  void recover(const char *event);
  /// Starts the waits that are not in progress: an exception may have ended one.
  void ensure_waiting();
  void await_wake_up();
  void wake_up();
  /// Admits the connections that it announces.
  void take_wake_up();
  void admit(Descriptor socket, const Service &service);

  const std::string run_dir_;  ///< empty: none
  const std::optional<gid_t> allowed_group_;
  const std::chrono::milliseconds stall_limit_;
  ServerStatistics statistics_;
  PendingBudget budget_;
  Watch watch_;
  uint64_t connections_ = 0;

  std::mutex lock_;  ///< of services_ and pending_
  std::map<uint32_t, Service> services_;
  std::vector<PendingConnection> pending_;
  std::atomic<bool> stop_{false};

  // All of its objects live on the thread that runs it: its own locks are not needed.
  asio::io_context loop_{ASIO_CONCURRENCY_HINT_UNSAFE};
  asio::posix::stream_descriptor waker_;
  bool waker_waits_ = false;
  std::list<Listener> listeners_;
};

}  // namespace olt::platform

#endif
