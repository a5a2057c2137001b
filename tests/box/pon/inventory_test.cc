// What the OLT tells of its ONUs.

#include <gtest/gtest.h>

#include "tests/box/onu_support.h"

namespace {

using namespace std::chrono_literals;
using olt::tests::Bytes;
using olt::tests::hex;
using olt::tests::listed_interface;
using olt::tests::record;
using olt::tests::slice;
using olt::tests::SmallPon;
using olt::tests::target;
using olt::tests::target_with;
using olt::tests::TestBox;
using olt::tests::text;
using olt::tests::word;

void block_all(SmallPon &box, uint32_t interface) {
  EXPECT_EQ(box.status(2, 114, record(80, {{0, word(1)}, {4, word(interface)}, {36, word(1)}})),
            0U);
}

void describe(SmallPon &box, uint32_t interface, uint32_t onu, std::string_view description) {
  EXPECT_EQ(
      box.status(2, 44, target_with(target(interface, onu), record(48, {{0, text(description)}}))),
      0U);
}

/// The number behind the words in a listing.
double number_behind(const std::string &listing, const std::string &words) {
  size_t at = listing.find(words);
  EXPECT_NE(at, std::string::npos) << words << " in " << listing;
  return at == std::string::npos ? 0 : std::stod(listing.substr(at + words.size()));
}

TEST(OnuList, ShowsEveryOnuAndHowItStands) {
  SmallPon box;
  describe(box, 2, 1, "first floor");
  box.advance(60s);
  EXPECT_EQ(box.status(2, 107, target(2, 3)), 0U);
  box.advance(1s);
  EXPECT_EQ(box.list_interface(35, 2),
            "ONUs of PON interface 1/2\n"
            "=========================\n"
            "\n"
            "4 ONUs, 3 up\n"
            "ONU    MAC address        LOID       State  Since                 Description\n"
            "-----  -----------------  ---------  -----  --------------------  -----------\n"
            "1/2/1  02:20:02:00:01:01  onu-1-2-1  up     2026-01-31T12:00:00Z  first floor\n"
            "1/2/2  02:20:02:00:02:01  onu-1-2-2  up     2026-01-31T12:00:00Z  -\n"
            "1/2/3  02:20:02:00:03:01  onu-1-2-3  away   2026-01-31T12:01:00Z  -\n"
            "1/2/4  02:20:02:00:04:01  onu-1-2-4  up     2026-01-31T12:00:00Z  -\n");
  box.advance(2s);
  EXPECT_NE(box.list_interface(35, 2).find("onu-1-2-3  up     2026-01-31T12:01:03Z"),
            std::string::npos);
}

TEST(OnuList, IsOfOneInterface) {
  SmallPon box;
  EXPECT_EQ(box.list_interface(35, 1).find("1/2/"), std::string::npos);
  for (uint32_t type : {35U, 36U}) {
    EXPECT_EQ(box.status(2, type, listed_interface(0)), 4U);
    EXPECT_EQ(box.status(2, type, listed_interface(3)), 4U);
    EXPECT_EQ(box.status(2, type, record(80, {{4, word(2)}, {8, word(1)}})), 4U);
    EXPECT_EQ(box.status(2, type, Bytes(79)), 2U);
    EXPECT_EQ(box.status(2, type, Bytes(81)), 2U);
  }
}

TEST(OnuList, HoldsAllOf1024) {
  TestBox box;
  box.options.topology_file =
      box.folder.write("box.json", R"({"pon":{"interfaces":16,"onus_per_interface":1024}})");
  std::string onus = box.listing(box.reply(2, 35, listed_interface(16)), 48);
  EXPECT_NE(onus.find("\n1024 ONUs, 1024 up\n"), std::string::npos);
  EXPECT_EQ(std::count(onus.begin(), onus.end(), '\n'), 4 + 2 + 1024);
  EXPECT_NE(onus.find("\n1/16/1024  02:20:10:04:00:01  onu-1-16-1024  up "), std::string::npos);
  std::string links = box.listing(box.reply(2, 36, listed_interface(16)), 48);
  EXPECT_EQ(std::count(links.begin(), links.end(), '\n'), 4 + 2 + 1024);
}

TEST(LinkList, ShowsTheLinksOfOnusThatAreUp) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 54, target_with(target(1, 2), record(20, {{16, word(50'000)}}))), 0U);
  box.advance(90s);
  EXPECT_EQ(box.status(2, 107, target(1, 3)), 0U);
  std::string links = box.list_interface(36, 1);
  EXPECT_NE(links.find("Links of PON interface 1/1\n"), std::string::npos) << links;
  EXPECT_NE(links.find("Link   Distance in m  Round trip in ns  Bandwidth in kbit/s  Up for in s"),
            std::string::npos)
      << links;
  EXPECT_EQ(links.find("1/1/3"), std::string::npos) << links;
  double length = number_behind(links, "\n1/1/2");
  EXPECT_GE(length, 500);
  EXPECT_LE(length, 20'000);
  std::string row = links.substr(links.find("\n1/1/2"));
  row = row.substr(0, row.find('\n', 1));
  EXPECT_NE(row.find(std::to_string(static_cast<int>(length) * 10)), std::string::npos) << row;
  EXPECT_TRUE(row.ends_with("  50000                90")) << row;
  EXPECT_NE(links.find("  1000000              90\n"), std::string::npos) << links;
}

TEST(OnuMac, IsToldByIndexWithTheStateOfTheOnu) {
  SmallPon box;
  Bytes expected = target(2, 3);
  Bytes mac = hex("02 20 02 00 03 01");
  std::copy(mac.begin(), mac.end(), expected.begin() + 28);
  Bytes up = hex("01 00 00 00");
  std::copy(up.begin(), up.end(), expected.begin() + 36);
  EXPECT_EQ(box.reply(2, 65, target(2, 3)), expected);
  block_all(box, 2);
  expected[36] = 0;
  EXPECT_EQ(box.reply(2, 65, target(2, 3)), expected);
}

TEST(OnuMac, OnusThatAreNotThereAreUnknown) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 65, target(2, 5)), 4U);
  EXPECT_EQ(box.status(2, 65, target(2, 0)), 4U);
  EXPECT_EQ(box.status(2, 65, target(3, 1)), 4U);
  EXPECT_EQ(box.status(2, 65, target(0, 1)), 4U);
  Bytes other_slot = target(1, 1);
  other_slot[0] = 2;
  EXPECT_EQ(box.status(2, 65, other_slot), 4U);
  Bytes other_kind = target(1, 1);
  other_kind[12] = 2;
  EXPECT_EQ(box.status(2, 65, other_kind), 3U);
  EXPECT_EQ(box.status(2, 65, Bytes(87)), 2U);
  EXPECT_EQ(box.status(2, 65, Bytes(89)), 2U);
}

TEST(OnuInformation, TellsWhatTheOltKnows) {
  SmallPon box;
  describe(box, 2, 4, "lab");
  block_all(box, 2);
  std::string info = box.list_target(47, target(2, 4));
  size_t distance = info.find("Distance in m");
  ASSERT_NE(distance, std::string::npos) << info;
  EXPECT_EQ(info.substr(0, distance),
            "Basic information of ONU 1/2/4\n"
            "==============================\n"
            "\n"
            "Identity\n"
            "MAC address  02:20:02:00:04:01\n"
            "LOID         onu-1-2-4\n"
            "Description  lab\n"
            "\n"
            "State\n"
            "State          blocked\n"
            "Since          2026-01-31T12:00:00Z\n");
  EXPECT_NE(info.find("UNI ports        2\n"
                      "Voice lines      2\n"
                      "WAN connections  8\n"),
            std::string::npos)
      << info;
}

TEST(OnuConfiguration, ShowsEveryRecordThatIsKept) {
  SmallPon box;
  EXPECT_EQ(box.list_target(48, target(1, 1)),
            "Running configuration of ONU 1/1/1\n"
            "==================================\n"
            "\n"
            "All is as from the factory.\n");
  describe(box, 1, 1, "lab");
  describe(box, 1, 2, "other");
  box.status(2, 118, target_with(target(1, 1, 2), hex("0a000000 14000000 1e000000")));
  box.status(2, 121, target_with(target(1, 1, 1), word(8)));
  box.status(2, 124, target_with(target(1, 1, 1), hex("6400 c800")));
  EXPECT_EQ(box.list_target(48, target(1, 1)),
            "Running configuration of ONU 1/1/1\n"
            "==================================\n"
            "\n"
            "Descriptions\n"
            "1/1/1  lab\n"
            "\n"
            "UNI port downstream rates\n"
            "1/1/1:2  10 20 30\n"
            "\n"
            "Multicast group limits\n"
            "1/1/1:1  8\n"
            "\n"
            "Multicast VLANs\n"
            "1/1/1:1  100,200\n");
}

TEST(OnuOptics, ArePlausibleAndDifferByOnuAndTime) {
  SmallPon box;
  std::string first = box.list_target(106, target(1, 1));
  EXPECT_EQ(first.find("Optical readings of ONU 1/1/1\n"), 0U);
  EXPECT_NEAR(number_behind(first, "Sent"), 2, 1);
  EXPECT_NEAR(number_behind(first, "Received"), -15, 4);
  EXPECT_NEAR(number_behind(first, "Received by the OLT"), -18, 5);
  EXPECT_NEAR(number_behind(first, "Temperature in degrees C"), 42, 9);
  EXPECT_NEAR(number_behind(first, "Voltage in V"), 3.3, 0.03);
  EXPECT_NEAR(number_behind(first, "Laser bias in mA"), 13, 3);
  std::string second = box.list_target(106, target(1, 2));
  EXPECT_NE(first.substr(first.find("Powers")), second.substr(second.find("Powers")));
  EXPECT_EQ(box.list_target(106, target(1, 1)), first);
  box.advance(4h);
  EXPECT_NE(box.list_target(106, target(1, 1)), first);
}

TEST(OnuOptics, OnlyTheOnuCanTell) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 107, target(1, 1)), 0U);
  EXPECT_EQ(box.status(2, 106, target(1, 1)), 11U);
  box.advance(3s);
  EXPECT_EQ(box.status(2, 106, target(1, 1)), 0U);
  EXPECT_EQ(box.status(2, 106, target(1, 5)), 4U);
}

}  // namespace
