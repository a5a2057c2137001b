// What the simulated box keeps: how long it takes to save it, to reboot to it and to start from it,
// and what memory it takes, as it grows.
#include <oltmgmt.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "bench/report.h"
#include "platform/olthost.h"

namespace {

using namespace olt::bench;

constexpr uint32_t kInterfaces = 16;
constexpr uint32_t kPorts = 4;
constexpr uint32_t kRecordsPerPort = 5;
constexpr std::array<uint32_t, 3> kOnusPerInterface{64, 256, 1024};
constexpr int kRounds = 5;

uint32_t records(uint32_t onus) {
  return kInterfaces * onus * kPorts * kRecordsPerPort;
}

/// A running oltbox with a state of its own, which outlives it.
class Box {
 public:
  explicit Box(uint32_t onus) {
    write_file(folder_ / "topology.json",
               R"({"pon": {"interfaces": )" + std::to_string(kInterfaces) +
                   R"(, "onus_per_interface": )" + std::to_string(onus) + "}}");
    start();
    setenv("OLT_RUN_DIR", (folder_ / "run").c_str(), 1);
  }

  void restart() {
    server_.reset();
    olt_connect_through(nullptr, nullptr);
    start();
  }

  /// The most memory that it had so far, in KiB.
  double peak_memory() const {
    std::ifstream status("/proc/" + std::to_string(server_->process()) + "/status");
    for (std::string line; std::getline(status, line);) {
      if (line.starts_with("VmHWM:")) return std::stod(line.substr(6));
    }
    fail("the memory of oltbox is unknown");
  }

 private:
  void start() {
    server_.emplace(std::vector<std::string>{OLTBOX, "--run-dir", folder_ / "run", "--state-dir",
                                             folder_ / "state", "--topology",
                                             folder_ / "topology.json"});
  }

  Folder folder_;
  std::optional<Child> server_;
};

void expect_ok(const char *operation, int32_t result) {
  if (result != 0) fail(std::string(operation) + " failed");
}

/// Sets all five records of the port.
void set_port(const olt_ont_target &port) {
  olt_uni_downrate rate;
  olt_uni_block block;
  olt_uni_vlan_mode mode;
  std::memset(&rate, 1, sizeof rate);
  std::memset(&block, 'a', sizeof block);
  std::memset(&mode, 1, sizeof mode);
  expect_ok("set_ont_port_loopback", set_ont_port_loopback(&port, 1));
  expect_ok("set_ont_port_downrate", set_ont_port_downrate(&port, &rate));
  expect_ok("set_ont_port_basicinfo", set_ont_port_basicinfo(&port, &block));
  expect_ok("set_ont_port_description", set_ont_port_description(&port, &block));
  expect_ok("set_ont_port_vlanmode", set_ont_port_vlanmode(&port, &mode));
}

void fill(uint32_t onus) {
  olt_ont_target port{};
  port.target_kind = 1;
  for (uint32_t interface = 1; interface <= kInterfaces; ++interface) {
    for (uint32_t onu = 1; onu <= onus; ++onu) {
      for (uint32_t number = 1; number <= kPorts; ++number) {
        const uint32_t words[] = {1, interface, onu, 1, number};
        std::memcpy(&port, words, sizeof words);
        set_port(port);
      }
    }
  }
}

struct Step {
  const char *name;
  double limit_ms;  ///< with the most records
  std::function<void(Box &)> run;
};

void measure(Report &report) {
  const std::vector<Step> steps{
      {"save", 1000, [](Box &) { expect_ok("save_system_config", save_system_config()); }},
      {"reboot to", 500, [](Box &) { expect_ok("do_reboot_system", do_reboot_system()); }},
      {"start from", 1000, [](Box &box) { box.restart(); }}};
  std::vector<std::vector<Times>> times(steps.size(), std::vector<Times>(kOnusPerInterface.size()));
  std::vector<Times> memory(kOnusPerInterface.size());
  for (size_t i = 0; i < kOnusPerInterface.size(); ++i) {
    Box box(kOnusPerInterface[i]);
    fill(kOnusPerInterface[i]);
    for (int round = 0; round < kRounds; ++round) {
      for (size_t j = 0; j < steps.size(); ++j) {
        times[j][i].all.push_back(time_of([&] { steps[j].run(box); }));
      }
      memory[i].all.push_back(box.peak_memory());
    }
    memory[i].medians = memory[i].all;
    for (auto &of_step : times) of_step[i].medians = of_step[i].all;
  }
  auto add = [&](const std::string &what, const char *unit, double limit,
                 const std::vector<Times> &values, double scale) {
    for (size_t i = 0; i < values.size(); ++i) {
      bool is_last = i + 1 == values.size();
      std::string first = "with " + std::to_string(records(kOnusPerInterface[0]));
      report.add({.name = what + " " + std::to_string(records(kOnusPerInterface[i])) + " records",
                  .against = i == 0 ? "" : first,
                  .unit = unit,
                  .goal = {.of = is_last ? Goal::Of::kMedianAtMost : Goal::Of::kNothing,
                           .limit = is_last ? limit : 0}},
                 values[i], values[0], scale);
    }
  };
  for (size_t j = 0; j < steps.size(); ++j) {
    add(std::string("oltbox ") + steps[j].name, "ms", steps[j].limit_ms, times[j], 1e-3);
  }
  add("oltbox peak memory with", "MiB", 128, memory, 1.0 / 1024);
}

}  // namespace

int main(int count, char **arguments) {
  return run_measurement(count, arguments, measure);
}
