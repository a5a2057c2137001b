// System control, settings, debug values and update streams: what is set is read back.

#include <gtest/gtest.h>

#include "tests/box/support.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;

TEST(Settings, AreZeroFromTheFactory) {
  TestBox box;
  EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize));
  EXPECT_EQ(box.reply(kGetNetwork, Bytes(kNetworkSize, 0xEE)), Bytes(kNetworkSize));
  EXPECT_EQ(box.reply(kGetSnmpInfo), Bytes(kSnmpInfoSize));
}

TEST(Settings, AreReadBackByteForByte) {
  TestBox box;
  EXPECT_EQ(box.status(kSetSnmpParam, counting(kSnmpParamSize, 1)), kOk);
  EXPECT_EQ(box.status(kSetSnmpInfo, counting(kSnmpInfoSize, 3)), kOk);
  EXPECT_EQ(box.status(kSetIpAddress, counting(kNetworkSize, 2)), kOk);
  EXPECT_EQ(box.reply(kGetSnmpParam), counting(kSnmpParamSize, 1));
  EXPECT_EQ(box.reply(kGetSnmpInfo), counting(kSnmpInfoSize, 3));
  EXPECT_EQ(box.reply(kGetNetwork, Bytes(kNetworkSize)), counting(kNetworkSize, 2));
  EXPECT_EQ(box.status(kSetDns, counting(kNetworkSize, 200)), kOk);
  EXPECT_EQ(box.reply(kGetNetwork, Bytes(kNetworkSize)), counting(kNetworkSize, 200));
}

TEST(Control, SavedConfigurationOutlivesTheBox) {
  TestBox box;
  box.status(kSetIpAddress, counting(kNetworkSize, 7));
  box.status(kSetSntp, counting(kSntpSize, 9));
  EXPECT_EQ(box.status(kSaveConfig), kOk);
  box.status(kSetIpAddress, Bytes(kNetworkSize, 0x55));
  box.restart();
  EXPECT_EQ(box.reply(kGetNetwork, Bytes(kNetworkSize)), counting(kNetworkSize, 7));
  std::string config = box.running_config();
  EXPECT_TRUE(holds(config, "0000    090a0b0c0d0e0f101112131415161718")) << config;
}

TEST(Control, RestoringDefaultsChangesOnlyTheRunningConfiguration) {
  TestBox box;
  box.status(kSetSnmpParam, counting(kSnmpParamSize, 7));
  box.status(kUserAccount, record(kUserSize, {{0, word(1)}, {kUserNameAt, text("operator")}}));
  box.status(kLogModule, kSetLogLevel, word(2));
  box.status(kSaveConfig);
  EXPECT_EQ(box.status(kRestoreDefaults), kOk);
  EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize));
  EXPECT_EQ(box.status(kGetUserByIndex, record(kUserSize, {{kUserIndexAt, word(1)}})), kNotFound);
  std::string config = box.running_config();
  EXPECT_TRUE(holds(config, "22      1024         6 informational")) << config;
  box.restart();
  EXPECT_EQ(box.reply(kGetSnmpParam), counting(kSnmpParamSize, 7));
  EXPECT_EQ(box.status(kGetUserByIndex, record(kUserSize, {{kUserIndexAt, word(1)}})), kOk);
}

TEST(Control, RebootFallsBackToWhatWasSaved) {
  TestBox box;
  box.status(kSetSnmpParam, counting(kSnmpParamSize, 7));
  box.status(kSaveConfig);
  box.status(kSetSnmpParam, counting(kSnmpParamSize, 70));
  EXPECT_EQ(box.status(kReboot), kOk);
  EXPECT_EQ(box.reply(kGetSnmpParam), counting(kSnmpParamSize, 7));
}

TEST(Control, RebootFallsBackToTheFactoryWhenNothingWasSaved) {
  TestBox box;
  box.status(kSetSnmpParam, counting(kSnmpParamSize, 7));
  EXPECT_EQ(box.status(kReboot), kOk);
  EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize));
}

