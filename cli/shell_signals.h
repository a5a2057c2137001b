/// The signals of the shell.
#ifndef OLT_CLI_SHELL_SIGNALS_H
#define OLT_CLI_SHELL_SIGNALS_H

#include <csignal>

namespace olt::cli {

/// SIGINT ends the line that is typed, or the command that runs; SIGTERM and SIGHUP end the shell,
/// too. They are delivered only while a key is awaited and while a command runs, so that none is
/// missed in between. There is one at a time.
class ShellSignals {
 public:
  ShellSignals();
  ShellSignals(const ShellSignals &) = delete;
  ShellSignals &operator=(const ShellSignals &) = delete;

  /// Whether a key can be read; not so after a signal.
  bool wait_for_key() const;

  /// Forgets an earlier SIGINT.
  static void clear();
  /// Whether SIGINT came since then.
  static bool interrupted();
  static bool told_to_end();

  /// While it exists, signals end the exchanges with the box.
  class DuringCommand {
   public:
    explicit DuringCommand(const ShellSignals &signals);
    DuringCommand(const DuringCommand &) = delete;
    DuringCommand &operator=(const DuringCommand &) = delete;
    ~DuringCommand();

   private:
    sigset_t before_{};
  };

 private:
  sigset_t open_{};
};

}  // namespace olt::cli

#endif
