// Ports: settings that are read back, links that follow them, counters and MAC addresses over time.

#include <gtest/gtest.h>

#include "base/text.h"
#include "tests/box/support.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;

/// A request for port 1/3 with invalid values in all other fields.
Bytes uncleared(std::initializer_list<std::pair<size_t, Bytes>> fields) {
  Bytes bytes(kPortSize, 0xEE);
  put(bytes, 0, words({1, 3}));
  for (const auto &[offset, field] : fields) put(bytes, offset, field);
  return bytes;
}

Bytes factory_port_3() {
  return port_record(3, {{kEnabledAt, word(1)},
                         {kSpeedAt, word(1000)},
                         {kDuplexAt, word(2)},
                         {kRstpStateAt, word(1)},
                         {kLinkStateAt, word(1)}});
}

TEST(Ports, AreEnabledAndUpFromTheFactory) {
  TestBox box;
  for (uint32_t type : {kGetPortEnable, kGetLinkState, kGetLinkDuplex, kGetLinkSpeed, kGetPortInfo,
                        kGetPortStatus}) {
    EXPECT_EQ(box.reply(type, port_record(3)), factory_port_3()) << type;
  }
}

TEST(Ports, SettersChangeOnlyTheirOwnWords) {
  struct {
    uint32_t type;
    std::initializer_list<std::pair<size_t, Bytes>> fields;
  } const setters[] = {
      {kSetSfpModule, {{kSfpModuleAt, word(0x11111111)}}},
      {kSetVlanMode, {{kVlanModeFirstAt, word(10)}, {kVlanModeSecondAt, word(20)}}},
      {kSetRateControl, {{kRateControlAt, word(0x52)}, {kRateControlAt + 4, word(0x56)}}},
      {kSetRstpState, {{kRstpStateAt, word(0)}}},
      {kSetIngressFilter, {{kIngressFilterAt, word(0x44)}, {kIngressFilterAt + 4, word(0x48)}}},
      {kSetFlowControl, {{kFlowControlAt, word(0x40)}}},
      {kSetMaxLink, {{kMaxLinkAt, word(0xFFFFFFFF)}}},
  };
  TestBox box;
  Bytes expected = factory_port_3();
  for (const auto &[type, fields] : setters) {
    EXPECT_EQ(box.status(type, uncleared(fields)), kOk) << type;
    for (const auto &[offset, field] : fields) put(expected, offset, field);
    EXPECT_EQ(box.reply(kGetPortInfo, port_record(3)), expected) << type;
  }
  EXPECT_EQ(box.reply(kGetPortInfo, port_record(1)),
            record(kPortSize, {{0, slice(factory_port_3(), 0, kPortSize)}, {4, word(1)}}));
}

TEST(Ports, WholeRecordSetsAllSettingsButNoState) {
  TestBox box;
  Bytes request = uncleared({{kEnabledAt, word(1)}, {kRstpStateAt, word(0)}});
  EXPECT_EQ(box.status(kSetPortInfo, request), kOk);
  Bytes reply = box.reply(kGetPortInfo, port_record(3));
  Bytes expected = request;
  for (size_t status : {kSpeedAt, kDuplexAt, kLinkStateAt})
    put(expected, status, slice(factory_port_3(), status, status + 4));
  for (size_t unused : {8U, 36U, 68U, 72U}) put(expected, unused, word(0));
  EXPECT_EQ(reply, expected);
}

TEST(Ports, BadValuesAreRefusedAndNothingIsSet) {
  TestBox box;
  EXPECT_EQ(box.status(kSetPortEnable, uncleared({{kEnabledAt, word(2)}})), kBadValue);
  EXPECT_EQ(box.status(kSetRstpState, uncleared({{kRstpStateAt, word(256)}})), kBadValue);
  EXPECT_EQ(box.status(kSetPortInfo, uncleared({{kEnabledAt, word(1)}})), kBadValue);
  EXPECT_EQ(box.reply(kGetPortInfo, port_record(3)), factory_port_3());
}

