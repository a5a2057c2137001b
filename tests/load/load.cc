// Load: 64 processes and 64 threads use one simulated box, which is stopped, killed and restarted
// meanwhile. Each reply must answer its own request; memory and descriptors must not grow.
// usage: load [SECONDS]

#include <dirent.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "platform/olthost.h"
#include "tests/end_to_end/running_box.h"
#include "tests/load/client.h"

namespace {

using namespace std::chrono_literals;
using olt::test::Client;
using olt::test::kClients;
using olt::test::RunningBox;
using olt::test::Scene;
using std::chrono::steady_clock;

constexpr uint32_t kProcesses = 64;
constexpr int kRestarts = 4;
constexpr int kMinSeconds = 12;
/// Files that may be open for a moment when a sample is taken.
constexpr long kPassingDescriptors = 4;

/// What one or more processes hold while idle.
struct Holding {
  long kib = 0;
  long descriptors = 0;
};

Holding look_at(pid_t process) {
  std::string folder = "/proc/" + std::to_string(process);
  Holding holding;
  std::ifstream status(folder + "/status");
  for (std::string word; status >> word;) {
    if (word == "VmRSS:") status >> holding.kib;
  }
  if (DIR *entries = opendir((folder + "/fd").c_str())) {
    while (readdir(entries) != nullptr) ++holding.descriptors;
    closedir(entries);
  }
  return holding;
}

/// The minimum of several samples: files that are being read come and go.
Holding holding_of(const std::vector<pid_t> &processes) {
  Holding lowest;
  for (int moment = 0; moment < 20; ++moment) {
    Holding sum;
    for (pid_t process : processes) {
      Holding one = look_at(process);
      sum.kib += one.kib;
      sum.descriptors += one.descriptors;
    }
    if (moment == 0 || sum.kib < lowest.kib) lowest.kib = sum.kib;
    if (moment == 0 || sum.descriptors < lowest.descriptors) lowest.descriptors = sum.descriptors;
    std::this_thread::sleep_for(20ms);
  }
  return lowest;
}

int complaints = 0;

/// Prints the first ones.
void complain(const std::string &line) {
  if (complaints++ < 10) fmt::print(stderr, "load: {}\n", line);
}

/// A tenth, and what an allocator keeps for each process.
void expect_no_growth(const char *who, size_t processes, const Holding &before,
                      const Holding &after) {
  fmt::print("{:<18} {:>7} KiB, then {:>7} KiB; {:>5} descriptors, then {:>5}\n", who, before.kib,
             after.kib, before.descriptors, after.descriptors);
  long allowed = before.kib / 10 + static_cast<long>(processes) * 64;
  if (after.kib > before.kib + allowed) complain(fmt::format("{}: memory grows", who));
  if (after.descriptors > before.descriptors + kPassingDescriptors)
    complain(fmt::format("{}: descriptors grow", who));
}

/// Runs the clients from the first to the last, a thread each.
[[noreturn]] void run_clients(Scene &scene, uint32_t first, uint32_t last) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  std::vector<std::thread> threads;
  for (uint32_t id = first; id < last; ++id) {
    threads.emplace_back([&scene, id] { Client(scene, id).run(); });
  }
  for (std::thread &thread : threads) thread.join();
  _exit(0);
}

std::vector<pid_t> start_clients(Scene &scene) {
  std::vector<pid_t> processes;
  for (uint32_t id = 0; id <= kProcesses; ++id) {
    pid_t child = fork();
    if (child == 0) run_clients(scene, id, id < kProcesses ? id + 1 : kClients);
    processes.push_back(child);
  }
  return processes;
}

/// Ends the box and starts it again. Exchanges may fail while the epoch is odd.
void restart(RunningBox &box, Scene &scene, int signal) {
  ++scene.epoch;
  int status = box.end(signal);
  int expected = signal == SIGTERM ? 0 : 128 + signal;
  if (status != expected) complain(fmt::format("the box ended with {}, not {}", status, expected));
  std::this_thread::sleep_for(200ms);
  box.start();
  ++scene.epoch;
}

uint64_t exchanges(const Scene &scene) {
  uint64_t sum = 0;
  for (const auto &tally : scene.tallies) sum += tally.exchanges;
  return sum;
}

