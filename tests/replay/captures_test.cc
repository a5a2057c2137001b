// Captures that lack something, that are no captures, and wrong command lines.
#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <set>

#include "base/bad_input.h"
#include "replay/index.h"
#include "tests/replay/support.h"
#include "tests/support/page.h"
#include "tests/support/program.h"

namespace olt::test {

namespace {

Finished refused(const std::vector<std::string> &arguments) {
  std::vector<std::string> command = {OLTREPLAY};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return run(command);
}

TEST_F(ReplayTest, SaysWhatIsLeftOut) {
  RecordedExchange cut = {.type = 11, .request = Bytes(8), .request_length = 200'000};
  std::string capture = capture_of(
      std::vector<RecordedExchange>{{.reply = hex("aa"), .exchange = 4, .lost = 3}, cut, cut});
  capture += request_packet({.exchange = 9});
  capture += answer_packet({.exchange = 10});
  serve_file(capture);
  EXPECT_EQ(errors(),
            "oltreplay: 2 exchanges left out: a record was cut when it was recorded\n"
            "oltreplay: 2 exchanges left out: the request or the answer is not in the capture\n"
            "oltreplay: 3 exchanges lost when recording\n");
  EXPECT_EQ(ask(12), reply(hex("aa")));
  EXPECT_EQ(ask(11, Bytes(8)), status(kNotRecorded));
}

TEST_F(ReplayTest, ServesWhatIsBeforeABlockThatIsCut) {
  std::string capture = capture_of(std::vector<RecordedExchange>{{.type = 1, .reply = hex("aa")},
                                                                 {.type = 2, .reply = hex("bb")}});
  capture.resize(capture.size() - 5);
  serve_file(capture);
  EXPECT_EQ(errors(),
            "oltreplay: " + box_.folder() +
                "/capture: at byte 388: cut short; expected 5 more bytes; serving what is "
                "before\n");
  EXPECT_EQ(ask(1), reply(hex("aa")));
  EXPECT_EQ(ask(2), status(kNotRecorded));
}

/// What is before the block that is cut is served; without an exchange there, nothing is.
TEST(ReplayedCaptures, CutAtEveryByte) {
  const RecordedExchange one = {.reply = hex("aa"), .exchange = 1};
  const RecordedExchange other = {.reply = hex("bb"), .exchange = 2};
  const std::string first = capture_of(std::vector{one});
  const std::string whole = capture_of(std::vector{one, other});
  const Folder folder;
  for (size_t left = 0; left < whole.size(); ++left) {
    std::string path = folder.write("cut", whole.substr(0, left));
    std::optional<size_t> block = cut_block(whole, left);
    std::string reason = ": nothing to serve; expected an exchange that reached a module";
    if (block) reason = fmt::format(": at byte {}: cut short; expected ", *block);
    if (left > 0 && left < 4)
      reason = ": at byte 0: no pcapng section; expected a capture of libolttrace";
    try {
      replay::Index index({path}, replay::Order::kInTurn);
      EXPECT_GE(left, first.size());
      EXPECT_EQ(index.size(), 1U);
      EXPECT_EQ(index.notes().size(), left == first.size() ? 0U : 1U) << left;
      if (!block) continue;
      EXPECT_TRUE(index.notes()[0].starts_with(path + reason)) << index.notes()[0];
      EXPECT_TRUE(index.notes()[0].ends_with("; serving what is before")) << index.notes()[0];
    } catch (const BadInput &error) {
      EXPECT_LT(left, first.size());
      EXPECT_TRUE(std::string(error.what()).starts_with(path + reason)) << error.what();
    }
  }
}

TEST_F(ReplayTest, PutsSeveralCapturesInTheOrderOfTime) {
  std::string first = box_.folder() + "/first";
  write_file(first, capture_of(std::vector<RecordedExchange>{{.reply = hex("03"), .time = 3000},
                                                             {.reply = hex("05"), .time = 5000}}));
  serve({{.reply = hex("02"), .time = 2000}, {.reply = hex("04"), .time = 4000}}, {first});
  for (const char *expected : {"02", "03", "04", "05", "05"})
    EXPECT_EQ(ask(12), reply(hex(expected)));
}

TEST_F(ReplayTest, RefusesWhatIsNoCaptureInOneLine) {
  std::string whole = capture_of(std::vector<RecordedExchange>{{.reply = hex("aa")}});
  std::string damaged = whole;
  damaged[60 + 40] = 'X';
  std::string broken_block = whole;
  broken_block[60 + 4] = 3;
  std::string never_sent = capture_of(std::vector<RecordedExchange>{{.result = 0x00020000}});
  const std::pair<std::string, std::string> cases[] = {
      {"", "nothing to serve; expected an exchange that reached a module"},
      {"#!/bin/sh\n", "at byte 0: no pcapng section; expected a capture of libolttrace"},
      {damaged, "at byte 60: no header before the record; expected OLT1 and 64 bytes in all"},
      {broken_block,
       "at byte 60: a block of 3 bytes; expected a multiple of 4 from 12 to 16777216"},
      {capture_head(), "nothing to serve; expected an exchange that reached a module"},
      {never_sent, "nothing to serve; expected an exchange that reached a module"},
  };
  const Folder folder;
  std::string good = folder.write("good", whole);
  for (const auto &[content, reason] : cases) {
    std::string path = folder.write("bad", content);
    Finished alone = refused({"--run-dir", folder / "run", path});
    EXPECT_EQ(alone.status, 2);
    EXPECT_EQ(alone.errors.substr(alone.errors.find('\n') + 1), "");
    EXPECT_EQ(alone.errors, "oltreplay: " + path + ": " + reason + "\n");
    EXPECT_EQ(alone.output, "");
    EXPECT_FALSE(std::filesystem::exists(folder / "run"));
    if (!reason.starts_with("at byte")) continue;
    Finished together = refused({"--run-dir", folder / "run", good, path});
    EXPECT_EQ(together.errors, alone.errors);
    EXPECT_EQ(together.status, 2);
  }
}

TEST_F(ReplayTest, RefusesFilesThatCannotBeReadAgain) {
  const Folder folder;
  EXPECT_EQ(refused({folder / "missing"}).errors,
            "oltreplay: " + folder / "missing" + ": cannot be read: No such file or directory\n");
  for (const std::string &path : {std::string("/dev/zero"), folder.path()}) {
    EXPECT_EQ(refused({path}).errors,
              "oltreplay: " + path + ": is no regular file; expected a capture of libolttrace\n");
  }
}

TEST_F(ReplayTest, WrongUsageIsOneLine) {
  const Folder folder;
  std::string capture =
      folder.write("capture", capture_of(std::vector<RecordedExchange>{{.reply = hex("aa")}}));
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{}, "FILE is required"},
      {{"--strict", "--last", capture},
       "--strict: given with --match or --last; expected one of them"},
      {{"--match", "--strict", capture},
       "--strict: given with --match or --last; expected one of them"},
      {{"--timing", "x0", capture},
       "--timing: 'x0' given; expected fast, real or xN with N from 1 to 1000000"},
      {{"--timing", "slow", capture},
       "--timing: 'slow' given; expected fast, real or xN with N from 1 to 1000000"},
      {{"--timing", "x1000001", capture},
       "--timing: 'x1000001' given; expected fast, real or xN with N from 1 to 1000000"},
      {{"--files", folder / "missing", capture},
       "--files " + folder / "missing" + ": is no directory; expected that of OLT_CAPTURE_FILES"},
      {{"--layout", "acne", capture},
       "layout: there is no layout 'acne'; expected box, none, or a file as ./NAME.json"},
      {{"--group", "no such group", "--files", folder.path(), capture},
       "--group no such group: is no group; expected the name or number of one"},
  };
  for (const auto &[arguments, line] : cases) {
    Finished finished = run(
        [&arguments = arguments] {
          std::vector<std::string> command = {OLTREPLAY};
          command.insert(command.end(), arguments.begin(), arguments.end());
          return command;
        }(),
        {"XDG_CONFIG_HOME=" + folder.path(), "OLT_RUN_DIR=" + folder / "run"});
    EXPECT_EQ(finished.errors, "oltreplay: " + line + "\n");
    EXPECT_EQ(finished.status, 2);
    EXPECT_EQ(finished.output, "");
  }
}

/// The words that begin with "--", without what follows them.
std::set<std::string> options_in(const std::string &text) {
  std::set<std::string> options;
  for (size_t at = text.find("--"); at != std::string::npos; at = text.find("--", at + 2))
    options.insert(text.substr(at, text.find_first_not_of("-abcdefghijklmnopqrstuvwxyz", at) - at));
  return options;
}

TEST_F(ReplayTest, ItsOptionsAreDocumented) {
  std::string documented;
  for (const Cells &row : table_in_page("replay.md", "| Option | Meaning | Default |"))
    documented += row[0] + '\n';
  std::set<std::string> options = options_in(documented);
  EXPECT_EQ(options.size(), 10U);
  options.insert({"--help", "--version"});
  EXPECT_EQ(options_in(refused({"--help"}).output), options);
}

TEST_F(ReplayTest, HasHelpAndAVersion) {
  Finished help = refused({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_TRUE(holds(help.output, "Usage: oltreplay [OPTIONS] FILE...\n")) << help.output;
  Finished version = refused({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_TRUE(version.output.starts_with("oltreplay 0.")) << version.output;
}

}  // namespace

}  // namespace olt::test
