// The simulated box: how fast it starts, what memory it takes, how many clients it serves, and how
// long its listings and walks along its tables take as it grows.
#include <oltmgmt.h>

#include <array>
#include <barrier>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "bench/bare.h"
#include "bench/report.h"
#include "platform/olthost.h"

namespace {

using namespace olt::bench;

struct Size {
  uint32_t interfaces;
  uint32_t onus_per_interface;

  uint32_t onus() const { return interfaces * onus_per_interface; }
  std::string text() const { return std::to_string(onus()); }
};

constexpr std::array<Size, 3> kSizes{Size{1, 64}, Size{16, 64}, Size{16, 1024}};
/// For listings and walks. Of one interface as far as that goes: a listing is of one.
constexpr std::array<Size, 5> kListedSizes{Size{1, 64}, Size{1, 256}, Size{1, 1024}, Size{4, 1024},
                                           Size{16, 1024}};
constexpr std::array<int, 3> kClientCounts{1, 8, 64};
constexpr int kStartRounds = 15;
constexpr int kClientRounds = 15;
constexpr int kExchangesPerRound = 6400;
constexpr int kListingRounds = 20;
/// Rows of a walk that are timed together.
constexpr uint32_t kSection = 64;
constexpr double kMaxWalkGrowth = 1.25;
constexpr uint32_t kPonSlot = 1;
constexpr uint32_t kNextRow = 2;
constexpr int32_t kUnserved = 1;
constexpr int32_t kNoSuchRow = 4;

std::string topology(const Size &size) {
  return R"({"version": 1, "pon": {"interfaces": )" + std::to_string(size.interfaces) +
         R"(, "onus_per_interface": )" + std::to_string(size.onus_per_interface) + "}}";
}

/// What the i-th of several sizes is compared with: the first one, which is compared with nothing.
std::string baseline(std::size_t i, const std::string &first) {
  return i == 0 ? "" : first;
}

/// A running oltbox with a run directory and a state of its own.
class Box {
 public:
  explicit Box(const Size &size) : server_(command(size)) {}

  /// Exchanges of this process go to this box from now on.
  void use() const {
    setenv("OLT_RUN_DIR", (folder_ / "run").c_str(), 1);
    olt_connect_through(nullptr, nullptr);
  }

  /// Resident memory in KiB.
  double memory() const {
    std::ifstream status("/proc/" + std::to_string(server_.process()) + "/status");
    for (std::string line; std::getline(status, line);) {
      if (line.starts_with("VmRSS:")) return std::stod(line.substr(6));
    }
    fail("the memory of oltbox is unavailable");
  }

 private:
  std::vector<std::string> command(const Size &size) const {
    write_file(folder_ / "topology.json", topology(size));
    return {OLTBOX,
            "--run-dir",
            folder_ / "run",
            "--state-dir",
            folder_ / "state",
            "--topology",
            folder_ / "topology.json"};
  }

