// oltreplay on a capture of a million exchanges: how long it takes to start, what memory it takes,
// and how long an exchange takes.
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bench/report.h"
#include "oltplatform.h"
#include "tests/support/capture_bytes.h"

namespace {

using namespace olt::bench;
using olt::test::RecordedExchange;

constexpr uint32_t kExchanges = 1'000'000;
constexpr uint32_t kThreads = 8;
constexpr size_t kRecordSize = 80;
constexpr uint32_t kType = 14;
constexpr int kStarts = 5;
constexpr Turns kTurns{.warm_up = 1000, .rounds = 20, .calls = 1000};
constexpr double kMaxStart = 1000;        // ms
constexpr double kMaxMemory = 64 * 1024;  // KiB
/// A step through all requests that is no order of theirs.
constexpr uint32_t kStep = 7'919;

/// The i-th request: no two are equal.
olt::test::Bytes request(uint32_t i) {
  return olt::test::record(kRecordSize, {{0, olt::test::word(1)}, {4, olt::test::word(i)}});
}

void write_capture(const std::string &path) {
  std::ofstream file(path, std::ios::binary);
  file << olt::test::capture_head();
  for (uint32_t i = 0; i < kExchanges; ++i) {
    RecordedExchange exchange = {.type = kType,
                                 .request = request(i),
                                 .reply = olt::test::Bytes(kRecordSize),
                                 .exchange = i + 1,
                                 .thread = 1 + i % kThreads,
                                 .time = 1'000'000'000 + uint64_t{i} * 1000,
                                 .duration = 50'000};
    file << request_packet(exchange) << answer_packet(exchange);
  }
  file.close();
  require(!file.fail(), path.c_str());
}

/// The most resident memory that the process had, in KiB.
double peak_memory(pid_t process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with("VmHWM:")) return std::stod(line.substr(6));
  fail("the memory of oltreplay is unavailable");
}

Times one_value(double value) {
  return {.all = {value}, .medians = {value}};
}

void ask(uint32_t i) {
  olt::test::Bytes bytes = request(i);
  void *reply = nullptr;
  uint16_t length = 0;
  uint32_t handle = 0;
  uint16_t status = 0;
  int32_t result = platmsg_syn_result(kType, 2, bytes.data(), static_cast<uint32_t>(bytes.size()),
                                      &reply, &length, &handle, &status, 0, 10);
  if (result != 0 || status != 0) fail("a recorded request is not answered");
  IPC_Free(handle);
}

void measure_order(Report &report, const Folder &folder, const std::string &capture,
                   const std::string &option) {
  const std::string run_dir = folder / "run";
  setenv("OLT_RUN_DIR", run_dir.c_str(), 1);
  Times starts;
  std::unique_ptr<Child> replay;
  for (int i = 0; i < kStarts; ++i) {
    replay.reset();
    starts.all.push_back(time_of([&] {
      replay = std::make_unique<Child>(
          std::vector<std::string>{OLTREPLAY, option, "--run-dir", run_dir, capture});
    }));
  }
  starts.medians = starts.all;
  report.add({.name = "replay start " + option,
              .unit = "ms",
              .goal = {.of = Goal::Of::kMedianAtMost, .limit = kMaxStart}},
             starts, starts, 1e-3);
  uint32_t next = 0;
  const bool is_strict = option == "--strict";
  const std::vector<std::function<void()>> sides = {[&] {
    ask(next);
    next = is_strict ? next + 1 : (next + kStep) % kExchanges;
  }};
  const std::vector<Times> times = take_turns(sides, kTurns);
  report.add({.name = "replay exchange " + option, .unit = "us"}, times[0], times[0]);
  const Times memory = one_value(peak_memory(replay->process()));
  report.add({.name = "replay memory " + option,
              .unit = "KiB",
              .goal = {.of = Goal::Of::kMedianAtMost, .limit = kMaxMemory}},
             memory, memory);
}

void measure(Report &report) {
  const Folder folder;
  const std::string capture = folder / "capture";
  write_capture(capture);
  measure_order(report, folder, capture, "--match");
  measure_order(report, folder, capture, "--strict");
}

}  // namespace

int main(int count, char **arguments) {
  return run_measurement(count, arguments, measure);
}
