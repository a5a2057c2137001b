// Standard objects under the distribution's snmpd: walks by other clients find whole tables.

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <vector>

#include "tests/agent/running_agent.h"

namespace olt::test {

namespace {

class Standard : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    running_ = new RunningAgent;
    running_->start_box();
    running_->start_snmpd();
    running_->start_agent();
    const std::vector<std::vector<std::string>> kCalls = {
        {"add_vlan_list", "10,20"},
        {"process_trunk_vlan", "slot=1", "port=3", "vlans=10", "trunk_value=1"},
        {"add_vlan_descr_list", "vlans=10:uplink"},
        {"set_port_enable", "1", "2", "off"},
        {"add_ont_description", "1/2/3", "Hall 4"},
        {"set_olt_auth_mode", "1", "2", "mac"},
        {"set_rstp_config", "priority=4096"},
        {"set_rstp_port_config", "slot=1", "port=4", "rstp_state=on", "edge=yes",
         "path_cost=70000"},
    };
    for (const std::vector<std::string> &call : kCalls) {
      Finished called = running_->box().oltctl(call);
      EXPECT_EQ(called.status, 0) << called.errors;
    }
  }

  static void TearDownTestSuite() {
    EXPECT_EQ(running_->end_agent(SIGTERM), 0) << running_->log();
    delete running_;
  }

  static RunningAgent &running() { return *running_; }

  /// The lines of a walk in a context: "OID VALUE".
  static std::string walked(const std::string &name, const std::string &tool = "snmpwalk",
                            std::vector<std::string> options = {}, bool in_context = false) {
    if (in_context) options.insert(options.end(), {"-c", "inside"});
    Finished finished = running_->snmp(tool, options, {name});
    EXPECT_EQ(finished.status, 0) << finished.errors;
    return finished.output;
  }

 private:
  static inline RunningAgent *running_;
};

TEST_F(Standard, BridgeAndItsPortsAreOneWalk) {
  const std::string bridge =
      ".1.3.6.1.2.1.17.1.1.0 \"02 00 00 00 00 01 \"\n"
      ".1.3.6.1.2.1.17.2.1.0 3\n"
      ".1.3.6.1.2.1.17.2.2.0 4096\n"
      ".1.3.6.1.2.1.17.2.12.0 2000\n"
      ".1.3.6.1.2.1.17.2.13.0 200\n"
      ".1.3.6.1.2.1.17.2.14.0 1500\n"
      ".1.3.6.1.2.1.17.2.15.1.1.1 1\n"
      ".1.3.6.1.2.1.17.2.15.1.1.2 2\n"
      ".1.3.6.1.2.1.17.2.15.1.1.3 3\n"
      ".1.3.6.1.2.1.17.2.15.1.1.4 4\n"
      ".1.3.6.1.2.1.17.2.15.1.2.1 128\n"
      ".1.3.6.1.2.1.17.2.15.1.2.2 128\n"
      ".1.3.6.1.2.1.17.2.15.1.2.3 128\n"
      ".1.3.6.1.2.1.17.2.15.1.2.4 128\n"
      ".1.3.6.1.2.1.17.2.15.1.3.1 5\n"
      ".1.3.6.1.2.1.17.2.15.1.3.2 1\n"
      ".1.3.6.1.2.1.17.2.15.1.3.3 5\n"
      ".1.3.6.1.2.1.17.2.15.1.3.4 5\n"
      ".1.3.6.1.2.1.17.2.15.1.5.1 20000\n"
      ".1.3.6.1.2.1.17.2.15.1.5.2 20000\n"
      ".1.3.6.1.2.1.17.2.15.1.5.3 20000\n"
      ".1.3.6.1.2.1.17.2.15.1.5.4 65535\n"
      ".1.3.6.1.2.1.17.2.15.1.11.1 20000\n"
      ".1.3.6.1.2.1.17.2.15.1.11.2 20000\n"
      ".1.3.6.1.2.1.17.2.15.1.11.3 20000\n"
      ".1.3.6.1.2.1.17.2.15.1.11.4 70000\n"
      ".1.3.6.1.2.1.17.2.16.0 2\n"
      ".1.3.6.1.2.1.17.2.17.0 6\n"
      ".1.3.6.1.2.1.17.2.19.1.2.1 2\n"
      ".1.3.6.1.2.1.17.2.19.1.2.2 2\n"
      ".1.3.6.1.2.1.17.2.19.1.2.3 2\n"
      ".1.3.6.1.2.1.17.2.19.1.2.4 1\n"
      ".1.3.6.1.2.1.17.2.19.1.4.1 0\n"
      ".1.3.6.1.2.1.17.2.19.1.4.2 0\n"
      ".1.3.6.1.2.1.17.2.19.1.4.3 0\n"
      ".1.3.6.1.2.1.17.2.19.1.4.4 0\n"
      ".1.3.6.1.2.1.17.2.19.1.6.1 0\n"
      ".1.3.6.1.2.1.17.2.19.1.6.2 0\n"
      ".1.3.6.1.2.1.17.2.19.1.6.3 0\n"
      ".1.3.6.1.2.1.17.2.19.1.6.4 70000\n"
      ".1.3.6.1.2.1.17.7.1.4.3.1.1.1 \"64 65 66 61 75 6C 74 \"\n"
      ".1.3.6.1.2.1.17.7.1.4.3.1.1.10 \"75 70 6C 69 6E 6B \"\n"
      ".1.3.6.1.2.1.17.7.1.4.3.1.1.20 \"\"\n"
      ".1.3.6.1.2.1.17.7.1.4.3.1.2.1 \"F0 00 00 00 \"\n"
      ".1.3.6.1.2.1.17.7.1.4.3.1.2.10 \"20 00 00 00 \"\n"
      ".1.3.6.1.2.1.17.7.1.4.3.1.2.20 \"00 00 00 00 \"\n"
      ".1.3.6.1.2.1.17.7.1.4.3.1.4.1 \"F0 00 00 00 \"\n"
      ".1.3.6.1.2.1.17.7.1.4.3.1.4.10 \"00 00 00 00 \"\n"
      ".1.3.6.1.2.1.17.7.1.4.3.1.4.20 \"00 00 00 00 \"\n"
      ".1.3.6.1.2.1.17.7.1.4.3.1.5.1 1\n"
      ".1.3.6.1.2.1.17.7.1.4.3.1.5.10 1\n"
      ".1.3.6.1.2.1.17.7.1.4.3.1.5.20 1\n";
  EXPECT_EQ(walked("1.3.6.1.2.1.17"), bridge);
  for (const char *repetitions : {"-Cr1", "-Cr7", "-Cr50"}) {
    EXPECT_EQ(walked("1.3.6.1.2.1.17", "snmpbulkwalk", {repetitions}), bridge);
  }
  // snmpd took every registration.
  EXPECT_EQ(running().log().find("registering pdu failed"), std::string::npos) << running().log();
}

