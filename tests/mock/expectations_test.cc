// Expectations, answers and their order.
#include <array>
#include <cstring>
#include <string>
#include <string_view>

#include "oltmgmt.h"
#include "oltplatform.h"
#include "tests/mock/reports.h"

namespace olt::test {

namespace {

class MockExpectations : public MockTest {};

constexpr int32_t kUnexpected = 0x00ff0000;

void add_vlans(uint16_t first, uint16_t last) {
  olt_vlan_node node{};
  node.vlan_first = first;
  node.vlan_second = last;
  olt_vlan_list list{.head = &node, .count = 1};
  EXPECT_EQ(add_vlan_list(&list), 0);
}

TEST_F(MockExpectations, AreMetInTheirOrder) {
  olt_mock_answer(olt_mock_expect("get_port_link_state", "slot=1 port=3"), "link_state=up");
  olt_mock_expect("set_port_enable", "slot=1 port=3 port_enable=off");
  olt_mock_expect("save_system_config", nullptr);
  uint32_t state = 7;
  EXPECT_EQ(get_port_link_state(1, 3, &state), 0);
  EXPECT_EQ(state, 1U);
  EXPECT_EQ(set_port_enable(1, 3, 0), 0);
  EXPECT_EQ(save_system_config(), 0);
  EXPECT_EQ(finish(), "");
}

TEST_F(MockExpectations, TakeAnyValueOfFieldsThatAreNotNamed) {
  olt_mock_expect("set_port_enable", "port=3");
  EXPECT_EQ(set_port_enable(4711, 3, 1), 0);
  olt_mock_expect("set_port_enable", "");
  EXPECT_EQ(set_port_enable(4711, 0, 1), 0);
  EXPECT_EQ(finish(), "");
}

TEST_F(MockExpectations, ReportEachFieldThatDiffers) {
  olt_mock_expect("set_port_enable", "slot=1 port=3 port_enable=on");
  EXPECT_EQ(set_port_enable(1, 4, 0), kUnexpected);
  EXPECT_EQ(taken(),
            "unexpected call: set_port_enable slot=1 port=4 port_enable=off\n"
            "  nearest expectation: set_port_enable slot=1 port=3 port_enable=on\n"
            "  port: 4 sent; expected 3\n"
            "  port_enable: off sent; expected on\n");
  EXPECT_EQ(set_port_enable(1, 3, 1), 0);
  EXPECT_EQ(finish(), "");
}

TEST_F(MockExpectations, ReportTheNearestOne) {
  olt_mock_expect("save_system_config", "");
  olt_mock_expect("set_port_enable", "slot=2 port=2 port_enable=on");
  olt_mock_expect("set_port_enable", "slot=2 port=4 port_enable=on");
  EXPECT_EQ(set_port_enable(1, 4, 1), kUnexpected);
  EXPECT_EQ(taken(),
            "unexpected call: set_port_enable slot=1 port=4 port_enable=on\n"
            "  nearest expectation: set_port_enable slot=2 port=4 port_enable=on\n"
            "  slot: 1 sent; expected 2\n");
  EXPECT_EQ(do_reboot_system(), kUnexpected);
  EXPECT_EQ(taken(),
            "unexpected call: do_reboot_system\n"
            "  next expectation: save_system_config\n");
  EXPECT_EQ(finish(),
            "not called: save_system_config; expected 1\n"
            "not called: set_port_enable slot=2 port=2 port_enable=on; expected 1\n"
            "not called: set_port_enable slot=2 port=4 port_enable=on; expected 1\n");
  EXPECT_EQ(do_reboot_system(), kUnexpected);
  EXPECT_EQ(taken(),
            "unexpected call: do_reboot_system\n"
            "  no call is expected\n");
}

TEST_F(MockExpectations, ReportCallsOutOfOrder) {
  olt_mock_expect("set_port_enable", "port=3");
  olt_mock_expect("save_system_config", "");
  EXPECT_EQ(save_system_config(), kUnexpected);
  EXPECT_EQ(taken(),
            "unexpected call: save_system_config\n"
            "  nearest expectation: save_system_config\n"
            "  out of order; expected after set_port_enable port=3\n");
  EXPECT_EQ(set_port_enable(1, 3, 1), 0);
  EXPECT_EQ(save_system_config(), 0);
  EXPECT_EQ(save_system_config(), kUnexpected);
  EXPECT_EQ(taken(),
            "unexpected call: save_system_config\n"
            "  nearest expectation: save_system_config\n"
            "  already called 1 time\n");
  EXPECT_EQ(finish(), "");
}

TEST_F(MockExpectations, ReportCallsWhoseTurnIsOver) {
  olt_mock_times(olt_mock_expect("save_system_config", ""), 0, OLT_MOCK_ANY);
  olt_mock_expect("do_reboot_system", "");
  EXPECT_EQ(do_reboot_system(), 0);
  EXPECT_EQ(save_system_config(), kUnexpected);
  EXPECT_EQ(taken(),
            "unexpected call: save_system_config\n"
            "  nearest expectation: save_system_config\n"
            "  out of order; expected before calls that were made\n");
}

TEST_F(MockExpectations, AreMetAsOftenAsSaid) {
  olt_mock_times(olt_mock_expect("save_system_config", ""), 2, 3);
  olt_mock_expect("do_reboot_system", "");
  EXPECT_EQ(save_system_config(), 0);
  EXPECT_EQ(do_reboot_system(), kUnexpected);
  EXPECT_EQ(taken(),
            "unexpected call: do_reboot_system\n"
            "  nearest expectation: do_reboot_system\n"
            "  out of order; expected after save_system_config\n");
  EXPECT_EQ(finish(),
            "called 1 time: save_system_config; expected 2 to 3\n"
            "not called: do_reboot_system; expected 1\n");

  olt_mock_times(olt_mock_expect("save_system_config", ""), 2, 3);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(save_system_config(), 0);
  EXPECT_EQ(save_system_config(), kUnexpected);
  EXPECT_NE(taken().find("already called 3 times"), std::string::npos);

  olt_mock_times(olt_mock_expect("do_reboot_system", ""), 1, OLT_MOCK_ANY);
  EXPECT_EQ(finish(), "not called: do_reboot_system; expected 1 or more\n");
}

TEST_F(MockExpectations, AreMetAtAnyTimeIfSaid) {
  olt_mock_expectation *poll = olt_mock_expect("get_port_link_state", "port=1");
  olt_mock_any_order(poll);
  olt_mock_times(poll, 2, OLT_MOCK_ANY);
  olt_mock_expect("save_system_config", "");
  olt_mock_expect("do_reboot_system", "");
  uint32_t state = 0;
  EXPECT_EQ(save_system_config(), 0);
  EXPECT_EQ(get_port_link_state(1, 1, &state), 0);
  EXPECT_EQ(do_reboot_system(), 0);
  EXPECT_EQ(finish(), "called 1 time: get_port_link_state port=1; expected 2 or more\n");
}

TEST_F(MockExpectations, AnswerInTurn) {
  olt_mock_expectation *read = olt_mock_expect("get_port_link_speed", "");
  olt_mock_times(read, 4, 4);
  olt_mock_answer(read, "link_speed=10");
  olt_mock_answer(read, nullptr);
  olt_mock_answer(read, "link_speed=1000");
  for (uint32_t expected : {10U, 0U, 1000U, 1000U}) {
    uint32_t speed = 7;
    EXPECT_EQ(get_port_link_speed(1, 1, &speed), 0);
    EXPECT_EQ(speed, expected);
  }
}

TEST_F(MockExpectations, AnswerWithZerosWhereNothingIsSaid) {
  olt_mac mac;
  std::memset(&mac, 0x55, sizeof mac);
  olt_mock_expect("get_olt_mac", "");
  EXPECT_EQ(get_olt_mac(&mac), 0);
  const olt_mac zeros{};
  EXPECT_EQ(std::memcmp(&mac, &zeros, sizeof mac), 0);
}

TEST_F(MockExpectations, AnswerByBytes) {
  const uint8_t bytes[] = {2, 0, 0x5e, 0x10, 0, 1};
  olt_mock_answer_bytes(olt_mock_expect("get_olt_mac", ""), bytes, sizeof bytes);
  olt_mac mac{};
  EXPECT_EQ(get_olt_mac(&mac), 0);
  EXPECT_EQ(std::memcmp(&mac, bytes, sizeof bytes), 0);
}

TEST_F(MockExpectations, ByBytesCompareAllThatTheOperationSets) {
  const std::array<uint8_t, 80> request = {1, 0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
  olt_mock_expect_bytes("set_port_enable", request.data(), request.size());
  EXPECT_EQ(set_port_enable(1, 3, 1), 0);
  olt_mock_expect_bytes("set_port_enable", request.data(), request.size());
  EXPECT_EQ(set_port_enable(1, 3, 0), kUnexpected);
  std::string report = taken();
  EXPECT_TRUE(report.ends_with("\n  port_enable: off sent; expected on\n")) << report;
  EXPECT_TRUE(report.starts_with(
      "unexpected call: set_port_enable slot=1 port=3 port_enable=off\n"
      "  nearest expectation: set_port_enable with the bytes 01 00 00 00 03 00 00 00 00 "))
      << report;
  EXPECT_EQ(set_port_enable(1, 3, 1), 0);
  olt_mock_expect_bytes("save_system_config", nullptr, 0);
  EXPECT_EQ(save_system_config(), 0);
}

TEST_F(MockExpectations, ByBytesCompareTheLength) {
  const uint8_t request[] = {10, 0, 0, 0, 20, 0, 25, 0};
  olt_mock_expect_bytes("add_vlan_list", request, sizeof request);
  olt_vlan_node node{};
  node.vlan_first = 10;
  olt_vlan_list list{.head = &node, .count = 1};
  EXPECT_EQ(add_vlan_list(&list), kUnexpected);
  EXPECT_EQ(
      taken(),
      "unexpected call: add_vlan_list 'vlans={first=10 last=same}'\n"
      "  nearest expectation: add_vlan_list with the bytes 0a 00 00 00 14 00 19 00\n"
      "  length: 4 bytes sent; expected 8\n"
      "  vlans: {first=10 last=same} sent; expected {first=10 last=same} {first=20 last=25}\n");
  EXPECT_EQ(finish(),
            "not called: add_vlan_list with the bytes 0a 00 00 00 14 00 19 00; expected 1\n");
}

// Messages of each shape, in both spellings.

TEST_F(MockExpectations, TakeRecordsAsOneWordOrByField) {
  olt_ont_target ont{};
  ont.target[0] = 1;
  ont.target[1] = 2;
  ont.target[2] = 3;
  ont.target_kind = 1;
  for (const char *fields : {"ont=1/2/3", "target=1/2/3", "ont=1/2/3 mac=00:00:00:00:00:00"}) {
    olt_mock_expect("tkonu_ont_reboot", fields);
    EXPECT_EQ(tkonu_ont_reboot(&ont), 0) << fields;
  }
  EXPECT_EQ(finish(), "");
  std::memcpy(ont.mac.bytes, "\x02\x5e", 2);
  olt_mock_expect("tkonu_ont_reboot", "ont=1/2/4");
  EXPECT_EQ(tkonu_ont_reboot(&ont), kUnexpected);
  EXPECT_EQ(taken(),
            "unexpected call: tkonu_ont_reboot target=1/2/3 target_kind=this part=0 "
            "mac=02:5e:00:00:00:00 mac_word=0\n"
            "  nearest expectation: tkonu_ont_reboot ont=1/2/4\n"
            "  target: 1/2/3 sent; expected 1/2/4\n"
            "  mac: 02:5e:00:00:00:00 sent; expected 00:00:00:00:00:00\n");
  olt_mock_finish();
  taken();
}

TEST_F(MockExpectations, TakeListsInBothForms) {
  for (const char *fields : {"vlans=20-25", "vlans='{first=20 last=25}'"}) {
    olt_mock_expect("add_vlan_list", fields);
    add_vlans(20, 25);
  }
  olt_auth_entry entry{};
  std::memcpy(entry.bytes, "\x02\x00\x00\x00\x00\x01", 6);
  std::memcpy(entry.bytes + 8, "site-17", 7);
  for (const char *fields : {"iface_a=1 iface_b=2 entries='mac=02:00:00:00:00:01 loid=site-17'",
                             "slot=1 entries='{mac=02:00:00:00:00:01 loid=site-17}'"}) {
    olt_mock_expect("add_authallowed_mac", fields);
    EXPECT_EQ(add_authallowed_mac(1, 2, 1, &entry), 0);
  }
  EXPECT_EQ(finish(), "");
}

TEST_F(MockExpectations, CompareTextsUpToTheirEnd) {
  olt_mock_answer(olt_mock_expect("get_user_level", "name=operator password='two words'"),
                  "level_a=3 level_b=4");
  uint32_t level_a = 0;
  uint32_t level_b = 0;
  EXPECT_EQ(get_user_level("operator", "two words", &level_a, &level_b), 0);
  EXPECT_EQ(level_a, 3U);
  EXPECT_EQ(level_b, 4U);
  olt_mock_expect("get_user_level", "name=operator");
  EXPECT_EQ(get_user_level("operators", "", &level_a, &level_b), kUnexpected);
  EXPECT_EQ(taken(),
            "unexpected call: get_user_level name=operators password=\n"
            "  nearest expectation: get_user_level name=operator\n"
            "  name: operators sent; expected operator\n");
  olt_mock_finish();
  taken();
}

TEST_F(MockExpectations, CompareTheModuleThatTheCallerNames) {
  olt_mock_answer(olt_mock_expect("show_memory_info", "module=18"), "name=memory.txt");
  char name[32];
  EXPECT_EQ(show_memory_info(22, name), kUnexpected);
  EXPECT_EQ(taken(),
            "unexpected call: show_memory_info module=22\n"
            "  nearest expectation: show_memory_info module=18\n"
            "  module: 22 sent; expected 18\n");
  EXPECT_EQ(show_memory_info(18, name), 0);
  EXPECT_STREQ(name, "memory.txt");
}

TEST_F(MockExpectations, AreOneCallWhereTwoModulesAreAsked) {
  olt_mock_times(olt_mock_expect("set_system_loglevel", "value=debug"), 2, 2);
  EXPECT_EQ(set_system_loglevel(7), 0);
  EXPECT_EQ(set_system_loglevel(7), 0);
  EXPECT_EQ(finish(), "");
  olt_mock_expectation *refused = olt_mock_expect("set_system_loglevel", "value=debug");
  olt_mock_refuse(refused, 1, 3);
  EXPECT_EQ(set_system_loglevel(7), 3);
  EXPECT_EQ(finish(), "");
}

TEST_F(MockExpectations, WaitForTheSecondModule) {
  uint32_t level = 7;
  uint16_t status = 0;
  auto ask = [&](uint32_t module) {
    return platmsg_syn_result(83, module, &level, 4, nullptr, nullptr, nullptr, &status, 1, 10);
  };
  olt_mock_expect("set_system_loglevel", "");
  EXPECT_EQ(ask(2), kUnexpected);
  EXPECT_EQ(taken(),
            "unexpected call: set_system_loglevel value=debug\n"
            "  nearest expectation: set_system_loglevel\n"
            "  module 2 asked; expected module 22\n");
  EXPECT_EQ(ask(22), 0);
  EXPECT_EQ(finish(), "half a call: set_system_loglevel; expected module 2 to be asked, too\n");
}

TEST_F(MockExpectations, AnswerWithBlocksOfSeveralRecords) {
  olt_mock_answer(olt_mock_expect("process_snmp_onuglobalinfo", "ont=1/2/3"),
                  "slot=1 loid=site-17 parts='{kind=uni-port number=4} {number=5}'");
  olt_ont_target ont{.target = {1, 2, 3}, .target_kind = 1};
  void *info = nullptr;
  ASSERT_EQ(process_snmp_onuglobalinfo(&ont, &info), 0);
  const auto *bytes = static_cast<const uint8_t *>(info);
  EXPECT_EQ(bytes[0], 1);
  EXPECT_EQ(std::string_view(reinterpret_cast<const char *>(bytes) + 32, 8),
            std::string_view("site-17\0", 8));
  EXPECT_EQ(bytes[56], 24);  // the length of the parts, which was not named
  EXPECT_EQ(bytes[60], 1);
  EXPECT_EQ(bytes[64], 4);
  EXPECT_EQ(bytes[76], 5);
  ___FREE(info, "process_snmp_onuglobalinfo", 0);
  EXPECT_EQ(finish(), "");
}

TEST_F(MockExpectations, AnswerStreamsInBothSpellings) {
  const uint8_t reply[] = {5, 0, 0, 0, 9, 0, 0, 0, 0xaa};
  olt_mock_answer(olt_mock_expect("do_handle_epon_updatestream", "total=8 image=010203"),
                  "received=5 progress=9 reserved_08=aa");
  const uint8_t request[] = {8, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3};
  olt_mock_answer_bytes(
      olt_mock_expect_bytes("do_handle_epon_updatestream", request, sizeof request), reply,
      sizeof reply);
  for (int i = 0; i < 2; ++i) {
    void *answer = nullptr;
    uint32_t length = 0;
    ASSERT_EQ(do_handle_epon_updatestream(request, sizeof request, &answer, &length), 0);
    ASSERT_EQ(length, sizeof reply);
    EXPECT_EQ(std::memcmp(answer, reply, sizeof reply), 0);
    ___FREE(answer, "do_handle_epon_updatestream", 0);
  }
  EXPECT_EQ(finish(), "");
}

TEST_F(MockExpectations, TakeNamesThatStandForTwoFieldsWithTheirArgument) {
  olt_ont_target ont{.target = {1, 2, 3}, .target_kind = 1};
  olt_onu_info info{};
  olt_mock_answer(olt_mock_expect("process_snmp_onubasicinfo",
                                  "ont.mac=00:00:00:00:00:00 info.mac=00:00:00:00:00:00"),
                  "mac=02:00:00:00:00:07 state=1");
  EXPECT_EQ(process_snmp_onubasicinfo(&ont, &info), 0);
  EXPECT_EQ(finish(), "");
}

TEST_F(MockExpectations, ReportRequestsOfNoOperation) {
  uint8_t request[] = {1, 2};
  uint16_t status = 0;
  EXPECT_EQ(platmsg_syn_result(4711, 2, request, 2, nullptr, nullptr, nullptr, &status, 1, 10),
            kUnexpected);
  EXPECT_EQ(taken(),
            "unexpected request of no operation: message type 4711, module 2, bytes 01 02\n");
  EXPECT_EQ(platmsg_syn_result(4711, 2, nullptr, 0, nullptr, nullptr, nullptr, &status, 1, 10),
            kUnexpected);
  EXPECT_EQ(taken(),
            "unexpected request of no operation: message type 4711, module 2, bytes none\n");
}

}  // namespace

}  // namespace olt::test
