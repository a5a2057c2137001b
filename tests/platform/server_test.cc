// The serving side, through plain sockets and literal bytes.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <thread>

#include "base/clock.h"
#include "tests/platform/support.h"

namespace olt::test {

namespace {

using std::chrono::milliseconds;

constexpr int32_t kLost = 0x00030000;
const Bytes kEmptyAnswer = hex("4f4c4131 01000000 0000 0000 00000000");

class Serving : public testing::Test {
 protected:
  TemporaryRunDir dir_;
  ServerThread server_{{.run_dir = dir_.path().c_str(), .stall_ms = 150, .modules = {2, 18}}};

  static void expect_still_serving() {
    EXPECT_EQ(exchange_bytes(2, kEcho, text("others")), text("others"));
  }
};

TEST_F(Serving, AnswersWithTheDocumentedBytes) {
  RawClient client(dir_.socket(2));
  ASSERT_TRUE(client.send(hex("4f4c5131 f1e2d3c4 01000000 00000000 03000000 616263")));
  EXPECT_EQ(client.receive(19), hex("4f4c4131 f1e2d3c4 0000 0000 03000000 616263"));
  ASSERT_TRUE(client.send(hex("4f4c5131 02000000 02000000 00000000 04000000 34120000")));
  EXPECT_EQ(client.receive(22), hex("4f4c4131 02000000 3412 0000 06000000 726561736f6e"));
}

TEST_F(Serving, SendsNoReplyThatIsNotWanted) {
  RawClient client(dir_.socket(2));
  ASSERT_TRUE(client.send(hex("4f4c5131 01000000 01000000 01000000 03000000 616263")));
  EXPECT_EQ(client.receive(16), kEmptyAnswer);
  ASSERT_TRUE(client.send(request_frame(2, kEcho, text("z"))));
  EXPECT_EQ(client.receive(17), hex("4f4c4131 02000000 0000 0000 01000000 7a"));
}

TEST_F(Serving, TakesAFrameInPieces) {
  RawClient client(dir_.socket(2));
  for (uint8_t byte : request_frame(1, kEcho, text("pieces"))) {
    ASSERT_TRUE(client.send({byte}));
    std::this_thread::sleep_for(milliseconds(2));
  }
  EXPECT_EQ(client.receive(22), hex("4f4c4131 01000000 0000 0000 06000000 706965636573"));
  EXPECT_EQ(server_.counters().stalled_clients, 0u);
}

TEST_F(Serving, AnswersRequestsThatCameTogetherInTurn) {
  RawClient client(dir_.socket(2));
  Bytes all;
  for (uint32_t i = 0; i < 500; ++i) {
    Bytes frame = request_frame(i, kEcho, word(i));
    all.insert(all.end(), frame.begin(), frame.end());
  }
  ASSERT_TRUE(client.send(all));
  for (uint32_t i = 0; i < 500; ++i) {
    Bytes answer = client.receive(20);
    ASSERT_EQ(answer.size(), 20u);
    EXPECT_EQ(Bytes(answer.begin() + 4, answer.begin() + 8), word(i));
    EXPECT_EQ(Bytes(answer.begin() + 16, answer.end()), word(i));
  }
}

TEST_F(Serving, ARequestBehindADelayedOneWaitsForItsAnswer) {
  RawClient client(dir_.socket(2));
  Bytes both = request_frame(1, kDelayedEcho, word(100));
  Bytes second = request_frame(2, kEcho, {});
  both.insert(both.end(), second.begin(), second.end());
  ASSERT_TRUE(client.send(both));
  EXPECT_EQ(client.receive(36), hex("4f4c4131 01000000 0000 0000 04000000 64000000"
                                    "4f4c4131 02000000 0000 0000 00000000"));
}

TEST_F(Serving, OthersAreServedWhileAnAnswerIsDelayed) {
  RawClient patient(dir_.socket(2));
  auto start = Clock::now();
  ASSERT_TRUE(patient.send(request_frame(1, kDelayedEcho, word(600))));
  for (int i = 0; i < 20; ++i) expect_still_serving();
  EXPECT_LT(seconds_since(start), 0.6);
  EXPECT_EQ(patient.receive(20).size(), 20u);
  EXPECT_GE(seconds_since(start), 0.6);
}

TEST_F(Serving, AWithheldAnswerLeavesTheConnectionUsable) {
  RawClient client(dir_.socket(2));
  ASSERT_TRUE(client.send(request_frame(1, kSilence, {})));
  ASSERT_TRUE(client.send(request_frame(2, kEcho, {})));
  EXPECT_EQ(client.receive(16), hex("4f4c4131 02000000 0000 0000 00000000"));
}

TEST_F(Serving, HangsUpOnRequestAtOnceOrLater) {
  RawClient first(dir_.socket(2));
  ASSERT_TRUE(first.send(request_frame(1, kHangUp, {})));
  EXPECT_TRUE(first.is_closed());
  RawClient second(dir_.socket(2));
  auto start = Clock::now();
  ASSERT_TRUE(second.send(request_frame(1, kHangUp, word(200))));
  EXPECT_TRUE(second.is_closed());
  EXPECT_GE(seconds_since(start), 0.2);
  EXPECT_EQ(server_.counters().exchanges, 0u);
}

TEST_F(Serving, AFailingHandlerAnswersWithItsOwnStatus) {
  for (uint32_t type : {kThrow, kTooLong, kNullReply}) {
    Exchanged all = exchange(2, type, {});
    EXPECT_EQ(all.result, 0);
    EXPECT_EQ(all.status, 0xffff);
  }
  std::string events = server_.events();
  EXPECT_NE(events.find("module 2: the handler of message type 8 threw an exception: no such slot"),
            std::string::npos);
  EXPECT_NE(events.find("message type 9 gave a reply longer than 65535 bytes: 65536"),
            std::string::npos);
  EXPECT_NE(events.find("message type 13 gave no reply record for a length of 4"),
            std::string::npos);
  expect_still_serving();
}

struct Rubbish {
  const char *name;
  const char *bytes;