  Folder folder_;
  Child server_;
};

Times one_a_round(const std::vector<double> &values) {
  return {.all = values, .medians = values};
}

void measure_start(Report &report) {
  std::array<std::vector<double>, kSizes.size()> times;
  std::array<std::vector<double>, kSizes.size()> memory;
  for (int round = 0; round < kStartRounds; ++round) {
    for (std::size_t i = 0; i < kSizes.size(); ++i) {
      std::optional<Box> box;
      times[i].push_back(time_of([&] { box.emplace(kSizes[i]); }));
      memory[i].push_back(box->memory());
    }
  }
  for (std::size_t i = 0; i < kSizes.size(); ++i) {
    report.add({.name = "oltbox start with " + kSizes[i].text() + " ONUs",
                .against = baseline(i, "with " + kSizes[0].text()),
                .unit = "ms"},
               one_a_round(times[i]), one_a_round(times[0]), 1e-3);
  }
  for (std::size_t i = 0; i < kSizes.size(); ++i) {
    report.add({.name = "oltbox memory with " + kSizes[i].text() + " ONUs",
                .against = baseline(i, "with " + kSizes[0].text()),
                .unit = "MiB"},
               one_a_round(memory[i]), one_a_round(memory[0]), 1.0 / 1024);
  }
}

void ask_port_status() {
  olt_port_attributes port{};
  port.slot = 1;
  port.port = 3;
  if (get_snmp_olt_port_status(&port) != 0) fail("get_snmp_olt_port_status failed");
}

void measure_operation(Report &report) {
  Bare bare(sizeof(olt_port_attributes));
  const Box box(kSizes[0]);
  box.use();
  const std::vector<std::function<void()>> sides{[&] { bare.exchange(); }, ask_port_status};
  const auto times = take_turns(sides, {.warm_up = 1000, .rounds = 40, .calls = 500});
  report.add({.name = "operation with oltbox", .against = bare.name(), .unit = "us"}, times[1],
             times[0]);
}

/// Exchanges in a second by so many threads, each with a connection of its own.
double rate(int clients) {
  std::barrier line(clients + 1);
  std::vector<std::thread> threads;
  threads.reserve(static_cast<std::size_t>(clients));
  for (int i = 0; i < clients; ++i) {
    threads.emplace_back([&line, clients] {
      ask_port_status();
      line.arrive_and_wait();
      for (int j = 0; j < kExchangesPerRound / clients; ++j) ask_port_status();
      line.arrive_and_wait();
    });
  }
  line.arrive_and_wait();
  const double microseconds = time_of([&] { line.arrive_and_wait(); });
  for (std::thread &thread : threads) thread.join();
  return kExchangesPerRound / microseconds * 1e6;
}

void measure_clients(Report &report) {
  const Box box(kSizes[0]);
  box.use();
  std::array<std::vector<double>, kClientCounts.size()> rates;
  for (int round = 0; round < kClientRounds; ++round) {
    for (std::size_t i = 0; i < kClientCounts.size(); ++i) {
      rates[i].push_back(rate(kClientCounts[i]));
    }
  }
  for (std::size_t i = 0; i < kClientCounts.size(); ++i) {
    report.add({.name = "oltbox with clients: " + std::to_string(kClientCounts[i]),
                .against = baseline(i, "with 1"),
                .unit = "exchanges/s",
                .better = Better::kMore},
               one_a_round(rates[i]), one_a_round(rates[0]));
  }
}

using Boxes = std::array<std::unique_ptr<Box>, kListedSizes.size()>;

/// Handles each ONU of a box of that size once. @return microseconds for one, once or more.
using Pass = std::function<std::vector<double>(const Size &)>;

void expect_success(int32_t result, const char *operation) {
  if (result == kUnserved) fail("this oltbox does not serve " + std::string(operation));
  if (result != 0) fail(std::string(operation) + " failed");
}

void list_interface(uint32_t interface) {
  std::array<char, 32> name{};
  expect_success(get_onulist_file_byinteface(kPonSlot, interface, name.data()),
                 "get_onulist_file_byinteface");
}

std::vector<double> list_onus(const Size &size) {
  const double took = time_of([&] {
    for (uint32_t interface = 1; interface <= size.interfaces; ++interface) {
      list_interface(interface);
    }
  });
  return {took / size.onus()};
}

/// One exchange for each ONU: every answer says which row it is, and the next request asks for the
/// one after it. Timed in sections of the same length, whatever the size.
std::vector<double> walk_sip_settings(const Size &size) {
  olt_ont_target target{};
  target.target_kind = kNextRow;
  olt_sip_config settings{};
  std::vector<double> times;
  for (uint32_t rows = 0; rows < size.onus(); rows += kSection) {
    const double took = time_of([&] {
      for (uint32_t i = 0; i < kSection; ++i) {
        expect_success(process_snmp_onusipparaminfo(&target, &settings),
                       "process_snmp_onusipparaminfo");
      }
    });
    times.push_back(took / kSection);
  }
  if (process_snmp_onusipparaminfo(&target, &settings) != kNoSuchRow) fail("a walk does not end");
  return times;
}

void measure_passes(Report &report, const Boxes &boxes, const std::string &curve, const Goal &goal,
                    const Pass &pass) {
  std::array<Times, kListedSizes.size()> times;
  for (int round = 0; round < kListingRounds; ++round) {
    for (std::size_t i = 0; i < kListedSizes.size(); ++i) {
      boxes[i]->use();
      ask_port_status();
      const std::vector<double> took = pass(kListedSizes[i]);
      times[i].all.insert(times[i].all.end(), took.begin(), took.end());
      times[i].medians.push_back(quantile(took, 0.5));
    }
  }
  for (std::size_t i = 0; i < kListedSizes.size(); ++i) {
    report.add({.name = curve + " of " + kListedSizes[i].text() + " ONUs",
                .against = baseline(i, "of " + kListedSizes[0].text()),
                .unit = "us/ONU",
                .goal = i == 0 ? Goal{} : goal},
               times[i], times[0]);
    report.add_point(curve, kListedSizes[i].onus(), times[i].medians);
  }
}

void measure_tables(Report &report) {
  Boxes boxes;
  for (std::size_t i = 0; i < kListedSizes.size(); ++i) {
    boxes[i] = std::make_unique<Box>(kListedSizes[i]);
  }
  measure_passes(report, boxes, "listing", {}, list_onus);
  measure_passes(report, boxes, "walk", {.of = Goal::Of::kRatioAtMost, .limit = kMaxWalkGrowth},
                 walk_sip_settings);
}

void measure(Report &report) {
  measure_operation(report);
  measure_start(report);
  measure_clients(report);
  measure_tables(report);
}

}  // namespace

int main(int count, char **arguments) {
  return run_measurement(count, arguments, measure);
}
