#include "cli/shell_signals.h"

#include <poll.h>
#include <unistd.h>

#include "cli/box/interruption.h"

namespace olt::cli {

namespace {

volatile std::sig_atomic_t got_interrupt = 0;
volatile std::sig_atomic_t got_end = 0;

/// The shell itself ends, so that the embedded box's state is still kept.
void on_shell_signal(int signal) {
  (signal == SIGINT ? got_interrupt : got_end) = 1;
  interrupt_exchanges();
}

}  // namespace

ShellSignals::ShellSignals() {
  make_exchanges_interruptible();
  struct sigaction action {};
  action.sa_handler = on_shell_signal;
  sigset_t caught;
  sigemptyset(&caught);
  for (int signal : {SIGINT, SIGTERM, SIGHUP}) {
    sigaction(signal, &action, nullptr);
    sigaddset(&caught, signal);
  }
  pthread_sigmask(SIG_BLOCK, &caught, &open_);
}

bool ShellSignals::wait_for_key() const {
  pollfd keys = {STDIN_FILENO, POLLIN, 0};
  return !told_to_end() && ppoll(&keys, 1, nullptr, &open_) > 0;
}

void ShellSignals::clear() {
  got_interrupt = 0;
  resume_exchanges();
}

bool ShellSignals::interrupted() {
  return got_interrupt != 0;
}

bool ShellSignals::told_to_end() {
  return got_end != 0;
}

ShellSignals::DuringCommand::DuringCommand(const ShellSignals &signals) {
  pthread_sigmask(SIG_SETMASK, &signals.open_, &before_);
}

ShellSignals::DuringCommand::~DuringCommand() {
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace olt::cli
