// What an exchange costs above the least that two processes can do: 80 bytes out and 256 back
// through the message service, against a bare poll, read and write over the same kind of socket.
// All processes share one CPU; the two take turns in short rounds, so that both see the same
// weather.
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/olthost.h"

namespace {

constexpr std::size_t kRequestSize = 80;
constexpr std::size_t kReplySize = 256;
constexpr uint32_t kModule = 2;
constexpr int kRounds = 40;
constexpr int kExchangesPerRound = 2000;
constexpr int kWarmUp = 2000;

struct Options {
  double most_allowed_ratio = 0;  ///< 0: any
};

[[noreturn]] void fail(const std::string &line) {
  throw std::runtime_error(line);
}

void require(bool holds, const char *what) {
  if (!holds) {
    fail(std::string(what) + ": " + std::strerror(errno));
  }
}

void pin_to_one_cpu() {
  cpu_set_t allowed;
  require(sched_getaffinity(0, sizeof allowed, &allowed) == 0, "sched_getaffinity");
  std::size_t last = CPU_SETSIZE - 1;
  while (!CPU_ISSET(last, &allowed)) {
    --last;
  }
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(last, &one);
  require(sched_setaffinity(0, sizeof one, &one) == 0, "sched_setaffinity");
}

/// A child process that ends with its parent, or before.
class Child {
 public:
  template <typename Body>
  explicit Child(Body body) : process_(fork()) {
    require(process_ >= 0, "fork");
    if (process_ == 0) {
      run(body);
    }
  }
  Child(const Child &) = delete;
  Child &operator=(const Child &) = delete;
  ~Child() {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }

 private:
  template <typename Body>
  [[noreturn]] static void run(Body body) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    try {
      body();
    } catch (const std::exception &exception) {
      std::fprintf(stderr, "bench_exchange: %s\n", exception.what());
    }
    _exit(0);
  }

  pid_t process_;
};

bool read_all(int socket, void *into, std::size_t size) {
  auto *bytes = static_cast<char *>(into);
  for (std::size_t filled = 0; filled < size;) {
    pollfd watched{.fd = socket, .events = POLLIN, .revents = 0};
    if (poll(&watched, 1, -1) < 0) {
      return false;
    }
    const ssize_t count = read(socket, bytes + filled, size - filled);
    if (count <= 0) {
      return false;
    }
    filled += static_cast<std::size_t>(count);
  }
  return true;
}

void serve_bare(int socket) {
  std::array<char, kRequestSize> request;
  const std::array<char, kReplySize> reply{};
  while (read_all(socket, request.data(), request.size())) {
    require(write(socket, reply.data(), reply.size()) == kReplySize, "write");
  }
}

void exchange_bare(int socket) {
  const std::array<char, kRequestSize> request{};
  std::array<char, kReplySize> reply;
  require(write(socket, request.data(), request.size()) == kRequestSize, "write");
  require(read_all(socket, reply.data(), reply.size()), "read");
}

void answer(void * /*context*/, const olt_request *request, olt_answer *answer) {
  static constexpr std::array<char, kReplySize> kReply{};
  answer->status = request->length == kRequestSize ? 0 : 1;
  answer->reply = kReply.data();
  answer->reply_length = kReplySize;
}

void serve_module(const std::string &run_dir, int ready) {
  const olt_server_options options{.run_dir = run_dir.c_str()};
  std::array<char, 256> error{};
  olt_server *server = olt_server_create(&options, error.data());
  if (server == nullptr || olt_server_add(server, kModule, answer, nullptr, error.data()) != 0) {
    fail(error.data());
  }
  require(write(ready, "r", 1) == 1, "write");
  if (olt_server_run(server, error.data()) != 0) {
    fail(error.data());
  }
}

void exchange_with_module() {
  std::array<char, kRequestSize> request{};
  void *reply = nullptr;
  uint16_t reply_length = 0;
  uint32_t handle = 0;
  uint16_t status = 0;
  const int32_t result = platmsg_syn_result(13, kModule, request.data(), request.size(), &reply,
                                            &reply_length, &handle, &status, 0, 10);
  if (result != 0 || status != 0 || reply_length != kReplySize) {
    fail(std::string("an exchange failed: ") + olt_transport_text(result));
  }
  IPC_Free(handle);
}

template <typename Exchange>
void repeat(int times, std::vector<double> &microseconds, Exchange exchange) {
  for (int i = 0; i < times; ++i) {
    const auto start = std::chrono::steady_clock::now();
    exchange();
    const std::chrono::duration<double, std::micro> took = std::chrono::steady_clock::now() - start;
    microseconds.push_back(took.count());
  }
}

