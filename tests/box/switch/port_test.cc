// Ports: settings that read back, links that follow them, counters and MAC addresses over time.

#include <gtest/gtest.h>

#include "base/text.h"
#include "tests/box/support.h"

namespace {

using namespace std::chrono_literals;
using olt::tests::Bytes;
using olt::tests::hex;
using olt::tests::record;
using olt::tests::slice;
using olt::tests::TestBox;
using olt::tests::word;
using olt::tests::write_file;

Bytes port(uint32_t number) {
  return record(80, {{0, word(1)}, {4, word(number)}});
}

/// A request for port 1/3 in which every other word is a value that no setting takes.
Bytes uncleared(std::initializer_list<std::pair<size_t, Bytes>> fields) {
  Bytes bytes(80, 0xEE);
  std::copy_n(port(3).begin(), 8, bytes.begin());
  for (const auto &[offset, field] : fields) {
    std::copy(field.begin(), field.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
  }
  return bytes;
}

uint32_t word_at(const Bytes &bytes, size_t at) {
  return static_cast<uint32_t>(bytes.at(at) | bytes.at(at + 1) << 8 | bytes.at(at + 2) << 16) |
         uint32_t{bytes.at(at + 3)} << 24;
}

Bytes factory_port_3() {
  return record(80, {{0, word(1)},
                     {4, word(3)},
                     {16, word(1)},
                     {20, word(1000)},
                     {24, word(2)},
                     {60, word(1)},
                     {64, word(1)}});
}

TEST(Ports, AreEnabledAndUpFromTheFactory) {
  TestBox box;
  for (uint32_t type : {15U, 16U, 17U, 18U, 70U, 72U}) {
    EXPECT_EQ(box.reply(2, type, port(3)), factory_port_3()) << type;
  }
}

TEST(Ports, SettingsAreReadBackAndNoOtherWordIsTaken) {
  struct {
    uint32_t type;
    std::initializer_list<std::pair<size_t, Bytes>> fields;
  } const setters[] = {
      {13, {{12, word(0x11111111)}}},
      {24, {{32, word(10)}, {28, word(20)}}},
      {66, {{52, word(0x52)}, {56, word(0x56)}}},
      {67, {{60, word(0)}}},
      {68, {{44, word(0x44)}, {48, word(0x48)}}},
      {69, {{40, word(0x40)}}},
      {102, {{76, word(0xFFFFFFFF)}}},
  };
  TestBox box;
  Bytes expected = factory_port_3();
  for (const auto &[type, fields] : setters) {
    EXPECT_EQ(box.status(2, type, uncleared(fields)), 0U) << type;
    for (const auto &[offset, field] : fields) {
      std::copy(field.begin(), field.end(), expected.begin() + static_cast<std::ptrdiff_t>(offset));
    }
    EXPECT_EQ(box.reply(2, 70, port(3)), expected) << type;
  }
  EXPECT_EQ(box.reply(2, 70, port(1)),
            record(80, {{0, slice(factory_port_3(), 0, 80)}, {4, word(1)}}));
}

TEST(Ports, WholeRecordSetsAllSettingsAndNoStatus) {
  TestBox box;
  Bytes request = uncleared({{16, word(1)}, {60, word(0)}});
  EXPECT_EQ(box.status(2, 71, request), 0U);
  Bytes reply = box.reply(2, 70, port(3));
  Bytes expected = request;
  for (size_t status : {20U, 24U, 64U}) {
    std::copy_n(factory_port_3().begin() + static_cast<std::ptrdiff_t>(status), 4,
                expected.begin() + static_cast<std::ptrdiff_t>(status));
  }
  for (size_t unused : {8U, 36U, 68U, 72U}) {
    std::fill_n(expected.begin() + static_cast<std::ptrdiff_t>(unused), 4, uint8_t{0});
  }
  EXPECT_EQ(reply, expected);
}

TEST(Ports, BadValuesAreRefusedAndNothingIsSet) {
  TestBox box;
  EXPECT_EQ(box.status(2, 14, uncleared({{16, word(2)}})), 3U);
  EXPECT_EQ(box.status(2, 67, uncleared({{60, word(256)}})), 3U);
  EXPECT_EQ(box.status(2, 71, uncleared({{16, word(1)}})), 3U);
  EXPECT_EQ(box.reply(2, 70, port(3)), factory_port_3());
}

TEST(Ports, UnknownOnesAreNotFound) {
  TestBox box;
  for (uint32_t type :
       {13U, 14U, 15U, 16U, 17U, 18U, 24U, 30U, 32U, 66U, 67U, 68U, 69U, 70U, 71U, 72U, 102U}) {
    EXPECT_EQ(box.status(2, type, port(0)), 4U) << type;
    EXPECT_EQ(box.status(2, type, port(5)), 4U) << type;
    EXPECT_EQ(box.status(2, type, record(80, {{4, word(1)}})), 4U) << type;
    EXPECT_EQ(box.status(2, type, record(80, {{0, word(2)}, {4, word(1)}})), 4U) << type;
    EXPECT_EQ(box.status(2, type, Bytes(79)), 2U) << type;
    EXPECT_EQ(box.status(2, type, Bytes(81)), 2U) << type;
  }
  for (uint32_t type : {29U, 31U}) {
    EXPECT_EQ(box.status(2, type, port(1)), 4U) << type;
    EXPECT_EQ(box.status(2, type, record(80, {{4, word(1)}, {8, word(5)}})), 4U) << type;
    EXPECT_EQ(box.status(2, type, Bytes(79)), 2U) << type;
  }
}

TEST(Links, FollowEnable) {
  TestBox box;
  EXPECT_EQ(box.status(2, 14, uncleared({{16, word(0)}})), 0U);
  Bytes down = box.reply(2, 16, port(3));
  EXPECT_EQ(word_at(down, 16), 0U);
  EXPECT_EQ(word_at(down, 20), 0U);
  EXPECT_EQ(word_at(down, 24), 0U);
  EXPECT_EQ(word_at(down, 64), 0U);
  EXPECT_EQ(word_at(box.reply(2, 16, port(2)), 64), 1U);
  EXPECT_EQ(box.status(2, 14, uncleared({{16, word(1)}})), 0U);
  EXPECT_EQ(word_at(box.reply(2, 15, port(3)), 16), 1U);
  EXPECT_EQ(word_at(box.reply(2, 16, port(3)), 64), 0U);
  box.advance(1s);
  EXPECT_EQ(word_at(box.reply(2, 16, port(3)), 64), 0U);
  box.advance(1s);
  EXPECT_EQ(box.reply(2, 16, port(3)), factory_port_3());
}

TEST(Links, StayUpWhenEnabledOnceMore) {
  TestBox box;
  EXPECT_EQ(box.status(2, 14, uncleared({{16, word(1)}})), 0U);
  EXPECT_EQ(word_at(box.reply(2, 16, port(3)), 64), 1U);
}

TEST(Links, AreUpAfterAClockWasSetBack) {
  TestBox box;
  box.status(2, 12);
  box.advance(-3600s);
  EXPECT_EQ(word_at(box.reply(2, 16, port(3)), 64), 1U);
}

TEST(Links, HaveTheSpeedAndDuplexOfTheTopology) {
  TestBox box;
  write_file(box.folder / "box.json", R"({"olt":{"ethernet_ports":6,"ports":[
      {"port":5,"speed":100,"duplex":"half"},{"port":6,"plugged":false}]}})");
  box.options.topology_file = box.folder / "box.json";
  Bytes slow = box.reply(2, 18, port(5));
  EXPECT_EQ(word_at(slow, 20), 100U);
  EXPECT_EQ(word_at(slow, 24), 1U);
  EXPECT_EQ(word_at(slow, 64), 1U);
  Bytes unplugged = box.reply(2, 18, port(6));
  EXPECT_EQ(word_at(unplugged, 16), 1U);
  EXPECT_EQ(word_at(unplugged, 64), 0U);
  std::string info = box.listing(box.reply(2, 53), 48);
  EXPECT_NE(info.find("Port  Enabled  Link  Speed in Mbit/s  Duplex\n"
                      "----  -------  ----  ---------------  ------\n"
                      "1/1   yes      up    1000             full\n"),
            std::string::npos)
      << info;
  EXPECT_NE(info.find("1/5   yes      up    100              half\n"
                      "1/6   yes      down  -                -\n"),
            std::string::npos)
      << info;
}

