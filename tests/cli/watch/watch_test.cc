// oltctl watch: its rounds as JSON and on a terminal.

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <csignal>
#include <sstream>
#include <string>
#include <vector>

#include "catalog/row.h"
#include "cli/watch/frame.h"
#include "cli/watch/rates.h"
#include "tests/cli/program.h"
#include "tests/cli/terminal.h"
#include "tests/support/bytes.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;
using nlohmann::ordered_json;

std::vector<ordered_json> objects_in(const std::string &output) {
  std::vector<ordered_json> objects;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) objects.push_back(ordered_json::parse(line));
  return objects;
}

TEST(Watch, PipedItPrintsAnObjectForEachCall) {
  Oltctl oltctl;
  Finished watched = oltctl({"watch", "get_olt_mac", "+", "get_port_enable", "slot=1", "port=2",
                             "--every", "0", "--count=2"});
  EXPECT_EQ(watched.status, 0) << watched.errors;
  std::vector<ordered_json> objects = objects_in(watched.output);
  ASSERT_EQ(objects.size(), 4U);
  EXPECT_EQ(objects[0]["operation"], "get_olt_mac");
  EXPECT_EQ(objects[0]["outputs"].dump(), R"({"mac":"02:00:00:00:00:01"})");
  EXPECT_EQ(objects[0]["round"], 1);
  EXPECT_EQ(objects[0]["changed"], nullptr);
  EXPECT_EQ(objects[0]["error"], nullptr);
  EXPECT_EQ(objects[0]["rates"].dump(), "{}");
  EXPECT_EQ(objects[0]["time"].get<std::string>().size(), 27U);
  EXPECT_EQ(objects[1]["operation"], "get_port_enable");
  EXPECT_EQ(objects[3]["operation"], "get_port_enable");
  EXPECT_EQ(objects[3]["outputs"].dump(), R"({"port_enable":"on"})");
  EXPECT_EQ(objects[3]["round"], 2);
  EXPECT_EQ(objects[3]["changed"], false);
}

TEST(Watch, AFailureDoesNotEndItUnlessItIsTheLast) {
  Oltctl oltctl;
  ASSERT_EQ(oltctl({"fault", "add", "type=get_olt_mac", "status=4", "from=2", "count=1"}).status,
            0);
  std::vector<std::string> command = {"--json", "watch", "get_olt_mac", "--every", "0", "--count"};
  command.emplace_back("3");
  Finished watched = oltctl(command);
  EXPECT_EQ(watched.status, 0) << watched.errors;
  EXPECT_EQ(watched.errors, "");
  std::vector<ordered_json> objects = objects_in(watched.output);
  ASSERT_EQ(objects.size(), 3U);
  std::string error = "get_olt_mac failed: result 4 (0x00000004): status 4 (oltbox: not found)";
  EXPECT_EQ(objects[1]["failed"], true);
  EXPECT_EQ(objects[1]["error"], error);
  EXPECT_EQ(objects[1]["changed"], true);
  EXPECT_EQ(objects[2]["error"], nullptr);
  EXPECT_EQ(objects[2]["changed"], true);
  ASSERT_EQ(oltctl({"fault", "add", "type=get_olt_mac", "status=4", "from=2", "count=1"}).status,
            0);
  command.back() = "2";
  watched = oltctl(command);
  EXPECT_EQ(watched.status, 1);
  EXPECT_EQ(watched.errors, error + "\n");
}

TEST(Watch, CountersOfAListingHaveRates) {
  Oltctl oltctl;
  Finished watched = oltctl(
      {"watch", "get_statics_file_by_interface", "1", "1", "--every", "1.1", "--count", "2"});
  EXPECT_EQ(watched.status, 0) << watched.errors;
  std::vector<ordered_json> objects = objects_in(watched.output);
  ASSERT_EQ(objects.size(), 2U);
  EXPECT_EQ(objects[1]["changed"], true);
  ordered_json rates = objects[1]["rates"];
  EXPECT_EQ(rates.size(), 14U);
  EXPECT_EQ(rates["Discarded frames, Sent"], 0.0);
  auto octets = [](const ordered_json &object) {
    return std::stod(object["listing"]["sections"][1]["rows"][0]["Received"].get<std::string>());
  };
  double gained = octets(objects[1]) - octets(objects[0]);
  EXPECT_GT(gained, 0);
  EXPECT_NEAR(rates["Octets, Received"].get<double>(), gained / 1.1, gained / 4);
}

