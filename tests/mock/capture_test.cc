// Answers from captures.
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "capture/exchanges.h"
#include "catalog/catalog.h"
#include "oltmgmt.h"
#include "oltplatform.h"
#include "tests/mock/reports.h"
#include "tests/support/capture_bytes.h"
#include "tests/support/folder.h"
#include "tests/support/program.h"
#include "tests/support/wire_names.h"

namespace olt::test {

namespace {

constexpr int32_t kUnexpectedCall = 0x00ff0000;

/// What a call of the platform brings.
struct Brought {
  int32_t result = 0;
  uint16_t status = 0;
  std::string reply;

  bool operator==(const Brought &) const = default;
};

Brought ask(uint32_t type, uint32_t module, std::string asked, bool no_reply = false) {
  Brought brought;
  void *reply = nullptr;
  uint16_t length = 0;
  uint32_t handle = 0;
  brought.result =
      platmsg_syn_result(type, module, asked.data(), static_cast<uint32_t>(asked.size()), &reply,
                         &length, &handle, &brought.status, no_reply ? 1 : 0, 10);
  if (reply == nullptr) return brought;
  brought.reply.assign(static_cast<const char *>(reply), length);
  IPC_Free(handle);
  return brought;
}

std::string recorded(RecordedExchange one, const std::string &reply, uint32_t result = 0,
                     uint16_t status = 0) {
  one.reply = text(reply);
  one.result = result;
  one.status = status;
  return request_packet(one) + answer_packet(one);
}

/// With one number after the other.
RecordedExchange asked(uint32_t type, const std::string &request = "") {
  static uint32_t number = 0;
  return {.type = type, .request = text(request), .exchange = ++number};
}

std::string mac(int last) {
  return std::string("\2\0\0\0\0", 5) + static_cast<char>(last);
}

class MockCapture : public MockTest {
 protected:
  const char *capture(const std::string &exchanges) {
    path_ = folder_.write("capture", capture_head() + exchanges);
    return path_.c_str();
  }

  /// The last byte of the address that the library reads; -1 when it fails.
  static int read_mac() {
    olt_mac address{};
    return get_olt_mac(&address) == 0 ? address.bytes[5] : -1;
  }