TEST(Uplinks, AggregationIsReadBack) {
  TestBox box;
  EXPECT_EQ(box.reply(2, 74), Bytes(32));
  EXPECT_EQ(box.status(2, 34, record(32, {{8, hex("78563412")}})), 0U);
  EXPECT_EQ(box.reply(2, 74), record(32, {{8, hex("78563412")}}));
  EXPECT_EQ(box.status(2, 34, Bytes(31)), 2U);
  EXPECT_EQ(box.status(2, 74, Bytes(1)), 2U);
}

TEST(Ports, SettingsAreConfiguration) {
  TestBox box;
  box.status(2, 24, uncleared({{32, word(10)}, {28, word(20)}}));
  box.status(2, 14, uncleared({{16, word(0)}}));
  box.status(2, 34, record(32, {{8, word(3)}}));
  Bytes set = box.reply(2, 70, port(3));
  box.status(2, 8);
  box.status(2, 9);
  box.advance(2s);
  EXPECT_EQ(box.reply(2, 70, port(3)), factory_port_3());
  EXPECT_EQ(box.reply(2, 74), Bytes(32));
  box.status(2, 7);
  EXPECT_EQ(box.reply(2, 70, port(3)), set);
  EXPECT_EQ(box.reply(2, 74), record(32, {{8, word(3)}}));
  box.restart();
  EXPECT_EQ(box.reply(2, 70, port(3)), set);
  std::string config = box.listing(box.reply(2, 33), 48);
  EXPECT_NE(config.find("Port  Enabled  SFP  VLAN mode  (second)  Flow control"), std::string::npos)
      << config;
  EXPECT_NE(config.find("\n1/3   0        0    10         20        0 "), std::string::npos)
      << config;
}

