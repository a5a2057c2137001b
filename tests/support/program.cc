#include "tests/support/program.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace olt::test {

namespace {

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
  std::vector<char *> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string &word : command) arguments.push_back(const_cast<char *>(word.c_str()));
  arguments.push_back(nullptr);
  for (const std::string &variable : environment) putenv(const_cast<char *>(variable.c_str()));
  execvp(arguments[0], arguments.data());
  _exit(127);
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
