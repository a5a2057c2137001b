#include "tests/cli/program.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace olt::tests {

namespace {

[[noreturn]] void fail(const char *what) {
  throw std::system_error(errno, std::generic_category(), what);
}

struct Pipe {
  Pipe() {
    if (pipe2(ends, O_CLOEXEC) != 0) fail("pipe2");
  }
  void drop(int end) {
    close(ends[end]);
    ends[end] = -1;
  }
  int ends[2] = {-1, -1};
};

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
        ends[i].fd = -1;
      }
    }
  }
}

}  // namespace

Folder::Folder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "oltctl-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) fail("mkdtemp");
  path_ = pattern;
}

Folder::~Folder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string Folder::write(const std::string &name, const std::string &content) const {
  std::string path = path_ + "/" + name;
  std::ofstream(path, std::ios::binary) << content;
  return path;
}

std::string read_file(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> private_environment(const Folder &folder) {
  return {"XDG_STATE_HOME=" + folder.path(), "TERM=dumb"};
}

void execute(const std::vector<std::string> &command, const std::vector<std::string> &environment) {
  std::vector<char *> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string &word : command) arguments.push_back(const_cast<char *>(word.c_str()));
  arguments.push_back(nullptr);
  unsetenv("OLT_RUN_DIR");
  for (const std::string &variable : environment) putenv(const_cast<char *>(variable.c_str()));
  execvp(arguments[0], arguments.data());
  _exit(127);
}

int wait_for(int child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) fail("waitpid");
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

Finished run(const std::vector<std::string> &command, const std::vector<std::string> &environment,
             const std::string &input) {
  Pipe in;
  Pipe out;
  Pipe err;
  pid_t child = fork();
  if (child < 0) fail("fork");
  if (child == 0) {
    dup2(in.ends[0], STDIN_FILENO);
    dup2(out.ends[1], STDOUT_FILENO);
    dup2(err.ends[1], STDERR_FILENO);
    execute(command, environment);
  }
  in.drop(0);
  out.drop(1);
  err.drop(1);
  // A program that does not read its input may be gone by now; the text is short.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  if (write(in.ends[1], input.data(), input.size()) < 0 && errno != EPIPE) fail("write");
  in.drop(1);
  Finished finished;
  drain(out.ends[0], err.ends[0], finished);
  out.drop(0);
  err.drop(0);
  finished.status = wait_for(child);
  return finished;
}

Finished Oltctl::operator()(const std::vector<std::string> &arguments,
                            const std::string &input) const {
  std::vector<std::string> command = {OLTCTL};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return run(command, private_environment(folder_), input);
}

}  // namespace olt::tests
