// What the next start reports after a power cut at each byte of a save of the board record.
// docs/flash.md has the same tables.
#include <gtest/gtest.h>

#include <string>

#include "oltmgmt.h"
#include "tests/flash/flash_image.h"

namespace olt::test {
namespace {

Bytes record_block(uint8_t pending, uint8_t oam_type) {
  Bytes block(4096, 0x5a);
  block[43] = 1;
  block[44] = 2;
  block[45] = 3;
  block[522] = pending;
  block[523] = oam_type;
  return block;
}

/// Everything that the operations report at the next start.
struct Report {
  uint32_t oam_type;
  bool pending;
  std::string serial;
  bool operator==(const Report &) const = default;
};

void PrintTo(const Report &report, std::ostream *out) {
  *out << "type " << report.oam_type << (report.pending ? ", pending" : ", nothing pending")
       << ", serial " << report.serial;
}

Report next_start() {
  Report report{99, false, ""};
  uint32_t pending = 0;
  char serial[10] = "";
  EXPECT_EQ(read_olt_serial(serial), 0);
  EXPECT_EQ(read_oam_type(&report.oam_type, &pending), 0);
  report.pending = pending == 1;
  report.serial = serial;
  return report;
}

/// The report after a cut at any number of bytes from first to last.
struct Row {
  uint32_t first;
  uint32_t last;
  Report report;
};

class PowerCut : public testing::Test {
 protected:
  /// Cuts the power after each number of bytes. The rows must cover all numbers up to last.
  template <typename Operation>
  void expect_rows(const char *cut, const Bytes &before, Operation operation,
                   const std::vector<Row> &rows, uint32_t last) {
    uint32_t next = 0;
    for (const Row &row : rows) {
      ASSERT_EQ(row.first, next);
      for (; next <= row.last; ++next)
        expect_row(cut + std::to_string(next), before, operation, row);
    }
    EXPECT_EQ(next, last + 1);
  }

 private:
  template <typename Operation>
  void expect_row(const std::string &cut, const Bytes &before, Operation operation,
                  const Row &row) {
    image_.put(0x10000, before);
    image_.restart(cut.c_str());
    ASSERT_EQ(operation(), -1) << cut;
    image_.restart();
    ASSERT_EQ(next_start(), row.report) << cut;
  }

  FlashImage image_;
};

int32_t change_type() {
  return write_oam_type(1, 1);
}

TEST_F(PowerCut, ErasingToChangeTheType) {
  expect_rows("erase-cut=", record_block(0, 2), change_type,
              {{0, 43, {2, false, "123"}},
               {44, 44, {2, false, "25523"}},
               {45, 45, {2, false, "2552553"}},
               {46, 523, {2, false, "255255255"}},
               {524, 4096, {255, false, "255255255"}}},
              4096);
}

std::vector<Row> writing_to_change_the_type() {
  return {{0, 43, {255, false, "255255255"}}, {44, 44, {255, false, "1255255"}},
          {45, 45, {255, false, "12255"}},    {46, 522, {255, false, "123"}},
          {523, 523, {255, true, "123"}},     {524, 524, {1, true, "123"}}};
}

TEST_F(PowerCut, WritingToChangeTheType) {
  expect_rows("cut=", record_block(0, 2), change_type, writing_to_change_the_type(), 524);
}

// Writing the record in pieces changes nothing: only the number of bytes written counts.
TEST_F(PowerCut, WritingToChangeTheTypeInPieces) {
  expect_rows("write:1:short=45 write:2:short=478 cut=", record_block(0, 2), change_type,
              writing_to_change_the_type(), 524);
}

int32_t take_up_change() {
  uint32_t type = 0;
  uint32_t pending = 0;
  return read_oam_type(&type, &pending);
}

TEST_F(PowerCut, ErasingToTakeAChangeUp) {
  expect_rows("erase-cut=", record_block(1, 1), take_up_change,
              {{0, 43, {1, true, "123"}},
               {44, 44, {1, true, "25523"}},
               {45, 45, {1, true, "2552553"}},
               {46, 522, {1, true, "255255255"}},
               {523, 523, {1, false, "255255255"}},
               {524, 4096, {255, false, "255255255"}}},
              4096);
}

TEST_F(PowerCut, WritingToTakeAChangeUp) {
  expect_rows("cut=", record_block(1, 1), take_up_change,
              {{0, 43, {255, false, "255255255"}},
               {44, 44, {255, false, "1255255"}},
               {45, 45, {255, false, "12255"}},
               {46, 523, {255, false, "123"}},
               {524, 524, {1, false, "123"}}},
              524);
}

}  // namespace
}  // namespace olt::test
