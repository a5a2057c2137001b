// oltctl shell, and passwords, on a terminal.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include "tests/cli/program.h"
#include "tests/cli/terminal.h"
#include "tests/support/bytes.h"

namespace olt::test {

namespace {

/// What is typed before the prompt would still be treated by the terminal, not by the editor.
void at_prompt(Terminal &shell, const std::string &keys) {
  ASSERT_TRUE(shell.shows("oltctl embedded> ")) << shell.transcript();
  shell.type(keys);
}

class Shell : public testing::Test {
 protected:
  Terminal start(const std::vector<std::string> &arguments = {"shell"},
                 const std::vector<std::string> &variables = {}) const {
    std::vector<std::string> command = {OLTCTL};
    command.insert(command.end(), arguments.begin(), arguments.end());
    std::vector<std::string> environment = private_environment(folder_);
    environment.insert(environment.end(), variables.begin(), variables.end());
    return {command, environment};
  }

  Finished oltctl(const std::vector<std::string> &arguments) const {
    std::vector<std::string> command = {OLTCTL};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run(command, private_environment(folder_));
  }

  std::string history() const { return folder_.path() + "/oltmgmt/history"; }

  Folder folder_;
};

TEST_F(Shell, RunsCommandsUntilExit) {
  Terminal shell = start();
  at_prompt(shell, "add_user_level name=bob password=pw level_a=3 level_b=4\r");
  at_prompt(shell, "get_user_level bob pw\r");
  EXPECT_TRUE(shell.shows("level_a = 3\r\nlevel_b = 4\r\n"));
  at_prompt(shell, "exit\r");
  EXPECT_EQ(shell.end(), 0);
  EXPECT_EQ(oltctl({"get_user_level", "bob", "pw"}).output, "level_a = 3\nlevel_b = 4\n");
}

TEST_F(Shell, GoesOnAfterAnError) {
  Terminal shell = start();
  at_prompt(shell, "get_olt_mca\r");
  EXPECT_TRUE(shell.shows("did you mean get_olt_mac?"));
  at_prompt(shell, "delete_user_level nobody\r");
  EXPECT_TRUE(shell.shows("delete_user_level failed: result "));
  at_prompt(shell, "delete_user_level 'nobody\r");
  EXPECT_TRUE(shell.shows("expected a closing '"));
  at_prompt(shell, "get_olt_support_oam\r");
  EXPECT_TRUE(shell.shows("value = 1"));
  at_prompt(shell, "\x04");
  EXPECT_EQ(shell.end(), 0);
}

TEST_F(Shell, CompletesFromTheCatalog) {
  Terminal shell = start();
  at_prompt(shell, "get_olt_m\t");
  EXPECT_TRUE(shell.shows("get_olt_mac "));
  shell.type("\r");
  EXPECT_TRUE(shell.shows("mac = 02:00:00:00:00:01"));
  at_prompt(shell, "get_olt_\t");
  EXPECT_TRUE(shell.shows("get_olt_mac          get_olt_support_oam  get_olt_auth_mode\r\n"));
  shell.type("s\t\r");
  EXPECT_TRUE(shell.shows("value = 1"));
  at_prompt(shell, "set_system_loglevel v\t5\r");
  EXPECT_TRUE(shell.shows("set_system_loglevel value=5"));
  at_prompt(shell, "quit\r");
  EXPECT_EQ(shell.end(), 0);
}

TEST_F(Shell, RemembersLinesButNoSecrets) {
  {
    Terminal shell = start();
    at_prompt(shell, "add_user_level bob s3cret 7 8\r");
    at_prompt(shell, "get_user_levle bob s3cret\r");
    ASSERT_TRUE(shell.shows("did you mean get_user_level?"));
    at_prompt(shell, "get_olt_support_oam\r");
    ASSERT_TRUE(shell.shows("value = 1"));
    at_prompt(shell, "exit\r");
    ASSERT_EQ(shell.end(), 0);
  }
  std::string remembered = read_file(history());
  EXPECT_TRUE(holds(remembered, "add_user_level")) << remembered;
  EXPECT_FALSE(holds(remembered, "s3cret")) << remembered;
  struct stat status {};
  ASSERT_EQ(stat(history().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);

  Terminal shell = start();
  at_prompt(shell, "\x10\r");
  EXPECT_TRUE(shell.shows("value = 1"));
  at_prompt(shell, "exit\r");
  EXPECT_EQ(shell.end(), 0);
}

TEST_F(Shell, AsksForAMissingPasswordWithoutEcho) {
  Terminal shell = start();
  at_prompt(shell, "add_user_level name=bob level_a=3 level_b=4\r");
  ASSERT_TRUE(shell.shows("password: "));
  shell.type("s3cret\r");
  at_prompt(shell, "modify_user_level user_name=bob user_password=- level_a=5\r");
  ASSERT_TRUE(shell.shows("user_password: "));
  shell.type("other\r");
  ASSERT_TRUE(shell.shows("Send it? [y/N] "));
  shell.type("y\r");
  at_prompt(shell, "exit\r");
  EXPECT_EQ(shell.end(), 0);
  EXPECT_FALSE(holds(shell.transcript(), "s3cret")) << shell.transcript();
  EXPECT_FALSE(holds(shell.transcript(), "other")) << shell.transcript();
  EXPECT_EQ(oltctl({"get_user_level", "bob", "other"}).output, "level_a = 5\nlevel_b = 4\n");
}

TEST_F(Shell, OneCommandAsksOnATerminal) {
  Terminal asked = start({"--trace", "add_user_level", "bob", "-", "1", "2"});
  ASSERT_TRUE(asked.shows("password: "));
  asked.type("s3cret\r");
  EXPECT_EQ(asked.end(), 0);
  EXPECT_FALSE(holds(asked.transcript(), "s3cret")) << asked.transcript();
  EXPECT_EQ(oltctl({"get_user_level", "bob", "s3cret"}).status, 0);
}

TEST_F(Shell, InterruptedDropsTheLineAndTerminatedKeepsTheState) {
  Terminal shell = start();
  at_prompt(shell, "add_user_level name=bob password=pw level_a=3 level_b=4\r");
  at_prompt(shell, "get_olt_ma\x03");
  at_prompt(shell, "get_olt_support_oam\r");
  EXPECT_TRUE(shell.shows("value = 1"));
  ASSERT_TRUE(shell.shows("oltctl embedded> "));
  ASSERT_EQ(kill(shell.pid(), SIGTERM), 0);
  EXPECT_EQ(shell.end(), 0);
  EXPECT_EQ(oltctl({"get_user_level", "bob", "pw"}).output, "level_a = 3\nlevel_b = 4\n");
}

TEST_F(Shell, GreetsWithTheBox) {
  Terminal shell = start();
  EXPECT_TRUE(shell.shows("oltctl 0.1.0 with the embedded box, whose state is kept in " +
                          folder_.path() + "/oltmgmt/embedded\r\n"))
      << shell.transcript();
  at_prompt(shell, "exit\r");
  EXPECT_EQ(shell.end(), 0);
}

TEST_F(Shell, WarnsWhenTheBoxIsAway) {
  Terminal shell = start({"--box", folder_ / "site-3", "shell"});
  EXPECT_TRUE(shell.shows("oltctl: the box in " + (folder_ / "site-3") +
                          " is away: No such file or directory; expected a box that was started "
                          "with 'oltbox --run-dir " +
                          (folder_ / "site-3") + "', or --box embedded\r\n"))
      << shell.transcript();
  ASSERT_TRUE(shell.shows("oltctl site-3> "));
  shell.type("exit\r");
  EXPECT_EQ(shell.end(), 0);
}

/// Ctrl-C while the box does not answer; then the next call.
void expect_interruptible(Terminal &shell, const std::string &prompt) {
  auto begin = std::chrono::steady_clock::now();
  ASSERT_TRUE(shell.shows(prompt)) << shell.transcript();
  shell.type("fault add type=get_olt_mac action=silence count=1\r");
  ASSERT_TRUE(shell.shows("id = 1"));
  ASSERT_TRUE(shell.shows(prompt));
  shell.type("get_olt_mac\r");
  ASSERT_TRUE(shell.shows("get_olt_mac\r\n"));
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  shell.type("\x03");
  EXPECT_TRUE(shell.shows("get_olt_mac: interrupted\r\n")) << shell.transcript();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(8));
  ASSERT_TRUE(shell.shows(prompt));
  shell.type("get_olt_mac\r");
  EXPECT_TRUE(shell.shows("mac = 02:00:00:00:00:01")) << shell.transcript();
  ASSERT_TRUE(shell.shows(prompt));
  shell.type("exit\r");
  EXPECT_EQ(shell.end(), 0);
}

TEST_F(Shell, InterruptedCallEndsAndTheNextOneWorks) {
  Terminal shell = start();
  expect_interruptible(shell, "oltctl embedded> ");
}

TEST_F(Shell, InterruptedCallOfARunningBoxEnds) {
  Terminal box({OLTBOX, "--run-dir", folder_ / "lab", "--state-dir", folder_ / "state"},
               private_environment(folder_));
  ASSERT_TRUE(box.shows("serving modules")) << box.transcript();
  Terminal shell = start({"--box", folder_ / "lab", "shell"});
  expect_interruptible(shell, "oltctl lab> ");
}

TEST_F(Shell, RecallsAMistypedLineButDoesNotKeepIt) {
  Terminal shell = start();
  at_prompt(shell, "get_user_levle bob s3cret\r");
  ASSERT_TRUE(shell.shows("did you mean get_user_level?"));
  at_prompt(shell, "\x1b[A\r");
  EXPECT_TRUE(shell.shows("did you mean get_user_level?")) << shell.transcript();
  at_prompt(shell, "delete_user_level 'bob s3cret\r");
  ASSERT_TRUE(shell.shows("expected a closing '"));
  at_prompt(shell, "\x1b[A'\r");
  EXPECT_TRUE(shell.shows("delete_user_level failed: ")) << shell.transcript();
  at_prompt(shell, "get_user_levle bob s3cret\r");
  at_prompt(shell, "exit\r");
  EXPECT_EQ(shell.end(), 0);
  std::string remembered = read_file(history());
  EXPECT_FALSE(holds(remembered, "levle")) << remembered;
}

TEST_F(Shell, CompletesValuesAndPathsInColumns) {
  folder_.write("site-a.txt", "");
  folder_.write("site-b.txt", "");
  Terminal shell = start();
  at_prompt(shell, "set_system_loglevel value=\t");
  EXPECT_TRUE(
      shell.shows("\r\nemergency  critical   warning    info\r\n"
                  "alert      error      notice     debug\r\n"))
      << shell.transcript();
  shell.type(
      "\x15"
      "fault add action=s\t");
  EXPECT_TRUE(shell.shows("\r\nstatus   silence\r\n")) << shell.transcript();
  shell.type(
      "\x15"
      "add_authallowed_mac 1/1 entries=@" +
      folder_.path() + "/si\t\t");
  EXPECT_TRUE(shell.shows("\r\nsite-a.txt  site-b.txt\r\n")) << shell.transcript();
  shell.type(
      "\x15"
      "exit\r");
  EXPECT_EQ(shell.end(), 0);
}

TEST_F(Shell, QuestionMarkShowsWhatMayComeNext) {
  Terminal shell = start({"shell"}, {"PAGER=cat"});
  at_prompt(shell, "?");
  EXPECT_TRUE(shell.shows("exit, quit\r\n  Ends the shell")) << shell.transcript();
  shell.type("get_vlan?");
  EXPECT_TRUE(shell.shows("  get_vlan_all                              Lists all VLANs\r\n"))
      << shell.transcript();
  shell.type(
      "\x15"
      "get_port_link_speed ?");
  EXPECT_TRUE(shell.shows("get_port_link_speed slot port\r\n")) << shell.transcript();
  shell.type(
      "\x15"
      "add_user_level bob why? 1 2\r");
  at_prompt(shell, "get_user_level bob why?\r");
  EXPECT_TRUE(shell.shows("level_a = 1\r\n")) << shell.transcript();
  at_prompt(shell, "help exit\r");
  EXPECT_TRUE(shell.shows("exit, quit\r\n")) << shell.transcript();
  at_prompt(shell, "exit\r");
  EXPECT_EQ(shell.end(), 0);
}

TEST_F(Shell, ShowsLongOutputInThePager) {
  Terminal shell = start({"shell"}, {"PAGER=sed s/^/paged:/"});
  at_prompt(shell, "help\r");
  EXPECT_TRUE(shell.shows("\r\npaged:list [WORD]\r\n")) << shell.transcript();
  at_prompt(shell, "get_olt_mac\r");
  EXPECT_TRUE(shell.shows("get_olt_mac\r\nmac = ")) << shell.transcript();
  at_prompt(shell, "exit\r");
  EXPECT_EQ(shell.end(), 0);
}

TEST_F(Shell, ShowsLongOutputWithoutAPagerThatDoesNotStart) {
  Terminal shell = start({"shell"}, {"PAGER=/no/such/pager"});
  at_prompt(shell, "help\r");
  EXPECT_TRUE(shell.shows("\r\nlist [WORD]\r\n")) << shell.transcript();
  at_prompt(shell, "exit\r");
  EXPECT_EQ(shell.end(), 0);
}

TEST_F(Shell, TakesUtf8InAnyLocale) {
  Terminal shell = start({"shell"}, {"LC_ALL=C"});
  at_prompt(shell, "oltctl add_user_level Zo\xC3\xAB pw 3 4\r");
  at_prompt(shell, "exit\r");
  EXPECT_EQ(shell.end(), 0);
  EXPECT_EQ(oltctl({"get_user_level", "Zo\xC3\xAB", "pw"}).output, "level_a = 3\nlevel_b = 4\n");
}

TEST_F(Shell, IsNamedToASecondOltctl) {
  Terminal shell = start();
  ASSERT_TRUE(shell.shows("oltctl embedded> "));
  Finished second = oltctl({"get_olt_mac"});
  EXPECT_EQ(second.status, 1);
  EXPECT_EQ(second.errors, "oltctl: process " + std::to_string(shell.pid()) +
                               " (oltctl) uses the embedded box; expected it to end first, or a "
                               "running oltbox for both (--box DIR)\n");
  shell.type("exit\r");
  EXPECT_EQ(shell.end(), 0);
}

TEST_F(Shell, NeedsATerminal) {
  Finished wrong = oltctl({"shell"});
  EXPECT_EQ(wrong.status, 2);
  EXPECT_EQ(wrong.errors,
            "shell: standard input is not a terminal; expected one, or -f - to run commands from "
            "standard input\n");
}

}  // namespace

}  // namespace olt::test