TEST(Ports, UnknownOnesAreNotFound) {
  TestBox box;
  for (uint32_t type : {kSetSfpModule, kSetPortEnable, kGetPortEnable, kGetLinkState,
                        kGetLinkDuplex, kGetLinkSpeed, kSetVlanMode, kClearStatistics, kClearMacs,
                        kSetRateControl, kSetRstpState, kSetIngressFilter, kSetFlowControl,
                        kGetPortInfo, kSetPortInfo, kGetPortStatus, kSetMaxLink}) {
    EXPECT_EQ(box.status(type, port_record(0)), kNotFound) << type;
    EXPECT_EQ(box.status(type, port_record(5)), kNotFound) << type;
    EXPECT_EQ(box.status(type, record(kPortSize, {{4, word(1)}})), kNotFound) << type;
    EXPECT_EQ(box.status(type, record(kPortSize, {{0, word(2)}, {4, word(1)}})), kNotFound) << type;
    EXPECT_EQ(box.status(type, Bytes(kPortSize - 1)), kBadLength) << type;
    EXPECT_EQ(box.status(type, Bytes(kPortSize + 1)), kBadLength) << type;
  }
  for (uint32_t type : {kListStatistics, kListMacs}) {
    EXPECT_EQ(box.status(type, port_record(1)), kNotFound) << type;
    EXPECT_EQ(box.status(type, record(kPortSize, {{4, word(1)}, {8, word(5)}})), kNotFound) << type;
    EXPECT_EQ(box.status(type, Bytes(kPortSize - 1)), kBadLength) << type;
  }
}

TEST(Links, FollowEnable) {
  TestBox box;
  EXPECT_EQ(box.status(kSetPortEnable, uncleared({{kEnabledAt, word(0)}})), kOk);
  Bytes down = box.reply(kGetLinkState, port_record(3));
  EXPECT_EQ(word_at(down, kEnabledAt), 0U);
  EXPECT_EQ(word_at(down, kSpeedAt), 0U);
  EXPECT_EQ(word_at(down, kDuplexAt), 0U);
  EXPECT_EQ(word_at(down, kLinkStateAt), 0U);
  EXPECT_EQ(word_at(box.reply(kGetLinkState, port_record(2)), kLinkStateAt), 1U);
  EXPECT_EQ(box.status(kSetPortEnable, uncleared({{kEnabledAt, word(1)}})), kOk);
  EXPECT_EQ(word_at(box.reply(kGetPortEnable, port_record(3)), kEnabledAt), 1U);
  EXPECT_EQ(word_at(box.reply(kGetLinkState, port_record(3)), kLinkStateAt), 0U);
  box.advance(1s);
  EXPECT_EQ(word_at(box.reply(kGetLinkState, port_record(3)), kLinkStateAt), 0U);
  box.advance(1s);
  EXPECT_EQ(box.reply(kGetLinkState, port_record(3)), factory_port_3());
}

TEST(Links, StayUpWhenEnabledAgain) {
  TestBox box;
  EXPECT_EQ(box.status(kSetPortEnable, uncleared({{kEnabledAt, word(1)}})), kOk);
  EXPECT_EQ(word_at(box.reply(kGetLinkState, port_record(3)), kLinkStateAt), 1U);
}

TEST(Links, AreUpAfterAClockWasSetBack) {
  TestBox box;
  box.status(kGetOltMac);
  box.advance(-3600s);
  EXPECT_EQ(word_at(box.reply(kGetLinkState, port_record(3)), kLinkStateAt), 1U);
}

TEST(Links, HaveTheSpeedAndDuplexOfTheTopology) {
  TestBox box;
  write_file(box.folder / "box.json", R"({"olt":{"ethernet_ports":6,"ports":[
      {"port":5,"speed":100,"duplex":"half"},{"port":6,"plugged":false}]}})");
  box.options.topology_file = box.folder / "box.json";
  Bytes slow = box.reply(kGetLinkSpeed, port_record(5));
  EXPECT_EQ(word_at(slow, kSpeedAt), 100U);
  EXPECT_EQ(word_at(slow, kDuplexAt), 1U);
  EXPECT_EQ(word_at(slow, kLinkStateAt), 1U);
  Bytes unplugged = box.reply(kGetLinkSpeed, port_record(6));
  EXPECT_EQ(word_at(unplugged, kEnabledAt), 1U);
  EXPECT_EQ(word_at(unplugged, kLinkStateAt), 0U);
  std::string info = box.basic_info();
  EXPECT_TRUE(holds(info,
                    "Port  Enabled  Link  Speed in Mbit/s  Duplex\n"
                    "----  -------  ----  ---------------  ------\n"
                    "1/1   yes      up    1000             full\n"))
      << info;
  EXPECT_TRUE(holds(info,
                    "1/5   yes      up    100              half\n"
                    "1/6   yes      down  -                -\n"))
      << info;
}

