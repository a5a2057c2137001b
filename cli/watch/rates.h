/// How fast counters count.
#ifndef OLT_CLI_WATCH_RATES_H
#define OLT_CLI_WATCH_RATES_H

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "cli/output/result.h"

namespace olt::cli {

struct Counter {
  std::string name;
  uint64_t value;
};

/// The counters in a result: numbers of bytes or packets, and the numbers in sections of a listing
/// that are headed "Counters".
std::vector<Counter> counters_of(const Result &result);

struct Rate {
  std::string name;
  double per_second;
};

/// The rates of one operation's counters, from one call to the next.
class Rates {
 public:
  using Moment = std::chrono::steady_clock::time_point;

  /// Those of counters that were there at the last call and have not gone down since.
  std::vector<Rate> next(const std::vector<Counter> &counters, Moment now);

 private:
  std::map<std::string, uint64_t> before_;
  Moment then_{};
};

}  // namespace olt::cli

#endif
