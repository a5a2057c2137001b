// Failures, held calls, leaks, threads, and how a test is told.
#include <setjmp.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "oltmgmt.h"
#include "oltplatform.h"
#include "tests/mock/reports.h"

namespace olt::test {

namespace {

class MockFailures : public MockTest {};

constexpr int32_t kUnexpected = 0x00ff0000;
constexpr int32_t kTimedOut = 0x00010000;

TEST_F(MockFailures, OfTransportComeWithTheCallThatIsNamed) {
  olt_mock_expectation *save = olt_mock_expect("save_system_config", "");
  olt_mock_times(save, 3, 3);
  olt_mock_fail(save, 2, kTimedOut);
  EXPECT_EQ(save_system_config(), 0);
  EXPECT_EQ(save_system_config(), kTimedOut);
  EXPECT_EQ(save_system_config(), 0);
  EXPECT_EQ(finish(), "");
}

TEST_F(MockFailures, BringNoReply) {
  olt_mock_expectation *read = olt_mock_expect("get_olt_mac", "");
  olt_mock_times(read, 2, 2);
  olt_mock_fail(read, 1, kTimedOut);
  olt_mock_refuse(read, 2, 4);
  olt_mac mac{{1, 2, 3, 4, 5, 6}};
  EXPECT_EQ(get_olt_mac(&mac), kTimedOut);
  EXPECT_EQ(get_olt_mac(&mac), 4);
  EXPECT_EQ(mac.bytes[5], 6);
  EXPECT_EQ(finish(), "");
}

TEST_F(MockFailures, OfTransportAndModuleComeTogether) {
  olt_mock_expectation *save = olt_mock_expect("save_system_config", "");
  olt_mock_fail(save, 1, kTimedOut);
  olt_mock_refuse(save, 1, 5);
  EXPECT_EQ(save_system_config(), kTimedOut + 5);
}

TEST_F(MockFailures, ComeWithEveryCallIfSaid) {
  olt_mock_expectation *save = olt_mock_expect("save_system_config", "");
  olt_mock_times(save, 3, 3);
  olt_mock_refuse(save, OLT_MOCK_EVERY, 8);
  olt_mock_refuse(save, 2, 6);
  EXPECT_EQ(save_system_config(), 8);
  EXPECT_EQ(save_system_config(), 6);
  EXPECT_EQ(save_system_config(), 8);
  EXPECT_EQ(finish(), "");
}

TEST_F(MockFailures, ThatNeverCameAboutAreReported) {
  olt_mock_expectation *save = olt_mock_expect("save_system_config", "");
  olt_mock_times(save, 1, 3);
  olt_mock_refuse(save, 2, 6);
  EXPECT_EQ(save_system_config(), 0);
  olt_mock_fail_allocation(3);
  ___FREE(___MALLOC(1, "tag", 1), "tag", 2);
  EXPECT_EQ(finish(),
            "called 1 time: save_system_config; expected call 2, for which something is planned\n"
            "no allocation failed: 1 made; expected allocation 3 to fail\n");
}

TEST_F(MockFailures, OfAllocationsComeWithTheOneThatIsNamed) {
  olt_mock_fail_allocation(2);
  void *first = ___MALLOC(4, "tag", 1);
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(___MALLOC(4, "tag", 1), nullptr);
  void *third = ___MALLOC(4, "tag", 1);
  EXPECT_NE(third, nullptr);
  EXPECT_EQ(std::memcmp(third, "\0\0\0\0", 4), 0);
  ___FREE(first, "tag", 2);
  ___FREE(third, "tag", 2);
  ___FREE(nullptr, "tag", 2);
  olt_mock_fail_allocation(1);
  olt_ont_target ont{.target = {1, 2, 3}};
  EXPECT_EQ(set_ont_fastleave(&ont, 1), -1);
  EXPECT_EQ(finish(), "");
}

TEST_F(MockFailures, HeldCallsWaitForTheirRelease) {
  olt_mock_expectation *save = olt_mock_expect("save_system_config", "");
  olt_mock_times(save, 2, 2);
  olt_mock_hold(save, OLT_MOCK_EVERY);
  EXPECT_EQ(olt_mock_wait_until_held(save, 1), -1);
  std::atomic<bool> has_returned = false;
  std::thread front_end([&] {
    EXPECT_EQ(save_system_config(), 0);
    has_returned = true;
  });
  EXPECT_EQ(olt_mock_wait_until_held(save, 60000), 0);
  EXPECT_FALSE(has_returned);
  olt_mock_release(save);
  front_end.join();
  EXPECT_TRUE(has_returned);
  EXPECT_EQ(save_system_config(), 0);
  EXPECT_EQ(olt_mock_wait_until_held(save, 0), -1);
  EXPECT_EQ(finish(), "");
}

TEST_F(MockFailures, CallsThatAreStillHeldEndWithTheTest) {
  olt_mock_expectation *read = olt_mock_expect("get_olt_mac", "");
  olt_mock_hold(read, OLT_MOCK_EVERY);
  std::thread front_end([] {
    olt_mac mac{};
    EXPECT_EQ(get_olt_mac(&mac), kUnexpected);
  });
  EXPECT_EQ(olt_mock_wait_until_held(read, 60000), 0);
  EXPECT_EQ(finish(), "still held: get_olt_mac; expected olt_mock_release\n");
  front_end.join();
}

TEST_F(MockFailures, LeaksAreReportedOnce) {
  void *reply = nullptr;
  uint16_t length = 0;
  uint32_t handle = 0;
  uint16_t status = 7;
  olt_mock_answer(olt_mock_expect("get_olt_mac", ""), "mac=02:00:00:00:00:01");
  EXPECT_EQ(platmsg_syn_result(12, 2, nullptr, 0, &reply, &length, &handle, &status, 0, 10), 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(length, 6);
  EXPECT_EQ(std::memcmp(reply, "\x02\0\0\0\0\x01", 6), 0);
  void *block = ___MALLOC(44, "show_things", 123);
  std::string leaks = finish();
  EXPECT_EQ(leaks, "reply not released: that of get_olt_mac; expected IPC_Free(" +
                       std::to_string(handle) +
                       ")\n"
                       "block not released: 44 bytes of show_things, line 123; expected ___FREE\n");
  EXPECT_EQ(finish(), "");
  ___FREE(block, "show_things", 130);
  EXPECT_EQ(finish(), "");
}

TEST_F(MockFailures, RepliesThatTheLibraryKeepsAreNoLeaks) {
  uint32_t value = 0;
  for (auto *read :
       {get_port_enable, get_port_link_state, get_port_link_duplex, get_port_link_speed}) {
    olt_mock_times(olt_mock_expect("get_port_enable", ""), 0, 1);
    olt_mock_times(olt_mock_expect("get_port_link_state", ""), 0, 1);
    olt_mock_times(olt_mock_expect("get_port_link_duplex", ""), 0, 1);
    olt_mock_times(olt_mock_expect("get_port_link_speed", ""), 0, 1);
    EXPECT_EQ(read(1, 1, &value), 0);
    EXPECT_EQ(finish(), "");
  }
}

TEST_F(MockFailures, WrongReleasesAreReported) {
  IPC_Free(4711);
  EXPECT_EQ(taken(),
            "IPC_Free: no reply has the handle 4711; expected that of a reply that was not "
            "released before\n");
  int no_block = 0;
  ___FREE(&no_block, "show_things", 12);
  EXPECT_EQ(taken(),
            "___FREE: show_things:12 releases what is no block; expected one from ___MALLOC that "
            "was not released before\n");
  void *block = ___MALLOC(4, "show_things", 1);
  ___FREE(block, "show_other", 14);
  EXPECT_EQ(taken(),
            "___FREE: show_other:14 releases a block with the tag 'show_other'; expected "
            "'show_things'\n");
  EXPECT_EQ(finish(), "");
}

TEST_F(MockFailures, FinishCountsReports) {
  EXPECT_EQ(olt_mock_finish(), 0);
  EXPECT_EQ(save_system_config(), kUnexpected);
  olt_mock_expect("save_system_config", "");
  EXPECT_EQ(olt_mock_finish(), 2);
  EXPECT_EQ(olt_mock_finish(), 0);
  taken();
}

TEST_F(MockFailures, CallsMayComeFromManyThreads) {
  constexpr uint32_t kThreads = 8;
  constexpr uint32_t kCalls = 500;
  for (uint32_t slot = 0; slot < kThreads; ++slot) {
    std::string fields = "slot=" + std::to_string(slot);
    olt_mock_expectation *read = olt_mock_expect("get_port_link_speed", fields.c_str());
    olt_mock_answer(read, ("link_speed=" + std::to_string(100 + slot)).c_str());
    olt_mock_times(read, kCalls, kCalls);
    olt_mock_any_order(read);
  }
  std::vector<std::thread> threads;
  for (uint32_t slot = 0; slot < kThreads; ++slot) {
    threads.emplace_back([slot] {
      for (uint32_t i = 0; i < kCalls; ++i) {
        uint32_t speed = 0;
        EXPECT_EQ(get_port_link_speed(slot, i, &speed), 0);
        EXPECT_EQ(speed, 100 + slot);
        ___FREE(___MALLOC(i, "threads", 1), "threads", 2);
      }
    });
  }
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(finish(), "");
}

jmp_buf test_case;
std::string text_before_jump;

void leave(void * /*context*/, const char *text) {
  text_before_jump = text;
  longjmp(test_case, 1);
}

TEST_F(MockFailures, MayLeaveByLongjmp) {
  olt_mock_on_failure(leave, nullptr);
  if (setjmp(test_case) == 0) {
    save_system_config();
    ADD_FAILURE() << "returned";
  }
  EXPECT_EQ(text_before_jump,
            "unexpected call: save_system_config\n"
            "  no call is expected");
  if (setjmp(test_case) == 0) {
    olt_mock_expect("save", "");
    ADD_FAILURE() << "returned";
  }
  olt_mock_expect("save_system_config", "");
  EXPECT_EQ(save_system_config(), 0);
  EXPECT_EQ(olt_mock_finish(), 2);
}

using MockDeathTest = MockFailures;

TEST_F(MockDeathTest, EndsTheProcessWhereNoReportFunctionIsSet) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  olt_mock_on_failure(nullptr, nullptr);
  EXPECT_EXIT(save_system_config(), testing::KilledBySignal(SIGABRT),
              "^oltmock: unexpected call: save_system_config\n  no call is expected\n$");
}

TEST_F(MockDeathTest, LogsToStandardError) {
  testing::internal::CaptureStderr();
  log_log(3, "get_olt_mac", 12, "no memory");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "oltmgmt[3] get_olt_mac:12: no memory\n");
}

// Mistakes in the use of the mock.

class MockMistakes : public MockTest {
 protected:
  std::string of_expectation(const char *operation, const char *fields) {
    EXPECT_EQ(olt_mock_expect(operation, fields), nullptr);
    return taken();
  }

