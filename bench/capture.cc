// What libolttrace, which comes before the platform here, adds to an exchange. OLT_CAPTURE says
// where it records.
#include <dlfcn.h>

#include <cstdlib>
#include <functional>
#include <numeric>
#include <string>
#include <vector>

#include "bench/module.h"
#include "bench/report.h"

namespace {

using namespace olt::bench;

constexpr Turns kTurns{.warm_up = 1000, .rounds = 40, .calls = 500};
constexpr double kMaxAboveUnrecorded = 1.15;

PlatformCall::Function platform_itself() {
  void *library = dlopen("liboltplatform.so.0", RTLD_NOLOAD | RTLD_LAZY);
  require(library != nullptr, "dlopen");
  void *function = dlsym(library, "platmsg_syn_result");
  require(function != nullptr, "dlsym");
  return reinterpret_cast<PlatformCall::Function>(function);
}

/// The mean of each round, in place of its calls.
Times means_of(const Times &times) {
  Times means;
  for (auto at = times.all.begin(); at != times.all.end(); at += kTurns.calls)
    means.all.push_back(std::accumulate(at, at + kTurns.calls, 0.0) / kTurns.calls);
  means.medians = means.all;
  return means;
}

void add(Report &report, const std::string &what, const Times &unrecorded, const Times &recorded) {
  report.add({.name = "not recorded" + what, .unit = "us"}, unrecorded, unrecorded);
  report.add({.name = "recorded" + what,
              .against = "not recorded" + what,
              .unit = "us",
              .goal = {.of = Goal::Of::kRatioAtMost, .limit = kMaxAboveUnrecorded}},
             recorded, unrecorded);
}

void measure(Report &report) {
  if (getenv("OLT_CAPTURE") == nullptr) {
    fail("OLT_CAPTURE: not set; expected the name of the capture, such as /tmp/%p.pcapng");
  }
  const Folder folder;
  const Module module(folder);
  PlatformCall recorded;
  PlatformCall unrecorded(platform_itself());
  const std::vector<std::function<void()>> sides = {[&] { unrecorded.exchange(); },
                                                    [&] { recorded.exchange(); }};
  const std::vector<Times> times = take_turns(sides, kTurns);
  add(report, "", times[0], times[1]);
  add(report, ", mean", means_of(times[0]), means_of(times[1]));
}

}  // namespace

int main(int count, char **arguments) {
  return run_measurement(count, arguments, measure);
}