TEST(Control, RebootForgetsUptimeDebugValuesAndProgress) {
  TestBox box;
  box.status(kSetInService);
  box.status(kAnnounceStart);
  box.status(kOamModule, kSetDebugEnable, word(0x1234));
  box.status(kDebugValue, hex("01000000 05000000 2a000000"));
  box.status(kUpdateOlt, hex("08000000 00000000 01020304"));
  box.advance(90061s);
  std::string before = box.basic_info();
  EXPECT_TRUE(holds(before, "Uptime                  1 d 01:01:01\n")) << before;
  EXPECT_TRUE(holds(before, "Micro-kernel in service        yes\n")) << before;
  EXPECT_TRUE(holds(before, "Start of the system announced  yes\n")) << before;
  EXPECT_TRUE(holds(before, "18      0x00001234\n")) << before;

  box.status(kReboot);
  box.advance(5s);
  std::string after = box.basic_info();
  EXPECT_TRUE(holds(after, "Uptime                  0 d 00:00:05\n")) << after;
  EXPECT_TRUE(holds(after, "Micro-kernel in service        no\n")) << after;
  EXPECT_TRUE(holds(after, "Start of the system announced  no\n")) << after;
  EXPECT_TRUE(holds(after, "18      0x00000000\n")) << after;
  EXPECT_EQ(box.reply(kDebugValue, hex("00000000 05000000 00000000")),
            hex("00000000 05000000 00000000"));
  EXPECT_EQ(box.reply(kGetUpdateStatus), word(0));
}

TEST(Debug, KeepsAValueForEachSelector) {
  TestBox box;
  EXPECT_EQ(box.ask(kDebugValue, hex("01000000 05000000 2a000000")).reply, Bytes());
  EXPECT_EQ(box.status(kDebugValue, hex("ff000000 06000000 78563412")), kOk);
  EXPECT_EQ(box.reply(kDebugValue, hex("00000000 05000000 ffffffff")),
            hex("00000000 05000000 2a000000"));
  EXPECT_EQ(box.reply(kDebugValue, hex("00000000 06000000 00000000")),
            hex("00000000 06000000 78563412"));
  EXPECT_EQ(box.reply(kDebugValue, hex("00000000 07000000 11111111")),
            hex("00000000 07000000 00000000"));
}

TEST(Debug, HasRoomFor256Selectors) {
  TestBox box;
  for (uint32_t selector = 0; selector < 256; ++selector) {
    ASSERT_EQ(box.status(kDebugValue, record(kDebugValueSize, {{0, word(1)}, {4, word(selector)}})),
              kOk);
  }
  EXPECT_EQ(box.status(kDebugValue, record(kDebugValueSize, {{0, word(1)}, {4, word(256)}})),
            kFull);
  EXPECT_EQ(box.status(kDebugValue,
                       record(kDebugValueSize, {{0, word(1)}, {4, word(255)}, {8, word(3)}})),
            kOk);
}

TEST(Debug, KeepsTheSixteenBitsOfTheSwitch) {
  TestBox box;
  Bytes written = counting(kSwitchDebugSize, 1);
  EXPECT_EQ(box.ask(kSwitchDebugValue, written).reply, Bytes());
  Bytes asked = record(kSwitchDebugSize, {{4, counting(20, 0x80)}});
  EXPECT_EQ(box.reply(kSwitchDebugValue, asked),
            record(kSwitchDebugSize, {{4, counting(20, 0x80)}, {24, hex("19 1a")}}));
}

TEST(Information, ComesFromTheTopology) {
  TestBox box;
  write_file(box.folder / "topology.json",
             R"({"olt":{"mac":"00:1a:2B:3c:4D:5e","oam_support":3}})");
  box.options.topology_file = box.folder / "topology.json";
  EXPECT_EQ(box.reply(kGetOltMac), hex("00 1a 2b 3c 4d 5e"));
  EXPECT_EQ(box.reply(kOamModule, kGetOamSupport), hex("03 00 00 00"));
}

