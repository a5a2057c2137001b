// What oltctl shows and asks at a terminal before a call.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/cli/program.h"
#include "tests/cli/terminal.h"
#include "tests/support/bytes.h"

namespace olt::test {

namespace {

class Confirmation : public testing::Test {
 protected:
  Terminal start(const std::vector<std::string> &arguments,
                 const std::vector<std::string> &more = {"NO_COLOR=1"}) const {
    std::vector<std::string> command = {OLTCTL};
    command.insert(command.end(), arguments.begin(), arguments.end());
    std::vector<std::string> environment = private_environment(oltctl_.folder());
    environment.insert(environment.end(), more.begin(), more.end());
    return {command, environment};
  }

  std::string priority() const {
    std::string bridge = oltctl_({"get_rstp_config"}).output;
    size_t begin = bridge.find("priority = ") + 11;
    return bridge.substr(begin, bridge.find('\n', begin) - begin);
  }

  Oltctl oltctl_;
};

TEST_F(Confirmation, ShowsTheChangeAndAsks) {
  Terminal asked = start({"set_rstp_config", "priority=4096", "max_age=19", "hold_count=6"});
  ASSERT_TRUE(
      asked.shows("set_rstp_config changes:\r\n"
                  "  priority  32768 → 4096\r\n"
                  "  max_age   20 s → 19 s\r\n"
                  "Send it? [y/N] "))
      << asked.transcript();
  asked.type("y\r");
  EXPECT_EQ(asked.end(), 0) << asked.transcript();
  EXPECT_EQ(priority(), "4096");
}

TEST_F(Confirmation, SendsNothingWithoutAYes) {
  for (const char *answer : {"\r", "n\r", "yep\r", "\x04"}) {
    Terminal asked = start({"set_rstp_config", "priority=4096"});
    ASSERT_TRUE(asked.shows("Send it? [y/N] ")) << asked.transcript();
    asked.type(answer);
    EXPECT_TRUE(
        asked.shows("set_rstp_config: not confirmed, nothing was done; expected y, or --yes\r\n"))
        << asked.transcript();
    EXPECT_EQ(asked.end(), 1);
  }
  EXPECT_EQ(priority(), "32768");
}

TEST_F(Confirmation, YesShowsTheChangeAndDoesNotAsk) {
  Terminal shown = start({"--yes", "set_rstp_config", "priority=4096"});
  EXPECT_TRUE(shown.shows("  priority  32768 → 4096\r\n")) << shown.transcript();
  EXPECT_EQ(shown.end(), 0);
  EXPECT_FALSE(holds(shown.transcript(), "[y/N]")) << shown.transcript();
  EXPECT_EQ(priority(), "4096");

  Terminal same = start({"set_rstp_config", "priority=4096"});
  EXPECT_TRUE(same.shows("set_rstp_config changes nothing\r\n")) << same.transcript();
  EXPECT_EQ(same.end(), 0);
}

TEST_F(Confirmation, ZeroNeitherShowsNorAsks) {
  Terminal plain = start({"--zero", "set_igmpproxy_config", "config=1,60,10,2,1"});
  EXPECT_EQ(plain.end(), 0);
  EXPECT_EQ(plain.transcript(), "");
}

TEST_F(Confirmation, ColoursOnlyATerminal) {
  Terminal coloured = start({"--yes", "set_rstp_config", "priority=4096"}, {});
  EXPECT_TRUE(coloured.shows("  priority  \x1b[31m32768\x1b[0m → \x1b[32m4096\x1b[0m\r\n"))
      << coloured.transcript();
  EXPECT_EQ(coloured.end(), 0);
  EXPECT_EQ(oltctl_({"set_rstp_config", "priority=8192"}).errors, "");
}

TEST_F(Confirmation, AsksForASecretThatCannotBeRead) {
  ASSERT_EQ(oltctl_({"add_user_level", "operator", "", "1", "2"}).status, 0);
  Terminal asked = start({"modify_user_level", "user_name=operator", "level_a=3"});
  ASSERT_TRUE(asked.shows("user_password: ")) << asked.transcript();
  asked.type("s3cret\r");
  ASSERT_TRUE(
      asked.shows("modify_user_level changes:\r\n"
                  "  user_password  ******** → ********\r\n"
                  "  level_a        1 → 3\r\n"
                  "Send it? [y/N] "))
      << asked.transcript();
  asked.type("yes\r");
  EXPECT_EQ(asked.end(), 0);
  EXPECT_FALSE(holds(asked.transcript(), "s3cret")) << asked.transcript();
  EXPECT_EQ(oltctl_({"get_user_level", "operator", "s3cret"}).output, "level_a = 3\nlevel_b = 2\n");
}

TEST_F(Confirmation, AsksBeforeWhatCannotBeTakenBack) {
  ASSERT_EQ(oltctl_({"add_user_level", "operator", "secret", "1", "2"}).status, 0);
  Terminal no = start({"default_system_config"});
  ASSERT_TRUE(no.shows("default_system_config: Restores the default configuration. Go on? [y/N] "))
      << no.transcript();
  no.type("n\r");
  EXPECT_TRUE(
      no.shows("default_system_config: not confirmed, nothing was done; expected y, or "
               "--yes\r\n"))
      << no.transcript();
  EXPECT_EQ(no.end(), 1);
  EXPECT_EQ(oltctl_({"get_user_level", "operator", "secret"}).status, 0);

  Terminal yes = start({"default_system_config", "--yes"});
  EXPECT_EQ(yes.end(), 0);
  EXPECT_EQ(yes.transcript(), "");
  EXPECT_EQ(oltctl_({"get_user_level", "operator", "secret"}).status, 1);

  ASSERT_EQ(oltctl_({"add_user_level", "operator", "secret", "1", "2"}).status, 0);
  EXPECT_EQ(oltctl_({"default_system_config"}).status, 0);  // nobody is there to ask
  EXPECT_EQ(oltctl_({"get_user_level", "operator", "secret"}).status, 1);
}

TEST_F(Confirmation, ScriptsAreNotAsked) {
  std::string script =
      oltctl_.folder().write("script", "set_rstp_config priority=4096\ndo_reboot_system\n");
  Terminal run = start({"-f", script});
  EXPECT_EQ(run.end(), 0) << run.transcript();
  EXPECT_EQ(run.transcript(), "");
}

TEST_F(Confirmation, TheShellAsksAndGoesOn) {
  Terminal shell = start({"shell"});
  ASSERT_TRUE(shell.shows("oltctl embedded> ")) << shell.transcript();
  shell.type("set_rstp_config priority=4096\r");
  ASSERT_TRUE(shell.shows("Send it? [y/N] ")) << shell.transcript();
  shell.type("n\r");
  ASSERT_TRUE(shell.shows("not confirmed")) << shell.transcript();
  ASSERT_TRUE(shell.shows("oltctl embedded> ")) << shell.transcript();
  shell.type("set_rstp_config --yes priority=8192\r");
  ASSERT_TRUE(shell.shows("  priority  32768 → 8192\r\n")) << shell.transcript();
  ASSERT_TRUE(shell.shows("oltctl embedded> ")) << shell.transcript();
  shell.type("exit\r");
  EXPECT_EQ(shell.end(), 0);
  EXPECT_EQ(priority(), "8192");
}

}  // namespace

}  // namespace olt::test