TEST(Watch, WrongUsageIsOneLine) {
  Oltctl oltctl;
  auto error = [&oltctl](const std::vector<std::string> &arguments) {
    Finished refused = oltctl(arguments);
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.output, "");
    return refused.errors;
  };
  EXPECT_EQ(error({"watch"}), "watch: no operation is given; expected one, or several with +\n");
  EXPECT_EQ(error({"watch", "get_olt_mac", "+"}),
            "watch: no operation is given; expected one, or several with +\n");
  EXPECT_EQ(error({"watch", "get_olt_mca"}),
            "oltctl: there is no operation 'get_olt_mca'; did you mean get_olt_mac?\n");
  EXPECT_EQ(error({"watch", "counters"}), "watch: counters is a command; expected an operation\n");
  EXPECT_EQ(error({"watch", "add_vlan_list", "1"}),
            "watch: add_vlan_list has no result; expected an operation that reads\n");
  EXPECT_EQ(error({"watch", "set_ont_linkdba", "1/2/3"}),
            "watch: set_ont_linkdba changes the box; expected an operation that reads\n");
  EXPECT_EQ(
      error({"watch", "do_handle_epon_updatestream", "00"}),
      "watch: do_handle_epon_updatestream changes the box; expected an operation that reads\n");
  for (const char *bad : {"", "-1", "1e3", "1.", ".5", "0.0001", "86400.1", "nan"}) {
    EXPECT_EQ(error({"watch", "get_olt_mac", std::string("--every=") + bad}),
              std::string("watch: --every: '") + bad +
                  "' given; expected seconds from 0 to 86400, as 2 or 0.5\n");
  }
  EXPECT_EQ(error({"watch", "get_olt_mac", "--count", "0"}),
            "watch: --count: '0' given; expected a number from 1 to 4294967295\n");
  EXPECT_EQ(error({"watch", "get_olt_mac", "--often"}),
            "watch: there is no option '--often'; expected --every or --count\n");
  EXPECT_EQ(error({"--format", "csv", "watch", "get_olt_mac"}),
            "watch: it has no CSV form; expected --format text or json\n");
}

/// Kilobytes that a watch of so many rounds needed.
long memory_of(const Oltctl &oltctl, const std::string &rounds) {
  return peak_memory(
      {OLTCTL, "watch", "get_port_enable", "1", "1", "--every", "0", "--count", rounds},
      private_environment(oltctl.folder()));
}

/// get_port_enable never releases its reply, and the platform keeps at least 256 bytes of each.
TEST(Watch, AnOperationThatKeepsItsRepliesDoesNotMakeItGrow) {
  Oltctl oltctl;
  long few = memory_of(oltctl, "100");
  long many = memory_of(oltctl, "20000");
  EXPECT_LT(many - few, 1000);
}

// On a terminal.

std::vector<std::string> xterm(const Folder &folder) {
  std::vector<std::string> environment = private_environment(folder);
  environment.emplace_back("TERM=xterm");
  return environment;
}

TEST(Watch, EachRoundReplacesTheLastAndMarksWhatChanged) {
  Oltctl oltctl;
  ASSERT_EQ(
      oltctl({"fault", "add", "type=get_port_link_state", "status=4", "from=2", "count=1"}).status,
      0);
  Terminal terminal(
      {OLTCTL, "watch", "get_port_link_state", "1", "1", "--every", "0.1", "--count", "2"},
      xterm(oltctl.folder()), {24, 60, 0, 0});
  EXPECT_TRUE(terminal.shows("\x1b[2J\x1b[H  every 0.1 s  round 1  20"));
  EXPECT_TRUE(
      terminal.shows("\x1b[K\r\n"
                     "\x1b[K\r\n"
                     "  get_port_link_state 1 1\x1b[K\r\n"
                     "  link_state = up\x1b[K\r\n"
                     "\x1b[J\x1b[H  every 0.1 s  round 2  20"));
  EXPECT_TRUE(
      terminal.shows("\x1b[K\r\n"
                     "\x1b[K\r\n"
                     "  get_port_link_state 1 1\x1b[K\r\n"
                     "* \x1b[7mget_port_link_state\x1b[0m \x1b[7mfailed:\x1b[0m "));
  EXPECT_EQ(terminal.end(), 1);
}

TEST(Watch, CtrlCEndsItAndKeepsTheState) {
  Oltctl oltctl;
  ASSERT_EQ(oltctl({"set_port_enable", "1", "2", "0"}).status, 0);
  Terminal terminal({OLTCTL, "watch", "get_port_enable", "1", "2"}, xterm(oltctl.folder()),
                    {24, 60, 0, 0});
  EXPECT_TRUE(terminal.shows("  port_enable = off\x1b[K\r\n\x1b[J"));
  terminal.type("\x03");
  EXPECT_EQ(terminal.end(), 128 + SIGINT);
  EXPECT_TRUE(terminal.transcript().ends_with("\x1b[0m\r\n")) << terminal.transcript();
  EXPECT_EQ(oltctl({"get_port_enable", "1", "2"}).output, "port_enable = off\n");
}

