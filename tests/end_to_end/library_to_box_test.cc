// A front end in this process, a simulated box in another, the library between them.

#include <gtest/gtest.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "oltmgmt.h"
#include "oltplatform.h"
#include "tests/end_to_end/running_box.h"
#include "tests/support/wire_names.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

TEST(LibraryToBox, RecordsThatAreSetAreReadBack) {
  RunningBox box;
  box.start();
  olt_system_network network{};
  olt_snmp_param param{};
  olt_snmp_systeminfo info{};
  for (size_t i = 0; i < sizeof network; ++i) network.bytes[i] = static_cast<uint8_t>(i + 1);
  memset(param.bytes, 0x5A, sizeof param);
  memset(info.bytes, 0xA5, sizeof info);
  ASSERT_EQ(set_system_ipaddress(&network), 0);
  ASSERT_EQ(set_snmp_param(&param), 0);
  ASSERT_EQ(set_snmp_systeminfo(&info), 0);

  olt_system_network network_back{};
  olt_snmp_param param_back{};
  olt_snmp_systeminfo info_back{};
  ASSERT_EQ(get_system_network(&network_back), 0);
  ASSERT_EQ(get_snmp_param(&param_back), 0);
  ASSERT_EQ(get_snmp_systeminfo(&info_back), 0);
  for (size_t i = 0; i < sizeof network; ++i) ASSERT_EQ(network_back.bytes[i], i + 1) << i;
  for (uint8_t byte : param_back.bytes) ASSERT_EQ(byte, 0x5A);
  for (uint8_t byte : info_back.bytes) ASSERT_EQ(byte, 0xA5);
}

TEST(LibraryToBox, UsersAreCheckedAndWalkedInOrder) {
  RunningBox box;
  box.start();
  ASSERT_EQ(add_user_level("operator", "secret", 1, 2), 0);
  ASSERT_EQ(add_user_level("guest", "guest", 3, 4), 0);

  uint32_t level_a = 77;
  uint32_t level_b = 78;
  EXPECT_NE(get_user_level("operator", "wrong", &level_a, &level_b), 0);
  EXPECT_EQ(level_a, 77U);
  ASSERT_EQ(get_user_level("operator", "secret", &level_a, &level_b), 0);
  EXPECT_EQ(level_a, 1U);
  EXPECT_EQ(level_b, 2U);

  std::vector<std::string> names;
  olt_user user{};
  while (get_system_next_user(&user) == 0) names.emplace_back(user.user_name);
  ASSERT_GE(names.size(), 2U);
  EXPECT_EQ(names[names.size() - 2], "operator");
  EXPECT_EQ(names.back(), "guest");
}

TEST(LibraryToBox, ListingsAreNamedFilesInTheRunDirectory) {
  RunningBox box;
  box.start();
  char name[32];
  ASSERT_EQ(get_system_basicinfofile(name), 0);
  EXPECT_FALSE(box.listing(name).empty());
  ASSERT_EQ(show_running_configuration_file(name), 0);
  EXPECT_FALSE(box.listing(name).empty());
  ASSERT_EQ(show_memory_info(18, name), 0);
  EXPECT_FALSE(box.listing(name).empty());
  ASSERT_EQ(get_system_loginfofile(name, 0), 0);
  EXPECT_FALSE(box.listing(name).empty());
}

TEST(LibraryToBox, AnUpdateStreamIsAnsweredInANewBlock) {
  RunningBox box;
  box.start();
  std::vector<uint8_t> image(8 + 4096, 0xEE);
  const uint8_t head[8] = {0x00, 0x10, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00};
  memcpy(image.data(), head, sizeof head);
  void *answer = nullptr;
  uint32_t length = 0;
  ASSERT_EQ(do_handle_epon_updatestream(image.data(), static_cast<uint32_t>(image.size()), &answer,
                                        &length),
            0);
  EXPECT_NE(answer, nullptr);
  EXPECT_EQ(length, 8U);
  ___FREE(answer, "do_handle_epon_updatestream", __LINE__);
  uint32_t progress = 0;
  ASSERT_EQ(get_card_updatestatus(&progress), 0);
  EXPECT_EQ(progress, 100U);
}

