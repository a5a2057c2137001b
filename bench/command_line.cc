// What a call of oltctl takes from start to exit, with the box that it brings along.
#include <cstdlib>
#include <functional>
#include <vector>

#include "bench/report.h"

namespace {

using namespace olt::bench;

constexpr Turns kTurns{.warm_up = 3, .rounds = 20, .calls = 5};
constexpr double kMostMilliseconds = 20;

void measure(Report &report) {
  const Folder folder;
  setenv("XDG_STATE_HOME", folder.path().c_str(), 1);
  unsetenv("OLT_RUN_DIR");
  const std::vector<std::function<void()>> sides{[] { run({"true"}); },
                                                 [] {
                                                   run({OLTCTL, "get_olt_mac"});
                                                 }};
  const std::vector<Times> times = take_turns(sides, kTurns);
  report.add({.name = "oltctl get_olt_mac",
              .against = "true",
              .unit = "ms",
              .goal = {.of = Goal::Of::kMedianAtMost, .limit = kMostMilliseconds}},
             times[1], times[0], 1e-3);
}

}  // namespace

int main(int count, char **arguments) {
  return run_measurement(count, arguments, measure);
}