  // Names the case in the list of tests.
  friend void PrintTo(const Rubbish &rubbish, std::ostream *out) { *out << rubbish.name; }
};

class RubbishRequest : public Serving, public testing::WithParamInterface<Rubbish> {};

TEST_P(RubbishRequest, ClosesTheConnectionAndIsCounted) {
  RawClient client(dir_.socket(2));
  ASSERT_TRUE(client.send(hex(GetParam().bytes)));
  EXPECT_TRUE(client.is_closed());
  EXPECT_TRUE(server_.reaches(&olt_server_counters::broken_frames, 1));
  EXPECT_NE(server_.events().find("module 2: a client sent"), std::string::npos);
  expect_still_serving();
}

INSTANTIATE_TEST_SUITE_P(
    Frames, RubbishRequest,
    testing::Values(Rubbish{"one_byte", "00"}, Rubbish{"text", "47455420 2f20"},
                    Rubbish{"wrong_magic", "4f4c5130 01000000 01000000 00000000 00000000"},
                    Rubbish{"unknown_flag", "4f4c5131 01000000 01000000 02000000 00000000"},
                    Rubbish{"one_byte_too_long", "4f4c5131 01000000 01000000 00000000 01000001"},
                    Rubbish{"longest_claim", "4f4c5131 01000000 01000000 00000000 ffffffff"}),
    [](const auto &one) { return std::string(one.param.name); });

TEST_F(Serving, RubbishBehindAGoodRequestClosesTheConnectionAfterItsAnswer) {
  RawClient client(dir_.socket(2));
  Bytes bytes = request_frame(1, kEcho, {});
  bytes.push_back('x');
  ASSERT_TRUE(client.send(bytes));
  EXPECT_EQ(client.receive(100), kEmptyAnswer);
  EXPECT_TRUE(server_.reaches(&olt_server_counters::broken_frames, 1));
}

TEST_F(Serving, SurvivesMuchRubbish) {
  for (uint32_t i = 0; i < 200; ++i) {
    RawClient client(dir_.socket(2));
    client.send(pattern(1 + i * 7, i));
  }
  EXPECT_TRUE(server_.reaches(&olt_server_counters::broken_frames, 200));
  expect_still_serving();
}

TEST_F(Serving, AClientThatStopsHalfWayIsDropped) {
  RawClient in_header(dir_.socket(2));
  ASSERT_TRUE(in_header.send(hex("4f4c5131 0100")));
  RawClient in_data(dir_.socket(2));
  ASSERT_TRUE(in_data.send(hex("4f4c5131 01000000 01000000 00000000 0a000000 616263")));
  RawClient idle(dir_.socket(2));
  expect_still_serving();
  EXPECT_TRUE(in_header.is_closed());
  EXPECT_TRUE(in_data.is_closed());
  EXPECT_TRUE(server_.reaches(&olt_server_counters::stalled_clients, 2));
  EXPECT_NE(server_.events().find(
                "module 2: a client stopped in the middle of a request; dropped after 150 ms"),
            std::string::npos);
  ASSERT_TRUE(idle.send(request_frame(1, kEcho, {})));
  EXPECT_EQ(idle.receive(16), kEmptyAnswer);
}

TEST_F(Serving, AClientThatDoesNotReadItsAnswersIsDropped) {
  RawClient client(dir_.socket(2));
  Bytes requests;
  for (uint32_t i = 0; i < 64; ++i) {
    Bytes frame = request_frame(i, kPattern, word(65535));
    requests.insert(requests.end(), frame.begin(), frame.end());
  }
  ASSERT_TRUE(client.send(requests));
  EXPECT_TRUE(server_.reaches(&olt_server_counters::stalled_clients, 1));
  EXPECT_NE(server_.events().find("a client stopped in the middle of its answer"),
            std::string::npos);
  expect_still_serving();
}

TEST_F(Serving, ASlowReaderGetsAllItsAnswers) {
  RawClient client(dir_.socket(2));
  Bytes requests;
  for (uint32_t i = 0; i < 16; ++i) {
    Bytes frame = request_frame(i, kPattern, word(65535));
    requests.insert(requests.end(), frame.begin(), frame.end());
  }
  ASSERT_TRUE(client.send(requests));
  Bytes reply = pattern(65535, 6);
  for (uint32_t i = 0; i < 16; ++i) {
    std::this_thread::sleep_for(milliseconds(10));
    Bytes answer = client.receive(65551);
    ASSERT_EQ(answer.size(), 65551u);
    EXPECT_EQ(Bytes(answer.begin() + 4, answer.begin() + 8), word(i));
    EXPECT_EQ(Bytes(answer.begin() + 16, answer.end()), reply);
  }
  EXPECT_EQ(server_.counters().stalled_clients, 0u);
}

TEST_F(Serving, AClientThatVanishesHalfWayIsCounted) {
  RawClient client(dir_.socket(18));
  ASSERT_TRUE(client.send(hex("4f4c5131 01000000 01000000 00000000 0a000000 61")));
  client.close();
  EXPECT_TRUE(server_.reaches(&olt_server_counters::vanished_clients, 1));
  EXPECT_NE(server_.events().find("module 18: a client vanished in the middle of a request"),
            std::string::npos);
}

TEST_F(Serving, AClientThatVanishesBeforeItsAnswerIsNoticedAtOnce) {
  RawClient delayed(dir_.socket(2));
  ASSERT_TRUE(delayed.send(request_frame(1, kDelayedEcho, word(60000))));
  RawClient withheld(dir_.socket(2));
  ASSERT_TRUE(withheld.send(request_frame(1, kSilence, {})));
  std::this_thread::sleep_for(milliseconds(50));
  delayed.close();
  EXPECT_TRUE(server_.reaches(&olt_server_counters::vanished_clients, 1));
  withheld.close();
  EXPECT_TRUE(server_.reaches(&olt_server_counters::vanished_clients, 2));
  EXPECT_NE(server_.events().find("module 2: a client vanished before its answer"),
            std::string::npos);
}

TEST_F(Serving, WhoSendsNoMoreIsServedToTheLastRequestBehindADelayedOne) {
  RawClient client(dir_.socket(2));
  Bytes requests;
  for (const Bytes &one :
       {request_frame(1, kDelayedEcho, word(1)), request_frame(2, kBusy, word(100)),
        request_frame(3, kSilence, {}), request_frame(4, kEcho, {})}) {
    requests.insert(requests.end(), one.begin(), one.end());
  }
  ASSERT_TRUE(client.send(requests));
  EXPECT_EQ(client.receive(20), hex("4f4c4131 01000000 0000 0000 04000000 01000000"));
  shutdown(client.get(), SHUT_WR);
  EXPECT_EQ(client.receive(32), hex("4f4c4131 02000000 0000 0000 00000000"
                                    "4f4c4131 04000000 0000 0000 00000000"));
  EXPECT_TRUE(client.is_closed());
  EXPECT_EQ(server_.counters().vanished_clients, 0u);
}

TEST_F(Serving, AClientThatLeavesInPeaceIsNoEvent) {
  {
    RawClient client(dir_.socket(2));
    ASSERT_TRUE(client.send(request_frame(1, kEcho, {})));
    EXPECT_EQ(client.receive(16), kEmptyAnswer);
  }
  expect_still_serving();
  EXPECT_EQ(server_.events(), "");
  EXPECT_EQ(server_.counters().vanished_clients, 0u);
  EXPECT_EQ(server_.counters().connections, 2u);
}

// The handler takes 20 ms for each of 50 requests; another client waits for one of them, not all.
TEST_F(Serving, RequestsSentTogetherHoldUpNobodyElse) {
  expect_still_serving();
  RawClient greedy(dir_.socket(2));
  Bytes requests;
  for (uint32_t i = 0; i < 50; ++i) {
    Bytes frame = request_frame(i, kBusy, word(20));
    requests.insert(requests.end(), frame.begin(), frame.end());
  }
  ASSERT_TRUE(greedy.send(requests));
  for (int i = 0; i < 5; ++i) {
    Exchanged other = exchange(2, kEcho, {});
    EXPECT_EQ(other.result, 0);
    EXPECT_LT(other.seconds, 0.4);
  }
  EXPECT_LT(server_.counters().exchanges, 50u);
  EXPECT_EQ(greedy.receive(50 * 16).size(), 800u);
}

class Limited : public testing::Test {
 protected:
  TemporaryRunDir dir_;
  ServerThread server_{{.run_dir = dir_.path().c_str(), .pending_limit = 1 << 20}};

