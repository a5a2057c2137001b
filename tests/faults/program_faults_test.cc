// The daemon under every failure of a call: it serves, or it says in one line why it cannot.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <thread>
#include <utility>

#include "base/descriptor.h"
#include "oltmgmt.h"
#include "tests/faults/fault_sweep.h"
#include "tests/support/folder.h"
#include "tests/support/program.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;
using faults::is_harmless;
using faults::Plan;

/// An oltbox process with faults in its calls.
class FaultyBox {
 public:
  explicit FaultyBox(const Plan &plan) : writes_fail_(plan.call == "write") {
    setenv("OLT_RUN_DIR", run_dir().c_str(), 1);
    std::string output = folder_.write("output", "");
    std::string errors = folder_.write("errors", "");
    child_ = fork();
    if (child_ != 0) return;
    dup2(open(output.c_str(), O_WRONLY), STDOUT_FILENO);
    dup2(open(errors.c_str(), O_WRONLY), STDERR_FILENO);
    std::string text = std::to_string(plan.nth) + ' ' + std::to_string(plan.error) +
                       (plan.lasting ? " 1 " : " 0 ") + plan.call;
    setenv("OLT_FAULT", text.c_str(), 1);
    setenv("OLT_FAULT_REACHED", (folder_ / "reached").c_str(), 1);
    execute({OLTBOX, "--run-dir", run_dir(), "--state-dir", folder_ / "state", "--capture",
             folder_ / "box.pcapng"},
            {});
  }
  FaultyBox(const FaultyBox &) = delete;
  FaultyBox &operator=(const FaultyBox &) = delete;
  ~FaultyBox() {
    if (status_ < 0) kill(child_, SIGKILL);
    if (status_ < 0) waitpid(child_, nullptr, 0);
  }

  std::string run_dir() const { return folder_ / "run"; }
  std::string errors() const { return read_file(folder_ / "errors"); }
  bool reached() const { return std::filesystem::exists(folder_ / "reached"); }

  /// Waits until it is ready. @return false when it ended instead
  bool serves() {
    while (!has_ended()) {
      if (!read_file(folder_ / "output").empty()) return true;
      // The line that says so may be what could not be written.
      if (writes_fail_ && accepts(run_dir() + "/module-1000")) return true;
      std::this_thread::sleep_for(500us);
    }
    return false;
  }

  /// Asks it to end until it does, for a signal may be lost. @return exit status, or 128 and signal
  int end() {
    for (int asked = 0; !has_ended(); ++asked) {
      if (asked % 200 == 0) kill(child_, asked < 4000 ? SIGTERM : SIGKILL);
      std::this_thread::sleep_for(1ms);
    }
    return status_;
  }

 private:
  bool has_ended() {
    int status = 0;
    if (status_ < 0 && waitpid(child_, &status, WNOHANG) == child_) {
      status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    return status_ >= 0;
  }

  static bool accepts(const std::string &path) {
    Descriptor client(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return connect(client.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
  }

  const bool writes_fail_;
  Folder folder_;
  pid_t child_ = -1;
  int status_ = -1;
};

/// Each line is one of the daemon's.
bool are_lines_of_oltbox(const std::string &text) {
  for (size_t at = 0; at < text.size(); at = text.find('\n', at) + 1) {
    if (text.compare(at, 8, "oltbox: ") != 0 || text.find('\n', at) == std::string::npos) {
      return false;
    }
  }
  return true;
}

bool has_sockets(const std::string &directory) {
  if (!std::filesystem::exists(directory)) return false;
  std::filesystem::directory_iterator entries(directory);
  return std::any_of(begin(entries), end(entries),
                     [](const auto &entry) { return entry.is_socket(); });
}

TEST(Faults, OfTheDaemon) {
  auto scenario = [](const Plan &plan) {
    faults::lower_descriptor_limit();
    FaultyBox box(plan);
    if (box.serves()) {
      int32_t saved = save_system_config();
      EXPECT_TRUE(saved == 0 || !is_harmless(plan) || plan.error == EAGAIN) << saved;
      char name[32];
      get_system_basicinfofile(name);
      // A single fault happens once.
      int32_t again = save_system_config();
      EXPECT_TRUE(again == 0 || (saved == 0 && save_system_config() == 0)) << again;
      EXPECT_EQ(box.end(), 0);
      EXPECT_TRUE(are_lines_of_oltbox(box.errors())) << box.errors();
    } else {
      EXPECT_EQ(box.end(), 1);
      EXPECT_FALSE(is_harmless(plan));
      EXPECT_EQ(box.errors().find('\n'), box.errors().size() - 1) << box.errors();
      EXPECT_TRUE(are_lines_of_oltbox(box.errors())) << box.errors();
    }
    EXPECT_TRUE(plan.call == "unlink" || !has_sockets(box.run_dir()));
    return box.reached();
  };
  std::set<std::string> calls = {
      "accept4",   "bind",       "chmod",          "close",     "epoll_create1", "fcntl",
      "epoll_ctl", "epoll_wait", "eventfd",        "fchmod",    "fdopendir",     "readdir",
      "flock",     "fstat",      "fsync",          "getrlimit", "getsockopt",    "ioctl",
      "linkat",    "listen",     "lstat",          "mkdirat",   "open",          "openat",
      "read",      "readlink",   "recv",           "renameat",  "sendmsg",       "setrlimit",
      "socket",    "stat",       "timerfd_create", "unlink",    "unlinkat",      "write"};
#ifndef OLT_TEST_SANITIZED
  calls.insert("calloc");  // for the thread that writes the capture
#endif
  faults::run(
      {.scenario = scenario, .allocations = false, .calls = std::move(calls), .lasting = false});
}

}  // namespace

}  // namespace olt::test
