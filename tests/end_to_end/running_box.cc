#include "tests/end_to_end/running_box.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace olt::tests {

namespace {

constexpr int kStartMs = 20'000;

[[noreturn]] void fail(const char *what) {
  throw std::system_error(errno, std::generic_category(), what);
}

struct Pipe {
  Pipe() {
    if (pipe2(ends, O_CLOEXEC) != 0) fail("pipe2");
  }
  int ends[2] = {-1, -1};
};

pid_t start_program(const std::vector<std::string> &command,
                    const std::vector<std::string> &environment, int output, int errors) {
  std::vector<char *> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string &word : command) arguments.push_back(const_cast<char *>(word.c_str()));
  arguments.push_back(nullptr);
  pid_t child = fork();
  if (child < 0) fail("fork");
  if (child > 0) return child;
  int nothing = open("/dev/null", O_RDONLY);
  dup2(nothing, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  if (errors >= 0) dup2(errors, STDERR_FILENO);
  for (const std::string &variable : environment) putenv(const_cast<char *>(variable.c_str()));
  execv(arguments[0], arguments.data());
  _exit(127);
}

int wait_for(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) fail("waitpid");
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/// Reads both pipes to their ends.
void drain(int output, int errors, Finished &finished) {
  pollfd ends[2] = {{output, POLLIN, 0}, {errors, POLLIN, 0}};
  std::string *texts[2] = {&finished.output, &finished.errors};
  while (ends[0].fd >= 0 || ends[1].fd >= 0) {
    if (poll(ends, 2, -1) < 0 && errno != EINTR) fail("poll");
    for (int i = 0; i < 2; ++i) {
      if (ends[i].fd < 0 || ends[i].revents == 0) continue;
      char bytes[4096];
      ssize_t count = read(ends[i].fd, bytes, sizeof bytes);
      if (count > 0) {
        texts[i]->append(bytes, static_cast<size_t>(count));
      } else {
        close(ends[i].fd);
        ends[i].fd = -1;
      }
    }
  }
}

}  // namespace

Finished run(const std::vector<std::string> &command, const std::vector<std::string> &environment) {
  Pipe output;
  Pipe errors;
  pid_t child = start_program(command, environment, output.ends[1], errors.ends[1]);
  close(output.ends[1]);
  close(errors.ends[1]);
  Finished finished;
  drain(output.ends[0], errors.ends[0], finished);
  finished.status = wait_for(child);
  return finished;
}

PrivateFolder::PrivateFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "olt-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) fail("mkdtemp");
  path_ = pattern;
}

PrivateFolder::~PrivateFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

RunningBox::RunningBox() : run_dir_(folder_.path() + "/run") {
  setenv("OLT_RUN_DIR", run_dir_.c_str(), 1);
}

RunningBox::~RunningBox() {
  if (pid_ > 0) kill(pid_, SIGKILL);
  if (pid_ > 0) waitpid(pid_, nullptr, 0);
}

void RunningBox::start(const std::vector<std::string> &options) {
  std::vector<std::string> command = {OLTBOX, "--run-dir", run_dir_, "--state-dir",
                                      folder_.path() + "/state"};
  command.insert(command.end(), options.begin(), options.end());
  Pipe output;
  pid_ = start_program(command, {}, output.ends[1], -1);
  close(output.ends[1]);
  ready_ = output.ends[0];
  std::string line;
  while (line.find('\n') == std::string::npos) {
    pollfd readable = {ready_, POLLIN, 0};
    char byte = 0;
    if (poll(&readable, 1, kStartMs) <= 0 || read(ready_, &byte, 1) != 1) {
      throw std::runtime_error("oltbox did not get ready; it said: " + line);
    }
    line += byte;
  }
}

int RunningBox::end(int signal) {
  kill(pid_, signal);
  int status = wait_for(pid_);
  close(ready_);
  pid_ = -1;
  return status;
}

Finished RunningBox::oltctl(const std::vector<std::string> &arguments) const {
  std::vector<std::string> command = {OLTCTL, "--box", run_dir_};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return run(command);
}

}  // namespace olt::tests