TEST_F(Standard, OnusHaveAnMpcpState) {
  // ONUs of PON interface 1/2 are on no list, so they are blocked.
  EXPECT_EQ(walked("1.3.6.1.2.1.155.1.1.1.1.7", "snmpbulkwalk"),
            ".1.3.6.1.2.1.155.1.1.1.1.7.1010100001 3\n"
            ".1.3.6.1.2.1.155.1.1.1.1.7.1010100002 3\n"
            ".1.3.6.1.2.1.155.1.1.1.1.7.1010100003 3\n"
            ".1.3.6.1.2.1.155.1.1.1.1.7.1010200001 1\n"
            ".1.3.6.1.2.1.155.1.1.1.1.7.1010200002 1\n"
            ".1.3.6.1.2.1.155.1.1.1.1.7.1010200003 1\n");
  EXPECT_EQ(running().get("1.3.6.1.2.1.155.1.1.1.1.6.1010200003"), "022002000301");
  EXPECT_EQ(running().get("1.3.6.1.2.1.155.1.1.1.1.6.1010200004"),
            "NoSuchInstancecurrentlyexistsatthisOID");
  EXPECT_EQ(running().get("1.3.6.1.2.1.155.1.1.1.1.6.1010200003.0"),
            "NoSuchInstancecurrentlyexistsatthisOID");
}

TEST_F(Standard, GetNextFindsRowsAfterAnyNumber) {
  const std::string kColumn = "1.3.6.1.2.1.155.1.1.1.1.3";
  const std::vector<std::pair<std::string, std::string>> kSteps = {
      {"", ".1010100001"},
      {".0", ".1010100001"},
      {".5.7", ".1010100001"},
      {".1010100001", ".1010100002"},
      {".1010100002.1", ".1010100003"},
      {".1010100003", ".1010200001"},
      {".1010199999", ".1010200001"},
      {".1010200000", ".1010200001"},
  };
  for (const auto &[from, to] : kSteps) {
    std::string next = running().snmp("snmpgetnext", {}, {kColumn + from}).output;
    EXPECT_EQ(next, "." + kColumn + to + " 1\n") << from;
  }
  for (const char *from : {".1010200003", ".2000000000", ".4294967295"}) {
    std::string next = running().snmp("snmpgetnext", {}, {kColumn + from}).output;
    EXPECT_EQ(next.substr(0, next.find(' ')), ".1.3.6.1.2.1.155.1.1.1.1.6.1010100001") << from;
  }
}