std::string statistics(TestBox &box, uint32_t number) {
  return box.listing(box.reply(2, 29, record(80, {{4, word(1)}, {8, word(number)}})), 48);
}

TEST(Statistics, AdvanceWithTimeWhileTheLinkIsUp) {
  TestBox box;
  EXPECT_NE(statistics(box, 1).find("Octets              0         0\n"), std::string::npos)
      << statistics(box, 1);
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
  EXPECT_NE(statistics(box, 4).find("Octets              175000000  105000000\n"),
            std::string::npos);
  box.status(2, 14, record(80, {{0, word(1)}, {4, word(1)}, {16, word(0)}}));
  box.advance(50s);
  std::string down = statistics(box, 1);
  EXPECT_NE(down.find("State            down\nSeconds counted  100\n"), std::string::npos) << down;
  box.status(2, 14, record(80, {{0, word(1)}, {4, word(1)}, {16, word(1)}}));
  box.advance(12s);
  std::string up = statistics(box, 1);
  EXPECT_NE(up.find("State            up\nSeconds counted  110\n"), std::string::npos) << up;
}

TEST(Statistics, AreClearedByPort) {
  TestBox box;
  box.status(2, 12);
  box.advance(100s);
  EXPECT_EQ(box.status(2, 30, port(1)), 0U);
  EXPECT_NE(statistics(box, 1).find("Seconds counted  0\n"), std::string::npos);
  EXPECT_NE(statistics(box, 2).find("Seconds counted  100\n"), std::string::npos);
  box.advance(5s);
  EXPECT_NE(statistics(box, 1).find("Seconds counted  5\n"), std::string::npos);
  box.status(2, 14, record(80, {{0, word(1)}, {4, word(1)}, {16, word(0)}}));
  box.status(2, 14, record(80, {{0, word(1)}, {4, word(1)}, {16, word(1)}}));
  box.status(2, 30, port(1));
  box.advance(3s);
  EXPECT_NE(statistics(box, 1).find("Seconds counted  1\n"), std::string::npos);
}

