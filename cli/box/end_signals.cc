#include "cli/box/end_signals.h"

#include <utility>

namespace olt::cli {

namespace {

bool is_ignored(int signal) {
  struct sigaction action {};
  sigaction(signal, nullptr, &action);
  return action.sa_handler == SIG_IGN;
}

/// Ends the program as the signal would have.
void end_by(int signal) {
  sigset_t one;
  sigemptyset(&one);
  sigaddset(&one, signal);
  static_cast<void>(raise(signal));
  pthread_sigmask(SIG_UNBLOCK, &one, nullptr);
}

}  // namespace

EndSignals::EndSignals(std::function<void()> before_end) {
  sigemptyset(&signals_);
  for (int signal : {SIGHUP, SIGINT, SIGTERM}) sigaddset(&signals_, signal);
  pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
  thread_ = std::thread([this, before_end = std::move(before_end)] { wait(before_end); });
}

EndSignals::~EndSignals() {
  is_over_ = true;
  // Wakes the thread.
  pthread_kill(thread_.native_handle(), SIGHUP);
  thread_.join();
  pthread_sigmask(SIG_UNBLOCK, &signals_, nullptr);
}

void EndSignals::wait(const std::function<void()> &before_end) const {
  int signal = 0;
  do {
    sigwait(&signals_, &signal);
    if (is_over_) return;
  } while (is_ignored(signal));
  before_end();
  end_by(signal);
}

}  // namespace olt::cli
