/// The reports of the mock during a test.
#ifndef OLT_TESTS_MOCK_REPORTS_H
#define OLT_TESTS_MOCK_REPORTS_H

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "oltmock.h"

namespace olt::test {

/// Keeps the reports. A test takes those that it expects; any other one fails it.
class MockTest : public testing::Test {
 protected:
  MockTest() { olt_mock_on_failure(keep, this); }
  ~MockTest() override {
    olt_mock_finish();
    olt_mock_on_failure(nullptr, nullptr);
    EXPECT_EQ(taken(), "");
  }

  /// The reports since the last time, a line each or more.
  std::string taken() {
    std::lock_guard guard(lock_);
    return std::exchange(reports_, "");
  }

  /// What olt_mock_finish reports.
  std::string finish() {
    olt_mock_finish();
    return taken();
  }

 private:
  static void keep(void *context, const char *text) {
    auto *test = static_cast<MockTest *>(context);
    std::lock_guard guard(test->lock_);
    test->reports_ += std::string(text) + '\n';
  }

  std::mutex lock_;
  std::string reports_;
};

}  // namespace olt::test

#endif
