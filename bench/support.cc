#include "bench/support.h"

#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>

namespace olt::bench {

namespace {

[[noreturn]] void execute(const std::vector<std::string> &command, int output) {
  std::vector<char *> words;
  words.reserve(command.size() + 1);
  for (const std::string &word : command) words.push_back(const_cast<char *>(word.c_str()));
  words.push_back(nullptr);
  dup2(output, STDOUT_FILENO);
  execvp(words[0], words.data());
  fail("cannot run " + command[0] + ": " + std::strerror(errno));
}

template <typename Body>
pid_t start(Body body) {
  const pid_t process = fork();
  require(process >= 0, "fork");
  if (process != 0) return process;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  try {
    body();
  } catch (const std::exception &exception) {
    std::fprintf(stderr, "bench: %s\n", exception.what());
  }
  _exit(1);
}

}  // namespace

void fail(const std::string &line) {
  throw std::runtime_error(line);
}

void require(bool holds, const char *what) {
  if (!holds) fail(std::string(what) + ": " + std::strerror(errno));
}

void pin_to_one_cpu() {
  cpu_set_t allowed;
  require(sched_getaffinity(0, sizeof allowed, &allowed) == 0, "sched_getaffinity");
  std::size_t last = CPU_SETSIZE - 1;
  while (!CPU_ISSET(last, &allowed)) --last;
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(last, &one);
  require(sched_setaffinity(0, sizeof one, &one) == 0, "sched_setaffinity");
}

void write_file(const std::string &path, const std::string &content) {
  std::ofstream file(path, std::ios::trunc);
  file << content << std::flush;
  if (!file) fail("cannot write " + path);
}

Child::Child(const std::function<void(int ready)> &body) {
  std::array<int, 2> ends{};
  require(pipe2(ends.data(), O_CLOEXEC) == 0, "pipe2");
  process_ = start([&] { body(ends[1]); });
  lines_ = ends[0];
  close(ends[1]);
  wait_until_ready();
}

Child::Child(const std::vector<std::string> &command)
    : Child([&](int ready) { execute(command, ready); }) {}

Child::~Child() {
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
  close(lines_);
}

void Child::wait_until_ready() {
  char character{};
  while (character != '\n') {
    if (read(lines_, &character, 1) != 1) {
      waitpid(process_, nullptr, 0);
      fail("a child ended before it served");
    }
    first_line_ += character;
  }
  first_line_.pop_back();
}

void say_ready(int ready) {
  require(write(ready, "\n", 1) == 1, "write");
}

void run(const std::vector<std::string> &command) {
  const pid_t process = start([&] { execute(command, open("/dev/null", O_WRONLY | O_CLOEXEC)); });
  int status = 0;
  require(waitpid(process, &status, 0) == process, "waitpid");
  if (status != 0) fail(command[0] + " failed");
}

double quantile(std::vector<double> values, double part) {
  const auto place = static_cast<std::ptrdiff_t>(part * static_cast<double>(values.size() - 1));
  std::nth_element(values.begin(), values.begin() + place, values.end());
  return values[static_cast<std::size_t>(place)];
}

double time_of(const std::function<void()> &call) {
  const auto begin = std::chrono::steady_clock::now();
  call();
  const std::chrono::duration<double, std::micro> took = std::chrono::steady_clock::now() - begin;
  return took.count();
}

std::vector<Times> take_turns(std::span<const std::function<void()>> sides, const Turns &turns) {
  std::vector<Times> times(sides.size());
  std::vector<double> took;
  for (const auto &side : sides) {
    for (int i = 0; i < turns.warm_up; ++i) side();
  }
  for (int round = 0; round < turns.rounds; ++round) {
    for (std::size_t i = 0; i < sides.size(); ++i) {
      took.clear();
      for (int j = 0; j < turns.calls; ++j) took.push_back(time_of(sides[i]));
      times[i].medians.push_back(quantile(took, 0.5));
      times[i].all.insert(times[i].all.end(), took.begin(), took.end());
    }
  }
  return times;
}

}  // namespace olt::bench
