// What the OLT reports about its ONUs.

#include <gtest/gtest.h>

#include "tests/box/onu_support.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;

void block_all(SmallPon &box, uint32_t interface) {
  EXPECT_EQ(box.status(kSetAuthMode, mode_record(interface, 1)), kOk);
}

void describe(SmallPon &box, uint32_t interface, uint32_t onu, std::string_view description) {
  EXPECT_EQ(
      box.status(kDescribeOnu, target_with(target(interface, onu),
                                           record(kOnuDescriptionSize, {{0, text(description)}}))),
      kOk);
}

/// The number after these words in a listing.
double number_after(const std::string &listing, const std::string &words) {
  size_t at = listing.find(words);
  EXPECT_NE(at, std::string::npos) << words << " in " << listing;
  return at == std::string::npos ? 0 : std::stod(listing.substr(at + words.size()));
}

TEST(OnuList, ShowsTheStateOfEveryOnu) {
  SmallPon box;
  describe(box, 2, 1, "first floor");
  box.advance(60s);
  EXPECT_EQ(box.status(kRebootOnu, target(2, 3)), kOk);
  box.advance(1s);
  EXPECT_EQ(box.list_interface(kListOnus, 2),
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
  EXPECT_TRUE(holds(box.list_interface(kListOnus, 2), "onu-1-2-3  up     2026-01-31T12:01:03Z"));
}

TEST(OnuList, IsOfOneInterface) {
  SmallPon box;
  EXPECT_FALSE(holds(box.list_interface(kListOnus, 1), "1/2/"));
  for (uint32_t type : {kListOnus, kListLinks}) {
    EXPECT_EQ(box.status(type, listed_interface(0)), kNotFound);
    EXPECT_EQ(box.status(type, listed_interface(3)), kNotFound);
    EXPECT_EQ(box.status(type, record(kInterfaceSize, {{4, word(2)}, {8, word(1)}})), kNotFound);
    EXPECT_EQ(box.status(type, Bytes(kInterfaceSize - 1)), kBadLength);
    EXPECT_EQ(box.status(type, Bytes(kInterfaceSize + 1)), kBadLength);
  }
}

TEST(OnuList, HoldsAllOf1024) {
  TestBox box;
  box.options.topology_file =
      box.folder.write("box.json", R"({"pon":{"interfaces":16,"onus_per_interface":1024}})");
  std::string onus = box.listing(box.reply(kListOnus, listed_interface(16)), kListingNameAt);
  EXPECT_TRUE(holds(onus, "\n1024 ONUs, 1024 up\n"));
  EXPECT_EQ(std::count(onus.begin(), onus.end(), '\n'), 4 + 2 + 1024);
  EXPECT_TRUE(holds(onus, "\n1/16/1024  02:20:10:04:00:01  onu-1-16-1024  up "));
  std::string links = box.listing(box.reply(kListLinks, listed_interface(16)), kListingNameAt);
  EXPECT_EQ(std::count(links.begin(), links.end(), '\n'), 4 + 2 + 1024);
}

TEST(LinkList, ShowsTheLinksOfOnusThatAreUp) {
  SmallPon box;
  EXPECT_EQ(box.status(kSetLinkDba,
                       target_with(target(1, 2), record(kLinkDbaSize, {{16, word(50'000)}}))),
            kOk);
  box.advance(90s);
  EXPECT_EQ(box.status(kRebootOnu, target(1, 3)), kOk);
  std::string links = box.list_interface(kListLinks, 1);
  EXPECT_TRUE(holds(links, "Logical links of PON interface 1/1\n")) << links;
  EXPECT_TRUE(
      holds(links, "ONU    Distance in m  Round trip in ns  Bandwidth in kbit/s  Up for in s"))
      << links;
  EXPECT_FALSE(holds(links, "1/1/3")) << links;
  double length = number_after(links, "\n1/1/2");
  EXPECT_GE(length, 500);
  EXPECT_LE(length, 20'000);
  std::string row = links.substr(links.find("\n1/1/2"));
  row = row.substr(0, row.find('\n', 1));
  EXPECT_TRUE(holds(row, std::to_string(static_cast<int>(length) * 10))) << row;
  EXPECT_TRUE(row.ends_with("  50000                90")) << row;
  EXPECT_TRUE(holds(links, "  1000000              90\n")) << links;
}

TEST(OnuMac, IsReadByIndexWithTheStateOfTheOnu) {
  SmallPon box;
  Bytes expected = target(2, 3);
  put(expected, kMacAt, hex("02 20 02 00 03 01"));
  put(expected, kUpAt, hex("01 00 00 00"));
  EXPECT_EQ(box.reply(kGetOnuMac, target(2, 3)), expected);
  block_all(box, 2);
  expected[kUpAt] = 0;
  EXPECT_EQ(box.reply(kGetOnuMac, target(2, 3)), expected);
}

TEST(OnuMac, UnknownOnusAreNotFound) {
  SmallPon box;
  EXPECT_EQ(box.status(kGetOnuMac, target(2, 5)), kNotFound);
  EXPECT_EQ(box.status(kGetOnuMac, target(2, 0)), kNotFound);
  EXPECT_EQ(box.status(kGetOnuMac, target(3, 1)), kNotFound);
  EXPECT_EQ(box.status(kGetOnuMac, target(0, 1)), kNotFound);
  Bytes other_slot = target(1, 1);
  other_slot[0] = 2;
  EXPECT_EQ(box.status(kGetOnuMac, other_slot), kNotFound);
  Bytes other_kind = target(1, 1);
  other_kind[kKindAt] = 2;
  EXPECT_EQ(box.status(kGetOnuMac, other_kind), kBadValue);
  EXPECT_EQ(box.status(kGetOnuMac, Bytes(kTargetSize - 1)), kBadLength);
  EXPECT_EQ(box.status(kGetOnuMac, Bytes(kTargetSize + 1)), kBadLength);
}

TEST(OnuInformation, ShowsWhatTheOltKnows) {
  SmallPon box;
  describe(box, 2, 4, "lab");
  block_all(box, 2);
  std::string info = box.list_target(kListOnuInfo, target(2, 4));
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
  EXPECT_TRUE(holds(info,
                    "UNI ports        2\n"
                    "Voice lines      2\n"
                    "WAN connections  8\n"))
      << info;
}

TEST(OnuConfiguration, ShowsEveryRecordThatIsKept) {
  SmallPon box;
  EXPECT_EQ(box.list_target(kListOnuConfig, target(1, 1)),
            "Running configuration of ONU 1/1/1\n"
            "==================================\n"
            "\n"
            "No setting differs from the factory's.\n");
  describe(box, 1, 1, "lab");
  describe(box, 1, 2, "other");
  box.status(kSetUniPortDownRate, target_with(target(1, 1, 2), hex("0a000000 14000000 1e000000")));
  box.status(kSetGroupLimit, target_with(target(1, 1, 1), word(8)));
  box.status(kAddPortMulticastVlans, target_with(target(1, 1, 1), hex("6400 c800")));
  EXPECT_EQ(box.list_target(kListOnuConfig, target(1, 1)),
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
  std::string first = box.list_target(kListOptics, target(1, 1));
  EXPECT_EQ(first.find("Optical readings of ONU 1/1/1\n"), 0U);
  EXPECT_NEAR(number_after(first, "Sent"), 2, 1);
  EXPECT_NEAR(number_after(first, "Received"), -15, 4);
  EXPECT_NEAR(number_after(first, "Received by the OLT"), -18, 5);
  EXPECT_NEAR(number_after(first, "Temperature in degrees C"), 42, 9);
  EXPECT_NEAR(number_after(first, "Voltage in V"), 3.3, 0.03);
  EXPECT_NEAR(number_after(first, "Laser bias in mA"), 13, 3);
  std::string second = box.list_target(kListOptics, target(1, 2));
  EXPECT_NE(first.substr(first.find("Powers")), second.substr(second.find("Powers")));
  EXPECT_EQ(box.list_target(kListOptics, target(1, 1)), first);
  box.advance(4h);
  EXPECT_NE(box.list_target(kListOptics, target(1, 1)), first);
}

TEST(OnuOptics, AreUnavailableWhileTheOnuIsAway) {
  SmallPon box;
  EXPECT_EQ(box.status(kRebootOnu, target(1, 1)), kOk);
  EXPECT_EQ(box.status(kListOptics, target(1, 1)), kOnuNotUp);
  box.advance(3s);
  EXPECT_EQ(box.status(kListOptics, target(1, 1)), kOk);
  EXPECT_EQ(box.status(kListOptics, target(1, 5)), kNotFound);
}

}  // namespace

}  // namespace olt::test
