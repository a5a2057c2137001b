// oltctl walks every table of a box with 1,024 ONUs: all rows, in order, each once.

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "tests/end_to_end/running_box.h"

namespace olt::test {

namespace {

using Lines = std::vector<std::string>;

Lines lines_of(const std::string &text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// The beginning of the row of each ONU.
Lines rows_of_onus(uint32_t interfaces, uint32_t onus) {
  Lines rows;
  for (uint32_t interface = 1; interface <= interfaces; ++interface) {
    for (uint32_t onu = 1; onu <= onus; ++onu) {
      rows.push_back("{\"slot\":1,\"interface\":" + std::to_string(interface) +
                     ",\"onu\":" + std::to_string(onu) + ",");
    }
  }
  return rows;
}

/// The beginning of the row of each ONU's parts.
Lines rows_of_parts(const Lines &onus, const std::string &name, uint32_t parts) {
  Lines rows;
  for (const std::string &onu : onus) {
    for (uint32_t part = 1; part <= parts; ++part) {
      rows.push_back(onu + "\"" + name + "\":" + std::to_string(part) + ",");
    }
  }
  return rows;
}

void expect_rows(const Finished &walked, const std::string &reader, const Lines &expected) {
  EXPECT_EQ(walked.status, 0) << walked.errors;
  EXPECT_EQ(walked.errors, "");
  Lines lines = lines_of(walked.output);
  ASSERT_EQ(lines.size(), expected.size());
  for (size_t i = 0; i < lines.size(); ++i) {
    std::string beginning = R"({"version":1,"reader":")" + reader + R"(","row":)" + expected[i];
    ASSERT_EQ(lines[i].substr(0, beginning.size()), beginning);
    ASSERT_TRUE(lines[i].ends_with("}}")) << lines[i];
  }
}

class WalkOfOnus : public testing::TestWithParam<const char *> {};
class WalkOfPorts : public testing::TestWithParam<const char *> {};
class WalkOfLines : public testing::TestWithParam<const char *> {};

TEST_P(WalkOfOnus, IsComplete) {
  RunningBox box;
  box.start();
  expect_rows(box.oltctl({"--json", "walk", GetParam()}), GetParam(), rows_of_onus(16, 64));
}
INSTANTIATE_TEST_SUITE_P(Readers, WalkOfOnus,
                         testing::Values("process_snmp_onubasicinfo", "process_snmp_linkbasicinfo",
                                         "process_snmp_onuglobalinfo", "process_snmp_iadinfo",
                                         "process_snmp_onusipparaminfo", "process_snmp_hguwaninfo",
                                         "process_snmp_hguvoipbandinginfo"));

TEST_P(WalkOfPorts, IsComplete) {
  RunningBox box;
  box.start();
  expect_rows(box.oltctl({"--json", "walk", GetParam()}), GetParam(),
              rows_of_parts(rows_of_onus(16, 64), "port", 4));
}
INSTANTIATE_TEST_SUITE_P(Readers, WalkOfPorts,
                         testing::Values("process_onu_portinfo", "process_onu_portpolicying",
                                         "process_onu_portdownrate", "process_onu_portvlanmode",
                                         "process_onu_portstrip", "process_onu_portmuticastvlan",
                                         "process_onu_portmuticastmaxgroup"));

TEST_P(WalkOfLines, IsComplete) {
  RunningBox box;
  box.start();
  expect_rows(box.oltctl({"--json", "walk", GetParam()}), GetParam(),
              rows_of_parts(rows_of_onus(16, 64), "line", 2));
}
INSTANTIATE_TEST_SUITE_P(Readers, WalkOfLines,
                         testing::Values("process_snmp_onusipuserinfo", "process_snmpvoip_faxmode",
                                         "process_voip_linestatus"));

TEST(Walk, OfAnInterfaceWith1024OnusIsComplete) {
  RunningBox box;
  std::string topology = box.folder() + "/topology.json";
  std::ofstream(topology) << R"({"pon":{"interfaces":1,"onus_per_interface":1024}})";
  box.start({"--topology", topology});
  Lines onus = rows_of_onus(1, 1024);
  for (const char *reader : {"process_snmp_onubasicinfo", "process_snmp_onusipparaminfo"}) {
    expect_rows(box.oltctl({"--json", "walk", reader}), reader, onus);
  }
  expect_rows(box.oltctl({"--json", "walk", "process_onu_portstrip"}), "process_onu_portstrip",
              rows_of_parts(onus, "port", 4));
}

TEST(Walk, OfTheOltsTablesIsComplete) {
  RunningBox box;
  box.start();
  ASSERT_EQ(box.oltctl({"add_vlan_list", "10,100-4094"}).status, 0);
  Lines vlans = {R"({"vlan":1,)", R"({"vlan":10,)"};
  for (int vlan = 100; vlan <= 4094; ++vlan) {
    vlans.push_back("{\"vlan\":" + std::to_string(vlan) + ",");
  }
  expect_rows(box.oltctl({"--json", "walk", "process_snmp_vlan_id"}), "process_snmp_vlan_id",
              vlans);
  Lines ports;
  for (int port = 1; port <= 4; ++port) {
    ports.push_back("{\"slot\":1,\"port\":" + std::to_string(port) + ",");
  }
  expect_rows(box.oltctl({"--json", "walk", "process_snmp_oltbasicport"}),
              "process_snmp_oltbasicport", ports);
  Lines interfaces;
  for (int interface = 1; interface <= 16; ++interface) {
    interfaces.push_back("{\"slot\":1,\"interface\":" + std::to_string(interface) + ",");
  }
  expect_rows(box.oltctl({"--json", "walk", "process_snmp_oltauth"}), "process_snmp_oltauth",
              interfaces);
}

TEST(Walk, OfIptvTablesIsComplete) {
  RunningBox box;
  box.start();
  std::string script;
  Lines profiles;
  Lines channels;
  for (const std::string profile : {"a", "b", "c"}) {
    script += "create_iptv_profile " + profile + "\n";
    profiles.push_back("{\"profile\":\"" + profile + "\",\"channels\":100}");
    for (int number = 1; number <= 100; ++number) {
      script += "add_iptv_channel " + profile + " number=" + std::to_string(number) + "\n";
      channels.push_back("{\"profile\":\"" + profile + "\",\"number\":" + std::to_string(number) +
                         ",");
    }
  }
  std::string file = box.folder() + "/script";
  std::ofstream(file) << script;
  Finished prepared = box.oltctl({"-f", file});
  ASSERT_EQ(prepared.status, 0) << prepared.errors;
  expect_rows(box.oltctl({"--json", "walk", "process_snmp_iptv_profile"}),
              "process_snmp_iptv_profile", profiles);
  expect_rows(box.oltctl({"--json", "walk", "process_snmp_iptv_profile_channel"}),
              "process_snmp_iptv_profile_channel", channels);
}

}  // namespace

}  // namespace olt::test
