// What snmptrapd gets of a box with six ONUs.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "tests/agent/running_agent.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;
using Lines = std::vector<std::string>;

class Notifications : public testing::Test {
 protected:
  ~Notifications() override { EXPECT_EQ(running_.end_agent(SIGTERM), 0) << running_.log(); }

  /// And waits for the end of the first round, with which later ones are compared.
  void start(unsigned onus_per_interface) {
    running_.start_snmptrapd();
    running_.start_box(onus_per_interface);
    running_.start_snmpd();
    running_.start_agent({"--pace", "10"});
    // Of 21 exchanges, 16 are for ONUs and two for the four ports; a round ends with one that finds
    // no more.
    const unsigned round = std::max((2 * onus_per_interface + 1) * 21 / 16, 5U * 21 / 2) + 21;
    while (std::stoul(running_.get(".2.1.0")) < round) std::this_thread::sleep_for(100ms);
  }

  void oltctl(const std::vector<std::string> &arguments) {
    Finished called = running_.box().oltctl(arguments);
    EXPECT_EQ(called.status, 0) << called.errors;
  }

  Lines sorted(size_t count) {
    Lines lines = running_.wait_for_notifications(count);
    std::sort(lines.begin(), lines.end());
    return lines;
  }

  /// The last ones, sorted.
  Lines last_of(size_t count, size_t last) {
    Lines lines = running_.wait_for_notifications(count);
    lines.erase(lines.begin(), lines.end() - static_cast<Lines::difference_type>(last));
    std::sort(lines.begin(), lines.end());
    return lines;
  }

  RunningAgent running_;
};

TEST_F(Notifications, TellOfOnusPortsUpdatesAndModules) {
  start(3);
  EXPECT_EQ(running_.notifications(), Lines{});
  oltctl({"set_olt_auth_mode", "1", "2", "mac"});
  Lines expected = {"3 .1.85.1.34.1.2.1 = 3", "3 .1.85.1.34.1.2.2 = 3", "3 .1.85.1.34.1.2.3 = 3"};
  EXPECT_EQ(sorted(3), expected);
  oltctl({"set_olt_auth_mode", "1", "2", "any"});
  expected.insert(expected.begin(),
                  {"1 .1.85.1.34.1.2.1 = 1", "1 .1.85.1.34.1.2.2 = 1", "1 .1.85.1.34.1.2.3 = 1"});
  EXPECT_EQ(sorted(6), expected);

  oltctl({"set_port_enable", "1", "3", "off"});
  EXPECT_EQ(running_.wait_for_notifications(7).back(), "5 .1.75.1.26.1.3 = 0");
  oltctl({"set_port_enable", "1", "3", "on"});
  EXPECT_EQ(running_.wait_for_notifications(8).back(), "4 .1.75.1.26.1.3 = 1");

  oltctl({"tkonu_ont_reboot", "1/1/2", "--yes"});
  Lines all = running_.wait_for_notifications(10);
  ASSERT_EQ(all.size(), 10u);
  EXPECT_EQ(all[8], "2 .1.85.1.34.1.1.2 = 2");
  EXPECT_EQ(all[9], "1 .1.85.1.34.1.1.2 = 1");

  oltctl({"do_handle_epon_updatestream", "--yes", "request=040000000000000001020304"});
  all = running_.wait_for_notifications(11);
  EXPECT_EQ(all.back(), "6 .1.61.10.0 = 100");

  running_.box().end(SIGTERM);
  EXPECT_EQ(last_of(14, 3), (Lines{"7 .2.8.0 = 18", "7 .2.8.0 = 2", "7 .2.8.0 = 23"}));
  running_.start_box();
  EXPECT_EQ(last_of(17, 3), (Lines{"8 .2.8.0 = 18", "8 .2.8.0 = 2", "8 .2.8.0 = 23"}));
  std::this_thread::sleep_for(500ms);
  EXPECT_EQ(running_.notifications().size(), 17u) << "the new start tells of nothing else";
}

/// No manager asks for anything.
TEST_F(Notifications, TellOfEachModuleWhileOthersAreWatched) {
  start(3);
  oltctl({"fault", "add", "type=174", "action=drop"});
  EXPECT_EQ(running_.wait_for_notifications(1).back(), "7 .2.8.0 = 23");
  oltctl({"fault", "clear"});
  EXPECT_EQ(running_.wait_for_notifications(2).back(), "8 .2.8.0 = 23");
  oltctl({"fault", "add", "type=4", "delay_ms=5000"});
  std::this_thread::sleep_for(300ms);
  oltctl({"set_port_enable", "1", "3", "off"});
  oltctl({"fault", "clear"});
  const Lines all = running_.wait_for_notifications(5);
  EXPECT_EQ(Lines(all.begin() + 2, all.end()),
            (Lines{"5 .1.75.1.26.1.3 = 0", "7 .2.8.0 = 18", "8 .2.8.0 = 18"}));
}

/// 1,000 changes, each once and in the order in which an ONU took its states.
TEST_F(Notifications, AreNeitherLostNorDoubled) {
  constexpr unsigned kOnus = 250;
  constexpr unsigned kChanges = 4;
  start(kOnus / 2);
  for (unsigned change = 1; change <= kChanges; ++change) {
    for (const char *interface : {"1", "2"}) {
      oltctl({"set_olt_auth_mode", "1", interface, change % 2 == 1 ? "mac" : "any"});
    }
    ASSERT_EQ(running_.wait_for_notifications(size_t{kOnus} * change).size(), kOnus * change);
  }
  std::map<std::string, std::string> states;  // of each ONU, one character for each notification
  for (const std::string &line : running_.notifications()) {
    states[line.substr(2, line.find(" = ") - 2)] += line.substr(0, 1);
  }
  EXPECT_EQ(states.size(), kOnus);
  for (const auto &[onu, notified] : states) EXPECT_EQ(notified, "3131") << onu;
}

}  // namespace

}  // namespace olt::test
