// The platform under every failure of a call: clear results, nothing leaked, and it goes on.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <memory>
#include <thread>
#include <utility>

#include "tests/faults/fault_sweep.h"
#include "tests/platform/support.h"

namespace {

using namespace std::chrono_literals;
using olt::faults::FaultInjector;
using olt::faults::is_harmless;
using olt::faults::is_shortage;
using olt::faults::kNew;
using olt::faults::Plan;
using olt::test::Bytes;
using olt::test::drop_connections;

using olt::test::hex;
using olt::test::open_descriptors;
using olt::test::ServerProcess;
using olt::test::TemporaryRunDir;

/// One exchange without an allocation of its own. @return its result; the bytes of a reply are
/// compared with the expected ones.
int32_t ask(uint32_t type, const Bytes &request, const Bytes &expected) {
  void *reply = nullptr;
  uint16_t length = 0xabcd;
  uint32_t handle = 0xabcdabcd;
  uint16_t status = 0xabcd;
  int32_t result = platmsg_syn_result(type, 2, const_cast<uint8_t *>(request.data()),
                                      static_cast<uint32_t>(request.size()), &reply, &length,
                                      &handle, &status, 0, 1);
  if (result != OLT_TRANSPORT_OK) {
    EXPECT_TRUE(reply == nullptr && length == 0xabcd && handle == 0xabcdabcd && status == 0xabcd);
    return result;
  }
  EXPECT_EQ(status, 0);
  EXPECT_EQ(length, expected.size());
  EXPECT_TRUE(length == expected.size() && std::memcmp(reply, expected.data(), length) == 0);
  IPC_Free(handle);
  return result;
}

void expect_documented(const Plan &plan, int32_t result) {
  if (is_harmless(plan)) {
    EXPECT_EQ(result, OLT_TRANSPORT_OK);
  }
  if (result == OLT_TRANSPORT_OK) return;
  if (is_shortage(plan)) {
    EXPECT_EQ(result, OLT_TRANSPORT_NO_RESOURCES);
    return;
  }
  EXPECT_TRUE(result == OLT_TRANSPORT_NO_MODULE || result == OLT_TRANSPORT_LOST ||
              result == OLT_TRANSPORT_REFUSED)
      << result;
}

TEST(Faults, OfAnExchange) {
  TemporaryRunDir dir;
  ServerProcess server(dir.path());
  Bytes small = hex("01 02 03");
  Bytes question = hex("30 75 00 00");
  Bytes large = olt::test::pattern(30000, 6);
  drop_connections();
  size_t descriptors = open_descriptors();
  auto scenario = [&](const Plan &plan) {
    int32_t results[3] = {};
    bool reached = false;
    {
      FaultInjector injector(plan);
      results[0] = ask(olt::test::kEcho, small, small);
      results[1] = ask(olt::test::kPattern, question, large);
      results[2] = ask(olt::test::kEcho, large, large);
      drop_connections();
      reached = injector.reached();
    }
    for (int32_t result : results) expect_documented(plan, result);
    EXPECT_EQ(ask(olt::test::kEcho, small, small), OLT_TRANSPORT_OK);
    drop_connections();
    EXPECT_EQ(open_descriptors(), descriptors);
    return reached;
  };
  std::set<std::string> calls = {"close", "connect",    "fcntl",   "ioctl",  kNew,
                                 "recv",  "getsockopt", "sendmsg", "socket", "setsockopt"};
#ifndef OLT_TEST_SANITIZED
  calls.insert("calloc");
#endif
  olt::faults::run({.scenario = scenario, .calls = calls});
}

/// Asks a module that never answers, with a time-out of 1 s.
void expect_time_out(const Plan &plan) {
  SCOPED_TRACE(olt::faults::describe(plan));
  FaultInjector injector(plan);
  auto begin = std::chrono::steady_clock::now();
  int32_t result = ask(olt::test::kSilence, {}, {});
  auto elapsed = std::chrono::steady_clock::now() - begin;
  EXPECT_TRUE(injector.reached() || plan.nth > 1);
  EXPECT_TRUE(result == OLT_TRANSPORT_TIMED_OUT ||
              (!is_harmless(plan) && result == OLT_TRANSPORT_NO_RESOURCES))
      << result;
  EXPECT_LT(elapsed, 3s);
}

// The time-out holds, whatever call fails. All at once, because each takes a second.
TEST(Faults, OfAnExchangeThatIsNotAnswered) {
  TemporaryRunDir dir;
  ServerProcess server(dir.path());
  std::vector<std::thread> threads;
  for (const char *call : {"fcntl", "setsockopt", "recv", "ppoll"}) {
    for (int error : {EINTR, EINVAL}) {
      for (int nth = 1; nth <= 3; ++nth) {
        threads.emplace_back(
            [plan = Plan{call, error, nth, error != EINTR}] { expect_time_out(plan); });
      }
    }
  }
  for (std::thread &thread : threads) thread.join();
}

/// A server on a thread of its own, with faults in its calls until they are disabled.
class FaultyServer {
 public:
  enum State { kStarting, kServing, kEnded };

