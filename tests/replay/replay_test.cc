// Answers by the request: which one, when, and what failures become.
#include <chrono>
#include <filesystem>

#include "tests/replay/support.h"
#include "tests/support/wire_names.h"

namespace olt::test {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// Three equal requests with the replies a1, a2 and a3, another one with b1.
std::vector<RecordedExchange> three_equal() {
  return {{.request = hex("01"), .reply = hex("a1"), .exchange = 1},
          {.request = hex("01"), .reply = hex("a2"), .exchange = 2},
          {.request = hex("02"), .reply = hex("b1"), .exchange = 3},
          {.request = hex("01"), .reply = hex("a3"), .exchange = 4}};
}

TEST_F(ReplayTest, AnswersEqualRequestsInTurnAndThenAsTheLast) {
  serve(three_equal());
  EXPECT_EQ(ask(12, hex("01")), reply(hex("a1")));
  EXPECT_EQ(ask(12, hex("02")), reply(hex("b1")));
  EXPECT_EQ(ask(12, hex("01")), reply(hex("a2")));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ask(12, hex("01")), reply(hex("a3")));
  EXPECT_EQ(ask(12, hex("02")), reply(hex("b1")));
  EXPECT_EQ(end(),
            "oltreplay: answered 7 requests; 0 not recorded, 0 out of order\n"
            "oltreplay: 4 of 4 recorded exchanges served\n");
  EXPECT_EQ(errors(), "");
}

TEST_F(ReplayTest, AnswersAsTheLastWhenAskedTo) {
  serve(three_equal(), {"--last"});
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ask(12, hex("01")), reply(hex("a3")));
  EXPECT_EQ(end(),
            "oltreplay: answered 3 requests; 0 not recorded, 0 out of order\n"
            "oltreplay: 1 of 4 recorded exchanges served\n");
}

TEST_F(ReplayTest, TellsModulesAndTypesApart) {
  serve({{.type = 3, .reply = hex("22"), .module = 22},
         {.type = 3, .reply = hex("02"), .module = 2},
         {.type = 53, .reply = hex("53"), .module = 2}});
  EXPECT_EQ(box_.output(), "oltreplay: serving modules 2, 22 in " + box_.run_dir() + "\n");
  EXPECT_EQ(ask(3), reply(hex("02")));
  EXPECT_EQ(ask(53), reply(hex("53")));
  EXPECT_EQ(ask(3, {}, 22), reply(hex("22")));
}

