// platmsg_syn_result and IPC_Free against real servers, and against modules that misbehave.
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <set>
#include <thread>

#include "tests/platform/support.h"

namespace olt::test {

namespace {

constexpr int32_t kTimedOut = 0x00010000;
constexpr int32_t kNoModule = 0x00020000;
constexpr int32_t kLost = 0x00030000;
constexpr int32_t kRefused = 0x00040000;
constexpr int32_t kGarbled = 0x00050000;
constexpr int32_t kTooLongResult = 0x00060000;
constexpr int32_t kNoResources = 0x00070000;
constexpr int32_t kBadCall = 0x00080000;

// "At once": far below the time-out of the calls, far above the noise of a busy machine.
constexpr double kAtOnce = 2.0;

void expect_untouched(const Exchanged &all) {
  EXPECT_EQ(all.status, 0xabcd);
  EXPECT_EQ(all.reply, nullptr);
  EXPECT_EQ(all.length, 0xabcd);
  EXPECT_EQ(all.handle, 0xabcdabcdu);
}

class Client : public testing::Test {
 protected:
  TemporaryRunDir dir_;
};

// With a server on another thread, for what a well-behaved module answers.
class ServedClient : public Client {
 protected:
  ServerThread server_{{.run_dir = dir_.path().c_str(), .modules = {2, 18}}};
};

TEST_F(ServedClient, BringsTheReplyToTheRequest) {
  EXPECT_EQ(exchange_bytes(2, kEcho, text("hello")), text("hello"));
}

TEST_F(ServedClient, ReachesEachModuleBySocket) {
  EXPECT_EQ(exchange_bytes(18, kEcho, text("oam")), text("oam"));
  EXPECT_EQ(exchange_bytes(2, kEcho, text("main")), text("main"));
  EXPECT_EQ(server_.counters().connections, 2u);
}

TEST_F(ServedClient, KeepsTheConnectionBetweenExchanges) {
  for (int i = 0; i < 10; ++i) EXPECT_EQ(post(2, kEcho, {}).result, 0);
  EXPECT_EQ(server_.counters().connections, 1u);
  EXPECT_TRUE(server_.reaches(&olt_server_counters::exchanges, 10));
}

TEST_F(ServedClient, ANonZeroStatusBringsNoReplyToRelease) {
  Exchanged all = exchange(2, kStatus, word(5));
  EXPECT_EQ(all.result, 0);
  EXPECT_EQ(all.status, 5);
  EXPECT_EQ(all.reply, nullptr);
  EXPECT_EQ(all.length, 0);
  EXPECT_EQ(all.handle, 0u);
}

TEST_F(ServedClient, WritesOnlyTheStatusWhenNoReplyIsWanted) {
  Exchanged all = post(2, kStatus, word(0x1234));
  EXPECT_EQ(all.result, 0);
  EXPECT_EQ(all.status, 0x1234);
  EXPECT_EQ(all.reply, nullptr);
  EXPECT_EQ(all.length, 0xabcd);
  EXPECT_EQ(all.handle, 0xabcdabcdu);
}

TEST_F(ServedClient, NeedsNoReplyArgumentsWhenNoReplyIsWanted) {
  uint16_t status = 7;
  EXPECT_EQ(
      platmsg_syn_result(kNoReplyFlag, 2, nullptr, 0, nullptr, nullptr, nullptr, &status, 1, 10),
      0);
  EXPECT_EQ(status, 1);
  EXPECT_EQ(exchange(2, kNoReplyFlag, {}).status, 0);
}

class RequestLength : public ServedClient, public testing::WithParamInterface<size_t> {};

TEST_P(RequestLength, ArrivesWhole) {
  Bytes request = pattern(GetParam(), 1);
  EXPECT_EQ(exchange_bytes(2, kDigest, request), digest(request.data(), request.size()));
}

// 147,384 bytes are a description list of 4,094 entries; 16 MiB is the limit.
INSTANTIATE_TEST_SUITE_P(Requests, RequestLength,
                         testing::Values(0, 1, 80, 4075, 4076, 4077, 65536, 147384, 1048576,
                                         16777216));

class ReplyLength : public ServedClient, public testing::WithParamInterface<size_t> {};

TEST_P(ReplyLength, ArrivesWholeWithZeroesBehindIt) {
  size_t length = GetParam();
  Exchanged all = exchange(2, kPattern, word(static_cast<uint32_t>(length)));
  ASSERT_EQ(all.result, 0);
  ASSERT_EQ(all.status, 0);
  ASSERT_NE(all.reply, nullptr);
  EXPECT_EQ(all.length, length);
  EXPECT_NE(all.handle, 0u);
  EXPECT_EQ(all.bytes(), pattern(length, 6));
  const auto *bytes = static_cast<const uint8_t *>(all.reply);
  size_t block = std::max<size_t>(256, length + 1);
  EXPECT_EQ(Bytes(bytes + length, bytes + block), Bytes(block - length, 0));
  IPC_Free(all.handle);
}

INSTANTIATE_TEST_SUITE_P(Replies, ReplyLength,
                         testing::Values(0, 1, 80, 255, 256, 257, 4095, 4096, 4097, 65535));

TEST_F(ServedClient, RefusesACallWithoutWhatMustBeGiven) {
  void *reply = nullptr;
  uint16_t length = 0;
  uint32_t handle = 0;
  uint16_t status = 3;
  char request[4] = "abc";
  EXPECT_EQ(platmsg_syn_result(1, 2, request, 4, &reply, &length, &handle, nullptr, 0, 1),
            kBadCall);
  EXPECT_EQ(platmsg_syn_result(1, 2, request, 4, nullptr, nullptr, nullptr, nullptr, 1, 1),
            kBadCall);
  EXPECT_EQ(platmsg_syn_result(1, 2, request, 4, nullptr, &length, &handle, &status, 0, 1),
            kBadCall);
  EXPECT_EQ(platmsg_syn_result(1, 2, request, 4, &reply, nullptr, &handle, &status, 0, 1),
            kBadCall);
  EXPECT_EQ(platmsg_syn_result(1, 2, request, 4, &reply, &length, nullptr, &status, 0, 1),
            kBadCall);
  EXPECT_EQ(platmsg_syn_result(1, 2, nullptr, 4, &reply, &length, &handle, &status, 0, 1),
            kBadCall);
  EXPECT_EQ(status, 3);
  EXPECT_EQ(server_.counters().exchanges, 0u);
}

TEST_F(ServedClient, DoesNotSendMoreThan16MiB) {
  EXPECT_EQ(post(2, kEcho, Bytes(16777217)).result, kTooLongResult);
  EXPECT_EQ(server_.counters().connections, 0u);
}

TEST_F(ServedClient, TellsWhenNoAnswerCameInTime) {
  Exchanged all = exchange(2, kSilence, {}, 1);
  EXPECT_EQ(all.result, kTimedOut);
  EXPECT_GE(all.seconds, 1.0);
  EXPECT_LT(all.seconds, 1.5);
  RecordProperty("late_us", static_cast<int>((all.seconds - 1.0) * 1e6));
  expect_untouched(all);
}

TEST_F(ServedClient, ATimeOutOfZeroDoesNotWait) {
  Exchanged all = exchange(2, kSilence, {}, 0);
  EXPECT_EQ(all.result, kTimedOut);
  EXPECT_LT(all.seconds, 0.5);
}

// Long enough for the kernel to round a single wait.
TEST_F(ServedClient, ALongerTimeOutIsAsExact) {
  Exchanged all = exchange(2, kSilence, {}, 3);
  EXPECT_EQ(all.result, kTimedOut);
  EXPECT_GE(all.seconds, 3.0);
  EXPECT_LT(all.seconds, 3.5);
  RecordProperty("late_us", static_cast<int>((all.seconds - 3.0) * 1e6));
}

std::atomic<int> signals_seen{0};

/// A signal every millisecond, without restarting of system calls.
class SignalStorm {
 public:
  SignalStorm() {
    struct sigaction action {};
    action.sa_handler = [](int) { ++signals_seen; };
    sigaction(SIGALRM, &action, &before_);
    set_interval(1000);
  }
  ~SignalStorm() {
    set_interval(0);
    sigaction(SIGALRM, &before_, nullptr);
  }