TEST(Uplinks, AggregationIsReadBack) {
  TestBox box;
  EXPECT_EQ(box.reply(kGetUplinkAggregation), Bytes(kAggregationSize));
  EXPECT_EQ(box.status(kSetUplinkAggregation, record(kAggregationSize, {{8, hex("78563412")}})),
            kOk);
  EXPECT_EQ(box.reply(kGetUplinkAggregation), record(kAggregationSize, {{8, hex("78563412")}}));
  EXPECT_EQ(box.status(kSetUplinkAggregation, Bytes(kAggregationSize - 1)), kBadLength);
  EXPECT_EQ(box.status(kGetUplinkAggregation, Bytes(1)), kBadLength);
}

TEST(Ports, SettingsAreConfiguration) {
  TestBox box;
  box.status(kSetVlanMode,
             uncleared({{kVlanModeFirstAt, word(10)}, {kVlanModeSecondAt, word(20)}}));
  box.status(kSetPortEnable, uncleared({{kEnabledAt, word(0)}}));
  box.status(kSetUplinkAggregation, record(kAggregationSize, {{8, word(3)}}));
  Bytes set = box.reply(kGetPortInfo, port_record(3));
  box.status(kSaveConfig);
  box.status(kRestoreDefaults);
  box.advance(2s);
  EXPECT_EQ(box.reply(kGetPortInfo, port_record(3)), factory_port_3());
  EXPECT_EQ(box.reply(kGetUplinkAggregation), Bytes(kAggregationSize));
  box.status(kReboot);
  EXPECT_EQ(box.reply(kGetPortInfo, port_record(3)), set);
  EXPECT_EQ(box.reply(kGetUplinkAggregation), record(kAggregationSize, {{8, word(3)}}));
  box.restart();
  EXPECT_EQ(box.reply(kGetPortInfo, port_record(3)), set);
  std::string config = box.running_config();
  EXPECT_TRUE(holds(config, "Port  Enabled  SFP  VLAN mode  (second)  Flow control")) << config;
  EXPECT_TRUE(holds(config, "\n1/3   0        0    10         20        0 ")) << config;
}

std::string statistics(TestBox &box, uint32_t number) {
  return box.listing(
      box.reply(kListStatistics, record(kPortSize, {{4, word(1)}, {8, word(number)}})),
      kListingNameAt);
}

TEST(Statistics, AdvanceWithTimeWhileTheLinkIsUp) {
  TestBox box;
  EXPECT_TRUE(holds(statistics(box, 1), "Octets              0         0\n")) << statistics(box, 1);
  box.advance(100s);
  EXPECT_EQ(statistics(box, 1),
            "Statistics of port 1/1\n"
            "======================\n"
            "\n"
            "Link\n"
            "State            up\n"
            "Seconds counted  100\n"
            "\n"
            "Counters\n"
            "Counter             Received   Sent\n"
            "------------------  ---------  --------\n"
            "Octets              137500000  82500000\n"
            "Frames              220000     132000\n"
            "Unicast frames      198000     118800\n"
            "Multicast frames    17600      10560\n"
            "Broadcast frames    4400       2640\n"
            "Discarded frames    0          0\n"
            "Frames with errors  0          0\n");
  EXPECT_TRUE(holds(statistics(box, 4), "Octets              175000000  105000000\n"));
  box.status(kSetPortEnable, port_record(1, {{kEnabledAt, word(0)}}));
  box.advance(50s);
  std::string down = statistics(box, 1);
  EXPECT_TRUE(holds(down, "State            down\nSeconds counted  100\n")) << down;
  box.status(kSetPortEnable, port_record(1, {{kEnabledAt, word(1)}}));
  box.advance(12s);
  std::string up = statistics(box, 1);
  EXPECT_TRUE(holds(up, "State            up\nSeconds counted  110\n")) << up;
}

TEST(Statistics, AreClearedByPort) {
  TestBox box;
  box.status(kGetOltMac);
  box.advance(100s);
  EXPECT_EQ(box.status(kClearStatistics, port_record(1)), kOk);
  EXPECT_TRUE(holds(statistics(box, 1), "Seconds counted  0\n"));
  EXPECT_TRUE(holds(statistics(box, 2), "Seconds counted  100\n"));
  box.advance(5s);
  EXPECT_TRUE(holds(statistics(box, 1), "Seconds counted  5\n"));
  box.status(kSetPortEnable, port_record(1, {{kEnabledAt, word(0)}}));
  box.status(kSetPortEnable, port_record(1, {{kEnabledAt, word(1)}}));
  box.status(kClearStatistics, port_record(1));
  box.advance(3s);
  EXPECT_TRUE(holds(statistics(box, 1), "Seconds counted  1\n"));
}

