// The topology file: defaults, limits, and one line for each mistake.

#include "box/core/topology.h"

#include <gtest/gtest.h>

#include "base/bad_input.h"
#include "base/text.h"
#include "box/box.h"
#include "tests/box/support.h"

namespace olt::test {

namespace {

using box::parse_topology;
using box::Topology;

std::string complaint(std::string_view text) {
  try {
    parse_topology(text);
    return "accepted";
  } catch (const BadInput &error) {
    return error.what();
  }
}

TEST(TopologyFile, EveryMemberMayBeLeftOut) {
  for (const char *text : {"{}", R"({"version":1,"olt":{},"pon":{}})"}) {
    Topology topology = parse_topology(text);
    EXPECT_EQ(topology.name, "olt");
    EXPECT_EQ(topology.serial, "OLT0000000001");
    EXPECT_EQ(topology.software_version, "1.0.0");
    EXPECT_EQ(topology.oam_support, 1U);
    EXPECT_EQ(topology.ethernet_ports, 4U);
    EXPECT_EQ(topology.port(4).speed, 1000U);
    EXPECT_TRUE(topology.port(4).full_duplex);
    EXPECT_TRUE(topology.port(4).plugged);
    EXPECT_EQ(topology.port(4).stations, 4U);
    EXPECT_EQ(topology.pon_interfaces, 16U);
    EXPECT_EQ(topology.onus_per_interface, 64U);
    EXPECT_EQ(topology.uni_ports_per_onu, 4U);
    EXPECT_EQ(topology.voice_lines_per_onu, 2U);
    EXPECT_EQ(topology.onu_restart.count(), 3);
  }
}

TEST(TopologyFile, EveryMemberIsTaken) {
  Topology topology = parse_topology(R"({
    "version": 1,
    "olt": {"name": "lab 3", "mac": "00:1A:2b:3C:4d:5E", "serial": "S1", "software_version": "9.9",
            "oam_support": 4294967295, "ethernet_ports": 64,
            "ports": [{"port": 64, "speed": 10000, "duplex": "half", "plugged": false,
                       "stations": 64}]},
    "pon": {"interfaces": 15, "onus_per_interface": 1024, "uni_ports_per_onu": 32,
            "voice_lines_per_onu": 8, "onu_restart_seconds": 3600}})");
  EXPECT_EQ(topology.name, "lab 3");
  EXPECT_EQ(topology.mac, (std::array<uint8_t, 6>{0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E}));
  EXPECT_EQ(topology.serial, "S1");
  EXPECT_EQ(topology.software_version, "9.9");
  EXPECT_EQ(topology.oam_support, 4294967295U);
  EXPECT_EQ(topology.ethernet_ports, 64U);
  EXPECT_EQ(topology.port(64).speed, 10000U);
  EXPECT_FALSE(topology.port(64).full_duplex);
  EXPECT_FALSE(topology.port(64).plugged);
  EXPECT_EQ(topology.port(64).stations, 64U);
  EXPECT_EQ(topology.pon_interfaces, 15U);
  EXPECT_EQ(topology.onus_per_interface, 1024U);
  EXPECT_EQ(topology.uni_ports_per_onu, 32U);
  EXPECT_EQ(topology.voice_lines_per_onu, 8U);
  EXPECT_EQ(topology.onu_restart.count(), 3600);
}

TEST(TopologyFile, MistakesGetOneLineWithThePlace) {
  const std::pair<const char *, const char *> kMistakes[] = {
      {"", "1:1: is not JSON; expected '[', '{', or a literal"},
      {"{\n  \"pon\": {\"interfaces\": 1e999}}",
       "/pon/interfaces: is too large a number; expected a smaller one"},
      {"{\n  \"pon\": {\n    \"interfaces\": 2,\n  }\n}",
       "4:3: is not JSON; expected string literal"},
      {"{\"olt\": {\"name\": \"a\nb\"}}", "1:20: is not JSON; expected a value that JSON allows"},
      {"{} {}", "1:4: is not JSON; expected end of input"},
      {"[]", "/: is an array; expected an object"},
      {"7", "/: is 7; expected an object"},
      {R"({"version":2})", "/version: is 2; expected an integer from 1 to 1"},
      {R"({"ports":4})", "/ports: is unknown; expected one of version, olt, pon"},
      {R"({"olt":[]})", "/olt: is an array; expected an object"},
      {R"({"olt":null})",
       "/olt: is null; expected a number, a text, true, false, or what holds them"},
      {R"({"pon":{"onus":4}})",
       "/pon/onus: is unknown; expected one of interfaces, onus_per_interface, "
       "uni_ports_per_onu, voice_lines_per_onu, onu_restart_seconds"},
      {R"({"pon":{"voice_lines_per_onu":9}})",
       "/pon/voice_lines_per_onu: is 9; expected an integer from 0 to 8"},
      {R"({"pon":{"onu_restart_seconds":3601}})",
       "/pon/onu_restart_seconds: is 3601; expected an integer from 0 to 3600"},
      {R"({"pon":{"interfaces":0}})", "/pon/interfaces: is 0; expected an integer from 1 to 16"},
      {R"({"pon":{"interfaces":17}})", "/pon/interfaces: is 17; expected an integer from 1 to 16"},
      {R"({"pon":{"onus_per_interface":1025}})",
       "/pon/onus_per_interface: is 1025; expected an integer from 1 to 1024"},
      {R"({"pon":{"onus_per_interface":"many"}})",
       "/pon/onus_per_interface: is \"many\"; expected an integer from 1 to 1024"},
      {R"({"pon":{"onus_per_interface":1e2}})",
       "/pon/onus_per_interface: is 1e2; expected an integer"},
      {R"({"pon":{"onus_per_interface":-1}})",
       "/pon/onus_per_interface: is -1; expected a number from 0"},
      {R"({"pon":{"uni_ports_per_onu":99999999999999999999}})",
       "/pon/uni_ports_per_onu: is 99999999999999999999; expected an integer"},
      {R"({"olt":{"ethernet_ports":true}})",
       "/olt/ethernet_ports: is true; expected an integer from 1 to 64"},
      {R"({"olt":{"ports":{}}})", "/olt/ports: is an object; expected an array"},
      {R"({"olt":{"ports":[{"speed":10}]}})", "/olt/ports/0/port: is missing"},
      {R"({"olt":{"ports":[{"port":5}]}})",
       "/olt/ports/0/port: is 5; expected an integer from 1 to 4"},
      {R"({"olt":{"ports":[{"port":1},{"port":1}]}})",
       "/olt/ports/1/port: is 1; expected each port once"},
      {R"({"olt":{"ports":[{"port":1,"speed":11}]}})",
       "/olt/ports/0/speed: is 11; expected 10, 100, 1000 or 10000"},
      {R"({"olt":{"ports":[{"port":1,"duplex":"Full"}]}})",
       "/olt/ports/0/duplex: is \"Full\"; expected \"full\" or \"half\""},
      {R"({"olt":{"ports":[{"port":1,"plugged":1}]}})",
       "/olt/ports/0/plugged: is 1; expected true or false"},
      {R"({"olt":{"ports":[{"port":1,"stations":65}]}})",
       "/olt/ports/0/stations: is 65; expected an integer from 0 to 64"},
      {R"({"olt":{"oam_support":4294967296}})",
       "/olt/oam_support: is 4294967296; expected an integer from 0 to 4294967295"},
      {R"({"olt":{"name":7}})", "/olt/name: is 7; expected a text of at most 31 bytes"},
      {R"({"olt":{"name":""}})", "/olt/name: is \"\"; expected 1 to 31 printable ASCII characters"},
      {R"({"olt":{"name":"12345678901234567890123456789012"}})",
       "/olt/name: is \"12345678901234567890123456789012\"; expected a text of at most 31 bytes"},
      {R"({"olt":{"serial":"a\nb"}})",
       "/olt/serial: is \"a\\x0ab\"; expected 1 to 31 printable ASCII characters"},
      {R"({"olt":{"mac":"02:00:00:00:00"}})",
       "/olt/mac: is \"02:00:00:00:00\"; expected the MAC address of one device, such as "
       "\"02:00:00:00:00:01\""},
      {R"({"olt":{"mac":"02-00-00-00-00-01"}})",
       "/olt/mac: is \"02-00-00-00-00-01\"; expected the MAC address of one device, such as "
       "\"02:00:00:00:00:01\""},
      {R"({"olt":{"mac":"03:00:00:00:00:01"}})",
       "/olt/mac: is \"03:00:00:00:00:01\"; expected the MAC address of one device, such as "
       "\"02:00:00:00:00:01\""},
      {R"({"olt":{"mac":12}})", "/olt/mac: is 12; expected a text of at most 17 bytes"},
      {R"({"pon":{"interfaces":2,"interfaces":4}})",
       "/pon/interfaces: is given twice; expected once"},
      {R"({"o~l/t":1})", "/o~0l~1t: is unknown; expected one of version, olt, pon"},
  };
  for (const auto &[text, line] : kMistakes) EXPECT_EQ(complaint(text), line) << text;
}

TEST(TopologyFile, IsNamedInTheErrorLine) {
  Folder folder;
  write_file(folder / "box.json", R"({"pon":{"interfaces":99}})");
  try {
    box::load_topology(folder / "box.json");
    ADD_FAILURE() << "accepted";
  } catch (const BadInput &error) {
    EXPECT_EQ(error.what(),
              (folder / "box.json") + ": /pon/interfaces: is 99; expected an integer from 1 to 16");
  }
  try {
    box::load_topology(folder / "none.json");
    ADD_FAILURE() << "accepted";
  } catch (const BadInput &error) {
    EXPECT_EQ(error.what(), (folder / "none.json") + ": cannot be read: No such file or directory");
  }
}

TEST(TopologyFile, ABadOneLeavesNoTrace) {
  TestBox box;
  write_file(box.folder / "box.json", "{");
  box.options.topology_file = box.folder / "box.json";
  EXPECT_THROW(box.restart(), BadInput);
  EXPECT_FALSE(std::filesystem::exists(box.options.state_dir));
  EXPECT_FALSE(std::filesystem::exists(box.options.listing_dir));
}

}  // namespace

}  // namespace olt::test
