// What oltctl --json has printed for each operation since version 1. A sample is a line with the
// operation, the commands before it, the command, and the result; each runs on a fresh box.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "catalog/catalog.h"
#include "tests/cli/program.h"

namespace olt::test {

namespace {

using nlohmann::ordered_json;

std::vector<ordered_json> samples() {
  std::vector<ordered_json> all;
  std::istringstream lines(read_file(SAMPLES));
  for (std::string line; std::getline(lines, line);) all.push_back(ordered_json::parse(line));
  return all;
}

std::string replaced(const std::string &text, const char *pattern, const char *by) {
  return std::regex_replace(text, std::regex(pattern), by);
}

/// Listings with readings that follow the clock or the machine.
bool has_readings(const std::string &operation) {
  static const std::set<std::string> kOperations = {
      "get_linklist_file_byinteface", "get_statics_file_by_interface", "get_system_basicinfofile",
      "getonu_ont_opticalfile", "show_memory_info"};
  return kOperations.contains(operation);
}

/// Without what differs from one run to the next.
ordered_json masked(const std::string &line) {
  std::string timeless = replaced(line, R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ)", "TIME");
  timeless = replaced(timeless, R"("seconds":\d+)", R"("seconds":0)");
  ordered_json result = ordered_json::parse(timeless, nullptr, false);
  if (!result.is_object() || !has_readings(result["operation"])) return result;
  std::string text = result["listing"]["text"];
  text = replaced(replaced(text, "\\d[\\d.:]*", "N"), " +", " ");
  result["listing"]["text"] = replaced(text, "-+", "-");
  result["listing"]["sections"] =
      ordered_json::parse(replaced(result["listing"]["sections"].dump(), "\\d[\\d.:]*", "N"));
  return result;
}

/// The last line that the sample's commands print.
ordered_json result_of(const ordered_json &sample) {
  std::string script;
  for (const ordered_json &line : sample["before"]) script += line.get<std::string>() + '\n';
  script += sample["call"].get<std::string>() + '\n';
  Finished finished = Oltctl()({"--fresh", "--json", "-f", "-"}, script);
  EXPECT_EQ(finished.status, 0) << finished.errors;
  std::istringstream lines(finished.output);
  std::string last;
  for (std::string line; std::getline(lines, line);) last = line;
  return masked(last);
}

TEST(Samples, StandForEachOperationInOrder) {
  std::vector<std::string> names;
  for (const ordered_json &sample : samples()) names.push_back(sample["operation"]);
  EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
  std::set<std::string> operations;
  for (const catalog::Family &family : catalog::families()) {
    for (const catalog::Operation &operation : family.operations) operations.insert(operation.name);
  }
  EXPECT_EQ(names, std::vector<std::string>(operations.begin(), operations.end()));
}

/// With OLT_RENEW_SAMPLES writes the results instead of comparing them.
TEST(Samples, AreWhatOltctlPrints) {
  bool renews = std::getenv("OLT_RENEW_SAMPLES") != nullptr;
  std::string renewed;
  for (ordered_json &sample : samples()) {
    ordered_json result = result_of(sample);
    ASSERT_TRUE(result.is_object()) << sample["call"];
    EXPECT_EQ(result["operation"], sample["operation"]);
    EXPECT_EQ(result["failed"], false) << sample["call"];
    if (const ordered_json &listing = result["listing"]; !listing.is_null()) {
      EXPECT_TRUE(listing["sections"].is_array()) << "each listing of the box is read";
    }
    if (!renews) {
      EXPECT_EQ(result.dump(), sample["result"].dump())
          << "if the change is meant, ./dev renew records it";
    }
    sample["result"] = result;
    renewed += sample.dump() + '\n';
  }
  if (renews && !HasFailure()) write_file(SAMPLES, renewed);
}

}  // namespace

}  // namespace olt::test
