/// Counters and events of a server.
#ifndef OLT_PLATFORM_SERVER_STATISTICS_H
#define OLT_PLATFORM_SERVER_STATISTICS_H

#include <mutex>
#include <string>

#include "platform/log.h"
#include "platform/olthost.h"

namespace olt::platform {

class ServerStatistics {
 public:
  using Counter = uint64_t olt_server_counters::*;

  ServerStatistics(void (*on_event)(void *, const char *), void *context)
      : on_event_(on_event), context_(context) {}

  void count(Counter counter) {
    std::lock_guard guard(lock_);
    ++(counters_.*counter);
  }

  void count(Counter counter, const std::string &line) {
    report(line);
    count(counter);
  }

  /// Passes an event on; to the log when the options have no on_event.
  void report(const char *line) {
    if (on_event_ != nullptr) {
      on_event_(context_, line);
    } else {
      log_log(kErrorLevel, "olt_server_run", 0, line);
    }
  }

  void report(const std::string &line) { report(line.c_str()); }

  olt_server_counters counters() const {
    std::lock_guard guard(lock_);
    return counters_;
  }

 private:
  void (*on_event_)(void *, const char *);
  void *context_;
  mutable std::mutex lock_;
  olt_server_counters counters_{};
};

}  // namespace olt::platform

#endif
