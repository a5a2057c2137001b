// System control, settings, debug values and update streams: what is set is read back.

#include <gtest/gtest.h>

#include "tests/box/support.h"

namespace {

using namespace std::chrono_literals;
using olt::tests::Bytes;
using olt::tests::counting;
using olt::tests::hex;
using olt::tests::record;
using olt::tests::TestBox;
using olt::tests::text;
using olt::tests::word;

TEST(Settings, AreZeroFromTheFactory) {
  TestBox box;
  EXPECT_EQ(box.reply(2, 57), Bytes(136, 0));
  EXPECT_EQ(box.reply(2, 58, Bytes(172, 0xEE)), Bytes(172, 0));
  EXPECT_EQ(box.reply(2, 60), Bytes(196, 0));
}

TEST(Settings, AreReadBackByteForByte) {
  TestBox box;
  EXPECT_EQ(box.status(2, 56, counting(136, 1)), 0U);
  EXPECT_EQ(box.status(2, 59, counting(196, 3)), 0U);
  EXPECT_EQ(box.status(2, 50, counting(172, 2)), 0U);
  EXPECT_EQ(box.reply(2, 57), counting(136, 1));
  EXPECT_EQ(box.reply(2, 60), counting(196, 3));
  EXPECT_EQ(box.reply(2, 58, Bytes(172, 0)), counting(172, 2));
  EXPECT_EQ(box.status(2, 51, counting(172, 200)), 0U);
  EXPECT_EQ(box.reply(2, 58, Bytes(172, 0)), counting(172, 200));
}

TEST(Control, SavedConfigurationOutlivesTheBox) {
  TestBox box;
  box.status(2, 50, counting(172, 7));
  box.status(2, 52, counting(88, 9));
  EXPECT_EQ(box.status(2, 8), 0U);
  box.status(2, 50, Bytes(172, 0x55));
  box.restart();
  EXPECT_EQ(box.reply(2, 58, Bytes(172)), counting(172, 7));
  std::string config = box.listing(box.reply(2, 33), 48);
  EXPECT_NE(config.find("0000    090a0b0c0d0e0f101112131415161718"), std::string::npos) << config;
}

TEST(Control, DefaultChangesTheRunningConfigurationOnly) {
  TestBox box;
  box.status(2, 56, counting(136, 7));
  box.status(2, 10, record(80, {{0, word(1)}, {8, text("operator")}}));
  box.status(22, 83, word(2));
  box.status(2, 8);
  EXPECT_EQ(box.status(2, 9), 0U);
  EXPECT_EQ(box.reply(2, 57), Bytes(136, 0));
  EXPECT_EQ(box.status(2, 63, record(80, {{4, word(1)}})), 4U);
  std::string config = box.listing(box.reply(2, 33), 48);
  EXPECT_NE(config.find("22      1024         6 informational"), std::string::npos) << config;
  box.restart();
  EXPECT_EQ(box.reply(2, 57), counting(136, 7));
  EXPECT_EQ(box.status(2, 63, record(80, {{4, word(1)}})), 0U);
}

TEST(Control, RebootFallsBackToWhatWasSaved) {
  TestBox box;
  box.status(2, 56, counting(136, 7));
  box.status(2, 8);
  box.status(2, 56, counting(136, 70));
  EXPECT_EQ(box.status(2, 7), 0U);
  EXPECT_EQ(box.reply(2, 57), counting(136, 7));
}

TEST(Control, RebootFallsBackToTheFactoryWhenNothingWasSaved) {
  TestBox box;
  box.status(2, 56, counting(136, 7));
  EXPECT_EQ(box.status(2, 7), 0U);
  EXPECT_EQ(box.reply(2, 57), Bytes(136, 0));
}

TEST(Control, RebootForgetsUptimeDebugValuesAndProgress) {
  TestBox box;
  box.status(2, 5);
  box.status(2, 6);
  box.status(18, 2, word(0x1234));
  box.status(2, 39, hex("01000000 05000000 2a000000"));
  box.status(2, 11, hex("08000000 00000000 01020304"));
  box.advance(90061s);
  std::string before = box.listing(box.reply(2, 53), 48);
  EXPECT_NE(before.find("Uptime                  1 d 01:01:01\n"), std::string::npos) << before;
  EXPECT_NE(before.find("Micro-kernel in service        yes\n"), std::string::npos) << before;
  EXPECT_NE(before.find("Start of the system announced  yes\n"), std::string::npos) << before;
  EXPECT_NE(before.find("18      0x00001234\n"), std::string::npos) << before;

  box.status(2, 7);
  box.advance(5s);
  std::string after = box.listing(box.reply(2, 53), 48);
  EXPECT_NE(after.find("Uptime                  0 d 00:00:05\n"), std::string::npos) << after;
  EXPECT_NE(after.find("Micro-kernel in service        no\n"), std::string::npos) << after;
  EXPECT_NE(after.find("Start of the system announced  no\n"), std::string::npos) << after;
  EXPECT_NE(after.find("18      0x00000000\n"), std::string::npos) << after;
  EXPECT_EQ(box.reply(2, 39, hex("00000000 05000000 00000000")), hex("00000000 05000000 00000000"));
  EXPECT_EQ(box.reply(2, 61), word(0));
}

TEST(Debug, KeepsAValueForEachSelector) {
  TestBox box;
  EXPECT_EQ(box.ask(2, 39, hex("01000000 05000000 2a000000")).reply, Bytes());
  EXPECT_EQ(box.status(2, 39, hex("ff000000 06000000 78563412")), 0U);
  EXPECT_EQ(box.reply(2, 39, hex("00000000 05000000 ffffffff")), hex("00000000 05000000 2a000000"));
  EXPECT_EQ(box.reply(2, 39, hex("00000000 06000000 00000000")), hex("00000000 06000000 78563412"));
  EXPECT_EQ(box.reply(2, 39, hex("00000000 07000000 11111111")), hex("00000000 07000000 00000000"));
}

TEST(Debug, HasRoomFor256Selectors) {
  TestBox box;
  for (uint32_t selector = 0; selector < 256; ++selector) {
    ASSERT_EQ(box.status(2, 39, record(12, {{0, word(1)}, {4, word(selector)}})), 0U);
  }
  EXPECT_EQ(box.status(2, 39, record(12, {{0, word(1)}, {4, word(256)}})), 6U);
  EXPECT_EQ(box.status(2, 39, record(12, {{0, word(1)}, {4, word(255)}, {8, word(3)}})), 0U);
}

TEST(Debug, KeepsTheSixteenBitsOfTheSwitch) {
  TestBox box;
  Bytes written = counting(28, 1);
  EXPECT_EQ(box.ask(2, 40, written).reply, Bytes());
  Bytes asked = record(28, {{4, counting(20, 0x80)}});
  EXPECT_EQ(box.reply(2, 40, asked), record(28, {{4, counting(20, 0x80)}, {24, hex("19 1a")}}));
}

TEST(Information, ComesFromTheTopology) {
  TestBox box;
  olt::tests::write_file(box.folder / "topology.json",
                         R"({"olt":{"mac":"00:1a:2B:3c:4D:5e","oam_support":3}})");
  box.options.topology_file = box.folder / "topology.json";
  EXPECT_EQ(box.reply(2, 12), hex("00 1a 2b 3c 4d 5e"));
  EXPECT_EQ(box.reply(18, 4), hex("03 00 00 00"));
}

TEST(Update, ReportsHowFarItHasCome) {
  TestBox box;
  EXPECT_EQ(box.reply(2, 61), word(0));
  EXPECT_EQ(box.reply(2, 11, record(8 + 1, {{0, word(1000)}})), hex("01000000 01000000"));
  EXPECT_EQ(box.reply(2, 61), word(1));
  EXPECT_EQ(box.reply(2, 11, record(8 + 499, {{0, word(1000)}, {4, word(1)}})),
            hex("f4010000 32000000"));
  EXPECT_EQ(box.reply(2, 61), word(50));
  EXPECT_EQ(box.reply(2, 11, record(8 + 499, {{0, word(1000)}, {4, word(500)}})),
            hex("e7030000 63000000"));
  EXPECT_EQ(box.reply(2, 11, record(8 + 1, {{0, word(1000)}, {4, word(999)}})),
            hex("e8030000 64000000"));
  EXPECT_EQ(box.reply(2, 61), word(100));
}

TEST(Update, TakesAPieceAgainWhoseAnswerWasLost) {
  TestBox box;
  box.reply(2, 11, record(8 + 400, {{0, word(1000)}}));
  box.reply(2, 11, record(8 + 400, {{0, word(1000)}, {4, word(400)}}));
  EXPECT_EQ(box.reply(2, 11, record(8 + 400, {{0, word(1000)}, {4, word(400)}})),
            hex("20030000 50000000"));
  EXPECT_EQ(box.reply(2, 61), word(80));
}

TEST(Update, FailsAtAGapAndBeginsAnewAtZero) {
  TestBox box;
  box.reply(2, 11, record(8 + 400, {{0, word(1000)}}));
  EXPECT_EQ(box.status(2, 11, record(8 + 1, {{0, word(1000)}, {4, word(401)}})), 9U);
  EXPECT_EQ(box.reply(2, 61), hex("01000080"));
  EXPECT_EQ(box.status(2, 11, record(8 + 1, {{0, word(1000)}, {4, word(400)}})), 9U);
  EXPECT_EQ(box.reply(2, 11, record(8 + 4, {{0, word(4)}})), hex("04000000 64000000"));
  EXPECT_EQ(box.reply(2, 61), word(100));
}

TEST(Update, ForeignStreamsLeaveItAsItIs) {
  TestBox box;
  box.reply(2, 11, record(8 + 400, {{0, word(1000)}}));
  EXPECT_EQ(box.status(2, 11), 2U);
  EXPECT_EQ(box.status(2, 11, hex("01020304050607")), 2U);
  EXPECT_EQ(box.status(2, 11, Bytes(64, 0)), 3U);
  EXPECT_EQ(box.status(2, 11, Bytes(64, 0xFF)), 3U);
  EXPECT_EQ(box.status(2, 11, text("an image of another format, whatever it may be")), 3U);
  EXPECT_EQ(box.status(2, 11, record(8 + 1001, {{0, word(1000)}})), 3U);
  EXPECT_EQ(box.reply(2, 61), word(40));
}

TEST(Update, OfOnusIsAStreamOfItsOwn) {
  TestBox box;
  box.reply(2, 11, record(8 + 400, {{0, word(1000)}}));
  EXPECT_EQ(box.reply(2, 64, record(8 + 20, {{0, word(20)}})), hex("14000000 64000000"));
  EXPECT_EQ(box.reply(2, 61), word(40));
  std::string info = box.listing(box.reply(2, 53), 48);
  EXPECT_NE(info.find("OLT   receiving, 400 of 1000 bytes\nONUs  complete, 20 of 20 bytes\n"),
            std::string::npos)
      << info;
}

TEST(Update, TakesAMebibyteAtOnce) {
  TestBox box;
  EXPECT_EQ(box.reply(2, 11, record(8 + 1048576, {{0, word(1048576)}})), hex("00001000 64000000"));
}

TEST(Log, SettingsOfBothModulesAreKeptApart) {
  TestBox box;
  EXPECT_EQ(box.status(22, 82, word(64)), 0U);
  EXPECT_EQ(box.status(2, 82, word(128)), 0U);
  EXPECT_EQ(box.status(22, 83, word(3)), 0U);
  EXPECT_EQ(box.status(2, 83, word(7)), 0U);
  EXPECT_EQ(box.status(22, 82, word(0)), 3U);
  EXPECT_EQ(box.status(22, 83, word(8)), 3U);
  std::string config = box.listing(box.reply(2, 33), 48);
  EXPECT_NE(config.find("Module  Size in KiB  Level\n"
                        "------  -----------  -------\n"
                        "22      64           3 error\n"
                        "2       128          7 debug\n"),
            std::string::npos)
      << config;
}

TEST(Log, ListsEventsFromItsLevelOnAndByModule) {
  TestBox box;
  box.status(2, 10, record(80, {{0, word(1)}, {8, text("operator")}}));
  box.advance(61s);
  box.status(22, 99);
  EXPECT_EQ(box.listing(box.reply(22, 81, word(0)), 0),
            "Log of all modules\n"
            "==================\n"
            "\n"
            "Level 6 informational and more severe\n"
            "Time                  Level    Module  Event\n"
            "--------------------  -------  ------  ----------------------------------------\n"
            "2026-01-31T12:00:00Z  notice   2       started\n"
            "2026-01-31T12:00:00Z  notice   2       user \"operator\" added\n"
            "2026-01-31T12:01:01Z  warning  22      message type 99: message type not served\n");
  box.status(22, 83, word(4));
  std::string severe = box.listing(box.reply(22, 81, word(0)), 0);
  EXPECT_EQ(severe.find("operator"), std::string::npos) << severe;
  EXPECT_NE(severe.find("message type 99"), std::string::npos) << severe;
  box.status(22, 83, word(7));
  std::string main = box.listing(box.reply(22, 81, word(2)), 0);
  EXPECT_NE(main.find("operator"), std::string::npos) << main;
  EXPECT_EQ(main.find("message type 99"), std::string::npos) << main;
  EXPECT_EQ(box.status(22, 81, word(5)), 4U);
}

TEST(Log, ListsNoMoreThanItsSizeAllows) {
  TestBox box;
  for (int i = 0; i < 100; ++i) box.status(2, 200);
  box.status(22, 82, word(1));
  std::string log = box.listing(box.reply(22, 81, word(0)), 0);
  EXPECT_LE(log.size(), 1024U + 256U);
  EXPECT_GE(log.size(), 512U);
}

}  // namespace