TEST(Watch, InTheShellCtrlCEndsTheWatchAlone) {
  Oltctl oltctl;
  Terminal shell({OLTCTL, "shell"}, private_environment(oltctl.folder()));
  ASSERT_TRUE(shell.shows("oltctl embedded> "));
  shell.type("watch get_port_enable 1 2 --every 60\r");
  EXPECT_TRUE(shell.shows("  port_enable = on\r\n"));
  shell.type("\x03");
  ASSERT_TRUE(shell.shows("oltctl embedded> "));
  shell.type("get_olt_mac\r");
  EXPECT_TRUE(shell.shows("mac = 02:00:00:00:00:01\r\n"));
  ASSERT_TRUE(shell.shows("oltctl embedded> "));
  shell.type("exit\r");
  EXPECT_EQ(shell.end(), 0);
}

TEST(Watch, WhatDoesNotFitIsCut) {
  Oltctl oltctl;
  Terminal terminal({OLTCTL, "watch", "get_statics_file_by_interface", "1", "1", "--count", "1"},
                    xterm(oltctl.folder()), {8, 14, 0, 0});
  EXPECT_TRUE(
      terminal.shows("\x1b[2J\x1b[H  every 2 s  r\x1b[K\r\n"
                     "\x1b[K\r\n"
                     "  get_statics_\x1b[K\r\n"
                     "  Statistics o\x1b[K\r\n"
                     "  ============\x1b[K\r\n"
                     "\x1b[K\r\n"
                     "  (14 more lines below)\x1b[K\r\n\x1b[J"))
      << terminal.transcript();
  EXPECT_EQ(terminal.end(), 0);
}

// Parts.

std::string marked(const std::vector<cli::FrameLine> &lines) {
  std::string text;
  for (const cli::FrameLine &line : lines) {
    text += line.changed ? "*" : " ";
    for (const cli::FrameLine::Part &part : line.parts) {
      text += part.changed ? "[" + part.text + "]" : part.text;
    }
    text += '\n';
  }
  return text;
}

TEST(WatchChanges, AreWordsOfLinesThatTheLastTextDidNotHave) {
  cli::TextChanges changes;
  EXPECT_EQ(marked(changes.next("a  1  x\nb  2  x\n\n")), " a  1  x\n b  2  x\n \n");
  EXPECT_EQ(marked(changes.next("new one\nb  2  x\na    7  x\n")),
            "*[new] [one]\n"
            " b  2  x\n"
            "*a    [7]  x\n");
  EXPECT_EQ(marked(changes.next("b  2  x  more\n")), "*b  2  x  [more]\n");
}

TEST(WatchRates, AreThoseOfCountersThatWereThereAndDidNotGoDown) {
  cli::Rates rates;
  cli::Rates::Moment start(10s);
  EXPECT_TRUE(rates.next({{"a", 100}, {"b", 5}}, start).empty());
  std::vector<cli::Rate> found = rates.next({{"a", 350}, {"b", 4}, {"c", 9}}, start + 500ms);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].name, "a");
  EXPECT_DOUBLE_EQ(found[0].per_second, 500.0);
  found = rates.next({{"b", 4}, {"c", 13}}, start + 1500ms);
  ASSERT_EQ(found.size(), 2U);
  EXPECT_DOUBLE_EQ(found[0].per_second, 0.0);
  EXPECT_DOUBLE_EQ(found[1].per_second, 4.0);
}

int32_t reads_progress(olt_auth_row *progress) {
  progress->words[0] = 77;
  progress->words[1] = 3;
  return 0;
}
constexpr catalog::Field kProgress[] = {
    catalog::in_unit("bytes", catalog::Field{"received", 0, 4, catalog::FieldKind::kNumber}),
    catalog::in_unit("s", catalog::Field{"seconds", 4, 4, catalog::FieldKind::kNumber}),
    {"rest", 8, catalog::Field::kToTheEnd, catalog::FieldKind::kBytes}};
constexpr auto kReadsProgress =
    OLT_OPERATION(reads_progress, 1, "", {catalog::laid_out("progress", kProgress, "progress")});

TEST(WatchRates, NumbersOfBytesAreCounters) {
  cli::Call call(kReadsProgress);
  cli::Result result = cli::result_of(call, call.make(), {});
  std::vector<cli::Counter> counters = cli::counters_of(result);
  ASSERT_EQ(counters.size(), 1U);
  EXPECT_EQ(counters[0].name, "received");
  EXPECT_EQ(counters[0].value, 77U);
}

}  // namespace

}  // namespace olt::test
