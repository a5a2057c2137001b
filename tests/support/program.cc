#include "tests/support/program.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace olt::test {

namespace {

constexpr int kNotExecuted = 127;

[[noreturn]] void fail(const char *what) {
  throw std::system_error(errno, std::generic_category(), what);
}

class Pipe {
 public:
  Pipe() {
    if (pipe2(ends_, O_CLOEXEC) != 0) fail("pipe2");
  }
  Pipe(const Pipe &) = delete;
  Pipe &operator=(const Pipe &) = delete;
  ~Pipe() {
    drop(0);
    drop(1);
  }

  int reader() const { return ends_[0]; }
  int writer() const { return ends_[1]; }
  void drop_reader() { drop(0); }
  void drop_writer() { drop(1); }

 private:
  void drop(int end) {
    if (ends_[end] >= 0) close(ends_[end]);
    ends_[end] = -1;
  }

  int ends_[2] = {-1, -1};
};

/// Reads both pipes to their ends.
void drain(const Pipe &output, const Pipe &errors, Finished &finished) {
  pollfd ends[2] = {{output.reader(), POLLIN, 0}, {errors.reader(), POLLIN, 0}};
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
        ends[i].fd = -1;
      }
    }
  }
}

}  // namespace

void execute(const std::vector<std::string> &command, const std::vector<std::string> &environment) {
  // Nothing is allocated: at the fork, another thread may have been in the allocator.
  constexpr size_t kMost = 32'768;
  std::array<char *, kMost> arguments{};
  std::array<char *, kMost> variables{};
  auto is_set_from = [&environment](size_t first, const char *variable) {
    return std::any_of(environment.begin() + static_cast<ptrdiff_t>(first), environment.end(),
                       [variable](const std::string &own) {
                         size_t name = own.find('=') + 1;
                         return std::strncmp(own.c_str(), variable, name) == 0;
                       });
  };
  char **next = variables.data();
  auto add = [&](const char *variable) {
    if (next == &variables.back()) _exit(kNotExecuted);
    *next++ = const_cast<char *>(variable);
  };
  if (command.size() >= kMost) _exit(kNotExecuted);
  std::ranges::transform(command, arguments.begin(),
                         [](const std::string &word) { return const_cast<char *>(word.c_str()); });
  // Of several with one name, the last one counts.
  for (size_t i = 0; i < environment.size(); ++i)
    if (const char *own = environment[i].c_str(); !is_set_from(i + 1, own)) add(own);
  for (char **inherited = environ; *inherited != nullptr; ++inherited)
    if (!is_set_from(0, *inherited)) add(*inherited);
  environ = variables.data();
  execvp(arguments[0], arguments.data());
  _exit(kNotExecuted);
}

int wait_for(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) fail("waitpid");
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

int end_child(pid_t &child, int signal) {
  if (child <= 0) throw std::logic_error("no child; expected one to end");
  kill(child, signal);
  return wait_for(std::exchange(child, -1));
}

Finished run(const std::vector<std::string> &command, const std::vector<std::string> &environment,
             const std::string &input) {
  Pipe in;
  Pipe out;
  Pipe err;
  pid_t child = fork();
  if (child < 0) fail("fork");
  if (child == 0) {
    dup2(in.reader(), STDIN_FILENO);
    dup2(out.writer(), STDOUT_FILENO);
    dup2(err.writer(), STDERR_FILENO);
    execute(command, environment);
  }
  in.drop_reader();
  out.drop_writer();
  err.drop_writer();
  // A program that does not read its input may be gone by now.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  if (write(in.writer(), input.data(), input.size()) < 0 && errno != EPIPE) fail("write");
  in.drop_writer();
  Finished finished;
  drain(out, err, finished);
  finished.status = wait_for(child);
  return finished;
}

}  // namespace olt::test
