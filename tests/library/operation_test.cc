#include <gtest/gtest.h>

#include <string_view>

#include "tests/library/runner.h"

using namespace olt::test;

namespace {

void add_failure(void * /*context*/, const char *line) {
  ADD_FAILURE() << line;
}

/// All rows of one operation.
class OperationTest : public testing::Test {
 public:
  explicit OperationTest(std::string_view operation) : operation_(operation) {}

  void TestBody() override {
    for (const Table *table = all_tables(); table->rows != nullptr; ++table) {
      for (size_t i = 0; i != table->count; ++i) {
        if (table->rows[i].operation != operation_) continue;
        Findings findings(add_failure, nullptr);
        run_row(table->rows[i], findings);
      }
    }
  }

 private:
  std::string_view operation_;
};

bool is_first_row(const Table &table, size_t index) {
  std::string_view operation = table.rows[index].operation;
  return index == 0 || table.rows[index - 1].operation != operation;
}

}  // namespace

int main(int argc, char **argv) {
  testing::InitGoogleTest(&argc, argv);
  for (const Table *table = all_tables(); table->rows != nullptr; ++table) {
    for (size_t i = 0; i != table->count; ++i) {
      if (!is_first_row(*table, i)) continue;
      const char *operation = table->rows[i].operation;
      testing::RegisterTest(
          "library", operation, nullptr, nullptr, __FILE__, __LINE__,
          [operation]() -> testing::Test * { return new OperationTest(operation); });
    }
  }
  return RUN_ALL_TESTS();
}