TEST(Statistics, BeginAnewWithARebootAndGoOnInTheNextBox) {
  TestBox box;
  box.options.keep_running_state = true;
  box.status(2, 14, record(80, {{0, word(1)}, {4, word(2)}, {16, word(0)}}));
  box.advance(100s);
  box.status(2, 14, record(80, {{0, word(1)}, {4, word(2)}, {16, word(1)}}));
  box.keep();
  box.advance(20s);
  box.restart();
  EXPECT_NE(statistics(box, 1).find("Seconds counted  120\n"), std::string::npos);
  EXPECT_NE(statistics(box, 2).find("Seconds counted  18\n"), std::string::npos);
  box.status(2, 7);
  EXPECT_NE(statistics(box, 1).find("State            up\nSeconds counted  0\n"),
            std::string::npos);
  box.advance(3s);
  EXPECT_NE(statistics(box, 1).find("Seconds counted  3\n"), std::string::npos);
}

std::string macs(TestBox &box, uint32_t number, uint32_t vlan = 0) {
  return box.listing(
      box.reply(2, 31, record(80, {{4, word(1)}, {8, word(number)}, {12, word(vlan)}})), 48);
}

TEST(Macs, AreLearnedOneAfterTheOtherAndAge) {
  TestBox box;
  EXPECT_NE(macs(box, 3).find("\n0 addresses\n"), std::string::npos);
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
  EXPECT_NE(macs(box, 3).find("\n4 addresses\n"), std::string::npos);
  box.advance(299s);
  EXPECT_NE(macs(box, 3).find("02:10:03:00:00:04  dynamic  299\n"), std::string::npos)
      << macs(box, 3);
  box.advance(1s);
  std::string aged = macs(box, 3);
  EXPECT_NE(aged.find("\n3 addresses\n"), std::string::npos) << aged;
  EXPECT_EQ(aged.find("00:00:04"), std::string::npos) << aged;
  box.advance(120s);
  EXPECT_NE(macs(box, 3).find("02:10:03:00:00:04  dynamic  0\n"), std::string::npos);
}

TEST(Macs, AreClearedByPortAndLearnedAgain) {
  TestBox box;
  box.status(2, 12);
  box.advance(30s);
  EXPECT_EQ(box.status(2, 32, port(3)), 0U);
  EXPECT_NE(macs(box, 3).find("\n0 addresses\n"), std::string::npos);
  EXPECT_NE(macs(box, 2).find("\n4 addresses\n"), std::string::npos);
  box.advance(32s);
  EXPECT_NE(macs(box, 3).find("\n1 address\n"), std::string::npos);
}

TEST(Macs, GoWithTheLink) {
  TestBox box;
  box.status(2, 12);
  box.advance(30s);
  box.status(2, 14, uncleared({{16, word(0)}}));
  EXPECT_NE(macs(box, 3).find("\n0 addresses\n"), std::string::npos);
  box.status(2, 14, uncleared({{16, word(1)}}));
  box.advance(4s);
  EXPECT_NE(macs(box, 3).find("\n1 address\n"), std::string::npos);
}

TEST(Macs, AreFilteredByVlan) {
  TestBox box;
  box.status(2, 19, hex("0a000b00"));
  box.status(2, 25, record(84, {{0, word(1)}, {4, word(3)}, {80, hex("0a000b00")}}));
  box.advance(20s);
  EXPECT_NE(macs(box, 3).find("1     02:10:03:00:00:01  dynamic  18\n"
                              "1     02:10:03:00:00:04  dynamic  9\n"
                              "10    02:10:03:00:00:02  dynamic  15\n"
                              "11    02:10:03:00:00:03  dynamic  12\n"),
            std::string::npos)
      << macs(box, 3);
  EXPECT_EQ(macs(box, 3, 10),
            "MAC addresses of port 1/3 in VLAN 10\n"
            "====================================\n"
            "\n"
            "1 address\n"
            "VLAN  MAC address        Type     Age in s\n"
            "----  -----------------  -------  --------\n"
            "10    02:10:03:00:00:02  dynamic  15\n");
  EXPECT_EQ(box.status(2, 31, record(80, {{4, word(1)}, {8, word(3)}, {12, word(4095)}})), 3U);
  box.status(2, 20, hex("0100fe0f"));
  EXPECT_NE(macs(box, 3).find("\n0 addresses\n"), std::string::npos);
}

