#include "cli/text/secret.h"

#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>

#include "cli/text/error.h"

namespace olt::cli {

namespace {

/// Turns off the terminal's echo. Keys that would send a signal are plain characters meanwhile, so
/// that no key ends the program with the echo off.
class QuietTerminal {
 public:
  QuietTerminal() {
    tcgetattr(STDIN_FILENO, &before_);
    termios quiet = before_;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO | ISIG);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
  }
  QuietTerminal(const QuietTerminal &) = delete;
  QuietTerminal &operator=(const QuietTerminal &) = delete;
  ~QuietTerminal() {
    tcsetattr(STDIN_FILENO, TCSANOW, &before_);
    static_cast<void>(std::fputc('\n', stderr));
  }

 private:
  termios before_{};
};

std::string read_line(std::string_view name) {
  std::string line;
  if (!std::getline(std::cin, line)) {
    std::cin.clear();
    wrong_usage("{}: standard input ended; expected a line with it", name);
  }
  return line;
}

}  // namespace

bool can_ask() {
  return isatty(STDIN_FILENO) == 1;
}

std::string read_secret(std::string_view name) {
  if (!can_ask()) return read_line(name);
  QuietTerminal quiet;
  fmt::print(stderr, "{}: ", name);
  return read_line(name);
}

}  // namespace olt::cli
