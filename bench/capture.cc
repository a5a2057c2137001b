// What libolttrace, which comes before the platform here, adds to an exchange. OLT_CAPTURE says
// where it records.
#include <dlfcn.h>

#include <cstdlib>
#include <functional>
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
  report.add({.name = "exchange, not recorded", .unit = "us"}, times[0], times[0]);
  report.add({.name = "exchange, recorded",
              .against = "not recorded",
              .unit = "us",
              .goal = {.of = Goal::Of::kRatioAtMost, .limit = kMaxAboveUnrecorded}},
             times[1], times[0]);
}

}  // namespace

int main(int count, char **arguments) {
  return run_measurement(count, arguments, measure);
}
