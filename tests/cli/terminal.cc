#include "tests/cli/terminal.h"

#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

#include "tests/cli/program.h"

namespace olt::test {

namespace {

constexpr int kPatienceMs = 20'000;

}  // namespace

Terminal::Terminal(const std::vector<std::string> &command,
                   const std::vector<std::string> &environment, winsize window) {
  pid_ = forkpty(&terminal_, nullptr, nullptr, &window);
  if (pid_ < 0) throw std::system_error(errno, std::generic_category(), "forkpty");
  if (pid_ == 0) execute(command, environment);
}

Terminal::~Terminal() {
  if (pid_ > 0) end_child(pid_, SIGKILL);
  close(terminal_);
}

void Terminal::type(const std::string &keys) const {
  if (write(terminal_, keys.data(), keys.size()) < 0) {
    throw std::system_error(errno, std::generic_category(), "write");
  }
}

bool Terminal::shows(const std::string &text) {
  size_t at = transcript_.find(text, seen_);
  while (at == std::string::npos) {
    if (!read_more()) return false;
    at = transcript_.find(text, seen_);
  }
  seen_ = at + text.size();
  return true;
}

int Terminal::end() {
  while (read_more()) {
  }
  if (!hung_up_) kill(pid_, SIGKILL);
  int status = wait_for(pid_);
  pid_ = -1;
  return status;
}

bool Terminal::read_more() {
  pollfd readable = {terminal_, POLLIN, 0};
  if (poll(&readable, 1, kPatienceMs) <= 0) return false;
  char bytes[4096];
  ssize_t count = read(terminal_, bytes, sizeof bytes);
  hung_up_ = count <= 0;
  if (hung_up_) return false;
  transcript_.append(bytes, static_cast<size_t>(count));
  return true;
}

}  // namespace olt::test