TEST(Update, ReportsItsProgress) {
  TestBox box;
  EXPECT_EQ(box.reply(kGetUpdateStatus), word(0));
  EXPECT_EQ(box.reply(kUpdateOlt, record(kUpdateHeadSize + 1, {{0, word(1000)}})),
            hex("01000000 01000000"));
  EXPECT_EQ(box.reply(kGetUpdateStatus), word(1));
  EXPECT_EQ(box.reply(kUpdateOlt, record(kUpdateHeadSize + 499, {{0, word(1000)}, {4, word(1)}})),
            hex("f4010000 32000000"));
  EXPECT_EQ(box.reply(kGetUpdateStatus), word(50));
  EXPECT_EQ(box.reply(kUpdateOlt, record(kUpdateHeadSize + 499, {{0, word(1000)}, {4, word(500)}})),
            hex("e7030000 63000000"));
  EXPECT_EQ(box.reply(kUpdateOlt, record(kUpdateHeadSize + 1, {{0, word(1000)}, {4, word(999)}})),
            hex("e8030000 64000000"));
  EXPECT_EQ(box.reply(kGetUpdateStatus), word(100));
}

TEST(Update, AcceptsARepeatedPiece) {
  TestBox box;
  box.reply(kUpdateOlt, record(kUpdateHeadSize + 400, {{0, word(1000)}}));
  box.reply(kUpdateOlt, record(kUpdateHeadSize + 400, {{0, word(1000)}, {4, word(400)}}));
  EXPECT_EQ(box.reply(kUpdateOlt, record(kUpdateHeadSize + 400, {{0, word(1000)}, {4, word(400)}})),
            hex("20030000 50000000"));
  EXPECT_EQ(box.reply(kGetUpdateStatus), word(80));
}

TEST(Update, FailsAtAGapAndRestartsAtZero) {
  TestBox box;
  box.reply(kUpdateOlt, record(kUpdateHeadSize + 400, {{0, word(1000)}}));
  EXPECT_EQ(box.status(kUpdateOlt, record(kUpdateHeadSize + 1, {{0, word(1000)}, {4, word(401)}})),
            kOutOfOrder);
  EXPECT_EQ(box.reply(kGetUpdateStatus), hex("01000080"));
  EXPECT_EQ(box.status(kUpdateOlt, record(kUpdateHeadSize + 1, {{0, word(1000)}, {4, word(400)}})),
            kOutOfOrder);
  EXPECT_EQ(box.reply(kUpdateOlt, record(kUpdateHeadSize + 4, {{0, word(4)}})),
            hex("04000000 64000000"));
  EXPECT_EQ(box.reply(kGetUpdateStatus), word(100));
}

TEST(Update, RequestsThatAreNoPieceLeaveItAlone) {
  TestBox box;
  box.reply(kUpdateOlt, record(kUpdateHeadSize + 400, {{0, word(1000)}}));
  EXPECT_EQ(box.status(kUpdateOlt), kBadLength);
  EXPECT_EQ(box.status(kUpdateOlt, hex("01020304050607")), kBadLength);
  EXPECT_EQ(box.status(kUpdateOlt, Bytes(64, 0)), kBadValue);
  EXPECT_EQ(box.status(kUpdateOlt, Bytes(64, 0xFF)), kBadValue);
  EXPECT_EQ(box.status(kUpdateOlt, text("an image of another format, whatever it may be")),
            kBadValue);
  EXPECT_EQ(box.status(kUpdateOlt, record(kUpdateHeadSize + 1001, {{0, word(1000)}})), kBadValue);
  EXPECT_EQ(box.reply(kGetUpdateStatus), word(40));
}