TEST(Statistics, RestartWithARebootAndContinueInTheNextBox) {
  TestBox box;
  box.options.keep_running_state = true;
  box.status(kSetPortEnable, port_record(2, {{kEnabledAt, word(0)}}));
  box.advance(100s);
  box.status(kSetPortEnable, port_record(2, {{kEnabledAt, word(1)}}));
  box.keep();
  box.advance(20s);
  box.restart();
  EXPECT_TRUE(holds(statistics(box, 1), "Seconds counted  120\n"));
  EXPECT_TRUE(holds(statistics(box, 2), "Seconds counted  18\n"));
  box.status(kReboot);
  EXPECT_TRUE(holds(statistics(box, 1), "State            up\nSeconds counted  0\n"));
  box.advance(3s);
  EXPECT_TRUE(holds(statistics(box, 1), "Seconds counted  3\n"));
}

std::string macs(TestBox &box, uint32_t number, uint32_t vlan = 0) {
  return box.listing(
      box.reply(kListMacs, record(kPortSize, {{4, word(1)}, {8, word(number)}, {12, word(vlan)}})),
      kListingNameAt);
}

TEST(Macs, AreLearnedOneAfterTheOtherAndAge) {
  TestBox box;
  EXPECT_TRUE(holds(macs(box, 3), "\n0 addresses\n"));
  box.advance(5s);
  EXPECT_EQ(macs(box, 3),
            "MAC addresses of port 1/3\n"
            "=========================\n"
            "\n"
            "2 addresses\n"
            "VLAN  MAC address        Type     Age in s\n"
            "----  -----------------  -------  --------\n"
            "1     02:10:03:00:00:01  dynamic  3\n"
            "1     02:10:03:00:00:02  dynamic  0\n");
  box.advance(6s);
  EXPECT_TRUE(holds(macs(box, 3), "\n4 addresses\n"));
  box.advance(299s);
  EXPECT_TRUE(holds(macs(box, 3), "02:10:03:00:00:04  dynamic  299\n")) << macs(box, 3);
  box.advance(1s);
  std::string aged = macs(box, 3);
  EXPECT_TRUE(holds(aged, "\n3 addresses\n")) << aged;
  EXPECT_FALSE(holds(aged, "00:00:04")) << aged;
  box.advance(120s);
  EXPECT_TRUE(holds(macs(box, 3), "02:10:03:00:00:04  dynamic  0\n"));
}

TEST(Macs, AreClearedByPortAndLearnedAgain) {
  TestBox box;
  box.status(kGetOltMac);
  box.advance(30s);
  EXPECT_EQ(box.status(kClearMacs, port_record(3)), kOk);
  EXPECT_TRUE(holds(macs(box, 3), "\n0 addresses\n"));
  EXPECT_TRUE(holds(macs(box, 2), "\n4 addresses\n"));
  box.advance(32s);
  EXPECT_TRUE(holds(macs(box, 3), "\n1 address\n"));
}

TEST(Macs, AreForgottenWhenTheLinkGoesDown) {
  TestBox box;
  box.status(kGetOltMac);
  box.advance(30s);
  box.status(kSetPortEnable, uncleared({{kEnabledAt, word(0)}}));
  EXPECT_TRUE(holds(macs(box, 3), "\n0 addresses\n"));
  box.status(kSetPortEnable, uncleared({{kEnabledAt, word(1)}}));
  box.advance(4s);
  EXPECT_TRUE(holds(macs(box, 3), "\n1 address\n"));
}