TEST_F(Standard, EntitiesAreBoxPonInterfacesAndOnus) {
  EXPECT_EQ(walked("1.3.6.1.2.1.47.1.1.1.1.7"),
            ".1.3.6.1.2.1.47.1.1.1.1.7.1 \"6F 6C 74 \"\n"
            ".1.3.6.1.2.1.47.1.1.1.1.7.100001001 \"70 6F 6E 31 2F 31 \"\n"
            ".1.3.6.1.2.1.47.1.1.1.1.7.100001002 \"70 6F 6E 31 2F 32 \"\n"
            ".1.3.6.1.2.1.47.1.1.1.1.7.1010100001 \"6F 6E 75 31 2F 31 2F 31 \"\n"
            ".1.3.6.1.2.1.47.1.1.1.1.7.1010100002 \"6F 6E 75 31 2F 31 2F 32 \"\n"
            ".1.3.6.1.2.1.47.1.1.1.1.7.1010100003 \"6F 6E 75 31 2F 31 2F 33 \"\n"
            ".1.3.6.1.2.1.47.1.1.1.1.7.1010200001 \"6F 6E 75 31 2F 32 2F 31 \"\n"
            ".1.3.6.1.2.1.47.1.1.1.1.7.1010200002 \"6F 6E 75 31 2F 32 2F 32 \"\n"
            ".1.3.6.1.2.1.47.1.1.1.1.7.1010200003 \"6F 6E 75 31 2F 32 2F 33 \"\n");
  EXPECT_EQ(running().get("1.3.6.1.2.1.47.1.1.1.1.6.1"), "-1");
}

constexpr const char *kOperStates =
    ".1.3.6.1.2.1.2.2.1.8.1001 1\n"
    ".1.3.6.1.2.1.2.2.1.8.1002 2\n"
    ".1.3.6.1.2.1.2.2.1.8.1003 1\n"
    ".1.3.6.1.2.1.2.2.1.8.1004 1\n"
    ".1.3.6.1.2.1.2.2.1.8.100001001 4\n"
    ".1.3.6.1.2.1.2.2.1.8.100001002 4\n"
    ".1.3.6.1.2.1.2.2.1.8.1010100001 1\n"
    ".1.3.6.1.2.1.2.2.1.8.1010100002 1\n"
    ".1.3.6.1.2.1.2.2.1.8.1010100003 1\n"
    ".1.3.6.1.2.1.2.2.1.8.1010200001 2\n"
    ".1.3.6.1.2.1.2.2.1.8.1010200002 2\n"
    ".1.3.6.1.2.1.2.2.1.8.1010200003 2\n";

TEST_F(Standard, InterfacesAreInAContextOfTheirOwn) {
  EXPECT_EQ(walked("1.3.6.1.2.1.2.2.1.8", "snmpwalk", {}, true), kOperStates);
  EXPECT_EQ(walked("1.3.6.1.2.1.2.2.1.8", "snmpbulkwalk", {"-Cr50"}, true), kOperStates);
  EXPECT_EQ(walked("1.3.6.1.2.1.10.7.2.1.19", "snmpwalk", {}, true),
            ".1.3.6.1.2.1.10.7.2.1.19.1001 3\n"
            ".1.3.6.1.2.1.10.7.2.1.19.1002 1\n"
            ".1.3.6.1.2.1.10.7.2.1.19.1003 3\n"
            ".1.3.6.1.2.1.10.7.2.1.19.1004 3\n");
  EXPECT_EQ(walked("1.3.6.1.2.1.31.1.1.1.18.1010200003", "snmpget", {}, true),
            ".1.3.6.1.2.1.31.1.1.1.18.1010200003 \"48 61 6C 6C 20 34 \"\n");
  // The host's own interfaces, of which there is at least one.
  EXPECT_EQ(running().get("1.3.6.1.2.1.2.2.1.1.1"), "1");
  EXPECT_EQ(running().get("1.3.6.1.2.1.2.2.1.1.1001"), "NoSuchInstancecurrentlyexistsatthisOID");
}

TEST_F(Standard, InterfacesMayReplaceThoseOfTheHost) {
  EXPECT_EQ(running().end_agent(SIGTERM), 0);
  running().start_agent({"--open-interfaces"});
  EXPECT_EQ(walked("1.3.6.1.2.1.2.2.1.8"), kOperStates);
  EXPECT_EQ(running().get("1.3.6.1.2.1.10.7.2.1.19.1003"), "3");
  EXPECT_EQ(running().end_agent(SIGTERM), 0);
  EXPECT_EQ(running().get("1.3.6.1.2.1.2.2.1.1.1"), "1");
  running().start_agent();
}

}  // namespace

}  // namespace olt::test