TEST(Update, OfOnusIsASeparateStream) {
  TestBox box;
  box.reply(kUpdateOlt, record(kUpdateHeadSize + 400, {{0, word(1000)}}));
  EXPECT_EQ(box.reply(kUpdateOnu, record(kUpdateHeadSize + 20, {{0, word(20)}})),
            hex("14000000 64000000"));
  EXPECT_EQ(box.reply(kGetUpdateStatus), word(40));
  std::string info = box.basic_info();
  EXPECT_TRUE(holds(info, "OLT   receiving, 400 of 1000 bytes\nONUs  complete, 20 of 20 bytes\n"))
      << info;
}

TEST(Update, TakesAMebibyteAtOnce) {
  TestBox box;
  EXPECT_EQ(box.reply(kUpdateOlt, record(kUpdateHeadSize + 1048576, {{0, word(1048576)}})),
            hex("00001000 64000000"));
}

TEST(Log, SettingsOfBothModulesAreKeptApart) {
  TestBox box;
  EXPECT_EQ(box.status(kLogModule, kSetLogSize, word(64)), kOk);
  EXPECT_EQ(box.status(kSetLogSize, word(128)), kOk);
  EXPECT_EQ(box.status(kLogModule, kSetLogLevel, word(3)), kOk);
  EXPECT_EQ(box.status(kSetLogLevel, word(7)), kOk);
  EXPECT_EQ(box.status(kLogModule, kSetLogSize, word(0)), kBadValue);
  EXPECT_EQ(box.status(kLogModule, kSetLogLevel, word(8)), kBadValue);
  std::string config = box.running_config();
  EXPECT_TRUE(holds(config,
                    "Module  Size in KiB  Level\n"
                    "------  -----------  -------\n"
                    "22      64           3 error\n"
                    "2       128          7 debug\n"))
      << config;
}

TEST(Log, ListsEventsFromItsLevelOnAndByModule) {
  TestBox box;
  box.status(kUserAccount, record(kUserSize, {{0, word(1)}, {kUserNameAt, text("operator")}}));
  box.advance(61s);
  box.status(kLogModule, kStripRow);
  EXPECT_EQ(box.listing(box.reply(kLogModule, kListLog, word(0)), 0),
            "Log of all modules\n"
            "==================\n"
            "\n"
            "Level 6 informational and more severe\n"
            "Time                  Level    Module  Event\n"
            "--------------------  -------  ------  ----------------------------------------\n"
            "2026-01-31T12:00:00Z  notice   2       started\n"
            "2026-01-31T12:00:00Z  notice   2       user \"operator\" added\n"
            "2026-01-31T12:01:01Z  warning  22      message type 99: message type not served\n");
  box.status(kLogModule, kSetLogLevel, word(4));
  std::string severe = box.listing(box.reply(kLogModule, kListLog, word(0)), 0);
  EXPECT_FALSE(holds(severe, "operator")) << severe;
  EXPECT_TRUE(holds(severe, "message type 99")) << severe;
  box.status(kLogModule, kSetLogLevel, word(7));
  std::string main = box.listing(box.reply(kLogModule, kListLog, word(2)), 0);
  EXPECT_TRUE(holds(main, "operator")) << main;
  EXPECT_FALSE(holds(main, "message type 99")) << main;
  EXPECT_EQ(box.status(kLogModule, kListLog, word(5)), kNotFound);
}

TEST(Log, ListsNoMoreThanItsSizeAllows) {
  TestBox box;
  for (int i = 0; i < 100; ++i) box.status(kUnknownType);
  box.status(kLogModule, kSetLogSize, word(1));
  std::string log = box.listing(box.reply(kLogModule, kListLog, word(0)), 0);
  EXPECT_LE(log.size(), 1024U + 256U);
  EXPECT_GE(log.size(), 512U);
}

}  // namespace

}  // namespace olt::test
