// What a call of oltctl takes from start to exit, with the box that it brings along and the state
// that the box reads and writes.
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "bench/records.h"
#include "bench/report.h"

namespace {

using namespace olt::bench;

/// State of an embedded box, in a folder of its own.
struct State {
  const char *name;
  double limit_ms;
  int rounds;
  std::function<void(LargeBox &)> prepare;  ///< leaves a saved configuration; empty for none
};

void measure_with(Report &report, const State &state) {
  const Folder folder;
  if (state.prepare) {
    LargeBox box(folder / "oltmgmt/embedded");
    state.prepare(box);
    LargeBox::save();
  }
  setenv("XDG_STATE_HOME", folder.path().c_str(), 1);
  unsetenv("OLT_RUN_DIR");
  const std::vector<std::function<void()>> sides{[] { run({"true"}); },
                                                 [] {
                                                   run({OLTCTL, "get_olt_mac"});
                                                 }};
  const std::vector<Times> times =
      take_turns(sides, {.warm_up = 2, .rounds = state.rounds, .calls = 5});
  report.add({.name = std::string("oltctl get_olt_mac") + state.name,
              .against = "true",
              .unit = "ms",
              .goal = {.of = Goal::Of::kMedianAtMost, .limit = state.limit_ms}},
             times[1], times[0], 1e-3);
}

void measure(Report &report) {
  const State states[] = {
      {"", 6, 20, {}},
      {", 16384 allowed", 50, 8, [](LargeBox &) { LargeBox::allow(kMaxAllowed); }},
      {", 327680 records", 500, 4, [](LargeBox &box) { box.fill(kMaxRecords); }},
  };
  for (const State &state : states) measure_with(report, state);
}

}  // namespace

int main(int count, char **arguments) {
  return run_measurement(count, arguments, measure);
}
