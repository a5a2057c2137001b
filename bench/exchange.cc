// What an exchange costs above the least that two processes can do, and beside other ways to call
// something in another process. All of them share one CPU and take turns.
#include <functional>
#include <memory>
#include <vector>

#include "bench/bare.h"
#include "bench/contender.h"
#include "bench/module.h"
#include "bench/report.h"

namespace {

using namespace olt::bench;

constexpr Turns kTurns{.warm_up = 1000, .rounds = 40, .calls = 500};
constexpr double kMaxAboveBare = 1.15;

std::vector<Times> measure_all(const Contenders &contenders) {
  std::vector<std::function<void()>> sides;
  for (const auto &contender : contenders) {
    contender->connect();
    sides.emplace_back([side = contender.get()] { side->exchange(); });
  }
  return take_turns(sides, kTurns);
}

void measure(Report &report) {
  const Folder folder;
  const Module module(folder);
  Contenders contenders;
  contenders.push_back(std::make_unique<Bare>(kReplySize));
  contenders.push_back(std::make_unique<Operation>());
  contenders.push_back(std::make_unique<PlatformCall>());
  for (auto &rival : start_rivals(folder)) contenders.push_back(std::move(rival));

  const std::vector<Times> times = measure_all(contenders);
  const Times &bare = times[0];
  const Times &operation = times[1];
  const std::string bare_name = contenders[0]->name();
  report.add({.name = bare_name, .unit = "us"}, bare, bare);
  for (std::size_t i = 1; i <= 2; ++i) {
    report.add({.name = contenders[i]->name(),
                .against = bare_name,
                .unit = "us",
                .goal = {.of = Goal::Of::kRatioAtMost, .limit = kMaxAboveBare}},
               times[i], bare);
  }
  for (std::size_t i = 3; i < contenders.size(); ++i) {
    report.add({.name = contenders[i]->name(),
                .against = contenders[1]->name(),
                .unit = "us",
                .goal = {.of = Goal::Of::kRatioAbove, .limit = 1}},
               times[i], operation);
  }
}

}  // namespace

int main(int count, char **arguments) {
  return run_measurement(count, arguments, measure);
}
