// What the simulated box keeps: how long it takes to save it, to reboot to it and to start from it,
// and what memory it takes, as the records grow in number.
#include <array>
#include <cstdint>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "bench/records.h"
#include "bench/report.h"

namespace {

using namespace olt::bench;

constexpr std::array<uint32_t, 4> kRecords{1'000, 10'000, 100'000, kMaxRecords};
constexpr int kRounds = 7;

/// The most memory that a process had so far, in KiB.
double peak_memory(pid_t process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return std::stod(line.substr(6));
  }
  fail("the memory of oltbox is unknown");
}

struct Step {
  const char *name;
  double limit_ms;  ///< with the most records
  std::function<void(LargeBox &)> run;
};

using TimesBySize = std::array<Times, kRecords.size()>;

void add(Report &report, const Row &row, TimesBySize &values, double scale) {
  const std::string first = std::string("with ") + std::to_string(kRecords[0]);
  for (size_t i = 0; i < values.size(); ++i) {
    values[i].medians = values[i].all;
    Row with_size = row;
    with_size.name += ' ' + std::to_string(kRecords[i]) + " records";
    with_size.against = i == 0 ? "" : first;
    if (i + 1 < values.size()) with_size.goal = {};
    report.add(with_size, values[i], values[0], scale);
    std::vector<double> scaled;
    for (double value : values[i].all) scaled.push_back(value * scale);
    report.add_point(row.name, kRecords[i], scaled);
  }
}

void measure(Report &report) {
  const std::vector<Step> steps{{"save", 1000, [](LargeBox &) { LargeBox::save(); }},
                                {"reboot to", 500, [](LargeBox &) { LargeBox::reboot(); }},
                                {"start from", 1000, [](LargeBox &box) { box.restart(); }}};
  std::vector<TimesBySize> times(steps.size());
  TimesBySize memory;
  for (size_t i = 0; i < kRecords.size(); ++i) {
    const Folder state;
    LargeBox box(state / "box");
    box.fill(kRecords[i]);
    for (int round = 0; round < kRounds; ++round) {
      for (size_t j = 0; j < steps.size(); ++j) {
        times[j][i].all.push_back(time_of([&] { steps[j].run(box); }));
      }
      LargeBox::save();
      LargeBox::reboot();
      memory[i].all.push_back(peak_memory(box.process()));
    }
  }
  for (size_t j = 0; j < steps.size(); ++j) {
    add(report,
        {.name = std::string("oltbox ") + steps[j].name,
         .against = {},
         .unit = "ms",
         .goal = {.of = Goal::Of::kMedianAtMost, .limit = steps[j].limit_ms}},
        times[j], 1e-3);
  }
  add(report,
      {.name = "oltbox peak memory with",
       .against = {},
       .unit = "MiB",
       .goal = {.of = Goal::Of::kMedianAtMost, .limit = 128}},
      memory, 1.0 / 1024);
}

}  // namespace

int main(int count, char **arguments) {
  return run_measurement(count, arguments, measure);
}