double quantile(std::vector<double> values, double part) {
  const auto place = static_cast<std::ptrdiff_t>(part * static_cast<double>(values.size() - 1));
  std::nth_element(values.begin(), values.begin() + place, values.end());
  return values[static_cast<std::size_t>(place)];
}

/// A run directory of our own, removed at the end.
class TemporaryDirectory {
 public:
  TemporaryDirectory() : path_(std::filesystem::temp_directory_path() / "bench_exchange.XXXXXX") {
    require(mkdtemp(path_.data()) != nullptr, "mkdtemp");
  }
  TemporaryDirectory(const TemporaryDirectory &) = delete;
  TemporaryDirectory &operator=(const TemporaryDirectory &) = delete;
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::string &path() const { return path_; }

 private:
  std::string path_;
};

struct Measurement {
  std::vector<double> bare, module, ratios;
};

Measurement measure(int bare_socket) {
  const auto bare = [&] { exchange_bare(bare_socket); };
  std::vector<double> warm_up;
  repeat(kWarmUp, warm_up, bare);
  repeat(kWarmUp, warm_up, exchange_with_module);
  Measurement all;
  for (int round = 0; round < kRounds; ++round) {
    std::vector<double> bare_round;
    std::vector<double> module_round;
    repeat(kExchangesPerRound, bare_round, bare);
    repeat(kExchangesPerRound, module_round, exchange_with_module);
    all.ratios.push_back(quantile(module_round, 0.5) / quantile(bare_round, 0.5));
    all.bare.insert(all.bare.end(), bare_round.begin(), bare_round.end());
    all.module.insert(all.module.end(), module_round.begin(), module_round.end());
  }
  return all;
}

Options read_options(int count, char **arguments) {
  Options options;
  if (count == 1) {
    return options;
  }
  char *end = nullptr;
  if (count == 3 && std::string_view(arguments[1]) == "--check") {
    options.most_allowed_ratio = std::strtod(arguments[2], &end);
  }
  if (end == nullptr || *end != '\0' || !(options.most_allowed_ratio > 0)) {
    fail("wrong arguments; expected none, or --check RATIO with a ratio above 0");
  }
  return options;
}

Measurement measure_with_servers() {
  std::array<int, 2> bare_ends{};
  std::array<int, 2> ready{};
  require(socketpair(AF_UNIX, SOCK_STREAM, 0, bare_ends.data()) == 0, "socketpair");
  require(pipe(ready.data()) == 0, "pipe");
  const TemporaryDirectory run_dir;
  setenv("OLT_RUN_DIR", run_dir.path().c_str(), 1);
  const Child bare([&] { serve_bare(bare_ends[1]); });
  const Child module([&] { serve_module(run_dir.path(), ready[1]); });
  close(ready[1]);
  char sign{};
  if (read(ready[0], &sign, 1) != 1) {
    fail("the module did not start");
  }
  return measure(bare_ends[0]);
}

double print(const Measurement &all) {
  const double bare = quantile(all.bare, 0.5);
  const double module = quantile(all.module, 0.5);
  std::printf("%d rounds of %d exchanges, %zu bytes out, %zu back, one CPU\n", kRounds,
              kExchangesPerRound, kRequestSize, kReplySize);
  std::printf("%-24s %10s %10s\n", "", "p50 us", "p99 us");
  std::printf("%-24s %10.2f %10.2f\n", "bare poll, read, write", bare, quantile(all.bare, 0.99));
  std::printf("%-24s %10.2f %10.2f\n", "platmsg_syn_result", module, quantile(all.module, 0.99));
  std::printf("ratio of medians %.3f; over rounds: least %.3f, median %.3f, most %.3f\n",
              module / bare, quantile(all.ratios, 0), quantile(all.ratios, 0.5),
              quantile(all.ratios, 1));
  return module / bare;
}

void check(double ratio, double most_allowed) {
  if (ratio > most_allowed) {
    std::array<char, 80> line;
    std::snprintf(line.data(), line.size(), "ratio %.3f; expected at most %.3f", ratio,
                  most_allowed);
    fail(line.data());
  }
}

}  // namespace

int main(int count, char **arguments) try {
  const Options options = read_options(count, arguments);
  pin_to_one_cpu();
  const double ratio = print(measure_with_servers());
  if (options.most_allowed_ratio > 0) {
    check(ratio, options.most_allowed_ratio);
  }
  return 0;
} catch (const std::exception &exception) {
  std::fprintf(stderr, "bench_exchange: %s\n", exception.what());
  return 1;
}
