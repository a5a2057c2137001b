// The region operations: their exact system calls.
#include <gtest/gtest.h>

#include <functional>

#include "oltmgmt.h"
#include "tests/flash/scripted_calls.h"

namespace olt::test {
namespace {

/// One row: an operation that succeeds, and its calls.
struct Row {
  const char *name;
  std::function<int32_t()> operation;
  int32_t result;
  Lines calls;
};

Bytes &memory() {
  static Bytes bytes(0x240000);
  return bytes;
}

int32_t read(uint32_t region, uint32_t length) {
  return read_from_flash(region, memory().data(), length);
}

int32_t save(uint32_t region, uint32_t length) {
  return save_to_flash(region, memory().data(), length);
}

// clang-format off
std::vector<Row> rows() {
  return {
  {"save_524_to_2", [] { return save(2, 524); }, 524,
   {"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x010000 0x001000", "lseek 7 0x010000 0", "write 7 524", "close 7"}},
  {"save_1_to_1", [] { return save(1, 1); }, 1,
   {"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x000000 0x001000", "lseek 7 0x000000 0", "write 7 1", "close 7"}},
  {"save_4095_to_3", [] { return save(3, 4095); }, 4095,
   {"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x011000 0x001000", "lseek 7 0x011000 0", "write 7 4095", "close 7"}},
  {"save_4096_to_2", [] { return save(2, 4096); }, 4096,
   {"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x010000 0x001000", "lseek 7 0x010000 0", "write 7 4096", "close 7"}},
  {"save_4097_to_4", [] { return save(4, 4097); }, 4097,
   {"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x1c1000 0x002000", "lseek 7 0x1c1000 0", "write 7 4097", "close 7"}},
  {"save_all_of_1", [] { return save(1, 65536); }, 65536,
   {"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x000000 0x010000", "lseek 7 0x000000 0", "write 7 65536", "close 7"}},
  {"save_all_of_3", [] { return save(3, 720896); }, 720896,
   {"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x011000 0x0b0000", "lseek 7 0x011000 0", "write 7 720896", "close 7"}},
  {"save_all_of_4", [] { return save(4, 2355200); }, 2355200,
   {"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x1c1000 0x23f000", "lseek 7 0x1c1000 0", "write 7 2355200", "close 7"}},
  {"save_all_of_5", [] { return save(5, 1048576); }, 1048576,
   {"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x0c1000 0x100000", "lseek 7 0x0c1000 0", "write 7 1048576", "close 7"}},
  {"save_nothing_to_5", [] { return save(5, 0); }, 0,
   {"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x0c1000 0x000000", "close 7"}},

  {"read_all_of_1", [] { return read(1, 65536); }, 65536,
   {"open /dev/mtd0 0x2", "lseek 7 0x000000 0", "read 7 65536", "close 7"}},
  {"read_too_much_of_1", [] { return read(1, 0x20000); }, 65536,
   {"open /dev/mtd0 0x2", "lseek 7 0x000000 0", "read 7 65536", "close 7"}},
  {"read_too_much_of_2", [] { return read(2, 4097); }, 4096,
   {"open /dev/mtd0 0x2", "lseek 7 0x010000 0", "read 7 4096", "close 7"}},
  {"read_too_much_of_3", [] { return read(3, 0xffffffff); }, 720896,
   {"open /dev/mtd0 0x2", "lseek 7 0x011000 0", "read 7 720896", "close 7"}},
  {"read_too_much_of_4", [] { return read(4, 0x80000000); }, 2355200,
   {"open /dev/mtd0 0x2", "lseek 7 0x1c1000 0", "read 7 2355200", "close 7"}},
  {"read_too_much_of_5", [] { return read(5, 1048577); }, 1048576,
   {"open /dev/mtd0 0x2", "lseek 7 0x0c1000 0", "read 7 1048576", "close 7"}},
  {"read_3_of_4", [] { return read(4, 3); }, 3,
   {"open /dev/mtd0 0x2", "lseek 7 0x1c1000 0", "read 7 3", "close 7"}},
  {"read_nothing_of_2", [] { return read(2, 0); }, 0,
   {"open /dev/mtd0 0x2", "lseek 7 0x010000 0", "read 7 0", "close 7"}},

  {"erase_1", [] { return erase_to_flash(1, 0, 0); }, 0,
   {"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x000000 0x010000", "close 7"}},
  {"erase_2", [] { return erase_to_flash(2, 0xffffffff, 0xffffffff); }, 0,
   {"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x010000 0x001000", "close 7"}},
  {"erase_3", [] { return erase_to_flash(3, 0x2000, 0); }, 0,
   {"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x011000 0x0b0000", "close 7"}},
  {"erase_4", [] { return erase_to_flash(4, 0, 0x1000); }, 0,
   {"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x1c1000 0x23f000", "close 7"}},
  {"erase_5", [] { return erase_to_flash(5, 1, 2); }, 0,
   {"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x0c1000 0x100000", "close 7"}},

  {"save_to_0", [] { return save(0, 1); }, -1, {}},
  {"save_to_6", [] { return save(6, 1); }, -1, {}},
  {"save_to_4294967295", [] { return save(0xffffffff, 0); }, -1, {}},
  {"read_from_0", [] { return read(0, 1); }, -1, {}},
  {"read_from_6", [] { return read(6, 1); }, -1, {}},
  {"read_from_4294967295", [] { return read(0xffffffff, 1); }, -1, {}},
  {"erase_0", [] { return erase_to_flash(0, 0, 0); }, -1, {}},
  {"erase_6", [] { return erase_to_flash(6, 0, 0); }, -1, {}},
  {"erase_2147483648", [] { return erase_to_flash(0x80000000, 0, 0); }, -1, {}},
  {"save_too_much_to_1", [] { return save(1, 0x10001); }, -1, {}},
  {"save_too_much_to_2", [] { return save(2, 4097); }, -1, {}},
  {"save_too_much_to_3", [] { return save(3, 720897); }, -1, {}},
  {"save_too_much_to_4", [] { return save(4, 2355201); }, -1, {}},
  {"save_too_much_to_5", [] { return save(5, 1048577); }, -1, {}},
  {"save_4294967295_to_4", [] { return save(4, 0xffffffff); }, -1, {}},
  };
}
// clang-format on

void PrintTo(const Row &row, std::ostream *out) {
  *out << row.name;
}

class RegionCalls : public testing::TestWithParam<Row> {};

TEST_P(RegionCalls, AreExactlyThese) {
  ScriptedCalls system;
  system.contents = Bytes(0x240000, 0x33);
  EXPECT_EQ(GetParam().operation(), GetParam().result);
  EXPECT_EQ(system.lines, GetParam().calls);
}

/// The same calls on descriptor 0.
Lines with_descriptor_0(Lines calls) {
  for (std::string &call : calls) {
    const size_t descriptor = call.find(" 7");
    if (descriptor != std::string::npos) call[descriptor + 1] = '0';
  }
  return calls;
}

TEST_P(RegionCalls, WorkWithDescriptor0) {
  ScriptedCalls system;
  system.contents = Bytes(0x240000, 0x33);
  if (!GetParam().calls.empty()) system.answer(0, 0);
  EXPECT_EQ(GetParam().operation(), GetParam().result);
  EXPECT_EQ(system.lines, with_descriptor_0(GetParam().calls));
}

/// The calls of an operation that fails: up to the failed one, and the close.
Lines calls_up_to(const Lines &calls, size_t failed) {
  Lines expected(calls.begin(), calls.begin() + static_cast<ptrdiff_t>(failed) + 1);
  if (failed > 0 && failed + 1 < calls.size()) expected.push_back("close 7");
  return expected;
}

TEST_P(RegionCalls, EndWithTheOneThatFails) {
  const Row &row = GetParam();
  for (size_t failed = 0; failed < row.calls.size(); ++failed) {
    SCOPED_TRACE(row.calls[failed]);
    const bool opening = failed == 0;
    const bool closing = failed + 1 == row.calls.size();
    ScriptedCalls system;
    system.contents = Bytes(0x240000, 0x33);
    system.answer(failed, -9);
    EXPECT_EQ(row.operation(), opening ? -2 : closing ? row.result : -9);
    EXPECT_EQ(system.lines, calls_up_to(row.calls, failed));
  }
}

INSTANTIATE_TEST_SUITE_P(Flash, RegionCalls, testing::ValuesIn(rows()),
                         [](const auto &row) { return row.param.name; });

// The bytes of each write show its place in the buffer.
TEST(SaveToFlash, ContinuesAfterAShortWrite) {
  const Bytes data = counting(524, 1);
  ScriptedCalls system;
  system.answer(3, 100).answer(5, 1);
  EXPECT_EQ(save_to_flash(2, data.data(), 524), 423);
  EXPECT_EQ(system.lines, (Lines{"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x010000 0x001000",
                                 "lseek 7 0x010000 0", "write 7 524",  //
                                 "lseek 7 0x010064 0", "write 7 424",  //
                                 "lseek 7 0x010065 0", "write 7 423",  //
                                 "close 7"}));
  EXPECT_EQ(system.written, (std::vector<Bytes>{{data.begin(), data.end()},
                                                {data.begin() + 100, data.end()},
                                                {data.begin() + 101, data.end()}}));
}

TEST(SaveToFlash, RetriesAWriteOfZeroBytes) {
  const Bytes data = counting(10, 1);
  ScriptedCalls system;
  system.answer(3, 0).answer(5, 0);
  EXPECT_EQ(save_to_flash(5, data.data(), 10), 10);
  EXPECT_EQ(system.lines, (Lines{"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x0c1000 0x001000",
                                 "lseek 7 0x0c1000 0", "write 7 10",  //
                                 "lseek 7 0x0c1000 0", "write 7 10",  //
                                 "lseek 7 0x0c1000 0", "write 7 10",  //
                                 "close 7"}));
  EXPECT_EQ(system.written, (std::vector<Bytes>{data, data, data}));
}

TEST(SaveToFlash, StopsAtASeekThatFailsHalfWay) {
  const Bytes data = counting(524, 1);
  ScriptedCalls system;
  system.answer(3, 100).answer(4, -22);
  EXPECT_EQ(save_to_flash(2, data.data(), 524), -22);
  EXPECT_EQ(system.lines,
            (Lines{"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x010000 0x001000",
                   "lseek 7 0x010000 0", "write 7 524", "lseek 7 0x010064 0", "close 7"}));
}

TEST(SaveToFlash, StopsAtAWriteThatFailsHalfWay) {
  const Bytes data = counting(524, 1);
  ScriptedCalls system;
  system.answer(3, 100).answer(5, -5);
  EXPECT_EQ(save_to_flash(2, data.data(), 524), -5);
  EXPECT_EQ(system.lines, (Lines{"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x010000 0x001000",
                                 "lseek 7 0x010000 0", "write 7 524", "lseek 7 0x010064 0",
                                 "write 7 424", "close 7"}));
}

TEST(SaveToFlash, ReturnsTheEraseResultIfThereIsNothingToWrite) {
  ScriptedCalls system;
  system.answer(1, 3);
  EXPECT_EQ(save_to_flash(3, nullptr, 0), 3);
  EXPECT_EQ(system.lines,
            (Lines{"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x011000 0x000000", "close 7"}));
}

TEST(ReadFromFlash, ReturnsAShortRead) {
  Bytes buffer(524, 0xa5);
  ScriptedCalls system;
  system.contents = {1, 2, 3};
  EXPECT_EQ(read_from_flash(2, buffer.data(), 524), 3);
  EXPECT_EQ(system.lines,
            (Lines{"open /dev/mtd0 0x2", "lseek 7 0x010000 0", "read 7 524", "close 7"}));
  EXPECT_EQ(Bytes(buffer.begin(), buffer.begin() + 5), (Bytes{1, 2, 3, 0xa5, 0xa5}));
}

TEST(EraseToFlash, ReturnsTheEraseResult) {
  ScriptedCalls system;
  system.answer(1, 5);
  EXPECT_EQ(erase_to_flash(1, 0, 0), 5);
}

TEST(ReadFromFlash, WorksWithDescriptor0) {
  Bytes buffer(4);
  ScriptedCalls system;
  system.contents = {1, 2, 3, 4};
  system.answer(0, 0);
  EXPECT_EQ(read_from_flash(1, buffer.data(), 4), 4);
  EXPECT_EQ(system.lines,
            (Lines{"open /dev/mtd0 0x2", "lseek 0 0x000000 0", "read 0 4", "close 0"}));
}

}  // namespace
}  // namespace olt::test
