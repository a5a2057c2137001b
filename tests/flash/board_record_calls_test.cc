// The operations on the board record: their exact system calls, and every byte.
#include <gtest/gtest.h>

#include "oltmgmt.h"
#include "tests/flash/scripted_calls.h"

namespace olt::test {
namespace {

Lines load_calls() {
  return {"open /dev/mtd0 0x2", "lseek 7 0x010000 0", "read 7 524", "close 7"};
}

Lines save_calls() {
  return {"open /dev/mtd0 0x2", "ioctl 7 0x80084d02 0x010000 0x001000", "lseek 7 0x010000 0",
          "write 7 524", "close 7"};
}

Lines load_and_save_calls() {
  Lines calls = load_calls();
  for (const std::string &call : save_calls()) calls.push_back(call);
  return calls;
}

/// The calls when the one at this place fails: up to it, and the close.
Lines ending_with(Lines calls, size_t failed) {
  calls.resize(failed + 1);
  if (calls.back() != "open /dev/mtd0 0x2") calls.emplace_back("close 7");
  return calls;
}

/// A record with different bytes in neighbouring places.
Bytes board_record(uint8_t pending, uint8_t oam_type) {
  Bytes bytes(524);
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i * 3 + 5);
  bytes[522] = pending;
  bytes[523] = oam_type;
  return bytes;
}

Bytes with_serial(uint8_t first, uint8_t second, uint8_t third) {
  Bytes bytes = board_record(0, 0);
  bytes[43] = first;
  bytes[44] = second;
  bytes[45] = third;
  return bytes;
}

struct OamType {
  uint32_t type = 0xaaaaaaaa;
  uint32_t pending = 0xbbbbbbbb;
  int32_t read() { return read_oam_type(&type, &pending); }
};

TEST(ReadOamType, ReadsTheTypeWhenNothingIsPending) {
  for (const uint8_t pending : Bytes{0, 2, 128, 255}) {
    ScriptedCalls system;
    system.contents = board_record(pending, 2);
    OamType got;
    EXPECT_EQ(got.read(), 0);
    EXPECT_EQ(got.type, 2U);
    EXPECT_EQ(got.pending, 0xbbbbbbbb);
    EXPECT_EQ(system.lines, load_calls());
  }
}

TEST(ReadOamType, WidensTheTypeWithoutItsSign) {
  ScriptedCalls system;
  system.contents = board_record(0, 0xfe);
  OamType got;
  EXPECT_EQ(got.read(), 0);
  EXPECT_EQ(got.type, 0x000000feU);
}

TEST(ReadOamType, ClearsThePendingFlag) {
  ScriptedCalls system;
  system.contents = board_record(1, 1);
  OamType got;
  EXPECT_EQ(got.read(), 0);
  EXPECT_EQ(got.type, 1U);
  EXPECT_EQ(got.pending, 1U);
  EXPECT_EQ(system.lines, load_and_save_calls());
  EXPECT_EQ(system.written, std::vector<Bytes>{board_record(0, 1)});
}

TEST(ReadOamType, FailsIfAnyCallOfTheLoadFails) {
  for (size_t failed = 0; failed < 3; ++failed) {
    ScriptedCalls system;
    system.contents = board_record(1, 1);
    system.answer(failed, -5);
    OamType got;
    EXPECT_EQ(got.read(), -1);
    EXPECT_EQ(got.type, 0xaaaaaaaa);
    EXPECT_EQ(got.pending, 0xbbbbbbbb);
    EXPECT_EQ(system.lines, ending_with(load_calls(), failed));
  }
}

TEST(ReadOamType, FailsWhenNothingIsRead) {
  ScriptedCalls system;
  OamType got;
  EXPECT_EQ(got.read(), -1);
  EXPECT_EQ(got.type, 0xaaaaaaaa);
  EXPECT_EQ(system.lines, load_calls());
}

TEST(ReadOamType, ReturnsTheTypeEvenIfTheSaveFails) {
  const Lines all = load_and_save_calls();
  for (size_t failed = 4; failed < 8; ++failed) {
    SCOPED_TRACE(all[failed]);
    ScriptedCalls system;
    system.contents = board_record(1, 2);
    system.answer(failed, -5);
    OamType got;
    EXPECT_EQ(got.read(), -1);
    EXPECT_EQ(got.type, 2U);
    EXPECT_EQ(got.pending, 1U);
    EXPECT_EQ(system.lines, ending_with(all, failed));
  }
}

TEST(ReadOamType, IgnoresAFailingClose) {
  ScriptedCalls system;
  system.contents = board_record(1, 2);
  system.answer(3, -5).answer(8, -5);
  OamType got;
  EXPECT_EQ(got.read(), 0);
  EXPECT_EQ(system.lines, load_and_save_calls());
}

TEST(ReadOamType, SavesInSeveralWritesIfTheDeviceTakesLess) {
  ScriptedCalls system;
  system.contents = board_record(1, 2);
  system.answer(7, 523);
  OamType got;
  EXPECT_EQ(got.read(), 0);
  EXPECT_EQ(system.written, (std::vector<Bytes>{board_record(0, 2), Bytes{2}}));
}

// Bytes that a short read does not return count as zero.
TEST(ReadOamType, AcceptsAShortRecord) {
  ScriptedCalls system;
  system.contents = {9, 9, 9};
  OamType got;
  EXPECT_EQ(got.read(), 0);
  EXPECT_EQ(got.type, 0U);
  EXPECT_EQ(got.pending, 0xbbbbbbbb);
  EXPECT_EQ(system.lines, load_calls());
}

TEST(WriteOamType, ChangesTwoBytesAndKeepsTheOthers) {
  ScriptedCalls system;
  system.contents = board_record(0x77, 0x66);
  EXPECT_EQ(write_oam_type(2, 1), 0);
  EXPECT_EQ(system.lines, load_and_save_calls());
  EXPECT_EQ(system.written, std::vector<Bytes>{board_record(1, 2)});
}

TEST(WriteOamType, StoresTheLowByteOfTheFlag) {
  ScriptedCalls system;
  system.contents = board_record(0, 0);
  EXPECT_EQ(write_oam_type(0, 0xffffff02), 0);
  EXPECT_EQ(system.written, std::vector<Bytes>{board_record(2, 0)});
}

TEST(WriteOamType, RefusesATypeAboveTwo) {
  for (const uint32_t type : {3U, 0x100U, 0x80000000U, 0xffffffffU}) {
    ScriptedCalls system;
    system.contents = board_record(0, 0);
    EXPECT_EQ(write_oam_type(type, 1), -1);
    EXPECT_EQ(system.lines, Lines{});
  }
}

TEST(WriteOamType, FailsIfAnyCallButCloseFails) {
  const Lines all = load_and_save_calls();
  for (size_t failed = 0; failed < all.size(); ++failed) {
    SCOPED_TRACE(failed);
    const bool closing = all[failed] == "close 7";
    ScriptedCalls system;
    system.contents = board_record(0, 0);
    system.answer(failed, -5);
    EXPECT_EQ(write_oam_type(1, 1), closing ? 0 : -1);
    EXPECT_EQ(system.lines, closing ? all : ending_with(all, failed));
  }
}

TEST(WriteOamType, FailsWhenNothingIsRead) {
  ScriptedCalls system;
  EXPECT_EQ(write_oam_type(1, 1), -1);
  EXPECT_EQ(system.lines, load_calls());
}

TEST(WriteOamType, SavesWholeAfterAShortRead) {
  ScriptedCalls system;
  system.contents = {9};
  EXPECT_EQ(write_oam_type(1, 1), 0);
  EXPECT_EQ(system.lines, load_and_save_calls());
  ASSERT_EQ(system.written.size(), 1U);
  EXPECT_EQ(system.written[0][0], 9);
  EXPECT_EQ(system.written[0][522], 1);
  EXPECT_EQ(system.written[0][523], 1);
}

std::string serial_of(const Bytes &contents) {
  ScriptedCalls system;
  system.contents = contents;
  char serial[11];
  std::fill_n(serial, sizeof serial, '#');
  EXPECT_EQ(read_olt_serial(serial), 0);
  EXPECT_EQ(system.lines, load_calls());
  EXPECT_EQ(serial[10], '#') << "at most nine digits and a zero";
  return serial;
}

TEST(ReadOltSerial, JoinsThreeNumbers) {
  EXPECT_EQ(serial_of(with_serial(1, 2, 3)), "123");
  EXPECT_EQ(serial_of(with_serial(0, 10, 255)), "010255");
  EXPECT_EQ(serial_of(with_serial(200, 201, 255)), "200201255");
  EXPECT_EQ(serial_of(with_serial(0, 0, 0)), "000");
  EXPECT_EQ(serial_of(with_serial(128, 9, 99)), "128999");
}

TEST(ReadOltSerial, WritesExactlyTheTextAndItsZero) {
  ScriptedCalls system;
  system.contents = with_serial(1, 2, 3);
  char serial[10];
  std::fill_n(serial, sizeof serial, '#');
  EXPECT_EQ(read_olt_serial(serial), 0);
  EXPECT_EQ(std::string(serial, sizeof serial), std::string("123\0######", 10));
}

TEST(ReadOltSerial, HasADefaultForAnUnreadableFlash) {
  EXPECT_EQ(serial_of({}), "110100");
  for (size_t failed = 0; failed < 3; ++failed) {
    ScriptedCalls system;
    system.contents = with_serial(1, 2, 3);
    system.answer(failed, -5);
    char serial[10];
    EXPECT_EQ(read_olt_serial(serial), 0);
    EXPECT_STREQ(serial, "110100");
  }
}

}  // namespace
}  // namespace olt::test
