// Each operation that sends, called as in the samples of oltctl.
#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <span>
#include <string>
#include <vector>

#include "catalog/catalog.h"
#include "cli/call/call.h"
#include "cli/input/argument_parser.h"
#include "cli/text/words.h"
#include "tests/mock/reports.h"

namespace olt::test {

namespace {

using Words = std::vector<std::string>;

/// The calls of operations that send, as words.
std::vector<Words> sample_calls() {
  std::vector<Words> calls;
  std::ifstream lines(SAMPLES);
  for (std::string line; std::getline(lines, line);) {
    std::string call = nlohmann::json::parse(line)["call"];
    Words words = cli::split_words(call);
    if (catalog::find(words[0])->address.sends()) calls.push_back(words);
  }
  return calls;
}

/// The arguments of a call as NAME=VALUE, also where a sample gives them by position.
Words named(const Words &call) {
  Words words(call.begin() + 1, call.end());
  for (size_t i = 0; i < words.size(); ++i) {
    if (words[i].find('=') != std::string::npos) continue;
    words[i] = std::string(catalog::find(call[0])->arguments()[i].name) + '=' + words[i];
  }
  return words;
}

int32_t make(const Words &words) {
  cli::Call call(*catalog::find(words[0]));
  cli::read_arguments(call, std::span(words).subspan(1));
  return call.make();
}

/// Texts that may be other values of the same field.
std::vector<std::string> other_values(const std::string &value) {
  std::vector<std::string> others = {"0", "1", "77", "02:00:00:00:00:77", "0/0/0"};
  for (size_t i = value.size(); i > 0; --i) {
    std::string other = value;
    char &digit = other[i - 1];
    if (digit < '0' || digit > '8') continue;
    ++digit;
    others.push_back(other);
  }
  return others;
}

class MockSweep : public MockTest {
 protected:
  /// Whether the call meets the expectation; nothing else may be reported. False where the words
  /// cannot be read.
  bool meets(const Words &call, const Words &words) {
    olt_mock_expect(call[0].c_str(), cli::join_words(words).c_str());
    if (!taken().empty()) return false;
    make(call);
    return finish().empty();
  }

  /// Whether another value of one word is read, and the call reported as another one.
  bool is_compared(const Words &call, Words words, size_t place) {
    size_t equals = words[place].find('=');
    std::string name = words[place].substr(0, equals + 1);
    std::vector<std::string> others = other_values(words[place].substr(equals + 1));
    return std::any_of(others.begin(), others.end(), [&](const std::string &other) {
      words[place] = name + other;
      if (olt_mock_expect(call[0].c_str(), cli::join_words(words).c_str()) == nullptr) {
        taken();
        return false;
      }
      make(call);
      std::string report = finish();
      return report.starts_with("unexpected call: " + call[0]) &&
             report.find(" sent; expected ") != std::string::npos;
    });
  }
};

TEST_F(MockSweep, MeetsEachCallByTheWordsOfItsSample) {
  std::vector<Words> calls = sample_calls();
  EXPECT_EQ(calls.size(), 176U);
  for (const Words &call : calls) {
    SCOPED_TRACE(cli::join_words(call));
    olt_mock_expect(call[0].c_str(), cli::join_words(named(call)).c_str());
    EXPECT_EQ(make(call), 0);
    EXPECT_EQ(finish(), "");
  }
}

TEST_F(MockSweep, ComparesEachWord) {
  for (const Words &call : sample_calls()) {
    Words words = named(call);
    for (size_t i = 0; i < words.size(); ++i) {
      EXPECT_TRUE(is_compared(call, words, i)) << cli::join_words(call) << ": " << words[i];
    }
  }
}

TEST_F(MockSweep, ReportsCallsInWordsThatCanBeExpected) {
  for (const Words &call : sample_calls()) {
    SCOPED_TRACE(cli::join_words(call));
    make(call);
    std::string report = finish();
    std::string beginning = "unexpected call: " + call[0];
    std::string end = "\n  no call is expected\n";
    ASSERT_TRUE(report.starts_with(beginning) && report.ends_with(end)) << report;
    report = report.substr(beginning.size(), report.size() - beginning.size() - end.size());
    EXPECT_TRUE(meets(call, cli::split_words(report))) << report;
  }
}

/// Each name with values of every wrong kind: they are read, or refused in one line that begins
/// with the operation.
TEST_F(MockSweep, RefusesBadValuesInOneLine) {
  constexpr const char *kValues[] = {"",          "{",
                                     "}",         "{}",
                                     "{=}",       "[",
                                     "[1",        "\"",
                                     "'{a=b}'",   "99999999999",
                                     "-",         ":",
                                     "0:",        ":1",
                                     ",",         "1-",
                                     "-1",        "1;2",
                                     "none",      "\\x1",
                                     "1/2/3/4/5", "a=b;c=d",
                                     "@",         "0x",
                                     "1:2:",      "'a b'",
                                     "1.2.3.4.5", "4294967295:00",
                                     "00000",     "01020304050607"};
  size_t refused = 0;
  for (const Words &call : sample_calls()) {
    const catalog::Operation &operation = *catalog::find(call[0]);
    for (const catalog::Argument &argument : operation.arguments()) {
      for (const char *value : kValues) {
        std::string word = std::string(argument.name) + '=' + value;
        SCOPED_TRACE(call[0] + ' ' + word);
        olt_mock_expect(call[0].c_str(), word.c_str());
        std::string report = taken();
        olt_mock_expectation *expectation = olt_mock_expect(call[0].c_str(), "");
        olt_mock_answer(expectation, word.c_str());
        std::string report_of_answer = taken();
        for (const std::string &line : {report, report_of_answer}) {
          if (line.empty()) continue;
          EXPECT_TRUE(line.starts_with(call[0] + ": ")) << line;
          EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1) << line;
          ++refused;
        }
        finish();
      }
    }
  }
  EXPECT_GT(refused, 1000U);
}

}  // namespace

}  // namespace olt::test
