#include "cli/box/end_signals.h"

#include <utility>

namespace olt::cli {

namespace {

std::atomic<bool> is_watched = false;
std::atomic<bool> is_deferred = false;
std::atomic<int> noted_signal = 0;

/// @return whether the signal only had to be noted
bool note(int signal) {
  int none = 0;
  return is_deferred && noted_signal.compare_exchange_strong(none, signal);
}

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
  is_watched = true;
  thread_ = std::thread([this, before_end = std::move(before_end)] { wait(before_end); });
}

EndSignals::~EndSignals() {
  is_over_ = true;
  // Wakes the thread.
  pthread_kill(thread_.native_handle(), SIGHUP);
  thread_.join();
  is_watched = false;
  pthread_sigmask(SIG_UNBLOCK, &signals_, nullptr);
}

void EndSignals::wait(const std::function<void()> &before_end) const {
  int signal = 0;
  do {
    sigwait(&signals_, &signal);
    if (is_over_) return;
  } while (is_ignored(signal) || note(signal));
  before_end();
  end_by(signal);
}

HeldSignals::HeldSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (int signal : {SIGHUP, SIGINT, SIGTERM}) sigaddset(&signals, signal);
  pthread_sigmask(SIG_BLOCK, &signals, &mask_before_);
}

HeldSignals::~HeldSignals() {
  if (!is_watched) {
    sigset_t interrupt;
    sigemptyset(&interrupt);
    sigaddset(&interrupt, SIGINT);
    timespec none{};
    sigtimedwait(&interrupt, nullptr, &none);
  }
  pthread_sigmask(SIG_SETMASK, &mask_before_, nullptr);
}

DeferredEnd::DeferredEnd() : is_watched_(is_watched) {
  is_deferred = true;
}

DeferredEnd::~DeferredEnd() {
  is_deferred = false;
}

bool DeferredEnd::is_due() const {
  return is_watched_ ? noted_signal != 0 : has_pending_end();
}

bool has_pending_end() {
  sigset_t pending;
  sigpending(&pending);
  return sigismember(&pending, SIGINT) == 1 || sigismember(&pending, SIGTERM) == 1 ||
         sigismember(&pending, SIGHUP) == 1;
}

void end_by_noted_signal() {
  if (noted_signal != 0) end_by(noted_signal);
}

}  // namespace olt::cli