TEST(Macs, StaticOnesAreAddedAndDeleted) {
  TestBox box;
  box.status(2, 12);
  box.advance(4s);
  EXPECT_EQ(box.status(2, 55, hex("0100 0300 0100 0a00 0211aabbccdd ffff")), 0U);
  EXPECT_EQ(box.status(2, 55, hex("0100 0300 0100 0100 021003000001 0000")), 0U);
  EXPECT_EQ(box.status(2, 55, hex("0100 0200 0100 0a00 0211aabbccdd 0000")), 5U);
  EXPECT_NE(macs(box, 3).find("\n2 addresses\n"
                              "VLAN  MAC address        Type    Age in s\n"
                              "----  -----------------  ------  --------\n"
                              "1     02:10:03:00:00:01  static  -\n"
                              "10    02:11:aa:bb:cc:dd  static  -\n"),
            std::string::npos)
      << macs(box, 3);
  box.status(2, 32, port(3));
  box.status(2, 8);
  EXPECT_EQ(box.status(2, 55, hex("0100 0200 0200 0a00 0211aabbccdd 0000")), 4U);
  EXPECT_EQ(box.status(2, 55, hex("0100 0300 0200 0a00 0211aabbccdd 0000")), 0U);
  EXPECT_EQ(box.status(2, 55, hex("0100 0300 0200 0a00 0211aabbccdd 0000")), 4U);
  box.status(2, 7);
  std::string config = box.listing(box.reply(2, 33), 48);
  EXPECT_NE(config.find("Port  VLAN  MAC address\n"
                        "----  ----  -----------------\n"
                        "1/3   10    02:11:aa:bb:cc:dd\n"
                        "1/3   1     02:10:03:00:00:01\n"),
            std::string::npos)
      << config;
}

TEST(Macs, BadStaticOnesAreRefused) {
  TestBox box;
  EXPECT_EQ(box.status(2, 55, hex("0100 0500 0100 0a00 0211aabbccdd 0000")), 4U);
  EXPECT_EQ(box.status(2, 55, hex("0100 0300 0000 0a00 0211aabbccdd 0000")), 3U);
  EXPECT_EQ(box.status(2, 55, hex("0100 0300 0300 0a00 0211aabbccdd 0000")), 3U);
  EXPECT_EQ(box.status(2, 55, hex("0100 0300 0100 0000 0211aabbccdd 0000")), 3U);
  EXPECT_EQ(box.status(2, 55, hex("0100 0300 0100 ff0f 0211aabbccdd 0000")), 3U);
  EXPECT_EQ(box.status(2, 55, hex("0100 0300 0100 0a00 0111aabbccdd 0000")), 3U);
  EXPECT_EQ(box.status(2, 55, hex("0100 0300 0100 0a00 000000000000 0000")), 3U);
  EXPECT_EQ(box.status(2, 55, Bytes(15)), 2U);
  EXPECT_NE(macs(box, 3).find("\n0 addresses\n"), std::string::npos);
}

TEST(Macs, ThereIsRoomFor256StaticOnes) {
  TestBox box;
  Bytes request = hex("0100 0100 0100 0a00 021100000000 0000");
  for (int i = 0; i < 256; ++i) {
    request[13] = static_cast<uint8_t>(i);
    ASSERT_EQ(box.status(2, 55, request), 0U);
  }
  request[12] = 1;
  EXPECT_EQ(box.status(2, 55, request), 6U);
}

}  // namespace