  FaultyServer(const Plan &plan, const std::string &run_dir) : run_dir_(run_dir) {
    thread_ = std::thread([this, &plan] {
      FaultInjector injector(plan);
      injector_ = &injector;
      serve();
      reached_ = injector.reached();
      state_ = kEnded;
      while (!released_) std::this_thread::sleep_for(100us);
    });
    while (state_ == kStarting) std::this_thread::sleep_for(100us);
  }
  FaultyServer(const FaultyServer &) = delete;
  FaultyServer &operator=(const FaultyServer &) = delete;
  ~FaultyServer() {
    released_ = true;
    thread_.join();
  }

  bool serves() const { return state_ == kServing; }
  void disable_faults() { injector_.load()->disable(); }
  void stop() {
    olt_server_stop(server_);
    while (state_ != kEnded) std::this_thread::sleep_for(100us);
  }
  bool reached() const { return reached_; }
  /// The error line of the server; empty without one.
  const char *error() const { return error_; }
  const char *last_event() const { return event_; }

 private:
  void serve() {
    olt_server_options options{
        .run_dir = run_dir_.c_str(), .group = nullptr, .on_event = note, .context = this};
    server_ = olt_server_create(&options, error_);
    if (server_ == nullptr) return;
    if (olt_server_add(server_, 2, olt::test::act, nullptr, error_) == 0) {
      state_ = kServing;
      olt_server_run(server_, error_);
    }
    olt_server_destroy(server_);
  }

  static void note(void *context, const char *line) {
    auto &event = static_cast<FaultyServer *>(context)->event_;
    std::strncpy(event, line, sizeof event - 1);
  }