TEST_F(ReplayTest, ServesFailuresAsTheyWere) {
  serve({{.type = 1, .result = 0x00010000, .duration = 10'000'000'000},
         {.type = 2, .result = 0x00030000, .duration = 5000},
         {.type = 3, .status = 5},
         {.type = 4, .no_reply = true},
         {.type = 5, .status = 7, .no_reply = true},
         {.type = 6, .result = 77, .duration = 10'000'000'000},
         {.type = 7, .result = 77, .duration = 9'999'999'999}});
  EXPECT_EQ(ask(1, {}, 2, 1), failure(kTimedOut));
  EXPECT_EQ(ask(2), failure(kLost));
  EXPECT_EQ(ask(3), status(5));
  EXPECT_EQ(ask(4, {}, 2, 20, true), reply({}));
  EXPECT_EQ(ask(5, {}, 2, 20, true), status(7));
  EXPECT_EQ(ask(6, {}, 2, 1), failure(kTimedOut));
  EXPECT_EQ(ask(7), failure(kLost));
  EXPECT_EQ(ask(3), status(5));
}

TEST_F(ReplayTest, ModulesThatNeverAnsweredAreNotServed) {
  serve({{.type = 1, .module = 18, .result = 0x00020000}, {.type = 1, .reply = hex("aa")}});
  EXPECT_EQ(box_.output(), "oltreplay: serving modules 2 in " + box_.run_dir() + "\n");
  EXPECT_EQ(ask(1, {}, 18), failure(kNoModule));
  EXPECT_EQ(ask(1), reply(hex("aa")));
}

TEST_F(ReplayTest, AnswersWhenItWasRecordedTo) {
  const std::vector<RecordedExchange> slow = {{.reply = hex("aa"), .duration = 150'900'000}};
  auto time_of_one = [this] {
    auto start = steady_clock::now();
    EXPECT_EQ(ask(12), reply(hex("aa")));
    auto time = steady_clock::now() - start;
    end();
    return time;
  };
  serve(slow, {"--timing", "real"});
  EXPECT_GE(time_of_one(), milliseconds(150));
  serve(slow, {"--timing", "x3"});
  EXPECT_GE(time_of_one(), milliseconds(50));
  serve(slow, {"--timing", "real", "--last"});
  EXPECT_GE(time_of_one(), milliseconds(150));
}

TEST_F(ReplayTest, OthersAreServedWhileAnAnswerIsDelayed) {
  serve({{.type = 1, .duration = 60'000'000'000, .timeout = 100}, {.type = 2, .reply = hex("bb")}},
        {"--timing", "real"});
  EXPECT_TRUE(in_child([] { return ask(1, {}, 2, 1) == failure(kTimedOut); }));
  EXPECT_EQ(ask(2), reply(hex("bb")));
}

/// set_olt_port_flowcontrol sends its three words in a record of which the rest is what memory
/// held.
TEST_F(ReplayTest, BytesThatTheOperationDoesNotSpecifyDoNotCount) {
  Bytes recorded(80, 0xAB);
  Bytes sent(80, 0xCD);
  for (Bytes *request : {&recorded, &sent}) {
    for (int at : {0, 4, 40}) std::copy_n(word(1).begin(), 4, request->begin() + at);
  }
  serve({{.type = 69, .request = recorded, .reply = hex("aa")}});
  EXPECT_EQ(ask(69, sent), reply(hex("aa")));
  sent[40] = 0;
  EXPECT_EQ(ask(69, sent), status(kNotRecorded));
  EXPECT_EQ(
      errors(),
      "oltreplay: module 2 type 69 set_olt_port_flowcontrol: not recorded with flowcontrol=0; "
      "expected flowcontrol=1 as in exchange 1 of process 1234\n");
}

TEST_F(ReplayTest, NamesTheFieldsOfARequestThatWasNotRecorded) {
  Bytes port_2 = record(80, {{0, word(1)}, {4, word(2)}, {16, word(1)}});
  Bytes port_3 = record(80, {{0, word(1)}, {4, word(3)}, {16, word(0)}});
  Bytes port_9 = record(80, {{0, word(1)}, {4, word(9)}, {16, word(0)}});
  serve({{.type = 14, .request = port_2, .exchange = 7},
         {.type = 14, .request = port_3, .exchange = 8}});
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ask(14, port_9), status(kNotRecorded));
  EXPECT_EQ(ask(14, port_2), status(0));
  EXPECT_EQ(
      errors(),
      "oltreplay: module 2 type 14 set_port_enable: not recorded with port=9; expected port=3 "
      "as in exchange 8 of process 1234\n");
  EXPECT_EQ(ask(14, hex("00")), status(kNotRecorded));
  EXPECT_EQ(ask(99, hex("00")), status(kNotRecorded));
  EXPECT_EQ(
      errors(),
      "oltreplay: module 2 type 14 set_port_enable: not recorded with port=9; expected port=3 "
      "as in exchange 8 of process 1234\n"
      "oltreplay: module 2 type 14: not recorded with 1 byte byte 0=00; expected 80 bytes byte "
      "0=01 as in exchange 7 of process 1234\n"
      "oltreplay: module 2 type 99: not recorded; expected a recorded message type\n");
  EXPECT_EQ(end(),
            "oltreplay: answered 1 request; 5 not recorded, 0 out of order\n"
            "oltreplay: 1 of 2 recorded exchanges served\n"
            "oltreplay: 3 times: module 2 type 14 set_port_enable: not recorded with port=9; "
            "expected port=3 as in exchange 8 of process 1234\n");
}

TEST_F(ReplayTest, ShowsNoSecretsOfRequestsThatWereNotRecorded) {
  Bytes user = record(80, {{0, word(1)}, {8, text("operator")}, {40, text("hidden")}});
  Bytes other = record(80, {{0, word(1)}, {8, text("operator")}, {40, text("guessed")}});
  serve({{.type = 10, .request = user}});
  EXPECT_EQ(ask(10, other), status(kNotRecorded));
  EXPECT_EQ(
      errors(),
      "oltreplay: module 2 type 10 add_user_level: not recorded with user_password=**; expected "
      "user_password=** as in exchange 1 of process 1234\n");
}

TEST_F(ReplayTest, NamesFieldsByTheLayout) {
  std::string layout = box_.folder() + "/acme.json";
  write_file(layout, R"({"version": 1, "name": "acme", "records": {"olt_system_network": [
      {"name": "address", "offset": 0, "kind": "ipv4"},
      {"name": "key", "offset": 4, "width": 16, "kind": "padded", "secret": true}]}})");
  Bytes sent = record(172, {{0, hex("c0000201")}, {4, text("open")}});
  serve({{.type = 50, .request = record(172, {{0, hex("c0000202")}, {4, text("sesame")}})}},
        {"--layout", layout});
  EXPECT_EQ(ask(50, sent), status(kNotRecorded));
  EXPECT_EQ(errors(),
            "oltreplay: module 2 type 50 set_system_ipaddress: not recorded with address=192.0.2.1 "
            "key=**; expected address=192.0.2.2 key=** as in exchange 1 of process 1234\n");
}

TEST_F(ReplayTest, FloodsNobodyWithUnknownRequests) {
  serve({{.type = 12, .reply = hex("aa")}});
  for (uint32_t i = 0; i < 1500; ++i) ASSERT_EQ(ask(5000 + i), status(kNotRecorded));
  std::string summary = end();
  EXPECT_TRUE(
      holds(summary, "oltreplay: answered 0 requests; 1500 not recorded, 0 out of order\n"));
  EXPECT_TRUE(holds(summary, "oltreplay: 500 complaints not shown\n")) << summary;
}

TEST_F(ReplayTest, MatchesMaskedRequestsWhateverTheirSecretsAre) {
  const std::string stars(32, '*');
  Bytes masked = record(80, {{0, word(1)}, {8, text("operator")}, {40, text(stars)}});
  Bytes sent = record(80, {{0, word(1)}, {8, text("operator")}, {40, text("secret")}});
  Bytes other = record(80, {{0, word(1)}, {8, text("somebody")}, {40, text("secret")}});
  serve({{.type = 10,
          .request = masked,
          .reply = masked,
          .masked_request = true,
          .masked_reply = true}});
  EXPECT_EQ(errors(), "oltreplay: 1 reply with masked secrets, served as recorded\n");
  EXPECT_EQ(ask(10, sent), reply(masked));
  EXPECT_EQ(ask(10, other), status(kNotRecorded));
  EXPECT_TRUE(holds(errors(),
                    "oltreplay: module 2 type 10 add_user_level: not recorded with "
                    "user_name=somebody; expected user_name=operator as in exchange 1 of process "
                    "1234\n"))
      << errors();
}

TEST_F(ReplayTest, TracesEachExchange) {
  serve({{.type = 12, .reply = hex("020000000001"), .exchange = 7}, {.type = 13, .status = 4}},
        {"--trace"});
  ask(12);
  std::string line = end();
  EXPECT_TRUE(holds(line,
                    "Z module 2 type 12 get_olt_mac: status 0, 6 bytes, exchange 7 of process "
                    "1234\n"))
      << line;
}

TEST_F(ReplayTest, LeavesTheRunDirectoryEmpty) {
  serve(three_equal());
  EXPECT_FALSE(std::filesystem::is_empty(box_.run_dir()));
  end();
  EXPECT_TRUE(std::filesystem::is_empty(box_.run_dir()));
}

TEST_F(ReplayTest, ACaptureThatChangesMeanwhileIsOneLine) {
  serve(three_equal());
  write_file(box_.folder() + "/capture", "");
  EXPECT_EQ(ask(12, hex("01")), status(65535));
  EXPECT_EQ(errors(), "oltreplay: module 2: the handler of message type 12 threw an exception: " +
                          box_.folder() + "/capture: at byte 212: the packet is gone\n");
}

}  // namespace

}  // namespace olt::test