  Folder folder_;
  std::string path_;
};

TEST_F(MockCapture, AnswersEqualRequestsInTurnThenAsTheLast) {
  olt_mock_replay(capture(
      recorded(asked(kGetOltMac), mac(1)) + recorded(asked(kSaveConfig), "", 0, kNotWritten) +
      recorded(asked(kGetOltMac), mac(2)) + recorded(asked(kGetOltMac), "", kTimedOut) +
      recorded(asked(kGetOltMac), mac(3))));
  olt_mac address{};
  EXPECT_EQ(read_mac(), 1);
  EXPECT_EQ(read_mac(), 2);
  EXPECT_EQ(get_olt_mac(&address), kTimedOut);
  EXPECT_EQ(save_system_config(), 8);
  EXPECT_EQ(read_mac(), 3);
  EXPECT_EQ(read_mac(), 3);
  EXPECT_EQ(finish(), "");
  EXPECT_EQ(read_mac(), -1);
  EXPECT_EQ(taken(),
            "unexpected call: get_olt_mac\n"
            "  no call is expected\n");
}

TEST_F(MockCapture, AnotherOneComesAfterIt) {
  olt_mock_replay(capture(recorded(asked(kGetOltMac), mac(1))));
  olt_mock_replay(capture(recorded(asked(kGetOltMac), mac(2))));
  EXPECT_EQ(read_mac(), 1);
  EXPECT_EQ(read_mac(), 2);
}

TEST_F(MockCapture, ExpectationsComeFirst) {
  olt_mock_replay(capture(recorded(asked(kGetOltMac), mac(1))));
  olt_mock_answer(olt_mock_expect("get_olt_mac", ""), "mac=02:00:00:00:00:09");
  EXPECT_EQ(read_mac(), 9);
  EXPECT_EQ(read_mac(), 1);
  EXPECT_EQ(finish(), "");
}

TEST_F(MockCapture, OtherRequestsAreUnexpected) {
  std::string port(80, '\0');
  port[0] = 1;
  port[4] = 3;
  olt_mock_replay(capture(recorded(asked(kGetLinkState, port), port)));
  uint32_t state = 7;
  EXPECT_EQ(get_port_link_state(1, 3, &state), 0);
  EXPECT_EQ(get_port_link_state(1, 4, &state), kUnexpectedCall);
  EXPECT_EQ(taken(),
            "unexpected call: get_port_link_state slot=1 port=4\n"
            "  no call is expected\n");
}

TEST_F(MockCapture, UninitializedBytesAreNotCompared) {
  std::string port(80, 'x');
  port.replace(0, 8, std::string("\1\0\0\0\3\0\0\0", 8));
  port.replace(60, 4, std::string("\1\0\0\0", 4));
  olt_mock_replay(capture(recorded(asked(kSetRstpState, port), "")));
  EXPECT_EQ(stp_set_port_rstp_state(1, 3, 1), 0);
  EXPECT_EQ(stp_set_port_rstp_state(1, 3, 0), kUnexpectedCall);
  EXPECT_NE(taken(), "");
}

TEST_F(MockCapture, MaskedSecretsEqualAny) {
  std::string user(80, '\0');
  user.replace(8, 3, "bob");
  user.replace(40, 32, std::string(32, '*'));
  RecordedExchange request = asked(kUserAccount, user);
  request.masked_request = true;
  request.masked_reply = true;
  std::string reply = user;
  reply[72] = 5;
  olt_mock_replay(capture(recorded(request, reply)));
  uint32_t level_a = 0;
  uint32_t level_b = 0;
  EXPECT_EQ(get_user_level("bob", "one password", &level_a, &level_b), 0);
  EXPECT_EQ(get_user_level("bob", "another", &level_a, &level_b), 0);
  EXPECT_EQ(level_a, 5U);
  EXPECT_EQ(get_user_level("eve", "another", &level_a, &level_b), kUnexpectedCall);
  EXPECT_NE(taken(), "");
}

TEST_F(MockCapture, KeptSecretsAreCompared) {
  std::string user(80, '\0');
  user.replace(8, 3, "bob");
  user.replace(40, 3, "one");
  olt_mock_replay(capture(recorded(asked(kUserAccount, user), user)));
  uint32_t level = 0;
  EXPECT_EQ(get_user_level("bob", "one", &level, &level), 0);
  EXPECT_EQ(get_user_level("bob", "two", &level, &level), kUnexpectedCall);
  EXPECT_NE(taken(), "");
}

TEST_F(MockCapture, RequestsOfNoOperationAreAnswered) {
  olt_mock_replay(capture(recorded(asked(999, "ab"), "xyz")));
  EXPECT_EQ(ask(999, kMainModule, "ab"), (Brought{0, 0, "xyz"}));
}

TEST_F(MockCapture, CutAndHalfExchangesAreLeftOut) {
  RecordedExchange cut = asked(kGetOltMac);
  cut.request_length = 200'000;
  std::string unusable = recorded(cut, mac(1)) + request_packet(asked(kGetOltMac)) +
                         answer_packet(asked(kGetOltMac)) +
                         recorded(asked(kGetOltMac), std::string(65'536, '\0'));
  olt_mock_replay(capture(unusable + recorded(asked(kGetOltMac), mac(3))));
  EXPECT_EQ(read_mac(), 3);
  finish();
  olt_mock_replay(capture(unusable));
  EXPECT_EQ(taken(), path_ + ": holds no whole exchange; expected at least one\n");
}

TEST_F(MockCapture, NothingOfADamagedOneIsAnswered) {
  std::string first = recorded(asked(kGetOltMac), mac(1));
  std::string second = recorded(asked(kGetOltMac), mac(2));
  olt_mock_replay(capture(first + second.substr(0, 100)));
  EXPECT_EQ(taken(), path_ + ": at byte " + std::to_string(capture_head().size() + first.size()) +
                         ": cut short; expected 8 more bytes\n");
  EXPECT_EQ(read_mac(), -1);
  EXPECT_NE(taken(), "");
  olt_mock_replay("/nowhere/capture");
  EXPECT_EQ(taken(), "/nowhere/capture: cannot be read: No such file or directory\n");
  olt_mock_replay(nullptr);
  EXPECT_EQ(taken(), ": cannot be read: No such file or directory\n");
  olt_mock_expectation *expectation = olt_mock_expect("get_olt_mac", "");
  olt_mock_answer_from_capture(expectation, capture(first + second.substr(0, 100)));
  EXPECT_EQ(taken(), path_ + ": at byte " + std::to_string(capture_head().size() + first.size()) +
                         ": cut short; expected 8 more bytes\n");
  EXPECT_EQ(read_mac(), 0);
}

/// Where a block is cut, and where no exchange is whole, there is one line and no answer.
TEST_F(MockCapture, CapturesCutAtEveryByte) {
  const std::string first = capture_head() + recorded(asked(kGetOltMac), mac(1));
  const std::string whole = first + recorded(asked(kGetOltMac), mac(2));
  for (size_t left = 0; left < whole.size(); ++left) {
    std::string cut = folder_.write("cut", whole.substr(0, left));
    olt_mock_replay(cut.c_str());
    std::optional<size_t> block = cut_block(whole, left);
    std::string report = taken();
    bool is_served = !block && left >= first.size();
    EXPECT_EQ(count_of("\n", report), is_served ? 0U : 1U) << left << ": " << report;
    const std::string place = block ? cut + ": at byte " + std::to_string(*block) + ": " : "";
    EXPECT_TRUE(report.starts_with(place)) << report;
    EXPECT_EQ(read_mac(), is_served ? 1 : -1) << left;
    EXPECT_EQ(taken().empty(), is_served) << left;
    olt_mock_finish();
  }
}

TEST_F(MockCapture, GivesAnExpectationItsReplies) {
  std::string exchanges = recorded(asked(kGetOltMac), mac(1)) + recorded(asked(kSaveConfig), "") +
                          recorded(asked(kGetOltMac), "", 0, kNotFound) +
                          recorded(asked(kGetOltMac), "", kTimedOut) +
                          recorded(asked(kGetOltMac), mac(2));
  olt_mock_expectation *expectation = olt_mock_expect("get_olt_mac", "");
  olt_mock_times(expectation, 4, 4);
  olt_mock_answer(expectation, "mac=02:00:00:00:00:07");
  olt_mock_answer_from_capture(expectation, capture(exchanges));
  EXPECT_EQ(read_mac(), 7);
  EXPECT_EQ(read_mac(), 1);
  EXPECT_EQ(read_mac(), 2);
  EXPECT_EQ(read_mac(), 2);
  EXPECT_EQ(finish(), "");

  olt_mock_answer_from_capture(olt_mock_expect("get_olt_support_oam", ""), path_.c_str());
  EXPECT_EQ(taken(),
            "get_olt_support_oam: " + path_ + ": holds no reply to it; expected at least one\n");
  olt_mock_answer_from_capture(olt_mock_expect("save_system_config", ""), path_.c_str());
  EXPECT_EQ(taken(), "save_system_config: has no reply; expected no answer\n");
  olt_mock_answer_from_capture(nullptr, path_.c_str());
  finish();
}

TEST_F(MockCapture, ThreadsShareTheAnswers) {
  constexpr int kThreads = 8;
  constexpr int kCalls = 15;
  std::string exchanges;
  for (int i = 1; i <= kThreads * kCalls; ++i) exchanges += recorded(asked(kGetOltMac), mac(i));
  olt_mock_replay(capture(exchanges));
  std::vector<std::vector<int>> read(kThreads);
  std::vector<std::thread> threads;
  for (std::vector<int> &own : read) {
    threads.emplace_back([&own] {
      for (int i = 0; i < kCalls; ++i) own.push_back(read_mac());
    });
  }
  for (std::thread &thread : threads) thread.join();
  std::set<int> all;
  for (const std::vector<int> &own : read) all.insert(own.begin(), own.end());
  EXPECT_EQ(all.size(), size_t{kThreads} * kCalls);
  EXPECT_EQ(read_mac(), kThreads * kCalls);
}

// Sanitizers must be loaded before libolttrace.
#ifndef OLT_TEST_SANITIZED

/// Each operation that sends, called as in the samples of oltctl, after the defaults were restored.
std::string script() {
  std::string calls;
  std::ifstream lines(SAMPLES);
  for (std::string line; std::getline(lines, line);) {
    nlohmann::json sample = nlohmann::json::parse(line);
    std::string name = sample["operation"];
    if (!catalog::find(name)->address.sends()) continue;
    calls += "default_system_config\n";
    for (const nlohmann::json &before : sample["before"]) calls += before.get<std::string>() + '\n';
    calls += sample["call"].get<std::string>() + '\n';
  }
  return calls;
}

TEST_F(MockCapture, ReplaysEveryOperationByteForByte) {
  std::string box = folder_.write("box", R"({"version":1,"pon":{"onu_restart_seconds":0}})");
  Finished recording =
      run({OLTCTL, "--box", "embedded", "--fresh", "--topology", box, "-f",
           folder_.write("script", script())},
          {std::string("LD_PRELOAD=") + LIBOLTTRACE, "OLT_CAPTURE=" + folder_ / "%p.pcapng",
           "OLT_CAPTURE_SECRETS=1", "OLT_LAYOUT=box", "XDG_STATE_HOME=" + folder_.path()});
  ASSERT_EQ(recording.status, 0) << recording.errors;
  for (const auto &entry : std::filesystem::directory_iterator(folder_.path()))
    if (entry.path().extension() == ".pcapng") path_ = entry.path();
  olt_mock_replay(path_.c_str());
  ASSERT_EQ(taken(), "");
  std::set<uint32_t> types;
  size_t replies = 0;
  capture::Reader reader = capture::read_capture(path_);
  capture::Exchanges exchanges(reader);
  while (std::optional<capture::Exchange> exchange = exchanges.next()) {
    ASSERT_TRUE(exchange->request && exchange->answer);
    const capture::Packet &sent = *exchange->request;
    const capture::Packet &answered = *exchange->answer;
    Brought brought = ask(sent.message_type, sent.module, characters(sent.record), sent.no_reply);
    EXPECT_EQ(brought, (Brought{static_cast<int32_t>(answered.result), answered.status,
                                characters(answered.record)}))
        << sent.message_type << " to " << sent.module << ", exchange " << sent.exchange;
    types.insert(sent.message_type);
    if (!brought.reply.empty()) ++replies;
  }
  std::set<uint32_t> all;
  for (const catalog::Family &family : catalog::families()) {
    for (const catalog::Operation &operation : family.operations)
      if (operation.address.sends()) all.insert(operation.address.message_type);
  }
  EXPECT_EQ(types, all);
  EXPECT_GT(replies, 80U);
  EXPECT_EQ(finish(), "");
}

#endif

}  // namespace

}  // namespace olt::test