  std::string of_answer(const char *operation, const char *fields) {
    olt_mock_expectation *expectation = olt_mock_expect(operation, "");
    olt_mock_answer(expectation, fields);
    std::string report = taken();
    olt_mock_finish();
    taken();
    return report;
  }
};

TEST_F(MockMistakes, InOperationsAreReported) {
  EXPECT_EQ(of_expectation("set_port", ""),
            "there is no operation 'set_port'; expected one of oltmgmt.h\n");
  EXPECT_EQ(of_expectation(nullptr, ""), "there is no operation ''; expected one of oltmgmt.h\n");
  EXPECT_EQ(of_expectation("read_from_flash", ""),
            "read_from_flash: sends no request; expected an operation that does\n");
  EXPECT_EQ(olt_mock_expect_bytes("set\tport", nullptr, 0), nullptr);
  EXPECT_EQ(taken(), "there is no operation 'set\\x09port'; expected one of oltmgmt.h\n");
}

TEST_F(MockMistakes, InFieldsAreReported) {
  EXPECT_EQ(of_expectation("set_debug_enable", "x=1"),
            "set_debug_enable: there is no field 'x'; expected module, value\n");
  EXPECT_EQ(of_expectation("save_system_config", "x=1"),
            "save_system_config: there is no field 'x'; expected none\n");
  EXPECT_EQ(of_expectation("set_debug_enable", "value"),
            "set_debug_enable: 'value' given; expected FIELD=VALUE\n");
  EXPECT_EQ(of_expectation("set_debug_enable", "=1"),
            "set_debug_enable: '=1' given; expected FIELD=VALUE\n");
  EXPECT_EQ(of_expectation("set_debug_enable", "value=1 value=1"),
            "set_debug_enable: value is given twice\n");
  EXPECT_EQ(of_expectation("set_debug_enable", "value=x"),
            "set_debug_enable: value: 'x' given; expected a number\n");
  EXPECT_EQ(
      of_expectation("set_debug_enable", "module=x"),
      "set_debug_enable: module: 'x' given; expected main, oam, log, rstp, or a number from 0 to "
      "255\n");
  EXPECT_EQ(of_expectation("set_debug_enable", "value='1"),
            "set_debug_enable: the line ends too early; expected a closing '\n");
  EXPECT_EQ(of_expectation("process_snmp_onubasicinfo", "mac=02:00:00:00:00:01"),
            "process_snmp_onubasicinfo: mac stands for two fields; expected ont.mac or info.mac\n");
  EXPECT_EQ(of_expectation("add_vlan_list", "vlans=4095"),
            "add_vlan_list: vlans: item 1: '4095' is not a VLAN id; expected VLANs as "
            "10,20-25, or records as {first= last=} {...}, or none\n");
  EXPECT_EQ(of_expectation("set_ont_fax", "fax_mode=2:01"),
            "set_ont_fax: fax_mode: 1 byte at offset 2; expected 2 bytes as HEX\n");
}

TEST_F(MockMistakes, InAnswersAreReported) {
  EXPECT_EQ(of_answer("save_system_config", "x=1"),
            "save_system_config: has no reply; expected no answer\n");
  EXPECT_EQ(of_answer("get_olt_mac", "x=1"), "get_olt_mac: there is no field 'x'; expected mac\n");
  const std::vector<uint8_t> too_long(65536);
  olt_mock_expectation *read = olt_mock_expect("get_olt_mac", "");
  olt_mock_answer_bytes(read, too_long.data(), too_long.size());
  EXPECT_EQ(taken(), "get_olt_mac: a reply of 65536 bytes; expected at most 65535\n");
  olt_mock_answer_bytes(olt_mock_expect("save_system_config", ""), "", 1);
  EXPECT_EQ(taken(), "save_system_config: has no reply; expected no answer\n");
  olt_mock_finish();
  taken();
}

TEST_F(MockMistakes, InNumbersAreReported) {
  olt_mock_expectation *save = olt_mock_expect("save_system_config", "");
  olt_mock_times(save, 2, 1);
  EXPECT_EQ(taken(),
            "save_system_config: 2 to 1 times; expected a maximum of at least the minimum and 1\n");
  olt_mock_times(save, 0, 0);
  EXPECT_EQ(taken(),
            "save_system_config: 0 to 0 times; expected a maximum of at least the minimum and 1\n");
  olt_mock_fail(save, 1, 0);
  EXPECT_EQ(taken(), "save_system_config: the result 0 is success; expected another one\n");
  olt_mock_refuse(save, 1, 0);
  EXPECT_EQ(taken(), "save_system_config: the status 0 is success; expected another one\n");
  olt_mock_fail_allocation(0);
  EXPECT_EQ(taken(), "there is no allocation 0; expected a number from 1\n");
  EXPECT_EQ(save_system_config(), 0);
}

TEST_F(MockMistakes, LeaveANullExpectationThatIsIgnored) {
  olt_mock_answer(nullptr, "x=1");
  olt_mock_answer_bytes(nullptr, nullptr, 0);
  olt_mock_times(nullptr, 0, 0);
  olt_mock_any_order(nullptr);
  olt_mock_fail(nullptr, 1, 1);
  olt_mock_refuse(nullptr, 1, 1);
  olt_mock_hold(nullptr, 1);
  olt_mock_release(nullptr);
  EXPECT_EQ(olt_mock_wait_until_held(nullptr, 1), -1);
  EXPECT_EQ(finish(), "");
}

}  // namespace

}  // namespace olt::test