/// Each client must complete a round from now on.
void expect_all_at_work(const Scene &scene) {
  std::array<uint64_t, kClients> before{};
  for (uint32_t id = 0; id < kClients; ++id) before[id] = scene.tallies[id].rounds;
  auto deadline = steady_clock::now() + 20s;
  for (uint32_t id = 0; id < kClients; ++id) {
    while (scene.tallies[id].rounds < before[id] + 2 && steady_clock::now() < deadline) {
      std::this_thread::sleep_for(5ms);
    }
    if (scene.tallies[id].rounds < before[id] + 2) complain(fmt::format("client {} hangs", id));
  }
}

void finish(Scene &scene, RunningBox &box, const std::vector<pid_t> &clients) {
  scene.over = true;
  for (pid_t client : clients) {
    if (olt::test::wait_for(client) != 0) complain("a client ended in disorder");
  }
  if (box.end(SIGTERM) != 0) complain("the box ended in disorder");
  if (olt::test::run({"/bin/sh", "-c", "ls " + box.run_dir() + "/module-*"}).status == 0) {
    complain("the box left sockets behind");
  }
}

void report(const Scene &scene, double seconds) {
  uint64_t sums[3] = {};
  for (const auto &tally : scene.tallies) {
    sums[0] += tally.exchanges;
    sums[1] += tally.absences;
    sums[2] += tally.wrong;
    if (tally.wrong > 0) complain(tally.complaint);
  }
  fmt::print("{} exchanges by {} clients in {:.0f} s; {} met no box, {} wrong\n", sums[0], kClients,
             seconds, sums[1], sums[2]);
  for (size_t kind = 0; kind < olt::test::kKinds.size(); ++kind) {
    uint64_t rounds = 0;
    for (const auto &tally : scene.tallies) rounds += tally.of_kind[kind];
    fmt::print("{:<18} {:>7} rounds\n", olt::test::kKinds[kind], rounds);
    if (rounds == 0) complain(fmt::format("nobody did {}", olt::test::kKinds[kind]));
  }
}

void load(int seconds) {
  RunningBox box;
  box.start();
  void *shared =
      mmap(nullptr, sizeof(Scene), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (shared == MAP_FAILED) throw std::runtime_error("no shared memory");
  Scene &scene = *new (shared) Scene;
  auto begin = steady_clock::now();
  std::vector<pid_t> clients = start_clients(scene);
  // The restarts take the first sixth, so that the box can be watched over the rest.
  for (int i = 0; i < kRestarts; ++i) {
    std::this_thread::sleep_for(seconds * 1000ms / 6 / kRestarts);
    restart(box, scene, i % 2 == 0 ? SIGTERM : SIGKILL);
  }
  expect_all_at_work(scene);
  std::this_thread::sleep_for(seconds * 1000ms / 12);
  std::vector<pid_t> forked(clients.begin(), clients.begin() + kProcesses);
  Holding box_before = holding_of({box.pid()});
  Holding processes_before = holding_of(forked);
  Holding threads_before = holding_of({clients.back()});
  auto watched = steady_clock::now();
  uint64_t exchanges_before = exchanges(scene);
  std::this_thread::sleep_until(begin + seconds * 1s);
  double elapsed = std::chrono::duration<double>(steady_clock::now() - watched).count();
  fmt::print("{:.0f} exchanges a second\n",
             static_cast<double>(exchanges(scene) - exchanges_before) / elapsed);
  expect_no_growth("box", 1, box_before, holding_of({box.pid()}));
  expect_no_growth("64 processes", kProcesses, processes_before, holding_of(forked));
  expect_no_growth("64 threads", 1, threads_before, holding_of({clients.back()}));
  restart(box, scene, SIGKILL);
  expect_all_at_work(scene);
  double whole = std::chrono::duration<double>(steady_clock::now() - begin).count();
  finish(scene, box, clients);
  report(scene, whole);
}

}  // namespace

int main(int argc, char **argv) {
  int seconds = 60;
  if (argc == 2) {
    std::string text = argv[1];
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    if (error != std::errc() || end != text.data() + text.size()) seconds = 0;
  }
  if (argc > 2 || seconds < kMinSeconds || seconds > 86'400) {
    fmt::print(stderr, "load: wrong arguments; expected at most one, seconds from {} to 86400\n",
               kMinSeconds);
    return 2;
  }
  try {
    load(seconds);
  } catch (const std::exception &error) {
    complain(error.what());
  }
  return complaints == 0 ? 0 : 1;
}
