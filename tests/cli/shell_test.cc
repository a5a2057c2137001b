// oltctl shell, and passwords, on a terminal.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <string>
#include <vector>

#include "tests/cli/program.h"
#include "tests/cli/terminal.h"
#include "tests/support/bytes.h"

namespace olt::test {

namespace {

/// What is typed before the prompt would still be treated by the terminal, not by the editor.
void at_prompt(Terminal &shell, const std::string &keys) {
  ASSERT_TRUE(shell.shows("oltctl> ")) << shell.transcript();
  shell.type(keys);
}

class Shell : public testing::Test {
 protected:
  Terminal start(const std::vector<std::string> &arguments = {"shell"}) const {
    std::vector<std::string> command = {OLTCTL};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return {command, private_environment(folder_)};
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
  EXPECT_TRUE(shell.shows("get_olt_mac\r\nget_olt_support_oam\r\n"));
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
  ASSERT_TRUE(shell.shows("oltctl> "));
  ASSERT_EQ(kill(shell.pid(), SIGTERM), 0);
  EXPECT_EQ(shell.end(), 0);
  EXPECT_EQ(oltctl({"get_user_level", "bob", "pw"}).output, "level_a = 3\nlevel_b = 4\n");
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
