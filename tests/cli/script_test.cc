// oltctl -f: one command per line.

#include <gtest/gtest.h>

#include <string>

#include "tests/cli/program.h"

namespace olt::test {

namespace {

TEST(Script, RunsACommandALine) {
  Oltctl oltctl;
  std::string path = oltctl.folder().write("script",
                                           "# two users\n"
                                           "\n"
                                           "add_user_level 'first user' pw 1 2  # with a blank\n"
                                           "get_user_level \"first user\" pw\n"
                                           "fault list\n");
  Finished done = oltctl({"-f", path});
  EXPECT_EQ(done.status, 0) << done.errors;
  EXPECT_EQ(done.output, "level_a = 1\nlevel_b = 2\nfaults: none\n");
  EXPECT_EQ(done.errors, "");
}

TEST(Script, StopsAtTheFirstFailureAndKeepsWhatWasDone) {
  Oltctl oltctl;
  std::string path = oltctl.folder().write("script",
                                           "add_user_level kept pw 3 4\n"
                                           "fault add type=get_olt_mac status=9 count=1\n"
                                           "get_olt_mac\n"
                                           "add_user_level lost pw 5 6\n");
  Finished failed = oltctl({"-f", path});
  EXPECT_EQ(failed.status, 1);
  EXPECT_EQ(failed.output, "id = 1\n");
  EXPECT_EQ(failed.errors, path +
                               ":3: get_olt_mac failed: result 9 (0x00000009): status 9 (oltbox: "
                               "out of order)\n");
  EXPECT_EQ(oltctl({"get_user_level", "kept", "pw"}).output, "level_a = 3\nlevel_b = 4\n");
  EXPECT_EQ(oltctl({"get_user_level", "lost", "pw"}).status, 1);
}

TEST(Script, SaysWhereALineIsWrong) {
  Oltctl oltctl;
  Finished wrong = oltctl({"-f", "-"}, "get_olt_support_oam\nset_system_loglevel high\n");
  EXPECT_EQ(wrong.status, 2);
  EXPECT_EQ(wrong.errors,
            "standard input:2: set_system_loglevel: value: 'high' given; expected emergency, "
            "alert, critical, error, warning, notice, info, debug, or a number\n");
  Finished open = oltctl({"-f", "-"}, "delete_user_level 'x\n");
  EXPECT_EQ(open.status, 2);
  EXPECT_EQ(open.errors, "standard input:1: the line ends too early; expected a closing '\n");
}

TEST(Script, ALastLineNeedsNoNewline) {
  Oltctl oltctl;
  EXPECT_EQ(oltctl({"-f", "-"}, "get_olt_support_oam").output, "value = 1\n");
  EXPECT_EQ(oltctl({"-f", "-"}, "").status, 0);
}

TEST(Script, WritesJsonLines) {
  Oltctl oltctl;
  EXPECT_EQ(oltctl({"--json", "-f", "-"}, "save_system_config\nget_card_updatestatus\n").output,
            R"({"version":1,"operation":"save_system_config","result":0,"failed":false,)"
            R"("transport":null,"status":0,"outputs":{},"listing":null})"
            "\n"
            R"({"version":1,"operation":"get_card_updatestatus","result":0,"failed":false,)"
            R"("transport":null,"status":0,"outputs":{"value":"idle"},"listing":null})"
            "\n");
}

TEST(Script, MustBeReadable) {
  Oltctl oltctl;
  std::string missing = oltctl.folder().path() + "/none";
  Finished wrong = oltctl({"-f", missing});
  EXPECT_EQ(wrong.status, 2);
  EXPECT_EQ(wrong.errors, "oltctl: cannot read the script " + missing +
                              ": No such file or directory; expected a file with a command a "
                              "line\n");
  EXPECT_EQ(oltctl({"-f", oltctl.folder().path()}).errors,
            "oltctl: cannot read the script " + oltctl.folder().path() +
                ": Is a directory; expected a file with a command a line\n");
}

TEST(Script, ExcludesAnOperation) {
  Oltctl oltctl;
  Finished wrong = oltctl({"-f", "x", "get_olt_mac"});
  EXPECT_EQ(wrong.status, 2);
  EXPECT_EQ(wrong.errors, "oltctl: both -f x and an operation are given; expected one of them\n");
}

TEST(Script, MayHaveAByteOrderMarkAndTheProgramsName) {
  Oltctl oltctl;
  EXPECT_EQ(oltctl({"-f", "-"},
                   "\xEF\xBB\xBF"
                   "get_olt_support_oam\noltctl get_olt_mac\n")
                .output,
            "value = 1\nmac = 02:00:00:00:00:01\n");
  Finished option = oltctl({"-f", "-"}, "oltctl --json get_olt_mac\n");
  EXPECT_EQ(option.status, 2);
  EXPECT_EQ(option.errors,
            "standard input:1: oltctl: --json is an option; expected it where oltctl is started, "
            "and a command here\n");
}

TEST(Script, KeepsGoingAndCountsFailures) {
  Oltctl oltctl;
  Finished failed = oltctl({"--keep-going", "-f", "-"},
                           "delete_user_level nobody\n"
                           "# a comment\n"
                           "get_olt_support_oam\n"
                           "set_system_loglevel 'high\n");
  EXPECT_EQ(failed.status, 1);
  EXPECT_EQ(failed.output, "value = 1\n");
  EXPECT_EQ(failed.errors,
            "standard input:1: delete_user_level failed: result 4 (0x00000004): status 4 (oltbox: "
            "not found)\n"
            "standard input:4: the line ends too early; expected a closing '\n"
            "standard input: 2 of 3 commands failed\n");
  Finished done = oltctl({"--keep-going", "-f", "-"}, "get_olt_support_oam\n");
  EXPECT_EQ(done.status, 0);
  EXPECT_EQ(done.errors, "");
}

TEST(Script, EchoesCommandsWithoutSecrets) {
  Oltctl oltctl;
  Finished done = oltctl({"--echo", "-f", "-"},
                         "add_user_level 'first user' s3cret 1 2  # a comment\n"
                         "get_olt_support_oam\n"
                         "add_authallowed_loid 1/1 'entries=loid=a password=s3cret'\n");
  EXPECT_EQ(done.status, 0) << done.errors;
  EXPECT_EQ(done.output, "value = 1\n");
  EXPECT_EQ(done.errors,
            "+ add_user_level 'first user' - 1 2\n"
            "+ get_olt_support_oam\n"
            "+ add_authallowed_loid ...\n");
}

TEST(Script, AloneTakesItsOptions) {
  Oltctl oltctl;
  EXPECT_EQ(oltctl({"--echo", "get_olt_mac"}).errors,
            "oltctl: --echo is for scripts; expected -f FILE beside it\n");
  Finished wrong = oltctl({"--keep-going", "get_olt_mac"});
  EXPECT_EQ(wrong.status, 2);
  EXPECT_EQ(wrong.errors, "oltctl: --keep-going is for scripts; expected -f FILE beside it\n");
}

/// Runs a script that sets something and then waits for a line; sends it the signal there.
Finished signalled(const Oltctl &oltctl, const std::string &signal) {
  std::string command = "mkfifo lines; " OLTCTL
                        " -f lines >output & exec 3>lines;"
                        " printf 'add_user_level kept pw 3 4\\nget_user_level kept pw\\n' >&3;"
                        " until grep -q level_b output; do kill -0 $! || break; sleep 0.02; done;"
                        " kill -s " +
                        signal + " $!; wait $!";
  return run({"bash", "-c", "cd " + oltctl.folder().path() + "; " + command},
             private_environment(oltctl.folder()));
}

TEST(Script, ASignalKeepsWhatWasSetAndEndsIt) {
  struct {
    const char *signal;
    int status;
  } const signals[] = {{"TERM", 143}, {"HUP", 129}};
  for (const auto &one : signals) {
    Oltctl oltctl;
    Finished ended = signalled(oltctl, one.signal);
    EXPECT_EQ(ended.status, one.status) << ended.errors;
    EXPECT_EQ(oltctl({"get_user_level", "kept", "pw"}).output, "level_a = 3\nlevel_b = 4\n");
  }
}

}  // namespace

}  // namespace olt::test
