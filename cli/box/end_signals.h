/// Signals that end the program.
#ifndef OLT_CLI_BOX_END_SIGNALS_H
#define OLT_CLI_BOX_END_SIGNALS_H

#include <atomic>
#include <csignal>
#include <functional>
#include <thread>

namespace olt::cli {

/// While it exists, SIGHUP, SIGINT and SIGTERM call a function before they end the program. One
/// that the program was started to ignore stays ignored.
class EndSignals {
 public:
  /// Must come before the program starts other threads. The function runs in a thread of its own
  /// and must not throw.
  explicit EndSignals(std::function<void()> before_end);
  EndSignals(const EndSignals &) = delete;
  EndSignals &operator=(const EndSignals &) = delete;
  ~EndSignals();

 private:
  void wait(const std::function<void()> &before_end) const;

  sigset_t signals_{};
  std::atomic<bool> is_over_ = false;
  std::thread thread_;
};

}  // namespace olt::cli

#endif
