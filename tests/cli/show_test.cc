// oltctl show, on captures that libolttrace would write.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>
#include <string>
#include <vector>

#include "tests/cli/program.h"
#include "tests/support/bytes.h"
#include "tests/support/capture_bytes.h"

namespace olt::test {
namespace {

using nlohmann::json;

std::string bytes(std::string_view digits) {
  return characters(hex(digits));
}

std::string block(uint32_t type, const std::string &body) {
  std::string length = characters(word(static_cast<uint32_t>(body.size()) + 12));
  return characters(word(type)) + length + body + length;
}

struct Message {
  uint32_t module, type, exchange;
  uint64_t nanoseconds;
  std::string record;
  uint32_t result = 0;
  uint16_t status = 0;
  uint32_t lost = 0;
};

std::string packet(char kind, const Message &message) {
  auto low = static_cast<uint32_t>(message.nanoseconds);
  auto high = static_cast<uint32_t>(message.nanoseconds >> 32U);
  std::string record = message.record;
  auto length = static_cast<uint32_t>(record.size());
  record.resize((record.size() + 3) / 4 * 4);
  auto text_of = [](uint32_t value) { return characters(word(value)); };
  std::string body = text_of(0) + text_of(high) + text_of(low) + text_of(76 + length) +
                     text_of(76 + length) + bytes("000c00046f6c740000000000") + "OLT1" + kind +
                     bytes("004000") + text_of(1000) + text_of(1234) + text_of(1235) +
                     text_of(message.exchange) + text_of(message.module) + text_of(message.type) +
                     text_of(10) + text_of(length) + text_of(message.result) +
                     text_of(message.status) + text_of(5'000'000) + text_of(0) +
                     text_of(message.lost) + text_of(0) + record;
  return block(6, body);
}

std::string request(const Message &message) {
  return packet(1, message);
}

std::string answer(const Message &message) {
  return packet(2, message);
}

const std::string kHead = block(0x0A0D0D0A, bytes("4d3c2b1a01000000ffffffffffffffff") +
                                                bytes("040006006f6c7463746c000000000000")) +
                          block(1, bytes("fc00000000000000090001000900000000000000"));

constexpr uint64_t kNewYear = 1'767'225'600'000'000'000;  // 2026-01-01T00:00:00Z

/// get_olt_mac; add_user_level that is refused, with a password; a request without an answer.
const std::string kCapture = [] {
  std::string user(80, '\0');
  user.replace(0, 1, "\1");
  user.replace(8, 3, "bob");
  user.replace(40, 6, "secret");
  return kHead + request({2, 12, 1, kNewYear, ""}) +
         answer({2, 12, 1, kNewYear + 5'000'000, bytes("020000000001")}) +
         request({2, 10, 2, kNewYear + 1'000'000'000, user, 0, 0, 3}) +
         answer({2, 10, 2, kNewYear + 1'005'000'000, "", 0, 4}) +
         request({18, 999, 3, kNewYear + 2'000'000'000, "ab"});
}();

class Show : public testing::Test {
 protected:
  Finished show(std::vector<std::string> words, const std::string &capture = kCapture,
                bool as_json = false) {
    std::vector<std::string> command;
    if (as_json) command.emplace_back("--json");
    command.insert(command.end(), {"show", oltctl_.folder().write("capture", capture)});
    command.insert(command.end(), words.begin(), words.end());
    return oltctl_(command);
  }

  std::string path() const { return oltctl_.folder() / "capture"; }

 private:
  Oltctl oltctl_;
};

TEST_F(Show, PrintsEveryExchange) {
  Finished shown = show({});
  EXPECT_EQ(0, shown.status) << shown.errors;
  EXPECT_TRUE(holds(shown.output,
                    "2026-01-01T00:00:00.000000000Z oltctl 1234/1235 #1 get_olt_mac\n"
                    "> type 12 to module 2, 0 bytes\n"
                    "< status 0, 6 bytes after 5.000 ms\n"
                    "  0000  02 00 00 00 00 01                                ......\n"
                    "  mac=02:00:00:00:00:01\n"
                    "\n"
                    "3 exchanges lost\n"
                    "2026-01-01T00:00:01.000000000Z oltctl 1234/1235 #2 add_user_level\n"))
      << shown.output;
  EXPECT_TRUE(holds(shown.output, "user_name=bob user_password=**")) << shown.output;
  EXPECT_TRUE(holds(shown.output, "< status 4, 0 bytes after 5.000 ms\n")) << shown.output;
  EXPECT_TRUE(holds(shown.output,
                    "#3 an unknown operation\n"
                    "> type 999 to module 18, 2 bytes\n"
                    "  0000  61 62                                            ab\n"
                    "< not in the capture\n"))
      << shown.output;
  EXPECT_FALSE(holds(shown.output, "secret"));
}

TEST_F(Show, PrintsAnObjectForEachExchange) {
  Finished shown = show({"operation=get_olt_mac"}, kCapture, true);
  EXPECT_EQ(0, shown.status) << shown.errors;
  EXPECT_EQ(json::parse(R"({"version": 1, "time": "2026-01-01T00:00:00.000000000Z",
    "program": "oltctl", "run": 1000, "process": 1234, "thread": 1235, "exchange": 1, "lost": 0,
    "module": 2, "message_type": 12, "operations": ["get_olt_mac"], "timeout": 10,
    "no_reply": false, "masked": false, "result": 0, "status": 0, "duration_ns": 5000000,
    "request": {"length": 0, "cut": false, "bytes": "", "fields": {}},
    "reply": {"length": 6, "cut": false, "bytes": "020000000001",
              "fields": {"mac": "02:00:00:00:00:01"}}})"),
            json::parse(shown.output));
  json unanswered = json::parse(show({"module=18"}, kCapture, true).output);
  EXPECT_EQ(json::array(), unanswered["operations"]);
  EXPECT_EQ(nullptr, unanswered["reply"]);
  EXPECT_EQ(nullptr, unanswered["status"]);
  std::string refused = show({"status=4"}, kCapture, true).output;
  EXPECT_EQ("********", json::parse(refused)["request"]["fields"]["user_password"]);
  EXPECT_FALSE(holds(refused, "736563726574")) << refused;
}

TEST_F(Show, PrintsOnlyWhatFits) {
  auto numbers = [this](std::vector<std::string> words) {
    std::string found;
    std::string output = show(std::move(words)).output;
    for (size_t at = output.find(" #"); at != std::string::npos; at = output.find(" #", at + 1))
      found += output[at + 2];
    return found;
  };
  EXPECT_EQ("123", numbers({}));
  EXPECT_EQ("1", numbers({"operation=get_olt_mac"}));
  EXPECT_EQ("12", numbers({"module=2"}));
  EXPECT_EQ("3", numbers({"module=18"}));
  EXPECT_EQ("1", numbers({"status=0"}));
  EXPECT_EQ("2", numbers({"status=4"}));
  EXPECT_EQ("23", numbers({"status=failed"}));
  EXPECT_EQ("2", numbers({"status=failed", "module=2"}));
  EXPECT_EQ("23", numbers({"from=2026-01-01T00:00:00.5Z"}));
  EXPECT_EQ("12", numbers({"to=2026-01-01T00:00:01Z"}));
  EXPECT_EQ("2", numbers({"from=2026-01-01T00:00:01Z", "to=2026-01-01T00:00:01.000000000Z"}));
  EXPECT_EQ("", numbers({"from=2027-01-01T00:00:00Z"}));
}

TEST_F(Show, RefusesWhatItCannotUse) {
  struct Case {
    std::string word;
    std::string line;
  };
  const Case cases[] = {
      {"modul=2",
       "show: 'modul=2' given; expected operation=VALUE, module=VALUE, status=VALUE, from=VALUE, "
       "to=VALUE\n"},
      {"operation=get_olt_mack",
       "show: operation: 'get_olt_mack' given; expected an operation that 'oltctl list' names\n"},
      {"module=two", "show: module: 'two' given; expected a number from 0 to 4294967295\n"},
      {"status=65536",
       "show: status: '65536' given; expected a number from 0 to 65535, or failed\n"},
      {"from=yesterday",
       "show: from: 'yesterday' given; expected a time such as 2026-01-31T23:59:59Z\n"},
      {"to=2026-01-31T23:59:59",
       "show: to: '2026-01-31T23:59:59' given; expected a time such as 2026-01-31T23:59:59Z\n"},
  };
  for (const Case &each : cases) {
    Finished shown = show({each.word});
    EXPECT_EQ(2, shown.status);
    EXPECT_EQ("", shown.output);
    EXPECT_EQ(each.line, shown.errors);
  }
  Oltctl oltctl;
  EXPECT_EQ("show: no file is given; expected a capture\n", oltctl({"show"}).errors);
}

TEST_F(Show, PrintsWhatComesBeforeTheDamage) {
  Finished shown = show({}, kCapture.substr(0, kCapture.size() - 1));
  EXPECT_EQ(1, shown.status);
  EXPECT_TRUE(holds(shown.output, "#2"));
  EXPECT_EQ(fmt::format("{}: at byte {}: cut short; expected 1 more byte\n", path(),
                        kCapture.size() - 112),
            shown.errors);
  shown = show({}, "no capture");
  EXPECT_EQ("", shown.output);
  EXPECT_EQ(path() + ": at byte 0: no pcapng section; expected a capture of libolttrace\n",
            shown.errors);
}

/// Where a block is cut, there is one line; exchanges before it are printed.
TEST_F(Show, CapturesCutAtEveryByte) {
  const size_t first = kCapture.find("OLT1\x02") - 40 + 116;  // the first answer ends there
  Folder folder;
  std::string script;
  std::vector<std::string> lines;
  for (size_t left = 0; left < kCapture.size(); ++left) {
    std::string cut = folder.write(std::to_string(left), kCapture.substr(0, left));
    script += "show " + cut + '\n';
    if (auto block = cut_block(kCapture, left))
      lines.push_back(fmt::format(": {}: at byte {}: ", cut, *block));
  }
  Finished shown = Oltctl()({"--keep-going", "-f", folder.write("all", script)});
  EXPECT_EQ(1, shown.status);
  std::istringstream errors(shown.errors);
  for (const std::string &line : lines) {
    std::string error;
    std::getline(errors, error);
    EXPECT_TRUE(holds(error, line)) << error << '\n' << line;
  }
  std::string end;
  std::getline(errors, end);
  EXPECT_EQ(
      fmt::format("{}: {} of {} commands failed", folder / "all", lines.size(), kCapture.size()),
      end);
  EXPECT_EQ(kCapture.size() - first, count_of("< status 0, 6 bytes", shown.output));
}

TEST_F(Show, AnswerWithoutRequest) {
  Finished shown = show({}, kHead + answer({2, 12, 9, kNewYear, bytes("020000000001")}));
  EXPECT_TRUE(holds(shown.output, "#9 get_olt_mac\n> not in the capture\n< status 0, 6 bytes"))
      << shown.output;
}

}  // namespace
}  // namespace olt::test
