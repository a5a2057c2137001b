#include "bench/report.h"

#include <fmt/format.h>

#include <cstdio>
#include <exception>

namespace olt::bench {

namespace {

/// Four digits, without an exponent.
std::string number(double value) {
  return value < 1000 ? fmt::format("{:.4g}", value) : fmt::format("{:.0f}", value);
}

std::vector<double> ratios_by_round(const Times &times, const Times &against) {
  std::vector<double> ratios;
  ratios.reserve(times.medians.size());
  for (std::size_t i = 0; i < times.medians.size(); ++i) {
    ratios.push_back(times.medians[i] / against.medians[i]);
  }
  return ratios;
}

std::string goal_text(const Row &row) {
  switch (row.goal.of) {
    case Goal::Of::kRatioAtMost:
      return fmt::format("ratio <= {:g}", row.goal.limit);
    case Goal::Of::kRatioAbove:
      return fmt::format("ratio > {:g}", row.goal.limit);
    case Goal::Of::kMedianAtMost:
      return fmt::format("p50 <= {:g} {}", row.goal.limit, row.unit);
    case Goal::Of::kNothing:
      break;
  }
  return "-";
}

bool is_met(const Goal &goal, double ratio, double p50) {
  switch (goal.of) {
    case Goal::Of::kRatioAtMost:
      return ratio <= goal.limit;
    case Goal::Of::kRatioAbove:
      return ratio > goal.limit;
    case Goal::Of::kMedianAtMost:
      return p50 <= goal.limit;
    case Goal::Of::kNothing:
      break;
  }
  return true;
}

const char *verdict(const Goal &goal, double ratio, double p50) {
  if (goal.of == Goal::Of::kNothing) return "-";
  return is_met(goal, ratio, p50) ? "yes" : "no";
}

}  // namespace

void Report::add(const Row &row, const Times &times, const Times &against, double scale) {
  const double p50 = times.p50() * scale;
  const double tail = quantile(times.all, row.better == Better::kLess ? 0.99 : 0.01) * scale;
  const std::vector<double> ratios = ratios_by_round(times, against);
  const double ratio = quantile(ratios, 0.5);
  text_ += fmt::format("row\t{}\t{}\t{}\t{}\t", row.name, number(p50), number(tail), row.unit);
  if (row.against.empty()) {
    text_ += "-\t-\t-\t-\t";
  } else {
    text_ += fmt::format("{}\t{:.3f}\t{:.3f}\t{:.3f}\t", row.against, ratio, quantile(ratios, 0.1),
                         quantile(ratios, 0.9));
  }
  text_ += goal_text(row) + '\t' + verdict(row.goal, ratio, p50) + '\n';
}

void Report::add_point(const std::string &curve, double at, const std::vector<double> &values) {
  text_ += fmt::format("point\t{}\t{:.0f}\t{:.5g}\t{:.5g}\t{:.5g}\n", curve, at,
                       quantile(values, 0.1), quantile(values, 0.5), quantile(values, 0.9));
}

void Report::finish() const {
  write_file(path_, text_);
}

int run_measurement(int count, char **arguments, void (*measure)(Report &report)) {
  try {
    if (count != 2) fail("wrong arguments; expected one, the file for the results");
    pin_to_one_cpu();
    Report report(arguments[1]);
    measure(report);
    report.finish();
    return 0;
  } catch (const std::exception &exception) {
    std::fprintf(stderr, "%s: %s\n", arguments[0], exception.what());
    return 1;
  }
}

}  // namespace olt::bench