 private:
  static void set_interval(long microseconds) {
    itimerval timer{.it_interval = {0, microseconds}, .it_value = {0, microseconds}};
    setitimer(ITIMER_REAL, &timer, nullptr);
  }

  struct sigaction before_ {};
};

class StormyClient : public Client {
 protected:
  // In another process, so that each signal hits the caller.
  ServerProcess server_{dir_.path()};
};

TEST_F(StormyClient, TheTimeOutHoldsWhateverSignalsArrive) {
  int before = signals_seen;
  SignalStorm storm;
  Exchanged all = exchange(2, kSilence, {}, 1);
  EXPECT_EQ(all.result, kTimedOut);
  EXPECT_GE(all.seconds, 1.0);
  EXPECT_LT(all.seconds, 1.5);
  EXPECT_GT(signals_seen - before, 100);
  RecordProperty("late_us", static_cast<int>((all.seconds - 1.0) * 1e6));
}

TEST_F(StormyClient, ExchangesSurviveSignals) {
  SignalStorm storm;
  for (uint32_t i = 0; i < 20; ++i) {
    Bytes request = pattern(300000, i);
    EXPECT_EQ(exchange_bytes(2, kDigest, request), digest(request.data(), request.size()));
    EXPECT_EQ(exchange_bytes(2, kPattern, word(65535)), pattern(65535, 6));
    Bytes delayed = word(20);
    delayed.push_back(static_cast<uint8_t>(i));
    EXPECT_EQ(exchange_bytes(2, kDelayedEcho, delayed), delayed);
  }
}

TEST_F(Client, TheTimeOutCoversTheSending) {
  std::atomic<bool> done{false};
  FakeModule deaf(dir_.socket(2), [&](int) {
    while (!done) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  });
  Exchanged all = exchange(2, kEcho, Bytes(4 * 1024 * 1024), 1);
  done = true;
  EXPECT_EQ(all.result, kTimedOut);
  EXPECT_GE(all.seconds, 1.0);
  EXPECT_LT(all.seconds, 1.5);
  expect_untouched(all);
}

TEST_F(Client, TheTimeOutCoversTheConnecting) {
  int listener = listen_at(dir_.socket(2), 0);
  RawClient first(dir_.socket(2));
  Exchanged all = exchange(2, kEcho, {}, 1);
  close(listener);
  EXPECT_EQ(all.result, kTimedOut);
  EXPECT_GE(all.seconds, 1.0);
  EXPECT_LT(all.seconds, 1.5);
}

TEST_F(Client, TheTimeOutCoversHalfAnAnswer) {
  std::atomic<bool> done{false};
  FakeModule slow(dir_.socket(2), [&](int socket) {
    send_bytes(socket, answer_frame(receive_bytes(socket, 20), "0000 0000 0a000000 616263"));
    while (!done) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  });
  Exchanged all = exchange(2, kEcho, {}, 1);
  done = true;
  EXPECT_EQ(all.result, kTimedOut);
  EXPECT_GE(all.seconds, 1.0);
  EXPECT_LT(all.seconds, 1.5);
  expect_untouched(all);
}

TEST_F(Client, AnAbsentModuleIsReportedAtOnce) {
  Exchanged no_directory = exchange(2, kEcho, {});
  EXPECT_EQ(no_directory.result, kNoModule);
  EXPECT_LT(no_directory.seconds, kAtOnce);
  expect_untouched(no_directory);

  ServerThread server({.run_dir = dir_.path().c_str()});
  EXPECT_EQ(exchange(18, kEcho, {}).result, kNoModule);
  EXPECT_EQ(exchange(2, kEcho, {}).result, 0);
}

TEST_F(Client, ASocketLeftByADeadModuleIsAnAbsentModule) {
  ServerProcess server(dir_.path());
  server.kill();
  ASSERT_TRUE(std::filesystem::exists(dir_.socket(2)));
  Exchanged all = exchange(2, kEcho, {});
  EXPECT_EQ(all.result, kNoModule);
  EXPECT_LT(all.seconds, kAtOnce);
}

TEST_F(Client, APathThatIsTooLongForASocketIsAnAbsentModule) {
  std::string long_dir = dir_.base() + "/" + std::string(100, 'd');
  setenv("OLT_RUN_DIR", long_dir.c_str(), 1);
  testing::internal::CaptureStderr();
  EXPECT_EQ(exchange(2, kEcho, {}).result, kNoModule);
  std::string errors = testing::internal::GetCapturedStderr();
  EXPECT_NE(errors.find("expected at most 107"), std::string::npos) << errors;
  EXPECT_NE(errors.find("/module-2\" has"), std::string::npos) << errors;
}

TEST_F(Client, AModuleThatDiesDuringARequestIsReportedAtOnce) {
  ServerProcess server(dir_.path());
  EXPECT_EQ(exchange_bytes(2, kEcho, text("up")), text("up"));
  Exchanged all = exchange(2, kDie, {});
  EXPECT_EQ(all.result, kLost);
  EXPECT_LT(all.seconds, kAtOnce);
  expect_untouched(all);
  EXPECT_EQ(exchange(2, kEcho, {}).result, kNoModule);
}

TEST_F(Client, AModuleThatIsKilledWhileItTakesARequestIsReportedAtOnce) {
  ServerProcess server(dir_.path());
  ASSERT_EQ(kill(server.pid(), SIGSTOP), 0);
  std::thread killer([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    server.kill();
  });
  Exchanged all = exchange(2, kEcho, Bytes(8 * 1024 * 1024));
  killer.join();
  EXPECT_EQ(all.result, kLost);
  EXPECT_LT(all.seconds, kAtOnce);
}

TEST_F(Client, AModuleThatHangsUpIsReportedAtOnce) {
  ServerThread server({.run_dir = dir_.path().c_str()});
  Exchanged all = exchange(2, kHangUp, word(50));
  EXPECT_EQ(all.result, kLost);
  EXPECT_LT(all.seconds, kAtOnce);
  EXPECT_EQ(exchange_bytes(2, kEcho, text("again")), text("again"));
}

TEST_F(ServedClient, ALateAnswerNeverAnswersALaterRequest) {
  Bytes late = word(1200);
  late.push_back('l');
  EXPECT_EQ(exchange(2, kDelayedEcho, late, 1).result, kTimedOut);
  EXPECT_EQ(exchange_bytes(2, kEcho, text("second")), text("second"));
  std::this_thread::sleep_for(std::chrono::milliseconds(400));
  EXPECT_EQ(exchange_bytes(2, kEcho, text("third")), text("third"));
}

TEST_F(Client, ARestartOfTheModuleBetweenExchangesGoesUnnoticed) {
  ServerProcess first(dir_.path());
  EXPECT_EQ(exchange(2, kCounted, {}).result, 0);
  first.kill();
  ServerProcess second(dir_.path());
  EXPECT_EQ(exchange(2, kCounted, {}).result, 0);
  EXPECT_EQ(exchange_bytes(2, kCount, {}), word(1));
}

TEST_F(Client, ARestartIsNoticedByALargeRequestToo) {
  ServerProcess first(dir_.path());
  EXPECT_EQ(exchange(2, kEcho, {}).result, 0);
  first.kill();
  ServerProcess second(dir_.path());
  Bytes request = pattern(1048576, 3);
  EXPECT_EQ(exchange_bytes(2, kDigest, request), digest(request.data(), request.size()));
}

TEST_F(Client, ARequestIsNeverDeliveredTwice) {
  std::atomic<int> requests{0};
  FakeModule reader(dir_.socket(2), [&](int socket) {
    for (Bytes request; (request = receive_bytes(socket, 20)).size() == 20;) {
      if (++requests > 1) return;
      send_bytes(socket, answer_frame(request, "0000 0000 00000000"));
    }
  });
  EXPECT_EQ(exchange(2, kEcho, {}).result, 0);
  EXPECT_EQ(exchange(2, kEcho, {}).result, kLost);
  EXPECT_EQ(requests, 2);
  EXPECT_EQ(reader.connections(), 1);
}

uint32_t sequence_of(const Bytes &frame) {
  uint32_t value = 0;
  for (size_t i = 0; i < 4; ++i) value |= static_cast<uint32_t>(frame[4 + i]) << (8 * i);
  return value;
}

TEST_F(Client, EachConnectionStartsWithAnotherSequenceNumber) {
  std::vector<uint32_t> starts;
  FakeModule recorder(dir_.socket(2), [&](int socket) {
    Bytes request = receive_bytes(socket, 20);
    starts.push_back(sequence_of(request));
    send_bytes(socket, answer_frame(request, "0000 0000 00000000"));
  });
  for (int i = 0; i < 3; ++i) {
    drop_connections();
    EXPECT_EQ(post(2, kEcho, {}).result, 0);
  }
  EXPECT_EQ(std::set<uint32_t>(starts.begin(), starts.end()).size(), 3u);
}

// The numbers that a module could guess from earlier connections and requests.
TEST_F(Client, AnAnswerThatCameBeforeItsRequestIsNotTaken) {
  FakeModule eager(dir_.socket(2), [](int socket) {
    send_bytes(socket, hex("4f4c4131 01000000 0500 0000 00000000"));
    receive_bytes(socket, 20);
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(post(2, kEcho, {}).result, kGarbled);
}

TEST_F(Client, BytesAfterAnAnswerEndTheConnectionBeforeTheNextRequest) {
  std::atomic<int> delivered{0};
  std::atomic<bool> answered{false};
  std::atomic<bool> answered_again{false};
  FakeModule twofold(dir_.socket(2), [&](int socket) {
    Bytes request = receive_bytes(socket, 20);
    if (request.size() < 20) return;
    int number = ++delivered;
    send_bytes(socket, answer_frame(request, "0500 0000 00000000"));
    if (number > 1) return;
    answered.wait(false);
    request[4] = static_cast<uint8_t>(request[4] + 1);
    send_bytes(socket, answer_frame(request, "0900 0000 00000000"));
    answered_again = true;
    answered_again.notify_one();
    delivered += receive_bytes(socket, 20).empty() ? 0 : 1;
  });
  uint16_t first = post(2, kEcho, {}).status;
  answered = true;
  answered.notify_one();
  ASSERT_EQ(first, 5);
  answered_again.wait(false);
  testing::internal::CaptureStderr();
  Exchanged second = post(2, kEcho, {});
  std::string errors = testing::internal::GetCapturedStderr();
  EXPECT_EQ(second.result, 0);
  EXPECT_EQ(second.status, 5);
  EXPECT_EQ(delivered, 2);
  EXPECT_EQ(twofold.connections(), 2);
  EXPECT_NE(errors.find("module 2 sent bytes after its answer; expected none before the next "
                        "request; connecting anew\n"),
            std::string::npos)
      << errors;
  drop_connections();
}

TEST_F(Client, SendsTheDocumentedBytes) {
  Bytes first;
  Bytes second;
  FakeModule recorder(dir_.socket(2), [&](int socket) {
    first = receive_bytes(socket, 23);
    send_bytes(socket, answer_frame(first, "3412 0000 00000000"));
    second = receive_bytes(socket, 20);
    send_bytes(socket, answer_frame(second, "0000 0000 02000000 5a5b"));
  });
  EXPECT_EQ(post(2, 0x01020304, text("abc")).status, 0x1234);
  Exchanged all = exchange(2, 7, {});
  ASSERT_EQ(all.result, 0);
  EXPECT_EQ(all.status, 0);
  EXPECT_EQ(all.bytes(), hex("5a5b"));
  ASSERT_EQ(first.size(), 23u);
  ASSERT_EQ(second.size(), 20u);
  EXPECT_EQ(sequence_of(second), sequence_of(first) + 1);
  std::fill_n(first.begin() + 4, 4, uint8_t{0});
  std::fill_n(second.begin() + 4, 4, uint8_t{0});
  EXPECT_EQ(first, hex("4f4c5131 00000000 04030201 01000000 03000000 616263"));
  EXPECT_EQ(second, hex("4f4c5131 00000000 07000000 00000000 00000000"));
  IPC_Free(all.handle);
}

struct Rubbish {
  const char *name;
  const char *answer;
  bool wants_reply;
  int32_t result;

  // Names the case in the list of tests.
  friend void PrintTo(const Rubbish &rubbish, std::ostream *out) { *out << rubbish.name; }
};

/// Answers in the list are to a request with sequence number 1.
Bytes with_sequence(Bytes answer, const Bytes &request) {
  for (size_t i = 4; i < std::min<size_t>(8, answer.size()); ++i) {
    answer[i] = static_cast<uint8_t>(answer[i] + request[i] - (i == 4 ? 1 : 0));
  }
  return answer;
}

class RubbishAnswer : public Client, public testing::WithParamInterface<Rubbish> {};

TEST_P(RubbishAnswer, IsReportedAndTheNextCallWorks) {
  std::atomic<int> connections{0};
  FakeModule liar(dir_.socket(2), [&](int socket) {
    bool lies = ++connections == 1;
    Bytes request = receive_bytes(socket, 20);
    send_bytes(socket, lies ? with_sequence(hex(GetParam().answer), request)
                            : answer_frame(request, "0500 0000 00000000"));
    if (!lies) receive_bytes(socket, 1);
  });
  Exchanged all = GetParam().wants_reply ? exchange(2, kEcho, {}) : post(2, kEcho, {});
  EXPECT_EQ(all.result, GetParam().result);
  EXPECT_LT(all.seconds, kAtOnce);
  expect_untouched(all);
  Exchanged next = post(2, kEcho, {});
  EXPECT_EQ(next.result, 0);
  EXPECT_EQ(next.status, 5);
  // The fake module waits for a next request; hanging up ends it.
  drop_connections();
}

INSTANTIATE_TEST_SUITE_P(
    Answers, RubbishAnswer,
    testing::Values(
        Rubbish{"wrong_magic", "4f4c4130 01000000 0000 0000 00000000", true, kGarbled},
        Rubbish{"other_sequence", "4f4c4131 02000000 0000 0000 00000000", true, kGarbled},
        Rubbish{"unknown_kind", "4f4c4131 01000000 0000 0200 00000000", true, kGarbled},
        Rubbish{"length_of_65536", "4f4c4131 01000000 0000 0000 00000100", true, kGarbled},
        Rubbish{"more_than_claimed", "4f4c4131 01000000 0000 0000 01000000 0102", true, kGarbled},
        Rubbish{"unwanted_reply", "4f4c4131 01000000 0000 0000 01000000 01", false, kGarbled},
        Rubbish{"text", "48545450 2f312e31 20343030 20426164 2052", true, kGarbled},
        Rubbish{"half_a_header", "4f4c4131 0100", true, kLost},
        Rubbish{"half_a_reply", "4f4c4131 01000000 0000 0000 04000000 0102", true, kLost},
        Rubbish{"nothing", "", true, kLost},
        Rubbish{"refusal", "4f4c4131 00000000 0000 0100 00000000", true, kRefused}),
    [](const auto &one) { return std::string(one.param.name); });

TEST_F(ServedClient, ManyThreadsGetTheirOwnAnswers) {
  constexpr uint32_t kThreads = 64;
  constexpr uint32_t kExchanges = 40;
  std::atomic<uint32_t> right{0};
  std::vector<std::thread> threads;
  for (uint32_t id = 0; id < kThreads; ++id) {
    threads.emplace_back([&, id] {
      for (uint32_t i = 0; i < kExchanges; ++i) {
        Bytes request = pattern(1 + (id * 37 + i * 101) % 6000, id * 1000 + i);
        right += exchange_bytes(i % 2 == 0 ? 2 : 18, kEcho, request) == request ? 1 : 0;
      }
    });
  }
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(right, kThreads * kExchanges);
  EXPECT_EQ(server_.counters().connections, 2 * kThreads);
}

TEST_F(ServedClient, AThreadClosesItsConnectionsWhenItEnds) {
  EXPECT_EQ(post(2, kEcho, {}).result, 0);
  size_t before = open_descriptors();
  std::thread([] {
    EXPECT_EQ(post(2, kEcho, {}).result, 0);
    EXPECT_EQ(post(18, kEcho, {}).result, 0);
  }).join();
  // The server's ends are closed by its own thread, a moment later.
  for (int i = 0; i < 500 && open_descriptors() != before; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  EXPECT_EQ(open_descriptors(), before);
}

TEST_F(ServedClient, AReplyMayBeReleasedOnAnotherThread) {
  Exchanged all = exchange(2, kEcho, text("far"));
  testing::internal::CaptureStderr();
  std::thread([&] {
    EXPECT_EQ(all.bytes(), text("far"));
    IPC_Free(all.handle);
  }).join();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(ServedClient, RepliesLiveUntilTheyAreReleased) {
  std::vector<Exchanged> held;
  for (uint32_t i = 0; i < 1000; ++i) held.push_back(exchange(2, kEcho, pattern(300, i)));
  for (uint32_t i = 0; i < 1000; ++i) EXPECT_EQ(held[i].bytes(), pattern(300, i));
  testing::internal::CaptureStderr();
  for (const Exchanged &one : held) IPC_Free(one.handle);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(ServedClient, AnUnknownOrReleasedHandleIsReported) {
  Exchanged all = exchange(2, kEcho, text("once"));
  testing::internal::CaptureStderr();
  IPC_Free(all.handle);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  int times = 0;
  for (uint32_t wrong : {all.handle, 0u, 4000000000u}) {
    testing::internal::CaptureStderr();
    IPC_Free(wrong);
    std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_NE(
        errors.find("reply handle " + std::to_string(wrong) + " is unknown or already released (" +
                    std::to_string(++times) + " such calls so far)\n"),
        std::string::npos)
        << errors;
    EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1);
  }
  EXPECT_EQ(exchange_bytes(2, kEcho, text("twice")), text("twice"));
}

void release_what_is_kept() {
  Exchanged kept = exchange(2, kEcho, text("kept"));
  Exchanged released = exchange(2, kEcho, text("released"));
  IPC_Free(released.handle);
  std::thread([] {
    EXPECT_EQ(olt_release_replies(), 0u);
    exchange(2, kEcho, text("one"));
    exchange(2, kEcho, text("two"));
    EXPECT_EQ(olt_release_replies(), 2u);
  }).join();
  EXPECT_EQ(kept.bytes(), text("kept"));
  EXPECT_EQ(olt_release_replies(), 1u);
  EXPECT_EQ(olt_release_replies(), 0u);
  testing::internal::CaptureStderr();
  IPC_Free(kept.handle);
  EXPECT_NE(testing::internal::GetCapturedStderr().find("is unknown or already released"),
            std::string::npos);
}

TEST_F(ServedClient, AThreadReleasesWhatItHasKept) {
  std::thread(release_what_is_kept).join();
}

TEST_F(Client, FailuresLeakNoDescriptor) {
  size_t before = open_descriptors();
  for (int i = 0; i < 50; ++i) EXPECT_EQ(exchange(2, kEcho, {}).result, kNoModule);
  EXPECT_EQ(open_descriptors(), before);
  {
    ServerProcess server(dir_.path());
    for (int i = 0; i < 20; ++i) {
      EXPECT_EQ(exchange(2, kHangUp, {}).result, kLost);
      EXPECT_EQ(exchange(2, kSilence, {}, 0).result, kTimedOut);
    }
    EXPECT_EQ(open_descriptors(), before);
  }
}

/// Leaves the process no free descriptor; its destructor restores the limit.
class NoDescriptors {
 public:
  NoDescriptors() {
    getrlimit(RLIMIT_NOFILE, &before_);
    int next = dup(STDERR_FILENO);
    close(next);
    rlimit none{.rlim_cur = static_cast<rlim_t>(next), .rlim_max = before_.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
  }
  ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &before_); }

 private:
  rlimit before_{};
};

// A line for standard error must not become part of a request.
TEST_F(Client, ASocketNeverTakesThePlaceOfAStandardStream) {
  std::atomic<int> frames{0};
  FakeModule reader(dir_.socket(2), [&](int socket) {
    for (Bytes request; (request = receive_bytes(socket, 20)).size() == 20;) {
      frames += Bytes(request.begin(), request.begin() + 4) == text("OLQ1") ? 1 : 100;
      send_bytes(socket, answer_frame(request, "0000 0000 00000000"));
    }
  });
  ChildResult child = run_in_child([] {
    drop_connections();
    for (int number : {0, 1, 2}) close(number);
    int failures = 0;
    for (int i = 0; i < 3; ++i) {
      failures += post(2, kEcho, {}).result == 0 ? 0 : 1;
      log_log(3, "front end", 1, "a line");
    }
    int ends[2];
    socketpair(AF_UNIX, SOCK_STREAM, 0, ends);
    olt_connect_through([](void *end, uint32_t) { return *static_cast<int *>(end); }, &ends[0]);
    failures += post(2, kEcho, {}, 0).result == kTimedOut ? 0 : 1;
    log_log(3, "front end", 2, "a line");
    char bytes[64];
    failures += read(ends[1], bytes, sizeof bytes) == 20 ? 0 : 1;
    return failures;
  });
  EXPECT_EQ(child.status, 0);
  EXPECT_EQ(frames, 3);
}

TEST_F(ServedClient, TellsWhenDescriptorsRunOut) {
  {
    NoDescriptors none;
    Exchanged all = exchange(2, kEcho, {});
    EXPECT_EQ(all.result, kNoResources);
    expect_untouched(all);
  }
  EXPECT_EQ(exchange_bytes(2, kEcho, text("back")), text("back"));
}

struct Seen {
  std::vector<olt_exchange> exchanges;
  Bytes request;
  Bytes reply;
};

void watch(void *context, const olt_exchange *exchange) {
  auto *seen = static_cast<Seen *>(context);
  seen->exchanges.push_back(*exchange);
  const auto *request = static_cast<const uint8_t *>(exchange->request);
  const auto *reply = static_cast<const uint8_t *>(exchange->reply);
  seen->request = Bytes(request, request + exchange->request_length);
  seen->reply = Bytes(reply, reply + exchange->reply_length);
}

TEST_F(ServedClient, AWatcherSeesEachExchange) {
  Seen seen;
  olt_watch_exchanges(watch, &seen);
  EXPECT_EQ(exchange_bytes(2, kEcho, text("watched")), text("watched"));
  EXPECT_EQ(seen.request, text("watched"));
  EXPECT_EQ(seen.reply, text("watched"));
  EXPECT_EQ(post(18, kStatus, word(9)).status, 9);
  EXPECT_EQ(post(77, kEcho, {}).result, kNoModule);
  EXPECT_EQ(exchange(2, kSilence, {}, 0).result, kTimedOut);
  olt_watch_exchanges(nullptr, nullptr);
  EXPECT_EQ(post(2, kEcho, {}).result, 0);

  ASSERT_EQ(seen.exchanges.size(), 4u);
  EXPECT_EQ(seen.exchanges[0].module, 2u);
  EXPECT_EQ(seen.exchanges[0].message_type, 1u);
  EXPECT_EQ(seen.exchanges[0].no_reply, 0u);
  EXPECT_EQ(seen.exchanges[0].timeout, 10u);
  EXPECT_EQ(seen.exchanges[0].result, 0);
  EXPECT_EQ(seen.exchanges[0].status, 0);
  EXPECT_GT(seen.exchanges[0].elapsed_ns, 0u);
  EXPECT_EQ(seen.exchanges[1].module, 18u);
  EXPECT_EQ(seen.exchanges[1].no_reply, 1u);
  EXPECT_EQ(seen.exchanges[1].status, 9);
  EXPECT_EQ(seen.exchanges[1].reply_length, 0);
  EXPECT_EQ(seen.exchanges[2].result, kNoModule);
  EXPECT_EQ(seen.exchanges[3].result, kTimedOut);
  EXPECT_EQ(seen.exchanges[3].timeout, 0u);
}

int connect_to_server(void *context, uint32_t module) {
  return olt_server_connect(static_cast<olt_server *>(context), module);
}

TEST_F(ServedClient, AConnectorLeadsElsewhereUntilItIsTakenBack) {
  EXPECT_EQ(post(2, kNoReplyFlag, {}).status, 1);
  {
    ServerThread embedded(
        {.modules = {2},
         .handler = [](void *, const olt_request *, olt_answer *answer) { answer->status = 321; }});
    olt_connect_through(connect_to_server, embedded.server());
    EXPECT_EQ(post(2, kNoReplyFlag, {}).status, 321);
    EXPECT_EQ(post(2, kNoReplyFlag, {}).status, 321);
    EXPECT_EQ(embedded.counters().connections, 1u);
    EXPECT_EQ(post(18, kNoReplyFlag, {}).result, kNoModule);
    olt_connect_through(nullptr, nullptr);
  }
  EXPECT_EQ(post(2, kNoReplyFlag, {}).status, 1);
}

TEST_F(Client, AConnectorMayGiveNothing) {
  for (const auto &[error, result] : {std::pair(ECONNREFUSED, kNoModule),
                                      {ENOENT, kNoModule},
                                      {EACCES, kRefused},
                                      {EMFILE, kNoResources}}) {
    int number = error;
    olt_connect_through(
        [](void *context, uint32_t) {
          errno = *static_cast<int *>(context);
          return -1;
        },
        &number);
    EXPECT_EQ(post(2, kEcho, {}).result, result);
  }
  olt_connect_through(nullptr, nullptr);
}

TEST_F(Client, ANonBlockingSocketFromAConnectorWillDo) {
  int ends[2];
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends), 0);
  olt_connect_through([](void *context, uint32_t) { return *static_cast<int *>(context); },
                      &ends[0]);
  std::thread module([&] {
    Bytes request = receive_bytes(ends[1], 20);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    send_bytes(ends[1], answer_frame(request, "0600 0000 00000000"));
  });
  EXPECT_EQ(post(2, kEcho, {}).status, 6);
  module.join();
  close(ends[1]);
  olt_connect_through(nullptr, nullptr);
}

TEST(TransportText, TellsEachResult) {
  EXPECT_STREQ(olt_transport_text(0), "the exchange took place");
  EXPECT_STREQ(olt_transport_text(0x00010000), "no answer within the time-out");
  EXPECT_STREQ(olt_transport_text(0x00010005), "no answer within the time-out");
  EXPECT_STREQ(olt_transport_text(0x00020000), "nothing serves the module");
  EXPECT_STREQ(olt_transport_text(0x00030000), "the module went away before it answered");
  EXPECT_STREQ(olt_transport_text(0x00040000),
               "one side runs as a user that the other does not accept");
  EXPECT_STREQ(olt_transport_text(0x00050000), "the answer is not a well-formed frame");
  EXPECT_STREQ(olt_transport_text(0x00060000), "the request is longer than can be sent");
  EXPECT_STREQ(olt_transport_text(0x00070000), "out of memory, descriptors or reply handles");
  EXPECT_STREQ(olt_transport_text(0x00080000), "a null pointer where one must be given");
  EXPECT_STREQ(olt_transport_text(-1), "unknown transport result");
  EXPECT_STREQ(olt_transport_text(INT32_MIN), "unknown transport result");
}

}  // namespace
}  // namespace olt::test
