#include "cli/text/pager.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string_view>

#include "base/descriptor.h"
#include "cli/text/terminal_size.h"

namespace olt::cli {

namespace {

constexpr int kNotStarted = 126;  ///< the shell's status from which on a command was not run

bool pages = false;

std::string_view variable(const char *name) {
  const char *value = std::getenv(name);
  return value != nullptr ? value : "";
}

/// A command for the shell; empty when there is none.
std::string pager() {
  if (!variable("PAGER").empty()) return std::string(variable("PAGER"));
  bool can_page = !variable("TERM").empty() && variable("TERM") != "dumb";
  return can_page ? "LESS=${LESS-FRX} less" : "";
}

/// Starts the command with standard input from the pipe, and the signals as a program expects them.
/// @return 0 when it does not start
pid_t start(const std::string &command, int input) {
  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
  sigset_t none;
  sigset_t defaults;
  sigemptyset(&none);
  sigemptyset(&defaults);
  for (int signal : {SIGINT, SIGPIPE, SIGXFSZ, SIGTERM, SIGHUP}) sigaddset(&defaults, signal);
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  std::string words[] = {"sh", "-c", command};
  char *const arguments[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
  pid_t child = 0;
  int error = posix_spawn(&child, "/bin/sh", &actions, &attributes, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attributes);
  return error == 0 ? child : 0;
}

/// Until all is written or nobody reads any more.
void write_all(int output, std::string_view text) {
  while (!text.empty()) {
    ssize_t count = write(output, text.data(), text.size());
    if (count < 0 && errno != EINTR) return;
    if (count > 0) text.remove_prefix(static_cast<size_t>(count));
  }
}

}  // namespace

void use_pager() {
  pages = true;
}

bool show_in_pager(const std::string &text) {
  if (!pages || isatty(STDOUT_FILENO) == 0) return false;
  auto lines = static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
  std::string command = pager();
  int ends[2];
  size_t room = terminal_size().value_or(kUsualTerminal).lines;
  if (lines < room || command.empty() || pipe2(ends, O_CLOEXEC) != 0) return false;
  Descriptor input(ends[0]);
  Descriptor output(ends[1]);
  pid_t child = start(command, input.get());
  if (child == 0) return false;
  input.close();
  write_all(output.get(), text);
  output.close();
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return !WIFEXITED(status) || WEXITSTATUS(status) < kNotStarted;
}

}  // namespace olt::cli
