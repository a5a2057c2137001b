#include "tests/end_to_end/running_box.h"

#include <fcntl.h>
#include <string.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "tests/support/bytes.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

/// Far longer than a start takes, even on a busy machine.
constexpr auto kLongestStart = 30s;

}  // namespace

RunningBox::RunningBox() : run_dir_(folder_ / "run") {
  setenv("OLT_RUN_DIR", run_dir_.c_str(), 1);
}

RunningBox::~RunningBox() {
  if (pid_ > 0) end(SIGKILL);
}

void RunningBox::start(const std::vector<std::string> &options) {
  std::vector<std::string> all = {"--state-dir", folder_ / "state"};
  all.insert(all.end(), options.begin(), options.end());
  start_program(OLTBOX, all);
}

void RunningBox::start_program(const std::string &program,
                               const std::vector<std::string> &options) {
  std::vector<std::string> command = {program, "--run-dir", run_dir_};
  command.insert(command.end(), options.begin(), options.end());
  const std::string output_file = folder_.write("output", "");
  const std::string errors_file = folder_.write("errors", "");
  pid_ = fork();
  if (pid_ == 0) {
    dup2(open(output_file.c_str(), O_WRONLY), STDOUT_FILENO);
    dup2(open(errors_file.c_str(), O_WRONLY), STDERR_FILENO);
    execute(command, {});
  }
  const auto deadline = steady_clock::now() + kLongestStart;
  while (!holds(output(), ": serving")) {
    if (steady_clock::now() > deadline) throw std::runtime_error("not ready: " + errors());
    std::this_thread::sleep_for(2ms);
  }
}

int RunningBox::end(int signal) {
  return end_child(pid_, signal);
}

std::string RunningBox::listing(const char (&name)[32]) const {
  return read_file(run_dir_ + "/" + std::string(name, strnlen(name, sizeof name)));
}

Finished RunningBox::oltctl(const std::vector<std::string> &arguments) const {
  std::vector<std::string> command = {OLTCTL, "--box", run_dir_};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return run(command);
}

}  // namespace olt::test
