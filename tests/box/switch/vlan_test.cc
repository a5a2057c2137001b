// VLANs: the table and its queries, descriptions, trunk membership.

#include <gtest/gtest.h>

#include "tests/box/support.h"

namespace {

using olt::tests::Bytes;
using olt::tests::hex;
using olt::tests::record;
using olt::tests::TestBox;
using olt::tests::text;
using olt::tests::word;
using olt::tests::write_file;

Bytes join(Bytes head, const Bytes &tail) {
  head.insert(head.end(), tail.begin(), tail.end());
  return head;
}

/// Elements of one VLAN each: 10 as "0a000000".
Bytes every_vlan() {
  Bytes bytes;
  for (uint32_t vlan = 1; vlan <= 4094; ++vlan) bytes = join(std::move(bytes), word(vlan));
  return bytes;
}

Bytes describing(const Bytes &element, std::string_view description) {
  return record(36, {{0, element}, {4, text(description)}});
}

std::string all_vlans(TestBox &box) {
  return box.listing(box.reply(2, 23, record(80, {{0, word(3)}})), 48);
}

std::string vlans_of_port(TestBox &box, uint32_t port) {
  return box.listing(box.reply(2, 23, record(80, {{4, word(1)}, {8, word(port)}})), 48);
}

Bytes trunk(uint32_t port, uint32_t value, const Bytes &elements) {
  Bytes head(80, 0xA5);  // behind the value nothing is cleared
  Bytes words = join(join(word(1), word(port)), word(value));
  std::copy(words.begin(), words.end(), head.begin());
  return join(std::move(head), elements);
}

size_t lines_in(const std::string &text) {
  return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
}

constexpr char kFactoryTable[] =
    "VLANs of olt\n"
    "============\n"
    "\n"
    "1 VLAN\n"
    "VLAN  Tagged ports  Untagged ports  Description\n"
    "----  ------------  --------------  -----------\n"
    "1     -             1/1-4           default\n";

TEST(Vlans, OneWithAllPortsIsThereFromTheFactory) {
  TestBox box;
  Bytes reply = box.reply(2, 23, record(80, {{0, word(3)}}));
  EXPECT_EQ(reply, record(80, {{48, text("vlan-00000001.txt")}}));
  EXPECT_EQ(box.listing(reply, 48), kFactoryTable);
}

TEST(Vlans, AreAddedAndDeletedBySingleIdsAndRanges) {
  TestBox box;
  EXPECT_EQ(box.status(2, 19, hex("0a000000 14001600 1e001e00")), 0U);
  EXPECT_EQ(all_vlans(box),
            "VLANs of olt\n"
            "============\n"
            "\n"
            "6 VLANs\n"
            "VLAN  Tagged ports  Untagged ports  Description\n"
            "----  ------------  --------------  -----------\n"
            "1     -             1/1-4           default\n"
            "10    -             -               -\n"
            "20    -             -               -\n"
            "21    -             -               -\n"
            "22    -             -               -\n"
            "30    -             -               -\n");
  EXPECT_EQ(box.status(2, 20, hex("1500fe0f 0a000000")), 0U);
  EXPECT_EQ(all_vlans(box),
            "VLANs of olt\n"
            "============\n"
            "\n"
            "2 VLANs\n"
            "VLAN  Tagged ports  Untagged ports  Description\n"
            "----  ------------  --------------  -----------\n"
            "1     -             1/1-4           default\n"
            "20    -             -               -\n");
}

TEST(Vlans, AddingWhatIsThereChangesNothing) {
  TestBox box;
  EXPECT_EQ(box.status(2, 19, hex("01000000")), 0U);
  EXPECT_EQ(box.status(2, 19), 0U);
  EXPECT_EQ(all_vlans(box), kFactoryTable);
}

TEST(Vlans, BadIdsAreRefusedAndNothingIsAdded) {
  TestBox box;
  for (const char *bad : {"00000000", "ff0f0000", "0000ff0f", "0a00ff0f", "0a000900", "00000a00"}) {
    for (uint32_t type : {19U, 20U, 22U}) {
      EXPECT_EQ(box.status(2, type, join(hex("01000000"), hex(bad))), 3U) << type << ' ' << bad;
    }
    EXPECT_EQ(box.status(2, 21, join(describing(hex("01000000"), "new"), describing(hex(bad), ""))),
              3U)
        << bad;
  }
  EXPECT_EQ(all_vlans(box), kFactoryTable);
}

TEST(Vlans, DeletingUnknownOnesIsRefusedAndNothingIsDeleted) {
  TestBox box;
  for (uint32_t type : {20U, 22U}) {
    EXPECT_EQ(box.status(2, type, hex("01000000 02000000")), 4U);
    EXPECT_EQ(box.status(2, type, hex("0100fe0f 0200fe0f")), 4U);
  }
  EXPECT_EQ(box.status(2, 21, describing(hex("02000000"), "new")), 4U);
  EXPECT_EQ(all_vlans(box), kFactoryTable);
}

TEST(Vlans, ListsOfBrokenLengthAreRefused) {
  TestBox box;
  for (uint32_t type : {19U, 20U, 22U}) {
    EXPECT_EQ(box.status(2, type, hex("0a0000")), 2U) << type;
    EXPECT_EQ(box.status(2, type, Bytes(4 * 4094 + 4, 1)), 2U) << type;
  }
  EXPECT_EQ(box.status(2, 21, Bytes(35, 1)), 2U);
  EXPECT_EQ(box.status(2, 21, Bytes(36 * 4094 + 36, 1)), 2U);
  EXPECT_EQ(box.status(2, 23, Bytes(79)), 2U);
  EXPECT_EQ(box.status(2, 23, Bytes(84)), 2U);
  EXPECT_EQ(box.status(2, 23, record(83, {{0, word(1)}})), 2U);
  EXPECT_EQ(box.status(2, 23, record(84, {{0, word(3)}})), 2U);
  EXPECT_EQ(box.status(2, 25, Bytes(79)), 2U);
  EXPECT_EQ(box.status(2, 25, trunk(1, 0, hex("0100"))), 2U);
}

TEST(Vlans, AllOf4094FitInOneList) {
  TestBox box;
  EXPECT_EQ(box.status(2, 19, every_vlan()), 0U);
  EXPECT_EQ(box.status(2, 27, trunk(4, 7, every_vlan())), 0U);
  Bytes descriptions;
  for (uint32_t vlan = 1; vlan <= 4094; ++vlan) {
    descriptions = join(std::move(descriptions), describing(word(vlan), std::to_string(vlan * 10)));
  }
  EXPECT_EQ(box.status(2, 21, descriptions), 0U);
  std::string table = all_vlans(box);
  EXPECT_NE(table.find("4094 VLANs\n"), std::string::npos);
  EXPECT_NE(table.find("\n4094  1/4           -               40940\n"), std::string::npos);
  EXPECT_EQ(lines_in(table), 4094U + 6U);
  Bytes by_list = join(record(80, {{0, word(1)}}), every_vlan());
  EXPECT_EQ(lines_in(box.listing(box.reply(2, 23, by_list), 48)), 4094U + 6U);
  EXPECT_EQ(box.status(2, 22, every_vlan()), 0U);
  EXPECT_EQ(box.status(2, 20, every_vlan()), 0U);
  EXPECT_NE(all_vlans(box).find("\n0 VLANs\n"), std::string::npos);
}

TEST(Vlans, ListsOfOverlappingRangesTakeNoLonger) {
  TestBox box;
  Bytes widest;
  Bytes described;
  for (int i = 0; i < 4094; ++i) {
    widest = join(std::move(widest), hex("0100fe0f"));
    described = join(std::move(described), describing(hex("0100fe0f"), "n" + std::to_string(i)));
  }
  EXPECT_EQ(box.status(2, 19, widest), 0U);
  EXPECT_EQ(box.status(2, 21, described), 0U);
  EXPECT_NE(all_vlans(box).find("\n4094  -             -               n4093\n"),
            std::string::npos);
}

TEST(Vlans, AreDescribedAndNoLongerDescribed) {
  TestBox box;
  box.status(2, 19, hex("0a000c00"));
  Bytes full = join(hex("0c000000"), text("abcdefghijklmnopqrstuvwxyz012345"));
  EXPECT_EQ(box.status(2, 21, join(describing(hex("0a000b00"), "up\xFFlink"), full)), 0U);
  std::string table = all_vlans(box);
  EXPECT_NE(table.find("\n10    -             -               up\\xfflink\n"), std::string::npos)
      << table;
  EXPECT_NE(table.find("\n11    -             -               up\\xfflink\n"), std::string::npos);
  EXPECT_NE(table.find("\n12    -             -               abcdefghijklmnopqrstuvwxyz012345\n"),
            std::string::npos);
  EXPECT_EQ(box.status(2, 21, describing(hex("0b000000"), "")), 0U);
  EXPECT_EQ(box.status(2, 22, hex("0c000000")), 0U);
  table = all_vlans(box);
  EXPECT_NE(table.find("\n10    -             -               up\\xfflink\n"), std::string::npos);
  EXPECT_NE(table.find("\n11    -             -               -\n"), std::string::npos) << table;
  EXPECT_NE(table.find("\n12    -             -               -\n"), std::string::npos) << table;
}

TEST(Vlans, DescriptionsGoWithTheirVlan) {
  TestBox box;
  box.status(2, 20, hex("01000000"));
  box.status(2, 19, hex("01000000"));
  EXPECT_NE(all_vlans(box).find("\n1     -             -               -\n"), std::string::npos)
      << all_vlans(box);
}

TEST(VlanQuery, ByListShowsThoseOfTheListThatExist) {
  TestBox box;
  box.status(2, 19, hex("0a001400"));
  Bytes uncleared(80, 0xA5);
  std::copy_n(word(1).begin(), 4, uncleared.begin());
  Bytes reply = box.reply(2, 23, join(uncleared, hex("13001600 0b000000 0b000000")));
  EXPECT_EQ(box.listing(reply, 48),
            "VLANs by list\n"
            "=============\n"
            "\n"
            "3 VLANs\n"
            "VLAN  Tagged ports  Untagged ports  Description\n"
            "----  ------------  --------------  -----------\n"
            "11    -             -               -\n"
            "19    -             -               -\n"
            "20    -             -               -\n");
  EXPECT_NE(box.listing(box.reply(2, 23, uncleared), 48).find("\n0 VLANs\n"), std::string::npos);
  EXPECT_EQ(box.status(2, 23, join(uncleared, hex("ff0f0000"))), 3U);
}

TEST(VlanQuery, ByDescriptionShowsThoseDescribedSo) {
  TestBox box;
  box.status(2, 19, hex("0a000c00"));
  box.status(2, 21, join(describing(hex("0a000000"), "uplink"), describing(hex("0b000000"), "up")));
  box.status(2, 21, describing(hex("0c000000"), "uplink"));
  Bytes request = record(80, {{0, word(2)}, {16, text("uplink")}});
  EXPECT_EQ(box.listing(box.reply(2, 23, request), 48),
            "VLANs described as \"uplink\"\n"
            "===========================\n"
            "\n"
            "2 VLANs\n"
            "VLAN  Tagged ports  Untagged ports  Description\n"
            "----  ------------  --------------  -----------\n"
            "10    -             -               uplink\n"
            "12    -             -               uplink\n");
  EXPECT_EQ(box.status(2, 23, record(80, {{0, word(2)}, {16, Bytes(64, 'x')}})), 3U);
}

TEST(VlanQuery, OfAnotherKindIsRefused) {
  TestBox box;
  EXPECT_EQ(box.status(2, 23, record(80, {{0, word(4)}})), 3U);
}

TEST(Trunk, AddsToOneSideAndTakesFromTheOther) {
  TestBox box;
  box.status(2, 19, hex("0a001400"));
  EXPECT_EQ(box.status(2, 25, trunk(3, 99, hex("0a000c00 14000000"))), 0U);
  EXPECT_EQ(box.status(2, 26, trunk(3, 98, hex("0c000000"))), 0U);
  EXPECT_EQ(vlans_of_port(box, 3),
            "VLANs of port 1/3\n"
            "=================\n"
            "\n"
            "Port\n"
            "VLAN mode    0 0\n"
            "Trunk value  98\n"
            "\n"
            "5 VLANs\n"
            "VLAN  Membership  Description\n"
            "----  ----------  -----------\n"
            "1     untagged    default\n"
            "10    tagged      -\n"
            "11    tagged      -\n"
            "12    untagged    -\n"
            "20    tagged      -\n");
  EXPECT_EQ(box.status(2, 25, trunk(3, 98, hex("0c000000"))), 0U);
  EXPECT_NE(vlans_of_port(box, 3).find("\n12    tagged      -\n"), std::string::npos);
  EXPECT_EQ(vlans_of_port(box, 4).find("tagged      -"), std::string::npos);
}

TEST(Trunk, AllReplacesOneSide) {
  TestBox box;
  box.status(2, 19, hex("0a001400"));
  box.status(2, 25, trunk(1, 1, hex("0a000c00")));
  EXPECT_EQ(box.status(2, 27, trunk(1, 2, hex("0b000000 0d000000"))), 0U);
  EXPECT_NE(vlans_of_port(box, 1).find("1     untagged    default\n"
                                       "11    tagged      -\n"
                                       "13    tagged      -\n"),
            std::string::npos)
      << vlans_of_port(box, 1);
  EXPECT_EQ(box.status(2, 28, trunk(1, 3, hex("0b000000"))), 0U);
  EXPECT_NE(vlans_of_port(box, 1).find("2 VLANs\n"
                                       "VLAN  Membership  Description\n"
                                       "----  ----------  -----------\n"
                                       "11    untagged    -\n"
                                       "13    tagged      -\n"),
            std::string::npos)
      << vlans_of_port(box, 1);
  EXPECT_EQ(box.status(2, 27, trunk(1, 4, {})), 0U);
  EXPECT_EQ(box.status(2, 28, trunk(1, 5, {})), 0U);
  EXPECT_NE(vlans_of_port(box, 1).find("Trunk value  5\n\n0 VLANs\n"), std::string::npos);
}

TEST(Trunk, PassesOverUnknownVlansWithinARange) {
  TestBox box;
  box.status(2, 19, hex("0a000000"));
  EXPECT_EQ(box.status(2, 27, trunk(2, 0, hex("0200fe0f"))), 0U);
  EXPECT_NE(vlans_of_port(box, 2).find("2 VLANs\n"), std::string::npos);
  EXPECT_EQ(box.status(2, 27, trunk(2, 0, hex("0a000000 0b000000"))), 4U);
  EXPECT_EQ(box.status(2, 27, trunk(2, 0, hex("0a000000 ff0f0000"))), 3U);
  EXPECT_NE(vlans_of_port(box, 2).find("\n10    tagged      -\n"), std::string::npos);
}

TEST(Trunk, UnknownPortsAreRefused) {
  TestBox box;
  for (uint32_t type : {25U, 26U, 27U, 28U}) {
    EXPECT_EQ(box.status(2, type, trunk(0, 0, hex("01000000"))), 4U);
    EXPECT_EQ(box.status(2, type, trunk(5, 0, hex("01000000"))), 4U);
    EXPECT_EQ(box.status(2, type, record(84, {{0, word(2)}, {4, word(1)}, {80, word(1)}})), 4U);
  }
  EXPECT_EQ(box.status(2, 23, record(80, {{4, word(1)}, {8, word(5)}})), 4U);
  EXPECT_EQ(box.status(2, 23, record(80, {{4, word(0)}, {8, word(1)}})), 4U);
}

TEST(Trunk, DeletedVlansLeaveIt) {
  TestBox box;
  box.status(2, 19, hex("0a000b00"));
  box.status(2, 25, trunk(1, 0, hex("0a000b00")));
  box.status(2, 20, hex("0a000000"));
  box.status(2, 19, hex("0a000000"));
  EXPECT_EQ(vlans_of_port(box, 1).find("\n10 "), std::string::npos);
  EXPECT_NE(vlans_of_port(box, 1).find("\n11    tagged "), std::string::npos);
}

TEST(Vlans, AreConfiguration) {
  TestBox box;
  box.options.keep_running_state = true;
  box.status(2, 19, hex("0a001400"));
  box.status(2, 21, describing(hex("0a000c00"), "caf\xE9 \"x\""));
  box.status(2, 25, trunk(3, 77, hex("0a001300")));
  box.status(2, 26, trunk(3, 77, hex("14000000")));
  std::string table = all_vlans(box);
  std::string port = vlans_of_port(box, 3);
  box.status(2, 8);
  box.status(2, 9);
  EXPECT_EQ(all_vlans(box), kFactoryTable);
  EXPECT_NE(vlans_of_port(box, 3), port);
  box.keep();
  box.restart();
  EXPECT_EQ(all_vlans(box), kFactoryTable);
  EXPECT_EQ(box.status(2, 7), 0U);
  EXPECT_EQ(all_vlans(box), table);
  EXPECT_EQ(vlans_of_port(box, 3), port);
  box.options.keep_running_state = false;
  box.restart();
  EXPECT_EQ(all_vlans(box), table);
  EXPECT_EQ(vlans_of_port(box, 3), port);
}

TEST(Vlans, ShowInTheRunningConfiguration) {
  TestBox box;
  Bytes odd;
  for (uint32_t vlan = 101; vlan < 141; vlan += 2) odd = join(std::move(odd), word(vlan));
  box.status(2, 19, hex("0a001400"));
  box.status(2, 19, odd);
  box.status(2, 21, describing(hex("0b000c00"), "uplink"));
  box.status(2, 25, trunk(2, 5, odd));
  std::string config = box.listing(box.reply(2, 33), 48);
  EXPECT_NE(config.find("VLANs  Description\n"
                        "-----  -----------\n"
                        "1      default\n"
                        "10     -\n"
                        "11-12  uplink\n"
                        "13-20  -\n"
                        "101    -\n"),
            std::string::npos)
      << config;
  EXPECT_NE(
      config.find("Port  Trunk value  Tagged VLANs                              Untagged VLANs\n"
                  "----  -----------  ----------------------------------------  --------------\n"
                  "1/1   0            -                                         1\n"
                  "1/2   5            101,103,105,107,109,111,113,115,117,119,  1\n"
                  "                   121,123,125,127,129,131,133,135,137,139\n"
                  "1/3   0            -                                         1\n"),
      std::string::npos)
      << config;
}

std::string complaint_about(TestBox &box, const std::string &from, const std::string &to) {
  std::filesystem::path file = box.options.state_dir / "saved.json";
  std::string saved = olt::tests::read_file(file);
  size_t at = saved.find(from);
  EXPECT_NE(at, std::string::npos) << from << " in " << saved;
  box.end();
  write_file(file, std::string(saved).replace(at, from.size(), to));
  std::string line = ": accepted;";
  try {
    box.restart();
  } catch (const std::exception &error) {
    line = error.what();
  }
  write_file(file, saved);
  size_t begin = line.find(": ") + 2;
  return line.substr(begin, line.rfind(';') - begin);
}

TEST(Vlans, ThatAreDamagedInAFileAreReported) {
  TestBox box;
  box.status(2, 19, hex("0a000000"));
  box.status(2, 25, trunk(1, 0, hex("0a000000")));
  box.status(2, 8);
  const std::string place = "/configuration/switch-vlan/";
  for (const char *bad : {"1,", "0", "1-", "9-8", "4095", "1;10", "a", "70000"}) {
    EXPECT_EQ(complaint_about(box, "\"vlans\": \"1,10\"", "\"vlans\": \"" + std::string(bad) + '"'),
              place + "vlans: is \"" + bad + "\", expected numbers up to 4094 as in \"1,20-25\"");
  }
  EXPECT_EQ(complaint_about(box, "\"tagged\": \"10\"", "\"tagged\": \"11\""),
            place + "trunks/0/tagged: is \"11\", expected VLANs of the table, each on one side");
  EXPECT_EQ(complaint_about(box, "\"tagged\": \"10\"", "\"tagged\": \"1\""),
            place + "trunks/0/untagged: is \"1\", expected VLANs of the table, each on one side");
  EXPECT_EQ(complaint_about(box, "\"vlan\": 1", "\"vlan\": 7"),
            place + "descriptions/0/vlan: is 7, expected a VLAN of the table");
  EXPECT_EQ(complaint_about(box, "\"trunk_value\": 0", "\"trunk_value\": -1"),
            place + "trunks/0/trunk_value: is -1, expected an integer from 0 to 4294967295");
}

}  // namespace
