/// What a measurement found, as lines with tabs; bench/run.sh makes a table of all of them.
#ifndef OLT_BENCH_REPORT_H
#define OLT_BENCH_REPORT_H

#include <string>
#include <utility>
#include <vector>

#include "bench/support.h"

namespace olt::bench {

struct Goal {
  enum class Of { kNothing, kRatioAtMost, kRatioAbove, kMedianAtMost };
  Of of = Of::kNothing;
  double limit = 0;
};

/// Whether the tail of the distribution is the slow or the small one.
enum class Better { kLess, kMore };

/// One thing measured against another in the same run.
struct Row {
  std::string name;
  std::string against;  ///< empty: what others are compared with
  std::string unit;
  Goal goal;
  Better better = Better::kLess;
};

class Report {
 public:
  /// Rows go to the file.
  explicit Report(std::string path) : path_(std::move(path)) {}

  /// Median and tail of all calls, and how the ratio of both sides spreads over the rounds. `scale`
  /// takes the values to the row's unit.
  void add(const Row &row, const Times &times, const Times &against, double scale = 1);
  /// A point of a curve: where it stands, and the time of each round there.
  void add_point(const std::string &curve, double at, const std::vector<double> &values);
  /// Writes the file, whole. Nothing is written before.
  void finish() const;

 private:
  std::string path_;
  std::string text_;
};

/// Measures on one CPU, reports into the file that is the program's only argument, and turns
/// exceptions into an error line. @return the exit status.
int run_measurement(int count, char **arguments, void (*measure)(Report &report));

}  // namespace olt::bench

#endif