TEST(Macs, AreFilteredByVlan) {
  TestBox box;
  box.status(kAddVlans, hex("0a000b00"));
  box.status(kAddTrunkTagged, record(kTrunkSize + kVlanSize,
                                     {{0, word(1)}, {4, word(3)}, {kTrunkSize, hex("0a000b00")}}));
  box.advance(20s);
  EXPECT_TRUE(holds(macs(box, 3),
                    "1     02:10:03:00:00:01  dynamic  18\n"
                    "1     02:10:03:00:00:04  dynamic  9\n"
                    "10    02:10:03:00:00:02  dynamic  15\n"
                    "11    02:10:03:00:00:03  dynamic  12\n"))
      << macs(box, 3);
  EXPECT_EQ(macs(box, 3, 10),
            "MAC addresses of port 1/3 in VLAN 10\n"
            "====================================\n"
            "\n"
            "1 address\n"
            "VLAN  MAC address        Type     Age in s\n"
            "----  -----------------  -------  --------\n"
            "10    02:10:03:00:00:02  dynamic  15\n");
  EXPECT_EQ(
      box.status(kListMacs, record(kPortSize, {{4, word(1)}, {8, word(3)}, {12, word(4095)}})),
      kBadValue);
  box.status(kDeleteVlans, hex("0100fe0f"));
  EXPECT_TRUE(holds(macs(box, 3), "\n0 addresses\n"));
}

TEST(Macs, StaticOnesAreAddedAndDeleted) {
  TestBox box;
  box.status(kGetOltMac);
  box.advance(4s);
  EXPECT_EQ(box.status(kStaticMac, hex("0100 0300 0100 0a00 0211aabbccdd ffff")), kOk);
  EXPECT_EQ(box.status(kStaticMac, hex("0100 0300 0100 0100 021003000001 0000")), kOk);
  EXPECT_EQ(box.status(kStaticMac, hex("0100 0200 0100 0a00 0211aabbccdd 0000")), kExists);
  EXPECT_TRUE(holds(macs(box, 3),
                    "\n2 addresses\n"
                    "VLAN  MAC address        Type    Age in s\n"
                    "----  -----------------  ------  --------\n"
                    "1     02:10:03:00:00:01  static  -\n"
                    "10    02:11:aa:bb:cc:dd  static  -\n"))
      << macs(box, 3);
  box.status(kClearMacs, port_record(3));
  box.status(kSaveConfig);
  EXPECT_EQ(box.status(kStaticMac, hex("0100 0200 0200 0a00 0211aabbccdd 0000")), kNotFound);
  EXPECT_EQ(box.status(kStaticMac, hex("0100 0300 0200 0a00 0211aabbccdd 0000")), kOk);
  EXPECT_EQ(box.status(kStaticMac, hex("0100 0300 0200 0a00 0211aabbccdd 0000")), kNotFound);
  box.status(kReboot);
  std::string config = box.running_config();
  EXPECT_TRUE(holds(config,
                    "Port  VLAN  MAC address\n"
                    "----  ----  -----------------\n"
                    "1/3   10    02:11:aa:bb:cc:dd\n"
                    "1/3   1     02:10:03:00:00:01\n"))
      << config;
}

TEST(Macs, BadStaticOnesAreRefused) {
  TestBox box;
  EXPECT_EQ(box.status(kStaticMac, hex("0100 0500 0100 0a00 0211aabbccdd 0000")), kNotFound);
  EXPECT_EQ(box.status(kStaticMac, hex("0100 0300 0000 0a00 0211aabbccdd 0000")), kBadValue);
  EXPECT_EQ(box.status(kStaticMac, hex("0100 0300 0300 0a00 0211aabbccdd 0000")), kBadValue);
  EXPECT_EQ(box.status(kStaticMac, hex("0100 0300 0100 0000 0211aabbccdd 0000")), kBadValue);
  EXPECT_EQ(box.status(kStaticMac, hex("0100 0300 0100 ff0f 0211aabbccdd 0000")), kBadValue);
  EXPECT_EQ(box.status(kStaticMac, hex("0100 0300 0100 0a00 0111aabbccdd 0000")), kBadValue);
  EXPECT_EQ(box.status(kStaticMac, hex("0100 0300 0100 0a00 000000000000 0000")), kBadValue);
  EXPECT_EQ(box.status(kStaticMac, Bytes(kStaticMacSize - 1)), kBadLength);
  EXPECT_TRUE(holds(macs(box, 3), "\n0 addresses\n"));
}

TEST(Macs, ThereIsRoomFor256StaticOnes) {
  TestBox box;
  Bytes request = hex("0100 0100 0100 0a00 021100000000 0000");
  for (int i = 0; i < 256; ++i) {
    request[13] = static_cast<uint8_t>(i);
    ASSERT_EQ(box.status(kStaticMac, request), kOk);
  }
  request[12] = 1;
  EXPECT_EQ(box.status(kStaticMac, request), kFull);
}

}  // namespace

}  // namespace olt::test
