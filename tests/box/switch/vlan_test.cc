// VLANs: the table and its queries, descriptions, trunk membership.

#include <gtest/gtest.h>

#include "tests/box/support.h"

namespace olt::test {

namespace {

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
  return record(kDescribedVlanSize, {{0, element}, {4, text(description)}});
}

std::string all_vlans(TestBox &box) {
  return box.listing(box.reply(kListVlans, record(kVlanQuerySize, {{0, word(3)}})), kListingNameAt);
}

std::string vlans_of_port(TestBox &box, uint32_t port) {
  return box.listing(box.reply(kListVlans, record(kVlanQuerySize, {{4, word(1)}, {8, word(port)}})),
                     kListingNameAt);
}

Bytes trunk(uint32_t port, uint32_t value, const Bytes &elements) {
  Bytes head(kTrunkSize, 0xA5);  // the box must ignore the bytes after the value
  put(head, 0, words({1, port, value}));
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

TEST(Vlans, TheFactoryHasOneWithAllPorts) {
  TestBox box;
  Bytes reply = box.reply(kListVlans, record(kVlanQuerySize, {{0, word(3)}}));
  EXPECT_EQ(reply, record(80, {{kListingNameAt, text("vlan-00000001.txt")}}));
  EXPECT_EQ(box.listing(reply, kListingNameAt), kFactoryTable);
}

TEST(Vlans, AreAddedAndDeletedBySingleIdsAndRanges) {
  TestBox box;
  EXPECT_EQ(box.status(kAddVlans, hex("0a000000 14001600 1e001e00")), kOk);
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
  EXPECT_EQ(box.status(kDeleteVlans, hex("1500fe0f 0a000000")), kOk);
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

TEST(Vlans, AddingExistingOnesChangesNothing) {
  TestBox box;
  EXPECT_EQ(box.status(kAddVlans, hex("01000000")), kOk);
  EXPECT_EQ(box.status(kAddVlans), kOk);
  EXPECT_EQ(all_vlans(box), kFactoryTable);
}

TEST(Vlans, BadIdsAreRefusedAndNothingIsAdded) {
  TestBox box;
  for (const char *bad : {"00000000", "ff0f0000", "0000ff0f", "0a00ff0f", "0a000900", "00000a00"}) {
    for (uint32_t type : {kAddVlans, kDeleteVlans, kDeleteVlanDescriptions}) {
      EXPECT_EQ(box.status(type, join(hex("01000000"), hex(bad))), kBadValue) << type << ' ' << bad;
    }
    EXPECT_EQ(box.status(kDescribeVlans,
                         join(describing(hex("01000000"), "new"), describing(hex(bad), ""))),
              kBadValue)
        << bad;
  }
  EXPECT_EQ(all_vlans(box), kFactoryTable);
}

TEST(Vlans, DeletingUnknownOnesIsRefusedAndNothingIsDeleted) {
  TestBox box;
  for (uint32_t type : {kDeleteVlans, kDeleteVlanDescriptions}) {
    EXPECT_EQ(box.status(type, hex("01000000 02000000")), kNotFound);
    EXPECT_EQ(box.status(type, hex("0100fe0f 0200fe0f")), kNotFound);
  }
  EXPECT_EQ(box.status(kDescribeVlans, describing(hex("02000000"), "new")), kNotFound);
  EXPECT_EQ(all_vlans(box), kFactoryTable);
}

TEST(Vlans, ListsOfBrokenLengthAreRefused) {
  TestBox box;
  for (uint32_t type : {kAddVlans, kDeleteVlans, kDeleteVlanDescriptions}) {
    EXPECT_EQ(box.status(type, hex("0a0000")), kBadLength) << type;
    EXPECT_EQ(box.status(type, Bytes(kVlanSize * (kMaxVlans + 1), 1)), kBadLength) << type;
  }
  EXPECT_EQ(box.status(kDescribeVlans, Bytes(kDescribedVlanSize - 1, 1)), kBadLength);
  EXPECT_EQ(box.status(kDescribeVlans, Bytes(kDescribedVlanSize * (kMaxVlans + 1), 1)), kBadLength);
  EXPECT_EQ(box.status(kListVlans, Bytes(kVlanQuerySize - 1)), kBadLength);
  EXPECT_EQ(box.status(kListVlans, Bytes(kVlanQuerySize + 4)), kBadLength);
  EXPECT_EQ(box.status(kListVlans, record(kVlanQuerySize + 3, {{0, word(1)}})), kBadLength);
  EXPECT_EQ(box.status(kListVlans, record(kVlanQuerySize + 4, {{0, word(3)}})), kBadLength);
  EXPECT_EQ(box.status(kAddTrunkTagged, Bytes(kTrunkSize - 1)), kBadLength);
  EXPECT_EQ(box.status(kAddTrunkTagged, trunk(1, 0, hex("0100"))), kBadLength);
}

TEST(Vlans, AllOf4094FitInOneList) {
  TestBox box;
  EXPECT_EQ(box.status(kAddVlans, every_vlan()), kOk);
  EXPECT_EQ(box.status(kSetTrunkTagged, trunk(4, 7, every_vlan())), kOk);
  Bytes descriptions;
  for (uint32_t vlan = 1; vlan <= 4094; ++vlan) {
    descriptions = join(std::move(descriptions), describing(word(vlan), std::to_string(vlan * 10)));
  }
  EXPECT_EQ(box.status(kDescribeVlans, descriptions), kOk);
  std::string table = all_vlans(box);
  EXPECT_TRUE(holds(table, "4094 VLANs\n"));
  EXPECT_TRUE(holds(table, "\n4094  1/4           -               40940\n"));
  EXPECT_EQ(lines_in(table), 4094U + 6U);
  Bytes by_list = join(record(kVlanQuerySize, {{0, word(1)}}), every_vlan());
  EXPECT_EQ(lines_in(box.listing(box.reply(kListVlans, by_list), kListingNameAt)), 4094U + 6U);
  EXPECT_EQ(box.status(kDeleteVlanDescriptions, every_vlan()), kOk);
  EXPECT_EQ(box.status(kDeleteVlans, every_vlan()), kOk);
  EXPECT_TRUE(holds(all_vlans(box), "\n0 VLANs\n"));
}

TEST(Vlans, ListsOfOverlappingRangesTakeNoLonger) {
  TestBox box;
  Bytes widest;
  Bytes described;
  for (int i = 0; i < 4094; ++i) {
    widest = join(std::move(widest), hex("0100fe0f"));
    described = join(std::move(described), describing(hex("0100fe0f"), "n" + std::to_string(i)));
  }
  EXPECT_EQ(box.status(kAddVlans, widest), kOk);
  EXPECT_EQ(box.status(kDescribeVlans, described), kOk);
  EXPECT_TRUE(holds(all_vlans(box), "\n4094  -             -               n4093\n"));
}

TEST(Vlans, DescriptionsAreSetAndDeleted) {
  TestBox box;
  box.status(kAddVlans, hex("0a000c00"));
  Bytes full = join(hex("0c000000"), text("abcdefghijklmnopqrstuvwxyz012345"));
  EXPECT_EQ(box.status(kDescribeVlans, join(describing(hex("0a000b00"), "up\xFFlink"), full)), kOk);
  std::string table = all_vlans(box);
  EXPECT_TRUE(holds(table, "\n10    -             -               up\\xfflink\n")) << table;
  EXPECT_TRUE(holds(table, "\n11    -             -               up\\xfflink\n"));
  EXPECT_TRUE(
      holds(table, "\n12    -             -               abcdefghijklmnopqrstuvwxyz012345\n"));
  EXPECT_EQ(box.status(kDescribeVlans, describing(hex("0b000000"), "")), kOk);
  EXPECT_EQ(box.status(kDeleteVlanDescriptions, hex("0c000000")), kOk);
  table = all_vlans(box);
  EXPECT_TRUE(holds(table, "\n10    -             -               up\\xfflink\n"));
  EXPECT_TRUE(holds(table, "\n11    -             -               -\n")) << table;
  EXPECT_TRUE(holds(table, "\n12    -             -               -\n")) << table;
}

TEST(Vlans, DeletingOneDeletesItsDescription) {
  TestBox box;
  box.status(kDeleteVlans, hex("01000000"));
  box.status(kAddVlans, hex("01000000"));
  EXPECT_TRUE(holds(all_vlans(box), "\n1     -             -               -\n")) << all_vlans(box);
}

TEST(VlanQuery, ByListShowsTheListedOnesThatExist) {
  TestBox box;
  box.status(kAddVlans, hex("0a001400"));
  Bytes uncleared(kVlanQuerySize, 0xA5);
  put(uncleared, 0, word(1));
  Bytes reply = box.reply(kListVlans, join(uncleared, hex("13001600 0b000000 0b000000")));
  EXPECT_EQ(box.listing(reply, kListingNameAt),
            "VLANs by list\n"
            "=============\n"
            "\n"
            "3 VLANs\n"
            "VLAN  Tagged ports  Untagged ports  Description\n"
            "----  ------------  --------------  -----------\n"
            "11    -             -               -\n"
            "19    -             -               -\n"
            "20    -             -               -\n");
  EXPECT_TRUE(holds(box.listing(box.reply(kListVlans, uncleared), kListingNameAt), "\n0 VLANs\n"));
  EXPECT_EQ(box.status(kListVlans, join(uncleared, hex("ff0f0000"))), kBadValue);
}

TEST(VlanQuery, ByDescriptionShowsExactMatches) {
  TestBox box;
  box.status(kAddVlans, hex("0a000c00"));
  box.status(kDescribeVlans,
             join(describing(hex("0a000000"), "uplink"), describing(hex("0b000000"), "up")));
  box.status(kDescribeVlans, describing(hex("0c000000"), "uplink"));
  Bytes request = record(kVlanQuerySize, {{0, word(2)}, {16, text("uplink")}});
  EXPECT_EQ(box.listing(box.reply(kListVlans, request), kListingNameAt),
            "VLANs described as \"uplink\"\n"
            "===========================\n"
            "\n"
            "2 VLANs\n"
            "VLAN  Tagged ports  Untagged ports  Description\n"
            "----  ------------  --------------  -----------\n"
            "10    -             -               uplink\n"
            "12    -             -               uplink\n");
  EXPECT_EQ(box.status(kListVlans, record(kVlanQuerySize, {{0, word(2)}, {16, Bytes(64, 'x')}})),
            kBadValue);
}

TEST(VlanQuery, OfAnotherKindIsRefused) {
  TestBox box;
  EXPECT_EQ(box.status(kListVlans, record(kVlanQuerySize, {{0, word(4)}})), kBadValue);
}

TEST(Trunk, AddsToOneSideAndTakesFromTheOther) {
  TestBox box;
  box.status(kAddVlans, hex("0a001400"));
  EXPECT_EQ(box.status(kAddTrunkTagged, trunk(3, 99, hex("0a000c00 14000000"))), kOk);
  EXPECT_EQ(box.status(kAddTrunkUntagged, trunk(3, 98, hex("0c000000"))), kOk);
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
  EXPECT_EQ(box.status(kAddTrunkTagged, trunk(3, 98, hex("0c000000"))), kOk);
  EXPECT_TRUE(holds(vlans_of_port(box, 3), "\n12    tagged      -\n"));
  EXPECT_FALSE(holds(vlans_of_port(box, 4), "tagged      -"));
}

TEST(Trunk, AllReplacesOneSide) {
  TestBox box;
  box.status(kAddVlans, hex("0a001400"));
  box.status(kAddTrunkTagged, trunk(1, 1, hex("0a000c00")));
  EXPECT_EQ(box.status(kSetTrunkTagged, trunk(1, 2, hex("0b000000 0d000000"))), kOk);
  EXPECT_TRUE(holds(vlans_of_port(box, 1),
                    "1     untagged    default\n"
                    "11    tagged      -\n"
                    "13    tagged      -\n"))
      << vlans_of_port(box, 1);
  EXPECT_EQ(box.status(kSetTrunkUntagged, trunk(1, 3, hex("0b000000"))), kOk);
  EXPECT_TRUE(holds(vlans_of_port(box, 1),
                    "2 VLANs\n"
                    "VLAN  Membership  Description\n"
                    "----  ----------  -----------\n"
                    "11    untagged    -\n"
                    "13    tagged      -\n"))
      << vlans_of_port(box, 1);
  EXPECT_EQ(box.status(kSetTrunkTagged, trunk(1, 4, {})), kOk);
  EXPECT_EQ(box.status(kSetTrunkUntagged, trunk(1, 5, {})), kOk);
  EXPECT_TRUE(holds(vlans_of_port(box, 1), "Trunk value  5\n\n0 VLANs\n"));
}

TEST(Trunk, SkipsUnknownVlansWithinARange) {
  TestBox box;
  box.status(kAddVlans, hex("0a000000"));
  EXPECT_EQ(box.status(kSetTrunkTagged, trunk(2, 0, hex("0200fe0f"))), kOk);
  EXPECT_TRUE(holds(vlans_of_port(box, 2), "2 VLANs\n"));
  EXPECT_EQ(box.status(kSetTrunkTagged, trunk(2, 0, hex("0a000000 0b000000"))), kNotFound);
  EXPECT_EQ(box.status(kSetTrunkTagged, trunk(2, 0, hex("0a000000 ff0f0000"))), kBadValue);
  EXPECT_TRUE(holds(vlans_of_port(box, 2), "\n10    tagged      -\n"));
}

TEST(Trunk, UnknownPortsAreRefused) {
  TestBox box;
  for (uint32_t type : {kAddTrunkTagged, kAddTrunkUntagged, kSetTrunkTagged, kSetTrunkUntagged}) {
    EXPECT_EQ(box.status(type, trunk(0, 0, hex("01000000"))), kNotFound);
    EXPECT_EQ(box.status(type, trunk(5, 0, hex("01000000"))), kNotFound);
    EXPECT_EQ(box.status(type, record(kTrunkSize + kVlanSize,
                                      {{0, word(2)}, {4, word(1)}, {kTrunkSize, word(1)}})),
              kNotFound);
  }
  EXPECT_EQ(box.status(kListVlans, record(kVlanQuerySize, {{4, word(1)}, {8, word(5)}})),
            kNotFound);
  EXPECT_EQ(box.status(kListVlans, record(kVlanQuerySize, {{4, word(0)}, {8, word(1)}})),
            kNotFound);
}

TEST(Trunk, DeletedVlansLeaveIt) {
  TestBox box;
  box.status(kAddVlans, hex("0a000b00"));
  box.status(kAddTrunkTagged, trunk(1, 0, hex("0a000b00")));
  box.status(kDeleteVlans, hex("0a000000"));
  box.status(kAddVlans, hex("0a000000"));
  EXPECT_FALSE(holds(vlans_of_port(box, 1), "\n10 "));
  EXPECT_TRUE(holds(vlans_of_port(box, 1), "\n11    tagged "));
}

TEST(Vlans, AreConfiguration) {
  TestBox box;
  box.options.keep_running_state = true;
  box.status(kAddVlans, hex("0a001400"));
  box.status(kDescribeVlans, describing(hex("0a000c00"), "caf\xE9 \"x\""));
  box.status(kAddTrunkTagged, trunk(3, 77, hex("0a001300")));
  box.status(kAddTrunkUntagged, trunk(3, 77, hex("14000000")));
  std::string table = all_vlans(box);
  std::string port = vlans_of_port(box, 3);
  box.status(kSaveConfig);
  box.status(kRestoreDefaults);
  EXPECT_EQ(all_vlans(box), kFactoryTable);
  EXPECT_NE(vlans_of_port(box, 3), port);
  box.keep();
  box.restart();
  EXPECT_EQ(all_vlans(box), kFactoryTable);
  EXPECT_EQ(box.status(kReboot), kOk);
  EXPECT_EQ(all_vlans(box), table);
  EXPECT_EQ(vlans_of_port(box, 3), port);
  box.options.keep_running_state = false;
  box.restart();
  EXPECT_EQ(all_vlans(box), table);
  EXPECT_EQ(vlans_of_port(box, 3), port);
}

TEST(Vlans, AppearInTheRunningConfiguration) {
  TestBox box;
  Bytes odd;
  for (uint32_t vlan = 101; vlan < 141; vlan += 2) odd = join(std::move(odd), word(vlan));
  box.status(kAddVlans, hex("0a001400"));
  box.status(kAddVlans, odd);
  box.status(kDescribeVlans, describing(hex("0b000c00"), "uplink"));
  box.status(kAddTrunkTagged, trunk(2, 5, odd));
  std::string config = box.running_config();
  EXPECT_TRUE(holds(config,
                    "VLANs  Description\n"
                    "-----  -----------\n"
                    "1      default\n"
                    "10     -\n"
                    "11-12  uplink\n"
                    "13-20  -\n"
                    "101    -\n"))
      << config;
  EXPECT_TRUE(holds(config,
                    "Port  Trunk value  Tagged VLANs                              Untagged VLANs\n"
                    "----  -----------  ----------------------------------------  --------------\n"
                    "1/1   0            -                                         1\n"
                    "1/2   5            101,103,105,107,109,111,113,115,117,119,  1\n"
                    "                   121,123,125,127,129,131,133,135,137,139\n"
                    "1/3   0            -                                         1\n"))
      << config;
}

std::string complaint_about(TestBox &box, const std::string &from, const std::string &to) {
  std::filesystem::path file = box.options.state_dir / "saved.state";
  std::string saved = read_file(file);
  box.end();
  box.damage_state("saved", from, to);
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

TEST(Vlans, DamageInTheFileIsReported) {
  TestBox box;
  box.status(kAddVlans, hex("0a000000"));
  box.status(kAddTrunkTagged, trunk(1, 0, hex("0a000000")));
  box.status(kSaveConfig);
  const std::string place = "/configuration/switch-vlan/";
  for (const char *bad : {"1,", "0", "1-", "9-8", "4095", "1;10", "a", "70000"}) {
    EXPECT_EQ(complaint_about(box, "\"vlans\": \"1,10\"", "\"vlans\": \"" + std::string(bad) + '"'),
              place + "vlans: is \"" + bad + "\"; expected numbers up to 4094 as in \"1,20-25\"");
  }
  EXPECT_EQ(complaint_about(box, "\"tagged\": \"10\"", "\"tagged\": \"11\""),
            place + "ports/0/tagged: is \"11\"; expected VLANs of the table, each on one side");
  EXPECT_EQ(complaint_about(box, "\"tagged\": \"10\"", "\"tagged\": \"1\""),
            place + "ports/0/untagged: is \"1\"; expected VLANs of the table, each on one side");
  EXPECT_EQ(complaint_about(box, "\"vlan\": 1", "\"vlan\": 7"),
            place + "descriptions/0/vlan: is 7; expected a VLAN of the table");
  EXPECT_EQ(complaint_about(box, "\"trunk_value\": 0", "\"trunk_value\": 4294967296"),
            place + "ports/0/trunk_value: is 4294967296; expected an integer from 0 to 4294967295");
}

}  // namespace

}  // namespace olt::test