  const std::string &run_dir_;
  olt_server *server_ = nullptr;
  char error_[256] = "";
  char event_[256] = "";
  std::atomic<State> state_{kStarting};
  std::atomic<FaultInjector *> injector_{nullptr};
  std::atomic<bool> reached_{false};
  std::atomic<bool> released_{false};
  std::thread thread_;
};

bool is_one_line(const std::string &text) {
  return !text.empty() && text.find('\n') == std::string::npos;
}

/// Whether nothing of the server is left, but for files that could not be removed and a lock file
/// whose owner could not be determined.
bool is_clean(const std::string &run_dir, const Plan &plan) {
  if (plan.call == "unlink" || !std::filesystem::exists(run_dir)) return true;
  std::filesystem::directory_iterator entries(run_dir);
  return std::all_of(begin(entries), end(entries), [&plan](const auto &entry) {
    return entry.path().filename() == "module-2.lock" &&
           (plan.call == "flock" || plan.call == "fstat" || plan.call == "stat");
  });
}

TEST(Faults, OfAServer) {
  TemporaryRunDir dir;
  Bytes small = hex("01 02 03");
  Bytes delay = hex("05 00 00 00");
  Bytes large = olt::test::pattern(30000, 6);
  drop_connections();
  size_t descriptors = open_descriptors();
  auto scenario = [&](const Plan &plan) {
    bool reached = false;
    {
      olt::faults::lower_descriptor_limit();
      FaultyServer server(plan, dir.path());
      if (server.serves()) {
        std::pair<uint32_t, const Bytes &> questions[] = {
            {olt::test::kEcho, small}, {olt::test::kDelayedEcho, delay}, {olt::test::kEcho, large}};
        for (const auto &[type, bytes] : questions) {
          int32_t result = ask(type, bytes, bytes);
          // The kernel never reports EAGAIN for a socket that has bytes.
          if (is_harmless(plan) && plan.error != EAGAIN) {
            EXPECT_EQ(result, OLT_TRANSPORT_OK);
          }
          if (result == OLT_TRANSPORT_TIMED_OUT) break;
        }
        server.disable_faults();
        EXPECT_TRUE(server.serves()) << server.error();
        drop_connections();
        EXPECT_EQ(ask(olt::test::kEcho, small, small), OLT_TRANSPORT_OK) << server.last_event();
        drop_connections();
        if (server.serves()) server.stop();
        EXPECT_STREQ(server.error(), "");
      } else {
        EXPECT_FALSE(is_harmless(plan));
        EXPECT_TRUE(is_one_line(server.error())) << server.error();
      }
      reached = server.reached();
    }
    EXPECT_TRUE(is_clean(dir.path(), plan));
    EXPECT_EQ(open_descriptors(), descriptors);
    std::filesystem::remove_all(dir.path());
    return reached;
  };
  olt::faults::run(
      {.scenario = scenario,
       .calls = {"accept4",   "bind",           "chmod",           "close",      "epoll_create1",
                 "epoll_ctl", "epoll_wait",     "eventfd",         "fchmod",     "fcntl",
                 "flock",     "fstat",          "getrlimit",       "getsockopt", "ioctl",
                 "listen",    "lstat",          "mkdirat",         "open",       "openat",
                 kNew,        "recv",           "sendmsg",         "setrlimit",  "socket",
                 "stat",      "timerfd_create", "timerfd_settime", "write"}});
}

/// The error line of a server of module 2 that starts under the plan; empty when it succeeds.
std::string complaint(const Plan &plan, const TemporaryRunDir &dir, const char *group,
                      bool &reached) {
  olt_server_options options{.run_dir = dir.path().c_str(), .group = group};
  char error[256] = "";
  olt_server *server = nullptr;
  {
    FaultInjector injector(plan);
    server = olt_server_create(&options, error);
    if (server != nullptr) olt_server_add(server, 2, olt::test::act, nullptr, error);
    reached = injector.reached();
  }
  if (server != nullptr) olt_server_destroy(server);
  return error;
}

TEST(Faults, OfATakeOver) {
  TemporaryRunDir dir;
  ServerProcess(dir.path()).kill();
  ASSERT_TRUE(std::filesystem::is_socket(dir.socket(2)));
  bool reached = false;
  EXPECT_EQ(complaint({"unlink", EBUSY, 1, false}, dir, nullptr, reached),
            "\"" + dir.socket(2) + "\" cannot be removed: Device or resource busy");
  EXPECT_TRUE(reached);
  EXPECT_EQ(complaint({"unlink", EBUSY, 99, false}, dir, nullptr, reached), "");
}

// The directory is refused, whatever call fails while it is checked.
TEST(Faults, OfARunDirectoryThatWasOpenToOthers) {
  TemporaryRunDir dir;
  std::filesystem::create_directories(dir.path() + "/somebody's");
  std::filesystem::permissions(dir.path(), std::filesystem::perms(0777));
  auto scenario = [&](const Plan &plan) {
    bool reached = false;
    olt::faults::lower_descriptor_limit();
    EXPECT_TRUE(is_one_line(complaint(plan, dir, nullptr, reached)));
    return reached;
  };
  olt::faults::run({.scenario = scenario,
                    .calls = {"close", "eventfd", "epoll_create1", "epoll_ctl", "fdopendir",
                              "fstat", "getrlimit", "mkdirat", "open", "openat", kNew, "readdir",
                              "setrlimit", "timerfd_create", "write"}});
}

TEST(Faults, OfAConnectionWithinTheProcess) {
  olt::test::ServerThread server({});
  size_t descriptors = open_descriptors();
  errno = 0;
  {
    FaultInjector injector({"socketpair", EMFILE, 1, false});
    EXPECT_EQ(olt_server_connect(server.server(), 2), -1);
    EXPECT_EQ(errno, EMFILE);
  }
  {
    FaultInjector injector({kNew, ENOMEM, 1, true});
    EXPECT_EQ(olt_server_connect(server.server(), 2), -1);
    EXPECT_EQ(errno, ENOMEM);
  }
  EXPECT_EQ(open_descriptors(), descriptors);
}

// The directory has the own group already when the socket is given to it.
TEST(Faults, OfAServerForAGroup) {
  TemporaryRunDir dir;
  std::string own = std::to_string(getegid());
  std::string other = std::to_string(getegid() + 1);
  for (auto [call, group] : {std::pair("fchown", other), std::pair("chown", own)}) {
    std::filesystem::remove_all(dir.path());
    bool reached = false;
    std::string line = complaint({call, EPERM, 1, false}, dir, group.c_str(), reached);
    EXPECT_NE(line.find("cannot be given to group"), std::string::npos) << line;
    EXPECT_TRUE(reached);
    EXPECT_TRUE(!std::filesystem::exists(dir.path()) || std::filesystem::is_empty(dir.path()));
  }
}

}  // namespace
