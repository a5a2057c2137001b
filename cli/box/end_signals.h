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

/// While it exists, the shell gets none of these signals: has_pending_end() reports them. A SIGINT
/// that came meanwhile has then done its work.
class HeldSignals {
 public:
  HeldSignals();
  HeldSignals(const HeldSignals &) = delete;
  HeldSignals &operator=(const HeldSignals &) = delete;
  ~HeldSignals();

 private:
  sigset_t mask_before_{};
};

/// While it exists, the first such signal is only noted, so that work can end where it does no
/// harm. A second one ends the program at once. There is one at a time, on the main thread.
class DeferredEnd {
 public:
  DeferredEnd();
  DeferredEnd(const DeferredEnd &) = delete;
  DeferredEnd &operator=(const DeferredEnd &) = delete;
  ~DeferredEnd();

  /// Whether a signal has been noted, or is pending while no EndSignals exists.
  bool is_due() const;

 private:
  HeldSignals held_;
  bool is_watched_;  ///< by an EndSignals
};

/// Whether such a signal is pending, as it may be while no EndSignals exists.
bool has_pending_end();

/// Ends the program by the signal that was noted, if one was.
void end_by_noted_signal();

}  // namespace olt::cli

#endif
