// A front end against the box, recorded; then the same front end against the recording.
#include <nlohmann/json.hpp>

#include <csignal>
#include <fstream>
#include <set>
#include <sstream>

#include "catalog/catalog.h"
#include "tests/end_to_end/running_box.h"
#include "tests/support/bytes.h"

namespace olt::test {

namespace {

using Lines = std::vector<std::string>;

std::string operation_in(const std::string &command) {
  return command.substr(0, command.find(' '));
}

/// The samples of oltctl's operations that send, with the commands that they need before.
Lines sample_commands() {
  Lines commands;
  std::ifstream samples(SAMPLES);
  for (std::string line; std::getline(samples, line);) {
    nlohmann::json sample = nlohmann::json::parse(line);
    std::string call = sample["call"];
    if (!catalog::find(operation_in(call))->address.sends()) continue;
    for (const auto &before : sample["before"]) commands.push_back(before);
    commands.push_back(call);
  }
  return commands;
}

std::string joined(const Lines &lines) {
  std::string text;
  for (const std::string &line : lines) text += line + '\n';
  return text;
}

/// Records oltctl on a box, with its listings, and replays it in the same run directory.
class Session : public testing::TestWithParam<const char *> {
 protected:
  Finished oltctl(const std::string &script, const Lines &environment = {}) const {
    return run({OLTCTL, "--box", box_.run_dir(), "--json", "--keep-going", "-f", "-"}, environment,
               script);
  }

  Finished recorded(const std::string &script) {
    return oltctl(script, {"LD_PRELOAD=" LIBOLTTRACE, "OLT_CAPTURE=" + captures_ / "%p",
                           "OLT_CAPTURE_SECRETS=1", "OLT_CAPTURE_FILES=" + kept_.path(),
                           "OLT_RUN_DIR=/nowhere"});  // --box comes before it
  }

  Lines captures() const {
    Lines paths;
    for (const auto &entry : std::filesystem::directory_iterator(captures_.path()))
      paths.push_back(entry.path());
    return paths;
  }

  /// Ends what serves, and removes the listings that it leaves.
  void replay() {
    if (box_.pid() > 0) box_.end(SIGTERM);
    std::filesystem::remove_all(box_.run_dir());
    Lines options = {GetParam(), "--files", kept_.path()};
    for (const std::string &capture : captures()) options.push_back(capture);
    box_.start_program(OLTREPLAY, options);
  }

  /// Like the first time, in every byte.
  static void expect_same(const Finished &again, const Finished &first) {
    EXPECT_EQ(again.output, first.output);
    EXPECT_EQ(again.errors, first.errors);
    EXPECT_EQ(again.status, first.status);
  }

  /// What compare sends is what was recorded: replies and listings are the same.
  void expect_equal_replay() {
    replay();
    ASSERT_EQ(captures().size(), 1U);
    Finished compared = run({OLTCTL, "--box", box_.run_dir(), "--json", "compare", captures()[0],
                             "--all", "--files", kept_.path()});
    EXPECT_EQ(compared.errors, "");
    EXPECT_EQ(compared.status, 0);
    EXPECT_EQ(box_.errors(), "");
    nlohmann::json summary = nlohmann::json::parse(compared.output);  // one line
    EXPECT_EQ(summary["by_operation"].size(), 176U);
    EXPECT_EQ(summary["skipped"].dump(), R"({"changing":0,"cut":0,"incomplete":0,"masked":0})");
    EXPECT_GE(summary["listings"]["compared"], 25);
    EXPECT_EQ(summary["listings"]["missing"], 0);
  }

  RunningBox box_;
  Folder captures_;
  Folder kept_;
};

TEST_P(Session, OfAllOperationsIsTheSameAgain) {
  Lines commands = sample_commands();
  std::set<std::string> operations;
  for (const std::string &command : commands) operations.insert(operation_in(command));
  EXPECT_LE(176U, operations.size());
  // The box fails some of them, one by a dropped connection.
  commands.insert(commands.begin(), {"get_olt_mac", "get_user_level nobody nothing"});
  box_.start({"--fault", "type=12 drop count=1", "--fault", "type=18 status=9 from=1 count=1"});
  Finished first = recorded(joined(commands));
  EXPECT_EQ(first.status, 1) << first.errors;
  replay();
  expect_same(oltctl(joined(commands)), first);
  EXPECT_EQ(box_.errors(), "");
  EXPECT_EQ(box_.end(SIGTERM), 0);
  std::istringstream summary(box_.output());
  std::string line;
  for (int i = 0; i < 2; ++i) std::getline(summary, line);
  EXPECT_TRUE(line.ends_with("; 0 not recorded, 0 out of order")) << line;
  std::getline(summary, line);
  size_t served = 0;
  size_t all = 0;
  ASSERT_EQ(std::sscanf(line.c_str(), "oltreplay: %zu of %zu", &served, &all), 2) << line;
  EXPECT_EQ(served, all);
  EXPECT_LE(176U, all);
  expect_equal_replay();
}

TEST_P(Session, OfSeveralProcessesIsTheSameAgain) {
  const Lines scripts = {
      "add_user_level name=one password=x level_a=1 level_b=2\nget_user_level one x\n",
      "add_user_level name=two password=y level_a=3 level_b=4\nget_user_level two y\n",
      "get_olt_mac\nget_user_level one x\nget_user_level three z\n"};
  box_.start();
  std::vector<Finished> first;
  for (const std::string &script : scripts) first.push_back(recorded(script));
  replay();
  for (int round = 0; round < 2; ++round) {
    for (size_t i = 0; i < scripts.size(); ++i) expect_same(oltctl(scripts[i]), first[i]);
  }
  EXPECT_EQ(box_.errors(), "");
}

INSTANTIATE_TEST_SUITE_P(Replayed, Session, testing::Values("--match", "--strict"),
                         [](const auto &one) { return std::string(one.param).substr(2); });

}  // namespace

}  // namespace olt::test