TEST(LibraryToBox, SavedConfigurationSurvivesAKill) {
  RunningBox box;
  box.start();
  ASSERT_EQ(add_user_level("kept", "x", 1, 1), 0);
  ASSERT_EQ(save_system_config(), 0);
  ASSERT_EQ(add_user_level("lost", "x", 1, 1), 0);
  EXPECT_EQ(box.end(SIGKILL), 128 + SIGKILL);

  uint32_t level_a = 0;
  uint32_t level_b = 0;
  EXPECT_EQ(get_user_level("kept", "x", &level_a, &level_b), kNoModule);
  box.start();
  EXPECT_EQ(get_user_level("kept", "x", &level_a, &level_b), 0);
  EXPECT_NE(get_user_level("lost", "x", &level_a, &level_b), 0);
}

TEST(LibraryToBox, ABoxKilledDuringARequestIsReportedAtOnce) {
  RunningBox box;
  box.start({"--fault", "type=12 silence"});
  std::thread killer([&box] {
    std::this_thread::sleep_for(200ms);
    kill(box.pid(), SIGKILL);
  });
  olt_mac mac{};
  auto begin = steady_clock::now();
  int32_t result = get_olt_mac(&mac);
  auto elapsed = steady_clock::now() - begin;
  killer.join();
  EXPECT_EQ(result, kLost);
  EXPECT_LT(elapsed, 3s);
  box.end(SIGKILL);
  box.start();
  EXPECT_EQ(get_olt_mac(&mac), 0);
}

TEST(LibraryToBox, ATimeOutHoldsInASignalStorm) {
  RunningBox box;
  box.start({"--fault", "type=12 delay_ms=300"});
  struct sigaction ignore {};
  ignore.sa_handler = [](int) {};
  sigaction(SIGALRM, &ignore, nullptr);
  itimerval storm = {{0, 1000}, {0, 1000}};
  setitimer(ITIMER_REAL, &storm, nullptr);
  olt_mac mac{};
  int32_t answered = get_olt_mac(&mac);

  uint16_t status = 0;
  auto begin = steady_clock::now();
  EXPECT_EQ(box.oltctl({"fault", "add", "type=7", "action=silence"}).status, 0);
  begin = steady_clock::now();
  int32_t silent = platmsg_syn_result(kReboot, kMainModule, nullptr, 0, nullptr, nullptr, nullptr,
                                      &status, 1, 1);
  auto elapsed = steady_clock::now() - begin;
  itimerval calm = {};
  setitimer(ITIMER_REAL, &calm, nullptr);
  EXPECT_EQ(answered, 0);
  EXPECT_EQ(silent, kTimedOut);
  EXPECT_GE(elapsed, 1000ms);
  EXPECT_LT(elapsed, 1500ms);
}

TEST(LibraryToBox, SixtyFourThreadsGetTheirOwnAnswers) {
  RunningBox box;
  box.start();
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  threads.reserve(64);
  for (uint32_t id = 0; id < 64; ++id) {
    threads.emplace_back([id, &wrong] {
      for (uint32_t round = 0; round < 50; ++round) {
        olt_debug_value written = {1, id, (id << 16) | round};
        olt_debug_value read = {0, id, 0};
        if (process_debug_value(&written) != 0 || process_debug_value(&read) != 0 ||
            read.debug_value != written.debug_value) {
          ++wrong;
        }
      }
    });
  }
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

TEST(LibraryToBox, AnotherUserIsRefused) {
  if (geteuid() != 0) return;  // only root can become a second user
  RunningBox box;
  box.start();
  // Everyone may reach the sockets: only the check of the peer's user refuses.
  ASSERT_EQ(std::system(("chmod 755 " + box.folder() + " " + box.run_dir() + " && chmod 666 " +
                         box.run_dir() + "/module-*")
                            .c_str()),
            0);
  pid_t stranger = fork();
  if (stranger == 0) {
    olt_mac mac{};
    bool changed = setgid(65534) == 0 && setuid(65534) == 0;
    _exit(changed && get_olt_mac(&mac) == kRefused ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(stranger, &status, 0), stranger);
  EXPECT_EQ(WEXITSTATUS(status), 0);
  olt_mac mac{};
  EXPECT_EQ(get_olt_mac(&mac), 0);
}

}  // namespace

}  // namespace olt::test
