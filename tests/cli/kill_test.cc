// oltctl killed at any moment: the next one starts, with the state before it or after it.

#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>

#include "base/descriptor.h"
#include "tests/cli/program.h"
#include "tests/support/bytes.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

// ./dev trust asks for more moments.
int moments_to_kill_at() {
  const char *wanted = std::getenv("OLT_TEST_KILLS");
  return wanted == nullptr ? 25 : std::stoi(wanted);
}

std::string repeated(unsigned pattern, int times) {
  std::string digits;
  for (int i = 0; i < times; ++i) digits += fmt::format("{:02x}", pattern);
  return digits;
}

/// Tells when a file is created in a folder.
class Watch {
 public:
  explicit Watch(const std::string &folder) : watch_(inotify_init1(IN_CLOEXEC)) {
    if (inotify_add_watch(watch_.get(), folder.c_str(), IN_CREATE) < 0) {
      throw std::runtime_error(folder + " cannot be watched");
    }
  }

  void wait(std::chrono::milliseconds patience) const {
    pollfd event = {watch_.get(), POLLIN, 0};
    poll(&event, 1, static_cast<int>(patience.count()));
  }

 private:
  Descriptor watch_;
};

/// A folder of state, changed by scripts that set three things to one pattern. Long enough that
/// writing it takes a while.
class PatternedState {
 public:
  PatternedState() {
    std::string entries;
    for (int i = 0; i < 1024; ++i) {
      entries += fmt::format("mac=02:00:00:00:{:02x}:{:02x}\n", i / 256, i % 256);
    }
    std::string file = oltctl_.folder().write("entries", entries);
    EXPECT_EQ(oltctl_({"add_authallowed_mac", "1", "1", '@' + file}).status, 0);
  }

  steady_clock::duration set(unsigned pattern) {
    auto begin = steady_clock::now();
    EXPECT_EQ(wait_for(start_to_set(pattern)), 0);
    return steady_clock::now() - begin;
  }

  enum class Since { kStart, kWrite };

  /// Kills it so long after its start, or after it has begun to write.
  void kill_while_it_sets(unsigned pattern, Since since, steady_clock::duration after) {
    Watch watch(oltctl_.folder() / "oltmgmt/embedded");
    pid_t child = start_to_set(pattern);
    if (since == Since::kWrite) watch.wait(10s);
    std::this_thread::sleep_for(after);
    kill(child, SIGKILL);
    int status = wait_for(child);
    EXPECT_TRUE(status == 128 + SIGKILL || status == 0) << status;
  }

  /// Reads all of it.
  std::string read() {
    Finished finished = oltctl_({"--json", "-f", reading_});
    EXPECT_EQ(finished.status, 0) << finished.errors;
    EXPECT_EQ(finished.errors, "");
    return finished.output;
  }

  static bool is(const std::string &output, unsigned pattern) {
    return holds(output, "\"" + repeated(pattern, 45) + "\"") &&
           holds(output, "\"" + repeated(pattern, 34) + "0000\"") &&
           holds(output, fmt::format("\"debug_value\":{}}}", pattern));
  }

  bool has_left_overs() const {
    return std::filesystem::exists(oltctl_.folder() / "oltmgmt/embedded/.new");
  }

 private:
  pid_t start_to_set(unsigned pattern) {
    std::string script = oltctl_.folder().write(
        "set",
        fmt::format("set_ont_sipconfiguration 1/1/1 {}\nset_ont_port_muticastrip 1/1/1:1 {}\n"
                    "process_switchdebug_value debug_op=1 debug_value={}\n",
                    repeated(pattern, 45), repeated(pattern, 34), pattern));
    auto environment = private_environment(oltctl_.folder());
    pid_t child = fork();
    if (child != 0) return child;
    dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
    execute({OLTCTL, "-f", script}, environment);
  }

  Oltctl oltctl_;
  std::string reading_ =
      oltctl_.folder().write("read",
                             "process_snmp_onusipparaminfo 1/1/1\nprocess_onu_portstrip "
                             "1/1/1:1\nprocess_switchdebug_value\n");
};

steady_clock::duration of(steady_clock::duration whole, double share) {
  return std::chrono::duration_cast<steady_clock::duration>(whole * share);
}

TEST(Kill, LeavesTheStateBeforeOrAfterIt) {
  PatternedState state;
  steady_clock::duration whole{};
  unsigned old = 0;
  ASSERT_TRUE(PatternedState::is(state.read(), old));
  while (old < 3) whole += state.set(++old) / 3;
  std::minstd_rand random(7);
  std::uniform_real_distribution<double> part(0, 1);
  const int moments = moments_to_kill_at();
  int kept = 0;
  for (int moment = 0; moment < moments; ++moment) {
    unsigned set = old % 250 + 1;
    double share = (moment + part(random)) / moments;
    if (moment % 2 == 0) {
      state.kill_while_it_sets(set, PatternedState::Since::kStart, of(2 * whole, share));
    } else {
      state.kill_while_it_sets(set, PatternedState::Since::kWrite, of(1ms, share));
    }
    std::string output = state.read();
    bool is_new = PatternedState::is(output, set);
    ASSERT_TRUE(is_new || PatternedState::is(output, old)) << output;
    ASSERT_FALSE(state.has_left_overs());
    if (is_new) ++kept;
    if (is_new) old = set;
  }
  EXPECT_GT(kept, 0);
  EXPECT_LT(kept, moments);
}

}  // namespace

}  // namespace olt::test
