/// What has happened in a server: counted, and told to whoever wants to know.
#ifndef OLT_PLATFORM_LEDGER_H
#define OLT_PLATFORM_LEDGER_H

#include <cstdint>
#include <mutex>
#include <string>

#include "platform/log.h"
#include "platform/olthost.h"

namespace olt::platform {

class Ledger {
 public:
  using Counter = uint64_t olt_server_counters::*;

  Ledger(void (*on_event)(void *, const char *), void *context)
      : on_event_(on_event), context_(context) {}

  void count(Counter counter) {
    const std::lock_guard guard(lock_);
    ++(counters_.*counter);
  }

  void count(Counter counter, const std::string &line) {
    tell(line);
    count(counter);
  }

  /// Goes to the log when the server's owner does not take events.
  void tell(const char *line) {
    if (on_event_ != nullptr) {
      on_event_(context_, line);
    } else {
      log_log(kErrorLevel, "olt_server_run", 0, line);
    }
  }

  void tell(const std::string &line) { tell(line.c_str()); }

  olt_server_counters copy() const {
    const std::lock_guard guard(lock_);
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
