/// Runs the rows of operation_table.h through everything that can happen to a call: every alignment
/// of replies and buffers, every way in which an exchange can fail, a failing allocator.
#ifndef OLT_TESTS_LIBRARY_RUNNER_H
#define OLT_TESTS_LIBRARY_RUNNER_H

#include "tests/library/operation_table.h"

namespace olt::test {

/// Passes findings on, one line each: "operation, case: expectation and actual value".
class Findings {
 public:
  using Sink = void (*)(void *context, const char *line);

  Findings(Sink sink, void *context) : sink_(sink), context_(context) {}

  /// Sets the beginning of the findings that follow.
  void about(const Row &row, const char *format, ...) __attribute__((format(printf, 3, 4)));
  void add(const char *format, ...) __attribute__((format(printf, 2, 3)));

  unsigned count() const { return count_; }

 private:
  Sink sink_;
  void *context_;
  char about_[160] = "";
  unsigned count_ = 0;
};

void run_row(const Row &row, Findings &findings);

}  // namespace olt::test

#endif
