// How the library's own cost grows with what it is given. The platform below it costs nothing, so
// the time of a call is that of the library alone. Time per element that stays flat is growth in
// proportion.
#include <oltmgmt.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bench/report.h"

namespace {

using olt::bench::Goal;
using olt::bench::Report;
using olt::bench::Times;
using olt::bench::Turns;

constexpr std::array<std::size_t, 8> kVlanCounts{1, 4, 16, 64, 256, 1024, 2048, 4094};
constexpr std::array<std::size_t, 8> kEntryCounts{1, 4, 16, 64, 256, 1024, 4096, 10000};
constexpr std::array<std::size_t, 6> kStreamSizes{1U << 10, 1U << 12, 1U << 14,
                                                  1U << 16, 1U << 18, 1U << 20};
/// What one timed call of a side handles, about, so that the clock does not count.
constexpr std::size_t kElementsPerCall = 40000;
constexpr Turns kTurns{.warm_up = 3, .rounds = 60, .calls = 5};
/// Where the call itself no longer counts; points before it are shown, not compared.
constexpr std::size_t kReference = 4;

void must_succeed(int32_t result) {
  if (result != 0) olt::bench::fail("an operation failed");
}

/// A list in memory as a caller would build it: node after node.
class VlanList {
 public:
  explicit VlanList(std::size_t count) : nodes_(count) {
    for (std::size_t i = 0; i < count; ++i) {
      nodes_[i].vlan_first = static_cast<uint16_t>(i + 1);
      if (i > 0) nodes_[i - 1].next = &nodes_[i];
    }
    list_.head = nodes_.data();
    list_.count = static_cast<int32_t>(count);
  }

  VlanList(const VlanList &) = delete;
  VlanList &operator=(const VlanList &) = delete;
  ~VlanList() = default;

  const olt_vlan_list &list() const { return list_; }

 private:
  std::vector<olt_vlan_node> nodes_;
  olt_vlan_list list_{};
};

/// Microseconds of one call to nanoseconds of one element.
std::vector<double> per_element(const Times &times, std::size_t repeats, std::size_t elements) {
  std::vector<double> values;
  for (const double median : times.medians) {
    values.push_back(median * 1000 / static_cast<double>(repeats * elements));
  }
  return values;
}

/// `make(n)` gives a function that makes one call with n elements.
template <std::size_t N, typename Make>
std::vector<std::vector<double>> measure_sizes(const std::array<std::size_t, N> &sizes,
                                               std::size_t elements_per_call, Make make) {
  std::vector<std::function<void()>> sides;
  std::vector<std::size_t> repeats;
  for (const std::size_t size : sizes) {
    repeats.push_back(elements_per_call / size + 1);
    sides.emplace_back([call = make(size), times = repeats.back()] {
      for (std::size_t i = 0; i < times; ++i) call();
    });
  }
  const std::vector<Times> times = take_turns(sides, kTurns);
  std::vector<std::vector<double>> values;
  for (std::size_t i = 0; i < N; ++i) values.push_back(per_element(times[i], repeats[i], sizes[i]));
  return values;
}

Times as_times(const std::vector<double> &values) {
  return {.all = values, .medians = values};
}

template <std::size_t N, typename Make>
void measure_growth(Report &report, const std::string &curve,
                    const std::array<std::size_t, N> &sizes, const Goal &goal, Make make) {
  const auto values = measure_sizes(sizes, kElementsPerCall, make);
  for (std::size_t i = 0; i < N; ++i) {
    report.add_point(curve, static_cast<double>(sizes[i]), values[i]);
  }
  report.add({.name = curve + " of " + std::to_string(sizes[N - 1]),
              .against = "of " + std::to_string(sizes[kReference]),
              .unit = "ns/element",
              .goal = goal},
             as_times(values[N - 1]), as_times(values[kReference]));
}

void measure_vlans(Report &report, const std::string &curve,
                   int32_t (*operation)(const olt_vlan_list *)) {
  measure_growth(report, curve, kVlanCounts, {.of = Goal::Of::kRatioAtMost, .limit = 1.25},
                 [operation](std::size_t count) {
                   return [operation, list = std::make_shared<VlanList>(count)] {
                     must_succeed(operation(&list->list()));
                   };
                 });
}

void measure_entries(Report &report) {
  measure_growth(report, "authentication entries", kEntryCounts,
                 {.of = Goal::Of::kRatioAtMost, .limit = 1.25}, [](std::size_t count) {
                   return [entries = std::vector<olt_auth_entry>(count)] {
                     must_succeed(add_authallowed_mac(1, 1, static_cast<int32_t>(entries.size()),
                                                      entries.data()));
                   };
                 });
}

/// The caller's bytes are sent from where they lie: a call costs the same whatever their number.
void measure_streams(Report &report) {
  constexpr std::size_t kCalls = 10000;
  std::vector<std::function<void()>> sides;
  sides.reserve(kStreamSizes.size());
  for (const std::size_t size : kStreamSizes) {
    sides.emplace_back([stream = std::vector<char>(size)] {
      void *answer = nullptr;
      uint32_t length = 0;
      for (std::size_t i = 0; i < kCalls; ++i) {
        must_succeed(do_handle_epon_updatestream(
            stream.data(), static_cast<uint32_t>(stream.size()), &answer, &length));
      }
    });
  }
  const std::vector<Times> times = take_turns(sides, kTurns);
  for (std::size_t i = 0; i < kStreamSizes.size(); ++i) {
    report.add_point("update stream", static_cast<double>(kStreamSizes[i]),
                     per_element(times[i], kCalls, 1));
  }
  report.add({.name = "update stream of 1 MiB",
              .against = "of 1 KiB",
              .unit = "ns/call",
              .goal = {.of = Goal::Of::kRatioAtMost, .limit = 1.05}},
             times.back(), times.front(), 1000.0 / kCalls);
}

void measure(Report &report) {
  measure_vlans(report, "VLAN list", add_vlan_list);
  measure_vlans(report, "described VLAN list", add_vlan_descr_list);
  measure_entries(report);
  measure_streams(report);
}

}  // namespace

int main(int count, char **arguments) {
  return olt::bench::run_measurement(count, arguments, measure);
}