  /// Each exchange lets the others have a turn.
  static void let_others_arrive() {
    for (int i = 0; i < 20; ++i) exchange_bytes(2, kEcho, {});
  }
};

// 200 KiB of each request arrive, for which a buffer of 256 KiB is needed: four fit into 1 MiB.
TEST_F(Limited, HalfReceivedRequestsTakeNoMoreMemoryThanTold) {
  std::vector<std::unique_ptr<RawClient>> clients;
  Bytes piece = hex("4f4c5131 01000000 01000000 00000000 00000001");
  piece.resize(200 * 1024);
  for (int i = 0; i < 20; ++i) {
    clients.push_back(std::make_unique<RawClient>(dir_.socket(2)));
    clients.back()->send(piece);
  }
  for (int i = 0; i < 500 && server_.counters().over_limit_clients < 16; ++i) {
    std::this_thread::sleep_for(milliseconds(2));
  }
  uint64_t dropped = server_.counters().over_limit_clients;
  EXPECT_GE(dropped, 16u);
  EXPECT_LT(dropped, 20u);
  EXPECT_NE(
      server_.events().find("module 2: a client sent a request for which the limit on pending "
                            "requests leaves no memory; dropped\n"),
      std::string::npos)
      << server_.events();
  EXPECT_EQ(exchange_bytes(2, kEcho, Bytes(4000, 7)), Bytes(4000, 7));

  clients.clear();
  EXPECT_TRUE(server_.reaches(&olt_server_counters::vanished_clients, 20 - dropped));
  for (int i = 0; i < 10; ++i) {
    Bytes request = pattern(900 * 1024, 1);
    EXPECT_EQ(exchange_bytes(2, kDigest, request), digest(request.data(), request.size()));
  }
}

// 1008 of the 1024 KiB are taken; the request needs 508.
TEST_F(Limited, ThoseThatBeganFirstMakeRoomForAnother) {
  Bytes piece = hex("4f4c5131 01000000 01000000 00000000 00000001");
  piece.resize(200 * 1024);
  std::vector<std::unique_ptr<RawClient>> clients;
  for (int i = 0; i < 4; ++i) {
    clients.push_back(std::make_unique<RawClient>(dir_.socket(2)));
    ASSERT_TRUE(clients.back()->send(piece));
    let_others_arrive();
  }
  for (int i = 0; i < 10; ++i) EXPECT_EQ(post(2, kDigest, Bytes(300 * 1024)).result, 0);
  EXPECT_EQ(server_.counters().over_limit_clients, 2u);
  EXPECT_TRUE(clients[0]->is_closed());
  EXPECT_TRUE(clients[1]->is_closed());
  clients.clear();
  EXPECT_TRUE(server_.reaches(&olt_server_counters::vanished_clients, 2));
}

TEST_F(Limited, ARequestBeyondTheLimitIsDroppedAndOthersAreServed) {
  EXPECT_EQ(post(2, kDigest, Bytes(2 * 1024 * 1024)).result, kLost);
  EXPECT_TRUE(server_.reaches(&olt_server_counters::over_limit_clients, 1));
  EXPECT_EQ(post(2, kDigest, Bytes(1024 * 1024)).result, 0);
}

size_t virtual_memory() {
  size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  return pages * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

TEST_F(Serving, AClaimedLengthTakesNoMemory) {
  size_t before = virtual_memory();
  std::vector<std::unique_ptr<RawClient>> clients;
  for (int i = 0; i < 64; ++i) {
    clients.push_back(std::make_unique<RawClient>(dir_.socket(2)));
    ASSERT_TRUE(clients.back()->send(hex("4f4c5131 01000000 01000000 00000000 00000001 61")));
  }
  expect_still_serving();
  // All 64 claims together are 1 GiB.
  EXPECT_LT(virtual_memory() - before, 256u << 20);
  EXPECT_TRUE(server_.reaches(&olt_server_counters::stalled_clients, 64));
}

TEST_F(Serving, TellsTheHandlerTheProcessOfTheClient) {
  EXPECT_EQ(exchange_bytes(2, kProcess, {}), word(static_cast<uint32_t>(getpid())));
  pid_t child = fork();
  if (child == 0)
    _exit(exchange_bytes(2, kProcess, {}) == word(static_cast<uint32_t>(getpid())) ? 0 : 1);
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

TEST_F(Serving, ConnectsWithinTheProcess) {
  RawClient client(olt_server_connect(server_.server(), 18));
  ASSERT_GE(client.get(), 0);
  ASSERT_TRUE(client.send(request_frame(1, kEcho, {})));
  EXPECT_EQ(client.receive(16), kEmptyAnswer);
  errno = 0;
  EXPECT_EQ(olt_server_connect(server_.server(), 3), -1);
  EXPECT_EQ(errno, ECONNREFUSED);
}

TEST_F(Serving, CountsExchangesAndConnections) {
  for (int i = 0; i < 3; ++i) {
    RawClient client(dir_.socket(2));
    ASSERT_TRUE(client.send(request_frame(1, kEcho, {})));
    EXPECT_EQ(client.receive(16), kEmptyAnswer);
  }
  EXPECT_TRUE(server_.reaches(&olt_server_counters::connections, 3));
  EXPECT_TRUE(server_.reaches(&olt_server_counters::exchanges, 3));
}

TEST(ServerEvents, GoToTheLogWhenNobodyTakesThem) {
  TemporaryRunDir dir;
  testing::internal::CaptureStderr();
  {
    ServerProcess server(dir.path());
    RawClient client(dir.socket(2));
    ASSERT_TRUE(client.send(text("rubbish")));
    EXPECT_TRUE(client.is_closed());
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "oltmgmt[3] olt_server_run:0: module 2: a client sent what is not a request; "
            "dropped\n");
}

olt_server *stopped_by_signal = nullptr;

class Stopping : public testing::Test {
 protected:
  Stopping() {
    olt_server_options options{};
    char error[256] = "";
    server_ = olt_server_create(&options, error);
    EXPECT_NE(server_, nullptr) << error;
    EXPECT_EQ(olt_server_add(server_, 2, act, nullptr, error), 0) << error;
  }
  ~Stopping() override { olt_server_destroy(server_); }

  int run() {
    char error[256] = "";
    return olt_server_run(server_, error);
  }

  olt_server *server_ = nullptr;
};

TEST_F(Stopping, WorksFromASignalHandler) {
  stopped_by_signal = server_;
  struct sigaction action {};
  struct sigaction before {};
  action.sa_handler = [](int) { olt_server_stop(stopped_by_signal); };
  sigaction(SIGUSR1, &action, &before);
  pthread_t runner = pthread_self();
  std::atomic<double> signalled{0};
  auto start = Clock::now();
  std::thread signaller([&] {
    std::this_thread::sleep_for(milliseconds(50));
    signalled = seconds_since(start);
    pthread_kill(runner, SIGUSR1);
  });
  EXPECT_EQ(run(), 0);
  EXPECT_LT(seconds_since(start) - signalled, 0.5);
  signaller.join();
  sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(Stopping, BeforeTheRunEndsIt) {
  olt_server_stop(server_);
  auto start = Clock::now();
  EXPECT_EQ(run(), 0);
  EXPECT_LT(seconds_since(start), 0.5);
}

TEST_F(Stopping, LeavesAServerThatCanRunAgain) {
  RawClient client(olt_server_connect(server_, 2));
  olt_server_stop(server_);
  EXPECT_EQ(run(), 0);
  std::thread runner([&] { EXPECT_EQ(run(), 0); });
  ASSERT_TRUE(client.send(request_frame(1, kEcho, {})));
  EXPECT_EQ(client.receive(16), kEmptyAnswer);
  olt_server_stop(server_);
  runner.join();
}

TEST_F(Stopping, DestroyingClosesWhatIsStillOpen) {
  RawClient delayed(olt_server_connect(server_, 2));
  std::thread runner([&] { EXPECT_EQ(run(), 0); });
  ASSERT_TRUE(delayed.send(request_frame(1, kDelayedEcho, word(60000))));
  std::this_thread::sleep_for(milliseconds(20));
  olt_server_stop(server_);
  runner.join();
  olt_server_destroy(server_);
  server_ = nullptr;
  EXPECT_TRUE(delayed.is_closed());
}

// Each connection has a request waiting, and the handler takes 50 ms for each.
TEST_F(Stopping, WaitsForOneHandlerAtMost) {
  std::thread runner([&] { EXPECT_EQ(run(), 0); });
  std::vector<std::unique_ptr<RawClient>> clients;
  for (int i = 0; i < 60; ++i) {
    clients.push_back(std::make_unique<RawClient>(olt_server_connect(server_, 2)));
    ASSERT_TRUE(clients.back()->send(request_frame(1, kBusy, word(50))));
  }
  EXPECT_EQ(clients[0]->receive(16), kEmptyAnswer);
  auto start = Clock::now();
  olt_server_stop(server_);
  runner.join();
  EXPECT_LT(seconds_since(start), 0.5);
}

/// A process that connects to a socket and closes the connection, without end.
class ConnectFlood {
 public:
  explicit ConnectFlood(const std::string &socket) : child_(fork()) {
    if (child_ != 0) return;
    for (;;) RawClient{socket};
  }
  ConnectFlood(const ConnectFlood &) = delete;
  ConnectFlood &operator=(const ConnectFlood &) = delete;
  ~ConnectFlood() {
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
  }

 private:
  pid_t child_;
};

TEST(ServerLoad, AFloodOfConnectionsDoesNotHoldUpTheOthers) {
  TemporaryRunDir dir;
  testing::internal::CaptureStderr();
  ServerProcess server(dir.path());
  EXPECT_EQ(post(2, kEcho, {}).result, 0);
  ConnectFlood flood(dir.socket(2));
  std::this_thread::sleep_for(milliseconds(200));
  std::vector<double> times;
  for (int i = 0; i < 200; ++i) {
    Exchanged one = post(2, kEcho, {});
    EXPECT_EQ(one.result, 0);
    times.push_back(one.seconds);
  }
  EXPECT_LT(open_descriptors_of(server.pid()), 60u);
  std::sort(times.begin(), times.end());
  EXPECT_LT(times[100], 0.02);
  RecordProperty("p99_us", static_cast<int>(times[198] * 1e6));
  testing::internal::GetCapturedStderr();
}

double cpu_seconds(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/schedstat");
  uint64_t nanoseconds = 0;
  file >> nanoseconds;
  return static_cast<double>(nanoseconds) * 1e-9;
}

TEST(ServerLimits, WithoutDescriptorsNewClientsWaitAndNothingSpins) {
  TemporaryRunDir dir;
  testing::internal::CaptureStderr();
  ServerProcess server(dir.path(), {2}, nullptr, [] {
    rlimit few{.rlim_cur = 60, .rlim_max = 60};
    setrlimit(RLIMIT_NOFILE, &few);
  });
  std::vector<std::unique_ptr<RawClient>> clients;
  for (int i = 0; i < 60; ++i) clients.push_back(std::make_unique<RawClient>(dir.socket(2)));
  ASSERT_TRUE(clients[0]->send(request_frame(1, kEcho, {})));
  EXPECT_EQ(clients[0]->receive(16), kEmptyAnswer);
  double before = cpu_seconds(server.pid());
  std::this_thread::sleep_for(milliseconds(500));
  EXPECT_LT(cpu_seconds(server.pid()) - before, 0.2);
  ASSERT_TRUE(clients[0]->send(request_frame(1, kEcho, {})));
  EXPECT_EQ(clients[0]->receive(16), kEmptyAnswer);

  ASSERT_TRUE(clients[59]->send(request_frame(1, kEcho, {})));
  for (size_t i = 0; i < 40; ++i) clients[i]->close();
  EXPECT_EQ(clients[59]->receive(16), kEmptyAnswer);
  std::string errors = testing::internal::GetCapturedStderr();
  EXPECT_NE(errors.find("module 2: new clients have to wait: Too many open files\n"),
            std::string::npos)
      << errors;
}

// Sixteen descriptors stay free for handlers.
TEST(ServerLimits, ClientsLeaveDescriptorsToTheHandlers) {
  TemporaryRunDir dir;
  testing::internal::CaptureStderr();
  ServerProcess server(dir.path(), {2, 18}, nullptr, [] {
    rlimit few{.rlim_cur = 40, .rlim_max = 40};
    setrlimit(RLIMIT_NOFILE, &few);
  });
  EXPECT_EQ(post(18, kEcho, {}).result, 0);
  std::vector<std::unique_ptr<RawClient>> clients;
  for (int i = 0; i < 60; ++i) clients.push_back(std::make_unique<RawClient>(dir.socket(2)));
  std::this_thread::sleep_for(milliseconds(100));
  EXPECT_EQ(post(18, kOpenFiles, word(16)).status, 0);
  EXPECT_GT(open_descriptors_of(server.pid()), 20u);
  testing::internal::GetCapturedStderr();
}

TEST(ServerLimits, ALimitThatLeavesNoDescriptorsForClientsIsReported) {
  TemporaryRunDir dir;
  ChildResult child = run_in_child([&] {
    rlimit few{.rlim_cur = 24, .rlim_max = 24};
    setrlimit(RLIMIT_NOFILE, &few);
    olt_server_options options{.run_dir = dir.path().c_str()};
    char error[256] = "";
    olt_server *server = olt_server_create(&options, error);
    auto handler = [](void *, const olt_request *, olt_answer *) {};
    int result = olt_server_add(server, 2, handler, nullptr, error);
    std::fputs(error, stderr);
    olt_server_destroy(server);
    return result == -1 ? 0 : 1;
  });
  EXPECT_EQ(child.status, 0);
  EXPECT_EQ(child.errors,
            "module 2: the limit on open files leaves none for clients; expected a higher one "
            "(ulimit -n)");
  EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
}

TEST(ServerLimits, AsManyDescriptorsAsTheSystemAllows) {
  TemporaryRunDir dir;
  ChildResult child = run_in_child([&] {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = 30;
    setrlimit(RLIMIT_NOFILE, &limit);
    olt_server_options options{.run_dir = dir.path().c_str()};
    char error[256] = "";
    olt_server *server = olt_server_create(&options, error);
    getrlimit(RLIMIT_NOFILE, &limit);
    bool raised = server != nullptr && limit.rlim_cur == limit.rlim_max;
    olt_server_destroy(server);
    return raised ? 0 : 1;
  });
  EXPECT_EQ(child.status, 0) << child.errors;
}

}  // namespace
}  // namespace olt::test
